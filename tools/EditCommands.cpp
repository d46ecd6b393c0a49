#include <algorithm>
#include <map>

#include "tools/Commands.h"
#include "tools/TableChange.h"
#include "tools/ValueParser.h"

namespace tools {
namespace {

/// "COLUMN=VALUE", the value as CSV has it.
std::pair<std::size_t, ado::Value> ParseAssignment(const ado::Recordset& rows,
                                                   const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) FailInput("\"" + text + "\" is not COLUMN=VALUE.");
    const std::size_t field = rows.FieldIndex(text.substr(0, equals));
    const std::string value = text.substr(equals + 1);
    if (value.empty()) return {field, ado::Null{}};
    return {field, ParseValue(rows.Fields()[field], value == "\"\"" ? "" : value)};
}

using Assignments = std::vector<std::pair<std::size_t, ado::Value>>;

/// Whether the current row, with the edit that is pending, differs from what it was.
bool Differs(const ado::Recordset& rows, const Assignments& values,
             const std::vector<ado::Value>& before) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (rows.Get(values[i].first) != before[i]) return true;
    }
    return false;
}

Done SetRows(ado::Recordset& rows, const Assignments& values, Mode mode) {
    // Counted first: a change may put a row to another place of an index.
    const std::size_t count = rows.RecordCount();
    std::size_t changed = 0;
    std::vector<ado::Value> before(values.size());
    for (std::size_t i = 0; i < count; ++i, rows.MoveNext()) {
        const bool isDry = mode == Mode::DryRun;
        for (std::size_t k = 0; isDry && k < values.size(); ++k) {
            before[k] = rows.Get(values[k].first);
        }
        for (const auto& [field, value] : values) rows.Set(field, value);
        if (isDry && Differs(rows, values, before)) ++changed;
        rows.Update();
    }
    if (mode == Mode::Change) return {RowCount(count), {}};
    if (changed == count) return {RowCount(count) + " would change", {}};
    return {std::to_string(changed) + " of " + RowCount(count) +
                " would change; the others hold these values already",
            {}};
}

using Counts = std::map<std::string, std::size_t>;  // rows by table

Counts CountRows(ado::Connection& connection, const std::string& except) {
    Counts counts;
    for (const std::string& table : connection.TableNames()) {
        if (table == except) continue;
        ado::Recordset rows;
        rows.Open(table, connection, ado::CommandType::Table);
        counts[table] = rows.RecordCount();
    }
    return counts;
}

Done DeleteRows(ado::Connection& connection, ado::Recordset& rows, Mode mode) {
    const std::string& table = rows.Fields().front().baseTable;
    // What goes along, by relationships that the database enforces, is told too.
    const Counts before = mode == Mode::DryRun ? CountRows(connection, table) : Counts();
    const std::size_t count = rows.RecordCount();
    for (std::size_t i = 0; i < count; ++i, rows.MoveNext()) rows.Delete();
    if (mode == Mode::Change) return {RowCount(count), {}};
    Done done{RowCount(count) + " would be deleted", {}};
    for (const auto& [other, left] : CountRows(connection, table)) {
        const std::size_t gone = before.at(other) - left;
        if (gone > 0) done.text += ", and " + RowCount(gone) + " of " + other + " with them";
    }
    return done;
}

}  // namespace

ExitStatus Set(const std::string& file, const std::string& table, const std::string& criteria,
               const std::vector<std::string>& assignments, Mode mode, std::FILE* out,
               std::FILE* err) {
    Assignments values;
    const auto prepare = [&](ado::Recordset& rows) {
        for (const std::string& text : assignments) {
            values.push_back(ParseAssignment(rows, text));
            const auto isSame = [&](const auto& value) {
                return value.first == values.back().first;
            };
            if (std::find_if(values.begin(), values.end(), isSame) != values.end() - 1) {
                FailInput("\"" + text + "\" names its column a second time.");
            }
        }
    };
    const auto run = [&](ado::Connection&, ado::Recordset& rows) {
        rows.SetFilter(criteria);
        return SetRows(rows, values, mode);
    };
    return Edit(file, table, mode, out, err, {prepare, run});
}

ExitStatus Delete(const std::string& file, const std::string& table, const std::string& criteria,
                  Mode mode, std::FILE* out, std::FILE* err) {
    const auto run = [&](ado::Connection& connection, ado::Recordset& rows) {
        rows.SetFilter(criteria);
        return DeleteRows(connection, rows, mode);
    };
    return Edit(file, table, mode, out, err, {[](ado::Recordset&) {}, run});
}

}  // namespace tools
