#pragma once

#include <functional>
#include <QLocalServer>
#include <QObject>
#include <QString>

namespace studio {

/// One studio for each user: a second start hands its project over to the one that is running, and
/// ends. They meet at a socket in the user's run-time folder (XDG_RUNTIME_DIR); where there is
/// none, each start is a studio of its own. Studios that would show a project in another way - on
/// another desktop, with another registry, other add-ins, texts or kept settings - do not meet.
class RunningStudio final : public QObject {
    Q_OBJECT
public:
    /// Shows a project in the window, or only the window when it is empty. False when it cannot be
    /// now: whoever asks has to have a window of his own.
    using Show = std::function<bool(const QString& project)>;

    /// `activation` is the desktop's leave to bring a window to the front, which goes along with
    /// the project; empty: none.
    explicit RunningStudio(QByteArray activation) : activation_(std::move(activation)) {}

    /// True when a running studio shows the project. Otherwise this one is asked from now on,
    /// unless one is there that cannot show it. `project` is a name or an absolute path.
    [[nodiscard]] bool HandOver(const QString& project);
    /// What others have asked for meanwhile has waited.
    void SetHandler(Show show);

private:
    void Listen(const QString& socket);
    void Answer();

    QByteArray activation_;
    QLocalServer server_;
    Show show_;
};

}  // namespace studio
