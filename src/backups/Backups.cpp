#include "backups/Backups.h"

#include <algorithm>
#include <memory>
#include <tuple>
#include <utility>

#include "backups/detail/BackupName.h"
#include "backups/detail/CopyContent.h"
#include "backups/detail/Folder.h"
#include "backups/detail/Swap.h"
#include "jet/CauseOf.h"
#include "jet/Check.h"
#include "jet/Database.h"
#include "project/Schema.h"

namespace backups {
namespace {

using jet::Status;
using Kind = Outcome::Kind;

// How long others wait with their changes at most. Half a gigabyte is copied in that time where
// blocks cannot be shared; for more it is found out afterwards whether anybody has changed it.
constexpr std::chrono::milliseconds kLongestHold{500};
constexpr int kAttempts = 3;

Outcome Failed(Kind kind, const Status& status, const std::string& file) {
    Outcome outcome;
    outcome.kind = kind;
    outcome.text = "\"" + file + "\": " + status.Text();
    outcome.reason = {jet::CauseOfMaking(status.Code()), file};
    return outcome;
}

/// Names of backups in a folder, the oldest first.
std::vector<std::string> BackupsIn(const std::string& folder) {
    std::vector<std::string> names = NamesIn(folder);
    std::erase_if(names, [](const std::string& name) { return !TakenOf(name); });
    std::sort(names.begin(), names.end());
    return names;
}

void ReadCounts(Backup& backup) {
    auto file = jet::OpenFile(backup.path);
    if (!file.IsOk()) return;
    const auto database = jet::Database::Open(std::move(*file));
    if (!database.IsOk()) return;
    const auto count = [&](std::string_view name) -> std::optional<std::uint32_t> {
        const auto table = (*database)->OpenTable(name);
        if (!table.IsOk()) return std::nullopt;
        return (*table)->Definition().rowCount;
    };
    backup.archives = count(project::kArchiveTable);
    backup.trends = count(project::kTrendTable);
}

/// The file of a project, and what keeps those from writing it that obey the engine's locks.
class Source {
public:
    /// A file that is damaged beyond opening is copied as it is.
    static jet::Result<Source> Open(const std::string& project, bool isDamagedToo) {
        Source source;
        auto database = jet::Database::Open(project);
        if (database.IsOk()) {
            source.database_ = std::move(*database);
        } else if (!isDamagedToo) {
            return database.GetStatus();
        } else {
            JET_ASSIGN(source.locks_, jet::SystemDisk().OpenLocks(project, jet::OpenMode::Read));
        }
        JET_ASSIGN(source.file_, OpenToRead(project));
        return source;
    }

    [[nodiscard]] const Descriptor& File() const { return file_; }

    /// Copies one state, and tells by `mark` which.
    Status CopyTo(const Descriptor& copy, FileMark& mark) {
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            std::shared_ptr<void> hold;
            JET_ASSIGN(hold, Hold());
            JET_ASSIGN(mark, FileMark::Of(file_));
            JET_TRY(Clear(copy));
            const auto begun = std::chrono::steady_clock::now();
            JET_TRY(CopyContent(file_, copy, [&] {
                if (std::chrono::steady_clock::now() - begun > kLongestHold) hold.reset();
            }));
            if (hold == nullptr) {
                JET_ASSIGN(hold, Hold());
            }
            FileMark now;
            JET_ASSIGN(now, FileMark::Of(file_));
            if (now == mark) return mark.StampTo(copy);
        }
        return {jet::StatusCode::Busy, "other programs change it all the time"};
    }

private:
    /// While it is there nobody writes the file.
    jet::Result<std::shared_ptr<void>> Hold() {
        if (database_ != nullptr) {
            std::shared_ptr<jet::ReadScope> scope(new jet::ReadScope(database_->Hold()));
            JET_TRY(scope->GetStatus());
            return std::shared_ptr<void>(std::move(scope));
        }
        JET_TRY(locks_->LockPagesShared(std::chrono::seconds(5)));
        return std::shared_ptr<void>(
            locks_.get(), [](void* locks) { static_cast<jet::Locks*>(locks)->UnlockPages(); });
    }

    std::unique_ptr<jet::Database> database_;
    std::unique_ptr<jet::Locks> locks_;  // where there is no database
    Descriptor file_;
};

/// Keeps the state of a source in a folder of backups.
class Keeping {
public:
    Keeping(const std::string& folder, std::size_t most) : path_(folder), most_(most) {}

    /// Whatever the latest backup holds. `spared` is the name of a backup that stays.
    Outcome Keep(Source& source, const std::string& spared = {}) {
        auto folder = Folder::Open(path_);
        if (!folder.IsOk()) return Failed(Kind::Failed, folder.GetStatus(), path_);
        if (const auto latest = LatestIfSame(source)) {
            return {Kind::Unchanged, path_ + "/" + *latest};
        }
        const std::string name = NewName();
        Status status = Write(*folder, source, name);
        if (!status.IsOk()) {
            folder->GiveUp();
            return Failed(Kind::Failed, status, path_);
        }
        RemoveOldest(*folder, spared);
        return {Kind::Done, path_ + "/" + name};
    }

    /// The state that has been kept.
    [[nodiscard]] const FileMark& Kept() const { return kept_; }

private:
    std::optional<std::string> LatestIfSame(const Source& source) {
        const std::vector<std::string> names = BackupsIn(path_);
        if (names.empty()) return std::nullopt;
        const auto latest = OpenToRead(path_ + "/" + names.back());
        const auto mark = FileMark::Of(source.File());
        if (!latest.IsOk() || !mark.IsOk()) return std::nullopt;
        const auto copy = FileMark::Of(*latest);
        if (!copy.IsOk() || !mark->LooksLike(*copy)) return std::nullopt;
        if (!mark->HasTimeOf(*copy)) {
            const auto same = HoldTheSame(source.File(), *latest);
            if (!same.IsOk() || !*same) return std::nullopt;
        }
        kept_ = *mark;
        return names.back();
    }

    /// Of now, but behind all that are there, even if the clock has been set back.
    [[nodiscard]] std::string NewName() const {
        using std::chrono::milliseconds;
        Moment taken = std::chrono::floor<milliseconds>(std::chrono::system_clock::now());
        const std::vector<std::string> names = BackupsIn(path_);
        if (!names.empty()) taken = std::max(taken, *TakenOf(names.back()) + milliseconds(1));
        return NameOf(taken);
    }

    Status Write(Folder& folder, Source& source, const std::string& name) {
        Descriptor copy;
        JET_ASSIGN(copy, folder.Begin());
        JET_TRY(source.CopyTo(copy, kept_));
        return folder.Finish(copy, name);
    }

    void RemoveOldest(Folder& folder, const std::string& spared) const {
        if (most_ == 0) return;
        std::vector<std::string> names = BackupsIn(path_);
        std::erase(names, spared);
        // The one that has just been made stays in any case.
        const std::size_t most = std::max<std::size_t>(most_ - (spared.empty() ? 0 : 1), 1);
        names.resize(names.size() - std::min(names.size(), most));
        // One that cannot be removed is tried again the next time.
        for (const std::string& name : names) std::ignore = folder.Remove(name);
    }

    std::string path_;
    std::size_t most_;
    FileMark kept_;
};

std::string Resolved(const std::string& project) {
    auto resolved = jet::SystemDisk().Resolve(project);
    return resolved.IsOk() ? *resolved : project;
}

}  // namespace

Backups::Backups(const std::string& project, Settings settings)
    : project_(Resolved(project)),
      settings_(std::move(settings)),
      folder_(settings_.folder + "/" + FolderNameOf(project_)) {}

Outcome Backups::Take() const {
    if (settings_.most == 0) return {Kind::Unchanged};
    auto source = Source::Open(project_, false);
    if (!source.IsOk()) return Failed(Kind::NoProject, source.GetStatus(), project_);
    return Keeping(folder_, settings_.most).Keep(*source);
}

std::vector<Backup> Backups::List() const {
    std::vector<Backup> found;
    for (const std::string& name : BackupsIn(folder_)) {
        Backup backup{folder_ + "/" + name, *TakenOf(name)};
        const auto file = OpenToRead(backup.path);
        const auto mark = file.IsOk() ? FileMark::Of(*file) : file.GetStatus();
        if (mark.IsOk()) backup.size = mark->Size();
        ReadCounts(backup);
        found.push_back(std::move(backup));
    }
    std::reverse(found.begin(), found.end());
    return found;
}

bool Backups::IsSound(const Backup& backup) {
    const auto file = jet::OpenFile(backup.path);
    bool isSound = file.IsOk();
    if (!isSound) return false;
    const Status status = jet::Check(**file, [&](const jet::Finding& finding) {
        isSound = isSound && finding.severity != jet::Finding::Severity::Error;
        return isSound;
    });
    return status.IsOk() && isSound;
}

Outcome Backups::Restore(const Backup& backup) const {
    auto content = jet::OpenFile(backup.path);
    if (!content.IsOk()) return Failed(Kind::Failed, content.GetStatus(), backup.path);
    {
        auto readable = jet::OpenFile(backup.path);
        const auto database =
            readable.IsOk() ? jet::Database::Open(std::move(*readable)) : readable.GetStatus();
        if (!database.IsOk()) {
            Outcome failed = Failed(Kind::Failed, database.GetStatus(), backup.path);
            failed.reason.cause = jet::CauseOfOpening(database.GetStatus().Code());
            return failed;
        }
    }
    std::vector<std::string> users;
    const auto failed = [&](const Status& status) {
        const bool isInUse = status.Code() == jet::StatusCode::Busy;
        Outcome outcome = Failed(isInUse ? Kind::InUse : Kind::Failed, status, project_);
        outcome.users = users;
        return outcome;
    };
    Swap swap(project_);
    if (Status status = swap.RequireAlone(users); !status.IsOk()) return failed(status);

    Keeping keeping(folder_, settings_.most);
    Outcome kept;
    {
        auto source = Source::Open(project_, true);
        if (!source.IsOk()) return failed(source.GetStatus());
        kept = keeping.Keep(*source, backup.path.substr(backup.path.rfind('/') + 1));
    }
    if (kept.kind != Kind::Done && kept.kind != Kind::Unchanged) {
        kept.kind = Kind::NotKept;
        return kept;
    }
    Status status = swap.Run(**content, keeping.Kept(), users);
    if (!status.IsOk()) return failed(status);
    return {Kind::Done, kept.backup};
}

}  // namespace backups
