#include "differences/CompareService.h"

#include "ado/Connection.h"

namespace differences {
namespace {

void Open(ado::Connection& connection, const std::string& source) {
    connection.OpenSnapshot("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + source +
                            ";Mode=Read|Share Deny None;");
}

Compared CompareFiles(const std::string& there, const std::string& here,
                      const std::function<bool(std::size_t)>& goOn) {
    Compared compared;
    try {
        ado::Connection before;
        Open(before, there);
        ado::Connection after;
        Open(after, here);
        compared.differences =
            std::make_shared<const project::Differences>(project::Compare(before, after, goOn));
    } catch (const project::CompareStopped&) {
        // Whoever has asked knows.
    } catch (...) {
        compared.failure = projectdb::Failure::Current();
    }
    return compared;
}

}  // namespace

CompareService::CompareService(QObject* parent) : QObject(parent) {
    thread_.setMaxThreadCount(1);
}

CompareService::~CompareService() {
    Cancel();
    thread_.waitForDone();
}

void CompareService::Start(const std::string& there, const std::string& here) {
    if (isCancelled_) *isCancelled_ = true;
    isCancelled_ = std::make_shared<std::atomic<bool>>(false);
    isRunning_ = true;
    thread_.start([this, there, here, isCancelled = isCancelled_] {
        const Compared compared = CompareFiles(there, here, [&](std::size_t rows) {
            emit Progress(rows);
            return !*isCancelled;
        });
        const auto tell = [this, compared, isCancelled] {
            if (isCancelled != isCancelled_) return;  // another has begun
            isRunning_ = false;
            emit Done(compared);
        };
        QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
    });
}

void CompareService::Cancel() {
    if (isCancelled_) *isCancelled_ = true;
}

}  // namespace differences
