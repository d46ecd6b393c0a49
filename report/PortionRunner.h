#pragma once

#include <functional>
#include <memory>
#include <QObject>
#include <QTimer>

#include "messages/MessageBox.h"
#include "report/Tasks.h"

namespace report {

/// Runs one task at a time, portion by portion, between the events of the user interface. Being
/// destroyed ends the task.
class PortionRunner final : public QObject {
    Q_OBJECT
public:
    enum class Outcome { Done, Cancelled, Failed };
    /// `failure` says why it failed. The task still exists while this runs.
    using Finished =
        std::function<void(Task& task, Outcome outcome, const messages::Message& failure)>;

    explicit PortionRunner(QObject* parent = nullptr);

    [[nodiscard]] bool IsRunning() const noexcept { return task_ != nullptr; }
    /// REQUIRES: none is running.
    void Start(std::unique_ptr<Task> task, Finished finished);
    void Cancel();

signals:
    void Progress(const QString& label, int permille);
    /// A task has begun or ended.
    void RunningChanged(bool running);

private:
    void Step();
    void End(Outcome outcome, const messages::Message& failure);

    std::unique_ptr<Task> task_;
    Finished finished_;
    QTimer timer_;
};

}  // namespace report
