#include "tools/ProjectJson.h"

#include <algorithm>
#include <tuple>
#include <vector>

#include "ado/Recordset.h"
#include "project/Schema.h"
#include "tools/JsonText.h"

namespace tools {
namespace {

/// Sorts the key first, then what new projects have, languages, and what else there is.
auto OrderOf(const project::Table& table, const std::string& name) {
    const auto known = std::find_if(table.columns.begin(), table.columns.end(),
                                    [&](const project::Column& each) { return each.name == name; });
    const auto place = known - table.columns.begin();
    const bool isLanguage = project::IsLanguageColumn(name);
    const int group = name == project::kKeyColumn        ? 0
                      : known != table.columns.end()     ? 1
                      : table.hasLanguages && isLanguage ? 2
                                                         : 3;
    // L9 before L10.
    return std::tuple(group, group == 1 ? place : 0, group == 2 ? name.size() : 0, name);
}

std::vector<std::size_t> FieldsInOrder(const project::Table& table, const ado::Recordset& rows) {
    std::vector<std::size_t> fields(rows.Fields().size());
    for (std::size_t i = 0; i < fields.size(); ++i) fields[i] = i;
    std::sort(fields.begin(), fields.end(), [&](std::size_t a, std::size_t b) {
        return OrderOf(table, rows.Fields()[a].name) < OrderOf(table, rows.Fields()[b].name);
    });
    return fields;
}

void WriteRow(const ado::Recordset& rows, const std::vector<std::size_t>& fields, TextBuffer& out) {
    out.Append("\n    {");
    bool isFirst = true;
    for (const std::size_t field : fields) {
        out.Append(isFirst ? "\n      " : ",\n      ");
        isFirst = false;
        AppendJson(std::string_view(rows.Fields()[field].name), out);
        out.Append(": ");
        AppendJson(rows.Get(field), out);
    }
    out.Append("\n    }");
}

}  // namespace

void WriteProjectJson(ado::Connection& connection, TextBuffer& out) {
    const ado::OneState state(connection);
    const std::vector<std::string> there = connection.TableNames();
    bool isFirst = true;
    out.Append("{");
    for (const project::Table& table : project::Tables()) {
        if (std::find(there.begin(), there.end(), table.name) == there.end()) continue;
        ado::Recordset rows;
        rows.Open(table.name, connection, ado::CommandType::Table);
        rows.SetSort(project::kKeyColumn);
        const auto fields = FieldsInOrder(table, rows);
        out.Append(isFirst ? "\n  " : ",\n  ");
        isFirst = false;
        AppendJson(table.name, out);
        out.Append(": [");
        for (bool isNext = false; !rows.IsEOF() && !out.HasFailed(); rows.MoveNext()) {
            if (isNext) out.Append(',');
            isNext = true;
            WriteRow(rows, fields, out);
        }
        out.Append("\n  ]");
    }
    out.Append("\n}\n");
}

}  // namespace tools
