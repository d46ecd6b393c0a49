#include "project/Template.h"

#include <algorithm>
#include <array>

#include "ado/AdoError.h"
#include "project/Schema.h"

namespace project {
namespace {

constexpr std::array<std::string_view, 4> kOwnOfArchive = {"Name", "FileName", "TextID",
                                                           kParamNames};
constexpr std::array<std::string_view, 4> kOwnOfTrend = {"Name", "TrendVar", "TextID", "ArchiveID"};

}  // namespace

bool IsForTemplate(std::string_view table, std::string_view column) {
    const bool isArchive = table == kArchiveTable;
    const auto& own = isArchive ? kOwnOfArchive : kOwnOfTrend;
    const Column* known = isArchive ? FindArchiveColumn(column) : FindTrendColumn(column);
    return known != nullptr && std::find(own.begin(), own.end(), column) == own.end();
}

Values SettingsOf(ado::Connection& connection, std::string_view table, std::int32_t id) {
    Rows rows(connection);
    const bool isArchive = table == kArchiveTable;
    const bool isThere = isArchive ? rows.SeekArchive(id) : rows.SeekTrend(id);
    if (!isThere) throw ado::AdoError(ado::ErrorNumber::kRowNotLocated, "The row is gone.");
    const ado::Recordset& row = isArchive ? rows.Archives() : rows.Trends();
    Values settings;
    for (const ado::Field& field : row.Fields()) {
        if (!IsForTemplate(table, field.name)) continue;
        const ado::Value value = row.Get(field.name);
        if (!ado::IsNull(value)) settings.emplace_back(field.name, value);
    }
    return settings;
}

std::vector<std::string> AssignSettings(ado::Recordset& row, std::string_view table,
                                        const Values& settings) {
    std::vector<std::string> leftOut;
    for (const auto& [column, value] : settings) {
        try {
            if (IsForTemplate(table, column) && HasField(row, column)) {
                row.Set(column, value);
                continue;
            }
        } catch (const ado::AdoError& error) {
            const bool isValue = error.Number() == ado::ErrorNumber::kDoesNotFit ||
                                 error.Number() == ado::ErrorNumber::kWrongType;
            if (!isValue) throw;
        }
        leftOut.push_back(column);
    }
    return leftOut;
}

}  // namespace project
