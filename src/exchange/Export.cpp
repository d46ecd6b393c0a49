#include "exchange/Export.h"

#include <optional>
#include <unordered_set>

#include "ado/AdoError.h"
#include "exchange/SheetRows.h"
#include "project/Schema.h"
#include "unicode/Unicode.h"

namespace exchange {
namespace {

using Ids = std::unordered_set<std::int32_t>;

Ids ArchivesOf(ado::Connection& connection, const Ids& trends) {
    ado::Recordset rows;
    rows.Open(project::kTrendTable, connection, ado::CommandType::Table);
    const std::size_t id = rows.FieldIndex(project::kKeyColumn);
    const std::size_t archive = rows.FieldIndex("ArchiveID");
    Ids archives;
    for (; !rows.IsEOF(); rows.MoveNext()) {
        const ado::Value of = rows.Get(archive);
        if (trends.contains(ado::ToLong(rows.Get(id))) && !ado::IsNull(of)) {
            archives.insert(ado::ToLong(of));
        }
    }
    return archives;
}

/// Nothing: all of them.
std::optional<Ids> ChosenArchives(ado::Connection& connection, SheetKind kind,
                                  const Selection& selection, const ArchiveNames& archives) {
    Ids chosen = selection.archiveIds;
    for (const std::u16string& name : selection.archives) {
        const auto& named = archives.Named(name);
        if (named.empty()) {
            throw ado::AdoError(ado::ErrorNumber::kInvalidArgument,
                                "There is no archive \"" + unicode::ToUtf8(name) + "\".");
        }
        chosen.insert(named.begin(), named.end());
    }
    if (!chosen.empty()) return chosen;
    if (selection.trends.empty() || kind == SheetKind::Trends) return std::nullopt;
    return ArchivesOf(connection, selection.trends);
}

}  // namespace

void Export(ado::Connection& connection, SheetKind kind, const Selection& selection,
            const words::Language& language, SheetWriter& writer) {
    const ado::OneState state(connection);
    const ArchiveNames archives(connection);
    const auto chosen = ChosenArchives(connection, kind, selection, archives);
    const Sheet sheet(connection, kind);
    SheetRows rows(connection, sheet, archives, SheetRows::Order::Archive);
    std::vector<Cell> cells(sheet.Columns().size());
    writer.Begin(sheet, language);
    while (rows.Next()) {
        const auto archive = rows.Archive();
        if (chosen && (!archive || !chosen->contains(*archive))) continue;
        const bool isTrend = kind == SheetKind::Trends && !selection.trends.empty();
        if (isTrend && !selection.trends.contains(rows.Id())) continue;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            WriteCell(sheet.Columns()[i], rows.Get(i), language, cells[i]);
        }
        writer.Row(cells);
    }
}

}  // namespace exchange
