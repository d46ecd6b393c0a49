#include "messages/WindowsOnScreen.h"

#include <algorithm>
#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QStyle>
#include <QWidget>

namespace messages {
namespace {

constexpr char kDoneProperty[] = "KVWindowsOnScreen";
constexpr int kBorder = 4;  // pixels of a frame at each side

class WindowsOnScreen final : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Show || event->spontaneous() || !watched->isWidgetType()) {
            return false;
        }
        auto* window = static_cast<QWidget*>(watched);
        const Qt::WindowType kind = window->windowType();
        if (kind == Qt::Window || kind == Qt::Dialog) Fit(*window);
        return false;
    }

private:
    /// The window manager's frame is not known before it is there.
    static void Fit(QWidget& window) {
        if (window.windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)) return;
        const int caption = window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
        const QRect room = window.screen()->availableGeometry().adjusted(kBorder, caption + kBorder,
                                                                         -kBorder, -kBorder);
        if (room.isEmpty()) return;
        const QRect wanted = window.geometry();
        const QSize size = wanted.size().boundedTo(room.size());
        if (size != wanted.size()) window.resize(size);
        // One that has not been given a place gets one that suits its size.
        if (!window.testAttribute(Qt::WA_Moved)) return;
        const QPoint place(std::clamp(wanted.x(), room.left(), room.right() + 1 - size.width()),
                           std::clamp(wanted.y(), room.top(), room.bottom() + 1 - size.height()));
        if (place != wanted.topLeft()) window.setGeometry(QRect(place, size));
    }
};

}  // namespace

void KeepWindowsOnScreen() {
    if (qApp->property(kDoneProperty).toBool()) return;
    qApp->setProperty(kDoneProperty, true);
    qApp->installEventFilter(new WindowsOnScreen(qApp));
}

}  // namespace messages
