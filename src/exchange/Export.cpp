#include "exchange/Export.h"

#include <unordered_set>

#include "ado/AdoError.h"
#include "exchange/SheetRows.h"
#include "unicode/Unicode.h"

namespace exchange {
namespace {

std::unordered_set<std::int32_t> ChosenArchives(const Selection& selection,
                                                const ArchiveNames& archives) {
    std::unordered_set<std::int32_t> chosen = selection.archiveIds;
    for (const std::u16string& name : selection.archives) {
        const auto& named = archives.Named(name);
        if (named.empty()) {
            throw ado::AdoError(ado::ErrorNumber::kInvalidArgument,
                                "There is no archive \"" + unicode::ToUtf8(name) + "\".");
        }
        chosen.insert(named.begin(), named.end());
    }
    return chosen;
}

}  // namespace

void Export(ado::Connection& connection, SheetKind kind, const Selection& selection,
            const words::Language& language, SheetWriter& writer) {
    const ado::OneState state(connection);
    const ArchiveNames archives(connection);
    const auto chosen = ChosenArchives(selection, archives);
    const Sheet sheet(connection, kind);
    SheetRows rows(connection, sheet, archives, SheetRows::Order::Archive);
    std::vector<Cell> cells(sheet.Columns().size());
    writer.Begin(sheet, language);
    while (rows.Next()) {
        const auto archive = rows.Archive();
        if (!chosen.empty() && (!archive || !chosen.contains(*archive))) continue;
        const bool isTrend = kind == SheetKind::Trends && !selection.trends.empty();
        if (isTrend && !selection.trends.contains(rows.Id())) continue;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            WriteCell(sheet.Columns()[i], rows.Get(i), language, cells[i]);
        }
        writer.Row(cells);
    }
}

}  // namespace exchange
