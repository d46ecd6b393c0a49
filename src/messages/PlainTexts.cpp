#include "messages/PlainTexts.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>

namespace messages {
namespace {

/// Labels are made at any time, tool tips by Qt itself; what they have in common is that they are
/// polished before their text is laid out for the first time.
class PlainTexts final : public QObject {
public:
    explicit PlainTexts(QWidget& window) : QObject(&window), window_(window) {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Polish) return false;
        auto* label = qobject_cast<QLabel*>(watched);
        if (label != nullptr && label->textFormat() == Qt::AutoText && IsOurs(label)) {
            label->setTextFormat(Qt::PlainText);
        }
        return false;
    }

private:
    [[nodiscard]] bool IsOurs(const QWidget* widget) const {
        while (widget != nullptr && widget != &window_) widget = widget->parentWidget();
        return widget != nullptr;
    }

    QWidget& window_;
};

}  // namespace

void KeepTextsPlain(QWidget& window) {
    new PlainTexts(window);  // the window's child
}

QString TipLines(const QString& text) {
    constexpr qsizetype kLine = 60;  // characters
    QString lines;
    qsizetype begin = 0;  // of the last line
    for (const QString& word : text.split(u' ')) {
        const qsizetype length = lines.size() - begin;
        if (length > 0 && length + 1 + word.size() > kLine) {
            lines += u'\n';
            begin = lines.size();
        } else if (!lines.isEmpty()) {
            lines += u' ';
        }
        lines += word;
    }
    return lines;
}

}  // namespace messages
