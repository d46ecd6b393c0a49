#include "jet/Database.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <tuple>

#include "jet/page/FileHeader.h"
#include "jet/RowObserver.h"
#include "jet/Unicode.h"
#include "jet/write/Journal.h"
#include "jet/write/UsageMapEditor.h"

namespace jet {
namespace {

constexpr std::uint32_t kFewestPages = 3;           // header, global map, catalog
constexpr std::int32_t kTableObject = 1;            // column Type of the catalog
constexpr std::uint32_t kSystemFlags = 0x80000002;  // column Flags: made by the system
constexpr const char* kCatalogName = "MSysObjects";

constexpr const char* kRepairHint = "; kvs repair writes what can be read into a new file";

/// The columns of the catalog that matter here, by position.
struct CatalogColumns {
    std::size_t id, name, type, flags;

    static Result<CatalogColumns> Find(const TableDef& def) {
        std::array<std::size_t, 4> positions{};
        constexpr std::array<const char*, 4> kNames = {"Id", "Name", "Type", "Flags"};
        for (std::size_t i = 0; i < kNames.size(); ++i) {
            const auto column = def.FindColumn(kNames[i]);
            if (!column) {
                return Status::Corrupt(std::string("the catalog has no column \"") + kNames[i] +
                                       "\"");
            }
            positions[i] = *column;
        }
        return CatalogColumns{positions[0], positions[1], positions[2], positions[3]};
    }
};

/// Null for an object that is no table.
Result<std::optional<CatalogEntry>> ReadEntry(const Row& row, const CatalogColumns& columns) {
    const auto number = [&](std::size_t column) -> Result<std::int32_t> {
        Value value;
        JET_ASSIGN(value, row.Get(column));
        const auto* found = std::get_if<std::int32_t>(&value);
        return found != nullptr ? *found : 0;
    };
    std::int32_t type = 0;
    JET_ASSIGN(type, number(columns.type));
    if (type != kTableObject) return std::optional<CatalogEntry>();
    std::int32_t id = 0;
    JET_ASSIGN(id, number(columns.id));
    std::int32_t flags = 0;
    JET_ASSIGN(flags, number(columns.flags));
    Value name;
    JET_ASSIGN(name, row.Get(columns.name));
    const auto* text = std::get_if<std::u16string>(&name);
    if (text == nullptr || id <= 0) return Status::Corrupt("the catalog names a table badly");
    return std::optional(CatalogEntry{ToUtf8(*text), PageNo{static_cast<std::uint32_t>(id)},
                                      (static_cast<std::uint32_t>(flags) & kSystemFlags) == 0});
}

}  // namespace

Database::Database(std::unique_ptr<File> file, std::size_t cacheBytes)
    : file_(std::move(file)), cache_(*file_, cacheBytes), context_{cache_, Format::Jet4, nullptr} {}

Result<std::unique_ptr<Database>> Database::Open(const std::string& path, std::size_t cacheBytes) {
    return Open(SystemDisk(), path, OpenMode::Read, cacheBytes);
}

Result<std::unique_ptr<Database>> Database::Open(Disk& disk, const std::string& path, OpenMode mode,
                                                 std::size_t cacheBytes) {
    std::string real;
    JET_ASSIGN(real, disk.Resolve(path));
    constexpr int kTries = 3;
    for (int i = 1;; ++i) {
        std::unique_ptr<File> file;
        JET_ASSIGN(file, disk.Open(real, mode));
        // Before it is known to be a database, nothing is put beside it.
        std::unique_ptr<Database> database;
        JET_ASSIGN(database, Open(std::move(file), cacheBytes));
        Status status = database->Join(disk, real, mode);
        if (status.IsOk()) return database;
        // Somebody may just have put another file in its place.
        if (status.Code() != StatusCode::Conflict || i == kTries) return status;
    }
}

Result<std::unique_ptr<Database>> Database::Open(std::unique_ptr<File> file,
                                                 std::size_t cacheBytes) {
    std::unique_ptr<Database> database(new Database(std::move(file), cacheBytes));
    JET_TRY(database->ReadHeader());
    return database;
}

Status Database::Join(Disk& disk, const std::string& path, OpenMode mode) {
    disk_ = &disk;
    path_ = path;
    mode_ = mode;
    JET_ASSIGN(locks_, disk.OpenLocks(path, mode));
    // From now on it is the same file that is open and locked.
    JET_TRY(file_->Stamp().GetStatusOrOk());
    if (std::string notice = locks_->Notice(); !notice.empty()) Notify(std::move(notice));
    recovery_.emplace(disk, path, *file_,
                      [this](std::string notice) { Notify(std::move(notice)); });
    cache_.SetGuard(
        {locks_.get(), [this] { return recovery_->IsNeeded(); }, [this] { return Recover(); }});
    cache_.SetSpill([this] { return disk_->CreateDraft(path_); });
    // Puts back what a program that died has left.
    JET_TRY(ReadScope(cache_).GetStatus());
    return mode == OpenMode::ReadWrite && context_.format == Format::Jet4 ? TellWhetherWritable()
                                                                          : Status();
}

/// Whoever opens a file for writing shall know before his work that it will be refused.
Status Database::TellWhetherWritable() {
    const ReadScope scope(cache_);
    // While another program commits there is no time for it; it is asked again before a change.
    if (scope.GetStatus().Code() == StatusCode::Busy) return {};
    JET_TRY(scope.GetStatus());
    const Result<PageState> pages = CheckPages(cache_);
    if (!pages.IsOk()) {
        Notify("it can only be read: " + pages.GetStatus().Text() + kRepairHint);
        return {};
    }
    if (const Status place = recovery_->CheckPlace(); !place.IsOk()) {
        Notify("it can only be read: " + place.Text());
    }
    for (const std::string& limit : pages->limits) {
        Notify(limit + "; kvs repair writes a file that can take it");
    }
    return {};
}

Status Database::WhileQuiet(const std::function<Status(File&)>& action) {
    const ReadScope scope = Hold();
    JET_TRY(scope.GetStatus());
    return action(*file_);
}

void Database::Notify(std::string notice) {
    // What is seen again at every look is told once.
    if (std::find(told_.begin(), told_.end(), notice) != told_.end()) return;
    told_.push_back(notice);
    notices_.push_back(std::move(notice));
}

std::vector<std::string> Database::OtherUsers() const {
    return locks_ ? locks_->OtherUsers() : std::vector<std::string>();
}

/// What the page cache asks for when there may be a journal. True: look again.
Result<bool> Database::Recover() {
    using Outcome = Recovery::Outcome;
    constexpr std::chrono::milliseconds kNoWait{0};
    Status status = locks_->LockWriter(kNoWait);
    if (status.IsOk()) {
        Result<Outcome> outcome = RollBackJournal();
        locks_->UnlockWriter();
        if (!outcome.IsOk()) return outcome.GetStatus();
        return *outcome != Outcome::Ignored;
    }
    // Who may not write, or not now, can read on when there is no half of a change in the file.
    JET_TRY(locks_->LockPagesShared(waits_.commit));
    Result<Outcome> outcome = recovery_->Run(nullptr);
    locks_->UnlockPages();
    if (!outcome.IsOk()) return outcome.GetStatus();
    if (*outcome != Outcome::Interrupted) return *outcome == Outcome::Nothing;
    if (status.Code() != StatusCode::Busy) {
        return status.In("an interrupted change has to be taken back first");
    }
    // Another program is about to.
    JET_TRY(locks_->LockWriter(waits_.writer));
    locks_->UnlockWriter();
    return true;
}

/// REQUIRES: this program holds the writer lock.
Result<Recovery::Outcome> Database::RollBackJournal() {
    std::unique_ptr<File> own;
    if (mode_ != OpenMode::ReadWrite) {
        Result<std::unique_ptr<File>> file = disk_->Open(path_, OpenMode::ReadWrite);
        if (!file.IsOk()) {
            return file.GetStatus().In("an interrupted change cannot be taken back");
        }
        own = std::move(*file);
        // It still is the one that is locked.
        JET_TRY(file_->Stamp().GetStatusOrOk());
    }
    JET_TRY(locks_->LockPages({}, waits_.commit));
    Result<Recovery::Outcome> outcome = recovery_->Run(own != nullptr ? own.get() : file_.get());
    locks_->UnlockPages();
    return outcome;
}

/// What the last look at the pages has found.
/// REQUIRES: this program holds the writer lock.
Result<PageState> Database::PrepareToWrite() {
    if (recovery_->IsNeeded()) {
        Recovery::Outcome outcome{};
        JET_ASSIGN(outcome, RollBackJournal());
        if (outcome == Recovery::Outcome::Ignored) {
            const std::string why = told_.empty() ? "a journal is in the way" : told_.back();
            return Status(StatusCode::Permission, "it cannot be changed: " + why);
        }
    }
    JET_TRY(recovery_->CheckPlace().In("it cannot be changed"));
    JET_TRY(cache_.Revalidate());
    if (pagesAreSound_) return PageState();
    Result<PageState> checked = CheckPages(cache_);
    if (!checked.IsOk()) {
        return Status::Corrupt(
            "it is damaged and cannot be written: " + checked.GetStatus().Text() + kRepairHint);
    }
    // Until a transaction that removes them has been committed, the next one has to.
    pagesAreSound_ = checked->leftOvers.empty();
    return checked;
}

Status Database::Begin() {
    if (mode_ != OpenMode::ReadWrite) {
        return {StatusCode::Permission, "the database is open for reading only"};
    }
    if (context_.format != Format::Jet4) {
        return Status::Unsupported("only Jet 4 files can be written");
    }
    JET_TRY(Status(broken_));
    if (depth_ > 0) {
        if (isRolledBack_) {
            return Status::BadArgument("the transaction has been rolled back and not been ended");
        }
        ++depth_;
        return {};
    }
    if (cache_.IsBeingRead()) {
        return Status::BadArgument("nothing can be changed while one state of it is read");
    }
    JET_TRY(locks_->LockWriter(waits_.writer));
    const Result<PageState> pages = PrepareToWrite();
    if (!pages.IsOk()) {
        locks_->UnlockWriter();
        return pages.GetStatus();
    }
    cache_.Begin();
    known_ = KnownTables();
    isRolledBack_ = false;
    depth_ = 1;
    return RemoveLeftOvers(pages->leftOvers);
}

Status Database::RemoveLeftOvers(const std::vector<std::uint32_t>& maps) {
    cache_.BeginStep();
    for (const std::uint32_t map : maps) {
        const Status status = UsageMapEditor(cache_, map).RemoveBehindEnd();
        if (status.IsOk()) continue;
        depth_ = 0;
        EndTransaction(false);
        return status;
    }
    return {};
}

void Database::EndTransaction(bool committed) {
    cache_.End(committed);
    locks_->UnlockWriter();
    if (context_.observer != nullptr) context_.observer->TransactionEnded(committed);
}

Status Database::Commit() {
    if (depth_ == 0) return Status::BadArgument("there is no transaction to commit");
    if (--depth_ > 0) return {};
    if (isRolledBack_) return Status::BadArgument("the transaction has been rolled back");
    Status status = cache_.HasChanges() ? WriteTransaction() : Status();
    EndTransaction(status.IsOk());
    return status;
}

/// The three steps of Journal. After a failure the file is as it was, or broken_ says why not.
Status Database::WriteTransaction() {
    cache_.BeginStep();
    JET_TRY(cache_.CountCommit(locks_->User()));
    const std::vector<PageNo> pages = cache_.ChangedPages();
    PageRef current;
    const auto newContent = [&](PageNo page) -> Result<Bytes> {
        JET_ASSIGN(current, cache_.ReadOnce(page));
        return current.Bytes();
    };
    Result<Journal> journal = Journal::Prepare(
        *disk_, path_, *file_, {pages, cache_.SizeBefore(), cache_.SizeAfter(), newContent});
    if (!journal.IsOk()) return journal.GetStatus();
    JET_TRY(file_->SetNote(journal->Path()));
    JET_TRY(locks_->LockPages(pages, waits_.commit));
    Status status = journal->Publish();
    if (status.IsOk()) status = WriteJournalled(*journal);
    locks_->UnlockPages();
    return status;
}

/// Steps 2 and 3. REQUIRES: the journal has its name, and the pages are locked.
Status Database::WriteJournalled(Journal& journal) {
    bool isGone = false;
    Status status = cache_.WriteChanges();
    if (status.IsOk()) status = journal.Remove(isGone);
    if (isGone) {
        // Every program sees the new content; what is not certain is a power cut in this moment.
        if (!status.IsOk()) {
            Notify("the change is made, but a power failure may still undo it: " + status.Text());
        }
        return {};
    }
    if (Status putBack = journal.PutBack(*file_); !putBack.IsOk()) {
        broken_ = putBack.In("a failed change could not be taken back; open the file again");
    } else {
        // One that stays tells that nothing is to be done, and goes when the file is next changed.
        std::ignore = journal.Remove(isGone);
    }
    return status;
}

Status Database::Rollback() {
    if (depth_ == 0) return Status::BadArgument("there is no transaction to roll back");
    --depth_;
    if (isRolledBack_) return {};
    isRolledBack_ = depth_ > 0;
    EndTransaction(false);
    return {};
}

Status Database::ReadHeader() {
    JET_TRY(cache_.Revalidate());
    std::array<std::byte, kPageSizeJet3> begin{};
    std::size_t count = 0;
    JET_ASSIGN(count, file_->Read(0, begin));
    if (count == 0) return Status::BadArgument("it is empty, not a Jet database");
    if (count < begin.size()) return Status::BadArgument("it is too short for a Jet database");
    FileHeader header;
    JET_ASSIGN(header, FileHeader::Parse(begin));
    context_.format = header.format;
    hasPassword_ = header.hasPassword;
    cache_.SetFormat(header.format);
    if (cache_.PageCount() < kFewestPages) {
        return Status::BadArgument("it is cut short: " + std::to_string(cache_.PageCount()) +
                                   " pages are not even a catalog");
    }
    if (header.format == Format::Jet3) {
        JET_ASSIGN(codePage_, CodePage::Open(header.codePage));
        context_.codePage = &codePage_;
    }
    return {};
}

Result<std::vector<CatalogEntry>> Database::Tables(std::vector<Status>* damage) {
    std::unique_ptr<Table> catalog;
    JET_ASSIGN(catalog, Table::Open(context_, kCatalogPage, kCatalogName));
    CatalogColumns columns{};
    JET_ASSIGN(columns, CatalogColumns::Find(catalog->Definition()));
    RowCursor rows;
    JET_ASSIGN(rows, catalog->Scan());
    std::vector<CatalogEntry> entries;
    for (;;) {
        Result<bool> found = rows.Next();
        if (found.IsOk() && !*found) return entries;
        Status problem = found.IsOk() ? Status() : found.GetStatus();
        if (found.IsOk()) {
            auto entry = ReadEntry(rows.Current(), columns);
            if (!entry.IsOk())
                problem = entry.GetStatus().In(kCatalogName);
            else if (*entry)
                entries.push_back(std::move(**entry));
        }
        if (!problem.IsOk() && damage != nullptr) damage->push_back(problem);
    }
}

Result<std::unique_ptr<Table>> Database::OpenTable(const CatalogEntry& entry) {
    return Table::Open(context_, entry.page, entry.name, entry.isUserTable);
}

/// REQUIRES: the file's state is held.
Status Database::RenewKnownTables() {
    if (known_.generation == cache_.Generation()) return {};
    known_ = KnownTables();
    JET_ASSIGN(known_.entries, Tables(&known_.damage));
    if (!InTransaction()) known_.generation = cache_.Generation();
    return {};
}

Result<std::unique_ptr<Table>> Database::OpenTable(std::string_view name) {
    const ReadScope scope(cache_);
    JET_TRY(scope.GetStatus());
    JET_TRY(RenewKnownTables());
    for (const CatalogEntry& entry : known_.entries) {
        if (!SameName(entry.name, name)) continue;
        std::shared_ptr<const TableDef>& def = known_.definitions[entry.page];
        if (def) return Table::OpenKnown(context_, entry.name, def, entry.isUserTable);
        Result<std::unique_ptr<Table>> table = OpenTable(entry);
        if (table.IsOk()) def = (*table)->SharedDefinition();
        return table;
    }
    std::string text = "there is no table \"" + std::string(name) + "\"";
    if (!known_.damage.empty()) {
        text += "; the catalog is damaged: " + known_.damage.front().Text();
    }
    return Status::NotFound(text);
}

}  // namespace jet
