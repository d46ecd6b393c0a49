#include "jet/write/Recovery.h"

#include <algorithm>

#include "jet/write/Journal.h"

namespace jet {

Recovery::Recovery(Disk& disk, std::string database, const File& file,
                   std::function<void(std::string)> notify)
    : disk_(disk), database_(std::move(database)), file_(file), notify_(std::move(notify)) {}

/// Beside the database, and where the program lies that has written it last under another of its
/// names. A journal of another file is none of this one's business.
std::vector<std::string> Recovery::Paths() const {
    std::vector<std::string> paths = {Journal::PathFor(database_)};
    const std::string noted = file_.Note();
    const std::string owner = Journal::DatabaseOf(noted);
    if (owner.empty() || noted == paths.front()) return paths;
    const auto found = disk_.Resolve(owner);
    const bool isGone = !found.IsOk() && found.GetStatus().Code() == StatusCode::NotFound;
    if (isGone || disk_.HasName(file_, owner)) paths.push_back(noted);
    return paths;
}

bool Recovery::IsNeeded() const {
    const std::vector<std::string> paths = Paths();
    return std::any_of(paths.begin(), paths.end(), [&](const std::string& path) {
        const auto journal = disk_.OpenLeftOver(path, database_);
        if (journal.IsOk()) return true;
        const StatusCode code = journal.GetStatus().Code();
        // A folder of that name, say, is no journal.
        return code != StatusCode::NotFound && code != StatusCode::BadArgument;
    });
}

Status Recovery::CheckPlace() const {
    const std::string path = Journal::PathFor(database_);
    const auto found = disk_.OpenLeftOver(path, database_);
    if (found.IsOk() || found.GetStatus().Code() != StatusCode::BadArgument) return {};
    return Status::BadArgument("\"" + path + "\" stands where the journal of a change has to be (" +
                               found.GetStatus().Text() + "); move it away");
}

Result<Recovery::Outcome> Recovery::Run(File* writable) {
    Outcome worst = Outcome::Nothing;
    for (const std::string& path : Paths()) {
        Outcome outcome{};
        JET_ASSIGN(outcome, Settle(path, writable));
        worst = std::max(worst, outcome);
    }
    return worst;
}

Result<Recovery::Outcome> Recovery::Settle(const std::string& path, File* writable) {
    Result<Journal> journal = Journal::Open(disk_, path, database_);
    const auto ignore = [&](const std::string& why) {
        notify_("\"" + path + "\" is left alone: " + why);
        return Outcome::Ignored;
    };
    const auto doubt = [&](const std::string& why) {
        return writable != nullptr ? SetAside(path, why) : ignore(why);
    };
    if (!journal.IsOk()) {
        const StatusCode code = journal.GetStatus().Code();
        const std::string why = journal.GetStatus().Text();
        if (code == StatusCode::NotFound) return Outcome::Nothing;
        return code == StatusCode::Conflict ? doubt(why) : ignore(why);
    }
    std::string reason;
    const Result<Journal::Verdict> verdict = journal->Judge(file_, reason);
    if (!verdict.IsOk()) return ignore(verdict.GetStatus().Text());
    if (*verdict == Journal::Verdict::Doubtful) return doubt(reason);
    if (*verdict == Journal::Verdict::Interrupted) {
        if (writable == nullptr) return Outcome::Interrupted;
        JET_TRY(journal->PutBack(*writable).In("an interrupted change cannot be taken back"));
    }
    if (writable == nullptr) return Outcome::Ignored;
    bool isGone = false;
    const Status status = journal->Remove(isGone);
    return isGone ? Outcome::Done : ignore(status.Text());
}

Recovery::Outcome Recovery::SetAside(const std::string& path, const std::string& reason) {
    constexpr int kMostNames = 100;
    Status status;
    for (int i = 1; i <= kMostNames; ++i) {
        const std::string name = path + "-set-aside" + (i == 1 ? "" : "-" + std::to_string(i));
        status = disk_.GiveName(path, name);
        if (status.IsOk()) {
            notify_("\"" + path + "\" is not the journal of an interrupted change to this file (" +
                    reason + "); it has been set aside as \"" + name +
                    "\". Check the file, and remove it when it is not needed");
            return Outcome::Done;
        }
        if (status.Code() != StatusCode::Duplicate) break;
    }
    notify_("\"" + path + "\" is left alone: " + reason +
            "; it cannot be set aside: " + status.Text());
    return Outcome::Ignored;
}

}  // namespace jet
