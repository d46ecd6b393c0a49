#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <QObject>
#include <QThreadPool>
#include <string>

#include "project/Differences.h"
#include "projectdb/Failure.h"

namespace differences {

/// What a comparison came to: differences, or why there are none. Neither: it was given up.
struct Compared {
    std::shared_ptr<const project::Differences> differences;
    std::optional<projectdb::Failure> failure{};
};

/// Compares two projects in a thread of its own, each in a copy of the state that it has at the
/// beginning: nobody waits for it. For the user-interface thread.
class CompareService final : public QObject {
    Q_OBJECT
public:
    explicit CompareService(QObject* parent = nullptr);
    ~CompareService() override;  // gives up, and waits for the thread

    /// What is compared so far is given up, without a word. Data sources of connections.
    void Start(const std::string& there, const std::string& here);
    void Cancel();
    [[nodiscard]] bool IsRunning() const { return isRunning_; }

signals:
    void Progress(qulonglong rows);
    void Done(const differences::Compared& compared);

private:
    std::shared_ptr<std::atomic<bool>> isCancelled_;  // of the comparison that runs
    bool isRunning_ = false;
    QThreadPool thread_;
};

}  // namespace differences
