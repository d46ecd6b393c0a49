#include "tools/KeyedRows.h"

#include "tools/TableChange.h"

namespace tools {

KeyedRows::KeyedRows(ado::Recordset& rows, std::size_t field) : field_(field) {
    for (; !rows.IsEOF(); rows.MoveNext()) {
        const ado::Value value = rows.Get(field);
        if (ado::IsNull(value)) continue;
        Row& row = rows_[ado::ToText(value)];
        row.place = rows.GetBookmark();
        ++row.count;
    }
}

std::optional<ado::Bookmark> KeyedRows::Take(const ado::Value& value) {
    if (ado::IsNull(value)) FailInput("The key is Null.");
    Row& row = rows_[ado::ToText(value)];
    if (row.count > 1) FailInput("Several rows of the table have this key.");
    if (row.isTaken) FailInput("An earlier line has this key.");
    row.isTaken = true;
    return row.count == 1 ? std::optional(row.place) : std::nullopt;
}

}  // namespace tools
