#include "help/HelpViewer.h"

#include <memory>
#include <QCoreApplication>
#include <QList>
#include <QPointer>
#include <utility>

#include "help/HelpWindow.h"
#include "paths/NativePath.h"

namespace help {

namespace {

/// All windows of this library: a viewer that belongs to an add-in lives longer than the
/// application, and no window may.
QList<QPointer<HelpWindow>>& Windows() {
    static QList<QPointer<HelpWindow>> windows;
    return windows;
}

void DeleteWindows() {
    for (const QPointer<HelpWindow>& window : std::exchange(Windows(), {})) delete window.data();
}

/// Owns the window.
class Viewer final {
public:
    explicit Viewer(const MResources::TextTable& texts) : texts_(texts) {}
    ~Viewer() { delete window_.data(); }
    Viewer(const Viewer&) = delete;
    Viewer& operator=(const Viewer&) = delete;

    void Show(const QString& path, int topic, QWidget* owner) {
        if (window_ && window_->Language() != texts_.Language().help) delete window_.data();
        if (!window_) {
            window_ = new HelpWindow(texts_);
            if (Windows().isEmpty()) qAddPostRoutine(DeleteWindows);
            Windows().removeAll(nullptr);
            Windows() += window_;
        }
        const QByteArray utf8 = path.toUtf8();
        const std::string native = paths::ToNative({utf8.data(), std::size_t(utf8.size())});
        window_->ShowTopic(QString::fromStdString(native), topic);
        window_->BringUp(owner);
    }

private:
    const MResources::TextTable& texts_;
    QPointer<HelpWindow> window_;
};

}  // namespace

platform::HelpFile::Viewer MakeViewer(const MResources::TextTable& texts) {
    return
        [viewer = std::make_shared<Viewer>(texts)](const QString& path, int topic, QWidget* owner) {
            viewer->Show(path, topic, owner);
            return true;
        };
}

}  // namespace help
