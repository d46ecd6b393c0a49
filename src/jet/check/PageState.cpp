#include "jet/check/PageState.h"

#include "jet/catalog/TableDefReader.h"
#include "jet/check/CatalogCheck.h"
#include "jet/check/DefinitionCheck.h"
#include "jet/check/IndexWalk.h"
#include "jet/check/MapCheck.h"

namespace jet {
namespace {

using check::CheckedTable;
using check::OwnerId;
using check::Reporter;
using check::Subject;
using check::TableEntry;

/// Holds the pages of the indexes' trees against their maps.
void CheckTrees(PageCache& cache, Reporter& report, check::PageLedger& pages,
                const TableEntry& entry) {
    if (entry.firstOwner == OwnerId::Nobody) return;
    Result<TableDef> def = ReadTableDef(cache, Format::Jet4, nullptr, entry.page);
    if (!def.IsOk()) return;
    const CheckedTable table(entry, std::move(*def));
    for (std::size_t i = 0; i < table.indexes.size(); ++i) {
        check::IndexWalk(cache, report, pages, table, i, {}).RunPages();
    }
}

}  // namespace

Result<PageState> CheckPages(PageCache& cache) {
    const FindingSink sink = [](const Finding&) { return true; };
    Reporter report(sink, 0);
    check::PageLedger pages(report, cache.PageCount());
    pages.Claim(PageNo{0}, pages.AddOwner("the header"));
    check::MapCheck maps(cache, report, pages);
    maps.CheckGlobalPage();
    std::vector<TableEntry> tables = check::CheckCatalog(cache, report);
    check::DefinitionCheck definitions(cache, report, pages, maps);
    for (TableEntry& entry : tables) definitions.Check(entry);
    maps.CheckDoubleUse();
    pages.Seal();
    for (const TableEntry& entry : tables) CheckTrees(cache, report, pages, entry);
    for (const Subject subject :
         {Subject::Maps, Subject::Pages, Subject::Columns, Subject::Indexes}) {
        if (!report.FirstError(subject).empty()) return Status::Corrupt(report.FirstError(subject));
    }
    return PageState{maps.WithLeftOvers(), maps.Limits()};
}

}  // namespace jet
