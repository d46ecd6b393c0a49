#include "jet/Compact.h"

#include <algorithm>
#include <array>
#include <tuple>

#include "jet/Check.h"
#include "jet/compact/ContentCompare.h"
#include "jet/compact/TableCopier.h"
#include "jet/open/DatabaseRep.h"
#include "jet/page/GlobalMap.h"
#include "jet/page/UsageMap.h"

namespace jet {
namespace {

Status RequireSound(File& file) {
    Status status;
    JET_TRY(Check(file, [&](const Finding& finding) {
        if (finding.severity == Finding::Severity::Error) status = Status::Corrupt(finding.text);
        return status.IsOk();
    }));
    return status;
}

/// A file that somebody else keeps open.
class BorrowedFile final : public File {
public:
    explicit BorrowedFile(const File& file) : file_(file) {}
    Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> into) const override {
        return file_.Read(offset, into);
    }
    Result<FileStamp> Stamp() const override { return file_.Stamp(); }

private:
    const File& file_;
};

/// One compaction, in a transaction of the old file that changes nothing: it keeps other writers
/// away.
class Compaction {
public:
    Compaction(Disk& disk, std::string path, Database& database)
        : disk_(disk), path_(std::move(path)), database_(database), rep_(Inside::Of(database)) {}

    Result<CompactSizes> Run() {
        FileStamp before;
        JET_ASSIGN(before, rep_.file->Stamp());
        JET_TRY(RequireSound(*rep_.file).In("it is damaged and must be repaired first"));
        JET_TRY(RequireNoMore());
        JET_TRY(WriteDraft());
        JET_TRY(Verify().In("the new file is not as it should be"));
        JET_TRY(Swap(before));
        return CompactSizes{before.size, newSize_, {}};
    }

private:
    /// Nobody knows what the second map is for: only an empty one can be made anew.
    Status RequireNoMore() {
        UsageMap second;
        JET_ASSIGN(second,
                   UsageMap::Open(rep_.cache, Format::Jet4, RowId{GlobalMap::kPage, 1}.Pointer()));
        const Bytes row = second.Stored();
        const bool isEmpty = std::all_of(row.begin() + GlobalMap::kHead, row.end(),
                                         [](std::byte b) { return b == std::byte{0}; });
        if (LoadU8(row, 0) == 0 && isEmpty) return {};
        return Status::Unsupported(
            "its second map of pages, whose meaning is not known, is not empty");
    }

    Status WriteDraft() {
        // Once only counted: tables keep the numbers that lie inside the new file or little behind.
        compact::Draft counted(nullptr);
        JET_TRY(Fill(counted, 0));
        JET_ASSIGN(draft_, disk_.CreateReplacement(path_));
        compact::Draft draft(draft_.get());
        const std::uint32_t used = counted.UsedCount();
        JET_TRY(Fill(draft, used + used / 8 + 16));
        newSize_ = std::uint64_t{draft.PageCount()} * kPageSizeJet4;
        return draft_->Sync();
    }

    /// Definitions of tables stay on pages below `keptBelow`.
    Status Fill(compact::Draft& draft, std::uint32_t keptBelow) {
        std::vector<CatalogEntry> tables;
        JET_ASSIGN(tables, database_.Tables());
        std::sort(tables.begin(), tables.end(), [](const CatalogEntry& a, const CatalogEntry& b) {
            return Raw(a.page) < Raw(b.page);
        });
        for (const CatalogEntry& entry : tables) {
            const std::uint32_t page = Raw(entry.page);
            if (page >= compact::Draft::kFirst && page < keptBelow) draft.Keep(entry.page);
        }
        compact::MapPages maps(draft);
        // The maps of the system's own tables share the page behind their definitions.
        JET_TRY(maps.BeginPage());
        moves_.clear();
        std::vector<compact::TableCopier> copiers;
        for (const CatalogEntry& entry : tables) {
            std::unique_ptr<Table> table;
            JET_ASSIGN(table, database_.OpenTable(entry));
            if (Raw(entry.page) >= compact::Draft::kFirst) JET_TRY(maps.BeginPage());
            copiers.emplace_back(rep_.cache, draft, maps, std::move(table));
            JET_TRY(copiers.back().Place(moves_));
        }
        for (compact::TableCopier& copier : copiers) JET_TRY(copier.Copy(moves_));
        JET_TRY(maps.Write());
        JET_TRY(draft.WriteGlobalMaps());
        PageRef header;
        JET_ASSIGN(header, rep_.cache.Read(PageNo{0}));
        return draft.Write(PageNo{0}, header.Bytes());
    }

    Status Verify() {
        JET_TRY(RequireSound(*draft_));
        std::unique_ptr<Database> copy;
        JET_ASSIGN(copy, Database::Open(std::make_unique<BorrowedFile>(*draft_)));
        return compact::CompareContent(database_, *copy, moves_);
    }

    Status Swap(const FileStamp& before) {
        JET_TRY(rep_.locks->LockAlone());
        FileStamp now;
        JET_ASSIGN(now, rep_.file->Stamp());
        if (!(now == before)) {
            return {StatusCode::Busy, "another program has changed the file meanwhile"};
        }
        // A file needs a name to take another's place; it has one of its own for that moment.
        Status named;
        std::string name = path_ + "-compact";
        for (int i = 2; i < kMostNames; ++i) {
            named = disk_.Publish(*draft_, name);
            if (named.Code() != StatusCode::Duplicate) break;
            name = path_ + "-compact-" + std::to_string(i);
        }
        JET_TRY(named);
        if (name != path_ + "-compact") {
            rep_.Notify("\"" + path_ +
                        "-compact\" is in the way; if a compaction that was cut short has "
                        "left it, it can be deleted");
        }
        Status status = disk_.Replace(name, path_);
        // The failure to be told is the first one.
        if (!status.IsOk() && disk_.HasName(*draft_, name)) std::ignore = disk_.Remove(name);
        return status;
    }

    Disk& disk_;
    std::string path_;
    static constexpr int kMostNames = 100;
    Database& database_;
    Database::Rep& rep_;  // its own
    std::unique_ptr<File> draft_;
    compact::TableMoves moves_;
    std::uint64_t newSize_ = 0;  // bytes
};

}  // namespace

Result<CompactSizes> Compact(Disk& disk, const std::string& path) {
    std::unique_ptr<Database> database;
    JET_ASSIGN(database, Database::Open(disk, path, OpenMode::ReadWrite));
    if (database->FileFormat() != Format::Jet4) {
        return Status::Unsupported("only Jet 4 files can be compacted");
    }
    const std::vector<std::string> others = database->OtherUsers();
    if (!others.empty()) return OthersAreThere(others);
    JET_TRY(database->Begin());
    Result<CompactSizes> sizes = Compaction(disk, path, *database).Run();
    if (sizes.IsOk()) sizes->notices = database->TakeNotices();
    // Nothing has been changed in it, and the file may have another's place now.
    std::ignore = database->Rollback();
    return sizes;
}

}  // namespace jet
