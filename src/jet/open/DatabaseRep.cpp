#include "jet/open/DatabaseRep.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <tuple>

#include "jet/catalog/CatalogReader.h"
#include "jet/page/FileHeader.h"
#include "jet/write/UsageMapEditor.h"

namespace jet {
namespace {

constexpr std::uint32_t kFewestPages = 3;  // header, global map, catalog
constexpr const char* kRepairHint = "; kvs repair writes what can be read into a new file";

}  // namespace

Database::Rep::Rep(std::unique_ptr<File> opened, std::size_t cacheBytes)
    : file(std::move(opened)), cache(*file, cacheBytes), context{cache, Format::Jet4, nullptr} {}

Status Database::Rep::ReadHeader() {
    JET_TRY(cache.Revalidate());
    std::array<std::byte, kPageSizeJet3> begin{};
    std::size_t count = 0;
    JET_ASSIGN(count, file->Read(0, begin));
    if (count == 0) return Status::BadArgument("it is empty, not a Jet database");
    if (count < begin.size()) return Status::BadArgument("it is too short for a Jet database");
    FileHeader header;
    JET_ASSIGN(header, FileHeader::Parse(begin));
    context.format = header.format;
    hasPassword = header.hasPassword;
    cache.SetFormat(header.format);
    if (cache.PageCount() < kFewestPages) {
        return Status::BadArgument("it is cut short: " + std::to_string(cache.PageCount()) +
                                   " pages are not even a catalog");
    }
    if (header.format == Format::Jet3) {
        JET_ASSIGN(codePage, CodePage::Open(header.codePage));
        context.codePage = &codePage;
    }
    return {};
}

Status Database::Rep::Join(Disk& place, const std::string& name, OpenMode wanted) {
    disk = &place;
    path = name;
    mode = wanted;
    JET_ASSIGN(locks, disk->OpenLocks(path, mode));
    // From now on it is the same file that is open and locked.
    JET_TRY(file->Stamp().GetStatusOrOk());
    if (std::string notice = locks->Notice(); !notice.empty()) Notify(std::move(notice));
    recovery.emplace(*disk, path, *file, [this](std::string notice) { Notify(std::move(notice)); });
    cache.SetGuard(
        {locks.get(), [this] { return recovery->IsNeeded(); }, [this] { return Recover(); }});
    cache.SetSpill([this] { return disk->CreateDraft(path); });
    // Puts back what a program that died has left.
    JET_TRY(ReadScope(cache).GetStatus());
    return mode == OpenMode::ReadWrite && context.format == Format::Jet4 ? TellWhetherWritable()
                                                                         : Status();
}

/// Whoever opens a file for writing shall know before his work that it will be refused.
Status Database::Rep::TellWhetherWritable() {
    const ReadScope scope(cache);
    // While another program commits there is no time for it; it is asked again before a change.
    if (scope.GetStatus().Code() == StatusCode::Busy) return {};
    JET_TRY(scope.GetStatus());
    const Result<PageState> pages = CheckPages(cache);
    if (!pages.IsOk()) {
        canOnlyBeRead = true;
        Notify("it can only be read: " + pages.GetStatus().Text() + kRepairHint);
        return {};
    }
    if (const Status place = recovery->CheckPlace(); !place.IsOk()) {
        canOnlyBeRead = true;
        Notify("it can only be read: " + place.Text());
    }
    for (const std::string& limit : pages->limits) {
        Notify(limit + "; kvs repair writes a file that can take it");
    }
    return {};
}

void Database::Rep::Notify(std::string notice) {
    // What is seen again at every look is told once.
    if (std::find(told.begin(), told.end(), notice) != told.end()) return;
    told.push_back(notice);
    notices.push_back(std::move(notice));
}

/// What the page cache asks for when there may be a journal. True: look again.
Result<bool> Database::Rep::Recover() {
    using Outcome = Recovery::Outcome;
    constexpr std::chrono::milliseconds kNoWait{0};
    Status status = locks->LockWriter(kNoWait);
    if (status.IsOk()) {
        Result<Outcome> outcome = RollBackJournal();
        locks->UnlockWriter();
        if (!outcome.IsOk()) return outcome.GetStatus();
        return *outcome != Outcome::Ignored;
    }
    // Who may not write, or not now, can read on when there is no half of a change in the file.
    JET_TRY(locks->LockPagesShared(waits.commit));
    Result<Outcome> outcome = recovery->Run(nullptr);
    locks->UnlockPages();
    if (!outcome.IsOk()) return outcome.GetStatus();
    if (*outcome != Outcome::Interrupted) return *outcome == Outcome::Nothing;
    if (status.Code() != StatusCode::Busy) {
        return status.In("an interrupted change has to be taken back first");
    }
    // Another program is about to.
    JET_TRY(locks->LockWriter(waits.writer));
    locks->UnlockWriter();
    return true;
}

/// REQUIRES: this program holds the writer lock.
Result<Recovery::Outcome> Database::Rep::RollBackJournal() {
    std::unique_ptr<File> own;
    if (mode != OpenMode::ReadWrite) {
        Result<std::unique_ptr<File>> opened = disk->Open(path, OpenMode::ReadWrite);
        if (!opened.IsOk()) {
            return opened.GetStatus().In("an interrupted change cannot be taken back");
        }
        own = std::move(*opened);
        // It still is the one that is locked.
        JET_TRY(file->Stamp().GetStatusOrOk());
    }
    JET_TRY(locks->LockPages({}, waits.commit));
    Result<Recovery::Outcome> outcome = recovery->Run(own != nullptr ? own.get() : file.get());
    locks->UnlockPages();
    return outcome;
}

/// What the last look at the pages has found.
/// REQUIRES: this program holds the writer lock.
Result<PageState> Database::Rep::PrepareToWrite() {
    if (recovery->IsNeeded()) {
        Recovery::Outcome outcome{};
        JET_ASSIGN(outcome, RollBackJournal());
        if (outcome == Recovery::Outcome::Ignored) {
            const std::string why = told.empty() ? "a journal is in the way" : told.back();
            return Status(StatusCode::Permission, "it cannot be changed: " + why);
        }
    }
    JET_TRY(recovery->CheckPlace().In("it cannot be changed"));
    JET_TRY(cache.Revalidate());
    if (pagesAreSound) return PageState();
    Result<PageState> checked = CheckPages(cache);
    if (!checked.IsOk()) {
        return Status::Corrupt(
            "it is damaged and cannot be written: " + checked.GetStatus().Text() + kRepairHint);
    }
    // Until a transaction that removes them has been committed, the next one has to.
    pagesAreSound = checked->leftOvers.empty();
    return checked;
}

Status Database::Rep::Begin() {
    if (mode != OpenMode::ReadWrite) {
        return {StatusCode::Permission, "the database is open for reading only"};
    }
    if (context.format != Format::Jet4) {
        return Status::Unsupported("only Jet 4 files can be written");
    }
    JET_TRY(Status(broken));
    if (depth > 0) {
        if (isRolledBack) {
            return Status::BadArgument("the transaction has been rolled back and not been ended");
        }
        ++depth;
        return {};
    }
    if (cache.IsBeingRead()) {
        return Status::BadArgument("nothing can be changed while one state of it is read");
    }
    JET_TRY(locks->LockWriter(waits.writer));
    const Result<PageState> pages = PrepareToWrite();
    if (!pages.IsOk()) {
        locks->UnlockWriter();
        return pages.GetStatus();
    }
    canOnlyBeRead = false;
    cache.Begin();
    known = KnownTables();
    isRolledBack = false;
    depth = 1;
    return RemoveLeftOvers(pages->leftOvers);
}

Status Database::Rep::RemoveLeftOvers(const std::vector<std::uint32_t>& maps) {
    cache.BeginStep();
    for (const std::uint32_t map : maps) {
        const Status status = UsageMapEditor(cache, map).RemoveBehindEnd();
        if (status.IsOk()) continue;
        depth = 0;
        EndTransaction(false);
        return status;
    }
    return {};
}

void Database::Rep::EndTransaction(bool committed) {
    cache.End(committed);
    locks->UnlockWriter();
    if (context.observer != nullptr) context.observer->TransactionEnded(committed);
}

Status Database::Rep::Commit() {
    if (depth == 0) return Status::BadArgument("there is no transaction to commit");
    if (--depth > 0) return {};
    if (isRolledBack) return Status::BadArgument("the transaction has been rolled back");
    Status status = cache.HasChanges() ? WriteTransaction() : Status();
    ++commits;
    EndTransaction(status.IsOk());
    return status;
}

/// The three steps of Journal. After a failure the file is as it was, or broken says why not.
Status Database::Rep::WriteTransaction() {
    cache.BeginStep();
    JET_TRY(cache.CountCommit(locks->User()));
    const std::vector<PageNo> pages = cache.ChangedPages();
    PageRef current;
    const auto newContent = [&](PageNo page) -> Result<Bytes> {
        JET_ASSIGN(current, cache.ReadOnce(page));
        return current.Bytes();
    };
    Result<Journal> journal = Journal::Prepare(
        *disk, path, *file, {pages, cache.SizeBefore(), cache.SizeAfter(), newContent});
    if (!journal.IsOk()) return journal.GetStatus();
    JET_TRY(file->SetNote(journal->Path()));
    JET_TRY(locks->LockPages(pages, waits.commit));
    Status status = journal->Publish();
    if (status.IsOk()) status = WriteJournalled(*journal);
    locks->UnlockPages();
    return status;
}

/// Steps 2 and 3. REQUIRES: the journal has its name, and the pages are locked.
Status Database::Rep::WriteJournalled(Journal& journal) {
    bool isGone = false;
    Status status = cache.WriteChanges();
    if (status.IsOk()) status = journal.Remove(isGone);
    if (isGone) {
        // Every program sees the new content; what is not certain is a power cut in this moment.
        if (!status.IsOk()) {
            Notify("the change is made, but a power failure may still undo it: " + status.Text());
        }
        return {};
    }
    if (Status putBack = journal.PutBack(*file); !putBack.IsOk()) {
        broken = putBack.In("a failed change could not be taken back; open the file again");
    } else {
        // One that stays tells that nothing is to be done, and goes when the file is next changed.
        std::ignore = journal.Remove(isGone);
    }
    return status;
}

Status Database::Rep::Rollback() {
    if (depth == 0) return Status::BadArgument("there is no transaction to roll back");
    --depth;
    if (isRolledBack) return {};
    isRolledBack = depth > 0;
    EndTransaction(false);
    return {};
}

Status Database::Rep::RenewKnownTables() {
    if (known.generation == cache.Generation()) return {};
    known = KnownTables();
    JET_ASSIGN(known.entries, ReadCatalog(context, &known.damage));
    if (depth == 0) known.generation = cache.Generation();
    return {};
}

}  // namespace jet
