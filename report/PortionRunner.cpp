#include "report/PortionRunner.h"

#include <utility>

#include "guard/Guard.h"

namespace report {

using namespace Qt::Literals::StringLiterals;

namespace {
// Between two portions the window answers keys and mouse.
constexpr std::chrono::milliseconds kPortion(30);
}  // namespace

PortionRunner::PortionRunner(QObject* parent) : QObject(parent) {
    timer_.setObjectName(QStringLiteral("tmrPortion"));
    connect(&timer_, &QTimer::timeout, this, &PortionRunner::Step);
}

void PortionRunner::Start(std::unique_ptr<Task> task, Finished finished) {
    task_ = std::move(task);
    finished_ = std::move(finished);
    emit Progress(task_->Label(), 0);
    emit RunningChanged(true);
    timer_.start(0);
}

void PortionRunner::Cancel() {
    if (task_) End(Outcome::Cancelled, {});
}

void PortionRunner::Step() {
    messages::Message failure;
    try {
        if (task_->Step(kPortion)) {
            End(Outcome::Done, {});
        } else {
            emit Progress(task_->Label(), task_->Permille());
        }
        return;
    } catch (const TaskError& error) {
        failure.text = error.text;
    } catch (...) {
        failure = guard::ToMessage(projectdb::Failure::Current(), u"KVProjectReport: Step"_s);
    }
    End(Outcome::Failed, failure);
}

void PortionRunner::End(Outcome outcome, const messages::Message& failure) {
    timer_.stop();
    const std::unique_ptr<Task> task = std::exchange(task_, nullptr);
    const Finished finished = std::exchange(finished_, nullptr);
    emit RunningChanged(false);
    if (finished) finished(*task, outcome, failure);
}

}  // namespace report
