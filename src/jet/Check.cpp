#include "jet/Check.h"

#include <array>
#include <string_view>

#include "jet/catalog/TableDefReader.h"
#include "jet/check/CatalogCheck.h"
#include "jet/check/IndexContentCheck.h"
#include "jet/check/MapCheck.h"
#include "jet/check/PageState.h"
#include "jet/page/Bytes.h"
#include "jet/page/FileHeader.h"

namespace jet {
namespace {

using check::CheckedTable;
using check::OwnerId;
using check::Reporter;
using check::Subject;
using check::TableEntry;

constexpr std::uint32_t kFewestPages = 3;  // header, global map, catalog
constexpr std::size_t kConstant = 0x98;
constexpr std::uint32_t kConstantValue = 0x654;
constexpr std::string_view kVersionText("4.0\0", 4);

/// Fails when the rest cannot be checked.
Status CheckHeader(const File& file, Reporter& report, bool& isUsable) {
    isUsable = false;
    FileStamp stamp;
    JET_ASSIGN(stamp, file.Stamp());
    std::array<std::byte, kPageSizeJet4> page{};
    std::size_t count = 0;
    JET_ASSIGN(count, file.Read(0, page));
    const auto error = [&](std::string text) { report.Error(Subject::File, std::move(text)); };
    if (count < page.size()) {
        error("the file has only " + std::to_string(count) + " bytes");
        return {};
    }
    const Result<FileHeader> header = FileHeader::Parse(page);
    if (!header.IsOk() && header.GetStatus().Code() == StatusCode::BadArgument) {
        error("page 0: " + header.GetStatus().Text());
        return {};
    }
    if (!header.IsOk()) return header.GetStatus();
    if (header->format != Format::Jet4) {
        return Status::Unsupported("only Jet 4 files are checked, and it is a Jet 3 file");
    }
    if (stamp.size % kPageSizeJet4 != 0) {
        error("the file's size of " + std::to_string(stamp.size) + " bytes is no multiple of " +
              std::to_string(kPageSizeJet4));
    }
    const std::string_view version(reinterpret_cast<const char*>(page.data()) + kConstant + 4,
                                   kVersionText.size());
    if (LoadU32(page, kConstant) != kConstantValue || version != kVersionText) {
        error("page 0: the constants at offset " + std::to_string(kConstant) + " are wrong");
    }
    isUsable = stamp.size / kPageSizeJet4 >= kFewestPages;
    if (!isUsable) error("the file is too short to hold a catalog");
    return {};
}

void CheckContent(PageCache& cache, Reporter& report, check::PageLedger& pages,
                  const TableEntry& entry) {
    Result<TableDef> def = ReadTableDef(cache, Format::Jet4, nullptr, entry.page);
    if (!def.IsOk()) {
        report.Error(Subject::Definitions, def.GetStatus().Text());
        return;
    }
    const CheckedTable table(entry, std::move(*def));
    const check::RowSums rows = check::RowCheck(cache, report, pages, table).Run();
    for (std::size_t i = 0; i < table.indexes.size() && !report.IsStopped(); ++i) {
        check::CheckIndex(cache, report, pages, table, i, rows);
    }
}

}  // namespace

Status Check(File& file, const FindingSink& sink, const CheckOptions& options) {
    Reporter report(sink, options.mostPerSubject);
    bool isUsable = false;
    JET_TRY(CheckHeader(file, report, isUsable));
    if (!isUsable) return {};
    PageCache cache(file, options.cacheBytes);
    JET_TRY(cache.Revalidate());

    check::PageLedger pages(report, cache.PageCount());
    pages.Claim(PageNo{0}, pages.AddOwner("the header"));
    check::MapCheck maps(cache, report, pages);
    maps.CheckGlobalPage();
    std::vector<TableEntry> tables = check::CheckCatalog(cache, report);
    check::DefinitionCheck definitions(cache, report, pages, maps);
    for (TableEntry& entry : tables) {
        if (!report.IsStopped()) definitions.Check(entry);
    }
    definitions.CheckRelationships();
    maps.CheckAccounting();
    for (const std::string& limit : maps.Limits()) report.Warn(Subject::Maps, limit);

    pages.Seal();
    for (const TableEntry& entry : tables) {
        if (report.IsStopped()) break;
        if (entry.firstOwner != OwnerId::Nobody) CheckContent(cache, report, pages, entry);
    }
    report.Finish();
    return {};
}

Status CheckWritable(File& file) {
    PageCache cache(file, CheckOptions().cacheBytes);
    JET_TRY(cache.Revalidate());
    return CheckPages(cache).GetStatusOrOk();
}

}  // namespace jet
