#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ado/Connection.h"
#include "project/Rows.h"

/// Settings of an archive or a trend that are kept for new ones.
namespace project {

/// Whether a new row may have the value that the column has in another one: it does not if it names
/// the row or what belongs to it alone - its name and text, its file, the variable that a trend
/// records. `table`: of the archives or of the trends.
[[nodiscard]] bool IsForTemplate(std::string_view table, std::string_view column);

/// The settings of a row that is there, Null left out. Throws ado::AdoError.
[[nodiscard]] Values SettingsOf(ado::Connection& connection, std::string_view table,
                                std::int32_t id);

/// Assigns settings to the current row of a table, which is not stored. Returns the columns that
/// it has not, or that do not take the value.
[[nodiscard]] std::vector<std::string> AssignSettings(ado::Recordset& row, std::string_view table,
                                                      const Values& settings);

/// Settings that a new row is to have, and which of them it could not take.
struct Template {
    Values settings;
    std::vector<std::string> leftOut{};
};

}  // namespace project
