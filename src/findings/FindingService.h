#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <QObject>
#include <QThreadPool>
#include <QTimer>
#include <string>

#include "project/CheckSettings.h"
#include "projectdb/Failure.h"

namespace findings {

/// What the check has found in one state of the project. Immutable once it is handed out.
struct Checked {
    project::Judgement judgement;  // what is open by severity, the gravest first
    bool hasUnread = false;        // rows that cannot be read, of which nothing is known
    bool lacksVariables = false;   // the project has no list of them to be held against
    std::optional<projectdb::Failure> failure{};  // why nothing is known
};
using CheckedPtr = std::shared_ptr<const Checked>;

/// Checks a project again and again in a thread of its own, over connections of its own, and gives
/// way to whoever writes meanwhile. For the user-interface thread.
class FindingService final : public QObject {
    Q_OBJECT
public:
    /// `dataSource` as the project's connection has it.
    explicit FindingService(std::string dataSource, QObject* parent = nullptr);
    ~FindingService() override;  // waits for the thread, which stops at once

    /// The project has changed, or what is decided on its findings: what is known is of before.
    void Look();
    /// Whether the latest is what a check would find now.
    [[nodiscard]] bool IsCurrent() const { return known_ == asked_; }
    /// Null before the first check has ended.
    [[nodiscard]] const CheckedPtr& Latest() const { return latest_; }
    /// The file with what is decided on findings; native.
    [[nodiscard]] const std::string& SettingsFile() const { return settingsFile_; }

signals:
    /// Another is the latest, or it is current no more.
    void Changed();

private:
    void Start();
    /// `checked` is null when the check has given way.
    void Take(const CheckedPtr& checked, std::uint64_t asked);

    std::string dataSource_;
    std::string settingsFile_;
    CheckedPtr latest_;
    std::uint64_t asked_ = 1;  // how often it was asked for
    std::uint64_t known_ = 0;  // when the latest was begun
    bool isRunning_ = false;
    QTimer delay_;
    std::atomic<bool> isEnding_ = false;
    QThreadPool thread_;
};

}  // namespace findings
