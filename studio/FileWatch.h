#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>
#include <utility>

namespace studio {

/// Looks again and again whether the file of a project is still the one that was opened. It looks
/// from a thread of its own: a share that has gone away can let that wait for minutes.
class FileWatch final : public QObject {
    Q_OBJECT
public:
    enum class State {
        Same,
        Replaced,  // another file has its name
        Gone,      // or cannot be reached
    };
    Q_ENUM(State)
    /// Device and number of a file, the same under whatever name; nothing when it cannot be
    /// reached.
    using Identity = std::optional<std::pair<quint64, quint64>>;
    [[nodiscard]] static Identity IdentityOf(const QByteArray& path);

    explicit FileWatch(QObject* parent = nullptr);
    ~FileWatch() override;

    /// From now on this file, as it is now; empty: none.
    void SetFile(const QString& nativePath);
    /// The file as it was then.
    [[nodiscard]] const Identity& Opened() const noexcept { return opened_; }

signals:
    void Changed(FileWatch::State state);

private:
    /// What a thread has seen, which nobody waits for: it may outlive the window.
    struct Answer {
        Identity now;
        std::atomic<bool> isThere = false;
    };
    void Look();

    QTimer timer_;
    QByteArray path_;
    Identity opened_;
    State state_ = State::Same;
    std::shared_ptr<Answer> answer_;  // that is waited for; null: none
};

}  // namespace studio
