#include "jet/Repair.h"

#include <algorithm>
#include <set>
#include <tuple>

#include "jet/Check.h"
#include "jet/open/DatabaseRep.h"
#include "jet/page/FileHeader.h"
#include "jet/page/GlobalMap.h"
#include "jet/repair/PageSurvey.h"
#include "jet/repair/TableRebuild.h"

namespace jet {
namespace {

using repair::TableRebuild;

constexpr const char* kCatalogName = "MSysObjects";
constexpr std::size_t kMostFindings = 50;  // of each kind, in the new file

/// Page 0 as it is written; its constants are put right.
Result<std::vector<std::byte>> ReadHeader(const File& file, std::uint32_t& pageCount) {
    constexpr std::size_t kConstant = 0x98;
    constexpr std::uint32_t kConstantValue = 0x654;
    constexpr std::uint32_t kVersion = 0x302E34;  // "4.0"
    std::vector<std::byte> page(kPageSizeJet4);
    std::size_t count = 0;
    JET_ASSIGN(count, file.Read(0, page));
    if (count < page.size()) return Status::BadArgument("it is too short for a Jet database");
    FileHeader header;
    JET_ASSIGN(header, FileHeader::Parse(page));
    if (header.format != Format::Jet4) {
        return Status::Unsupported("only Jet 4 files can be repaired, and it is a Jet 3 file");
    }
    StoreU32(page, kConstant, kConstantValue);
    StoreU32(page, kConstant + 4, kVersion);
    FileStamp stamp;
    JET_ASSIGN(stamp, file.Stamp());
    pageCount =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(stamp.size / kPageSizeJet4, kMostPages));
    return page;
}

/// One repair of a file that nobody writes meanwhile.
class Repairing {
public:
    Repairing(const File& file, const LossSink& lost)
        : file_(file), sink_(lost), lost_([this](const std::string& text) { Lose(text); }) {}

    /// Writes the new file.
    Result<RepairSums> Run(File& target) {
        std::uint32_t pageCount = 0;
        std::vector<std::byte> header;
        JET_ASSIGN(header, ReadHeader(file_, pageCount));
        repair::PageSurvey survey(file_, pageCount);
        JET_TRY(survey.Run());
        JET_TRY(OpenMended(survey));
        compact::Draft draft(&target);
        JET_TRY(Fill(draft));
        JET_TRY(draft.Write(PageNo{0}, header));
        JET_TRY(target.Sync());
        JET_TRY(CheckResult(target));
        return sums_;
    }

private:
    void Lose(const std::string& text) {
        ++sums_.losses;
        sink_(text);
    }

    void Mend(repair::PageSurvey& survey, const CatalogEntry& entry) {
        const auto pages = survey.MendTable(entry.page);
        if (!pages) return;
        for (const std::uint32_t page : pages->unreadable) {
            Lose(TableText(entry.name) + ", " + PageText(PageNo{page}) +
                 ": its rows cannot be read");
        }
        if (!pages->isMapSound) withoutMap_.insert(Raw(entry.page));
    }

    /// Where the map is gone, nothing else tells whether pages are missing. The count is only an
    /// estimate of some programs.
    void CompareCount(const TableRebuild& rebuild) {
        const TableDef& def = rebuild.Source().Definition();
        if (!withoutMap_.contains(Raw(def.page)) || rebuild.RowCount() >= def.rowCount) return;
        Lose(TableText(rebuild.Source().Name()) + ": its definition counts " +
             std::to_string(def.rowCount) + " rows, " + std::to_string(rebuild.RowCount()) +
             " have been found");
    }

    /// First with the catalog's map made anew, then with those of all tables that it names.
    Status OpenMended(repair::PageSurvey& survey) {
        Mend(survey, {kCatalogName, kCatalogPage});
        JET_ASSIGN(database_, Database::Open(survey.Mended()));
        std::vector<CatalogEntry> tables;
        JET_ASSIGN(tables, database_->Tables());
        for (const CatalogEntry& entry : tables) Mend(survey, entry);
        JET_ASSIGN(database_, Database::Open(survey.Mended()));
        return {};
    }

    Status Fill(compact::Draft& draft) {
        compact::MapPages maps(draft);
        JET_TRY(OpenTables(draft, maps));
        JET_TRY(maps.BeginPage());
        DropLooseRelationships();
        for (TableRebuild& rebuild : rebuilds_) {
            const bool isSystem = Raw(rebuild.Source().Definition().page) < compact::Draft::kFirst;
            if (!isSystem) JET_TRY(maps.BeginPage());
            JET_TRY(rebuild.Place());
        }
        for (TableRebuild& rebuild : rebuilds_) {
            JET_TRY(rebuild.Copy());
            sums_.rows += rebuild.RowCount();
            CompareCount(rebuild);
        }
        sums_.tables = rebuilds_.size();
        JET_TRY(maps.Write());
        return draft.WriteGlobalMaps();
    }

    Status OpenTables(compact::Draft& draft, compact::MapPages& maps) {
        std::vector<CatalogEntry> tables;
        JET_ASSIGN(tables, database_->Tables());
        std::sort(tables.begin(), tables.end(), [](const CatalogEntry& a, const CatalogEntry& b) {
            return Raw(a.page) < Raw(b.page);
        });
        std::set<std::uint32_t> pages;
        for (const CatalogEntry& entry : tables) {
            const std::uint32_t page = Raw(entry.page);
            if (!pages.insert(page).second) {
                Lose(TableText(entry.name) + ": its definition is that of another table");
                continue;
            }
            Result<std::unique_ptr<Table>> table = database_->OpenTable(entry);
            if (!table.IsOk()) {
                if (page <= Raw(kCatalogPage)) return table.GetStatus();
                Lose(table.GetStatus().Text() + "; the table is lost");
                lostTables_.insert(static_cast<std::int32_t>(page));
                continue;
            }
            if (page >= compact::Draft::kFirst) draft.Keep(entry.page);
            rebuilds_.emplace_back(Inside::Of(*database_).cache, draft, maps, std::move(*table),
                                   lost_);
            if (entry.page == kCatalogPage) FilterCatalog(rebuilds_.back());
        }
        return {};
    }

    /// The catalog forgets tables that are lost.
    void FilterCatalog(TableRebuild& catalog) {
        const TableDef& def = catalog.Source().Definition();
        const auto id = def.FindColumn("Id");
        const auto type = def.FindColumn("Type");
        if (!id || !type) return;
        catalog.SetFilter([this, id = *id, type = *type](const Row& row) {
            const Result<Value> number = row.Get(id);
            const Result<Value> kind = row.Get(type);
            if (!number.IsOk() || !kind.IsOk()) return true;
            const auto* page = std::get_if<std::int32_t>(&*number);
            const bool isTable = *kind == Value(std::int32_t{1});
            return page == nullptr || !isTable || !lostTables_.contains(*page);
        });
    }

    /// Both ends of a relationship must lead to each other.
    void DropLooseRelationships() {
        const auto leadsBack = [&](const LogicalIndex& index, PageNo from) {
            for (const TableRebuild& other : rebuilds_) {
                const TableDef& def = other.Source().Definition();
                if (def.page != index.otherTable) continue;
                return std::any_of(
                    def.logicalIndexes.begin(), def.logicalIndexes.end(),
                    [&](const LogicalIndex& end) {
                        return end.role == LogicalIndex::Role::ForeignKey &&
                               static_cast<std::int32_t>(end.number) == index.partner &&
                               end.otherTable == from &&
                               end.partner == static_cast<std::int32_t>(index.number) &&
                               end.side + index.side == 3;
                    });
            }
            return false;
        };
        for (TableRebuild& rebuild : rebuilds_) {
            const TableDef& def = rebuild.Source().Definition();
            for (std::size_t i = 0; i < def.logicalIndexes.size(); ++i) {
                const LogicalIndex& index = def.logicalIndexes[i];
                if (index.role != LogicalIndex::Role::ForeignKey || leadsBack(index, def.page)) {
                    continue;
                }
                rebuild.DropRelationship(i);
                Lose(TableText(rebuild.Source().Name()) + ", index \"" + index.name +
                     "\": its relationship has no other end any more");
            }
        }
    }

    Status CheckResult(File& target) {
        CheckOptions options;
        options.mostPerSubject = kMostFindings;
        return Check(
            target,
            [&](const Finding& finding) {
                if (finding.severity == Finding::Severity::Error) {
                    Lose("still wrong in the new file: " + finding.text);
                }
                return true;
            },
            options);
    }

    const File& file_;
    const LossSink& sink_;
    LossSink lost_;
    RepairSums sums_;
    std::unique_ptr<Database> database_;
    std::vector<TableRebuild> rebuilds_;
    std::set<std::int32_t> lostTables_;  // pages of their definitions
    std::set<std::uint32_t> withoutMap_;
};

/// A new file beside `to`, whose name `draft` becomes. What is there already may be anybody's and
/// is left alone.
Result<std::unique_ptr<File>> CreateDraft(Disk& disk, const std::string& from,
                                          const std::string& to, std::string& draft) {
    constexpr int kMostNames = 10;
    Result<std::unique_ptr<File>> file = Status::BadArgument("no name has been tried");
    if (disk.Open(to, OpenMode::Read).IsOk()) {
        return Status(StatusCode::Duplicate, "there is a file \"" + to + "\" already");
    }
    for (int i = 0; i < kMostNames; ++i) {
        draft = to + "-repair" + (i == 0 ? "" : std::to_string(i));
        file = disk.CreateLike(draft, from);
        // Whoever may only read the old file is the owner of the new one.
        if (!file.IsOk()) file = disk.Create(draft);
        if (file.IsOk()) return file;
    }
    return file.GetStatus().In("\"" + draft + "\" cannot be made");
}

Result<RepairSums> WriteRepaired(Disk& disk, const File& file, const std::string& from,
                                 const std::string& to, const LossSink& lost) {
    std::string draft;
    Result<std::unique_ptr<File>> target = CreateDraft(disk, from, to, draft);
    if (!target.IsOk()) return target.GetStatus();
    Result<RepairSums> sums = Repairing(file, lost).Run(**target);
    if (sums.IsOk()) {
        const Status named = disk.GiveName(draft, to).In("\"" + to + "\"");
        if (!named.IsOk()) sums = named;
    }
    if (!sums.IsOk()) std::ignore = disk.Remove(draft);  // the first failure is to be told
    return sums;
}

}  // namespace

Result<RepairSums> Repair(Disk& disk, const std::string& from, const std::string& to,
                          const LossSink& lost) {
    // What a program that died has left is put back first, and other programs' commits wait.
    Result<std::unique_ptr<Database>> database = Database::Open(disk, from, OpenMode::Read);
    if (!database.IsOk()) {
        std::unique_ptr<File> file;
        JET_ASSIGN(file, disk.Open(from, OpenMode::Read));
        return WriteRepaired(disk, *file, from, to, lost);
    }
    Result<RepairSums> sums = Status::BadArgument("nothing has been repaired");
    JET_TRY((*database)->WhileQuiet([&](File& file) {
        sums = WriteRepaired(disk, file, from, to, lost);
        return Status();
    }));
    return sums;
}

}  // namespace jet
