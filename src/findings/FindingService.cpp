#include "findings/FindingService.h"

#include <algorithm>
#include <QDate>
#include <utility>

#include "ado/Connection.h"
#include "paths/NativePath.h"

namespace findings {
namespace {

/// Several changes in a row, as typing makes them, are looked at once.
constexpr int kDelayMs = 150;

void CheckInto(Checked& checked, const std::string& source, const std::string& settingsFile,
               const std::atomic<bool>& isEnding) {
    const auto settings = project::CheckSettings::Load(settingsFile);
    ado::Connection connection;
    connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + source +
                    ";Mode=Read|Share Deny None;");
    project::CheckResult result = project::CheckProject(connection, settings.Severities(), [&] {
        return !isEnding && !connection.IsWriterWaiting();
    });
    checked.hasUnread = !result.unread.empty();
    checked.lacksVariables = !result.notChecked.empty();
    checked.judgement =
        settings.Judge(result.findings, QDate::currentDate().toString(Qt::ISODate).toStdString());
    std::stable_sort(checked.judgement.open.begin(), checked.judgement.open.end(),
                     [](const project::Finding& a, const project::Finding& b) {
                         return a.severity > b.severity;
                     });
}

/// Null when it has given way.
CheckedPtr Check(const std::string& source, const std::string& settingsFile,
                 const std::atomic<bool>& isEnding) {
    auto checked = std::make_shared<Checked>();
    try {
        CheckInto(*checked, source, settingsFile, isEnding);
    } catch (const project::CheckStopped&) {
        return nullptr;
    } catch (...) {
        checked->failure = projectdb::Failure::Current();
    }
    return checked;
}

}  // namespace

FindingService::FindingService(std::string dataSource, QObject* parent)
    : QObject(parent),
      dataSource_(std::move(dataSource)),
      settingsFile_(project::CheckSettings::FileOf(paths::ToNative(dataSource_))) {
    thread_.setMaxThreadCount(1);
    delay_.setSingleShot(true);
    delay_.setInterval(kDelayMs);
    connect(&delay_, &QTimer::timeout, this, &FindingService::Start);
    delay_.start();
}

FindingService::~FindingService() {
    isEnding_ = true;
    thread_.waitForDone();
}

void FindingService::Look() {
    const bool wasCurrent = IsCurrent();
    ++asked_;
    if (!isRunning_) delay_.start();
    if (wasCurrent) emit Changed();
}

void FindingService::Start() {
    if (isRunning_) return;
    isRunning_ = true;
    thread_.start([this, asked = asked_] {
        const CheckedPtr checked = Check(dataSource_, settingsFile_, isEnding_);
        QMetaObject::invokeMethod(
            this, [this, checked, asked] { Take(checked, asked); }, Qt::QueuedConnection);
    });
}

void FindingService::Take(const CheckedPtr& checked, std::uint64_t asked) {
    isRunning_ = false;
    if (checked) {
        latest_ = checked;
        known_ = asked;
    }
    if (!IsCurrent()) delay_.start();
    if (checked) emit Changed();
}

}  // namespace findings
