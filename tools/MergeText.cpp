#include "tools/MergeText.h"

#include <algorithm>
#include <span>

#include "tools/DiffText.h"
#include "tools/JsonText.h"

namespace tools {
namespace {

using project::MergeConflict;
using Kind = MergeConflict::Kind;

struct KindText {
    Kind kind;
    std::string_view name;  // in JSON
    std::string_view text;
};
constexpr KindText kKinds[] = {
    {Kind::Field, "field", "changed in both; mine is kept"},
    {Kind::Limits, "limits",
     "does not fit the other limit, which has been changed too; mine is kept"},
    {Kind::DeletedMine, "deleted-mine", "deleted in mine, changed or used in theirs; it is kept"},
    {Kind::DeletedTheirs, "deleted-theirs",
     "deleted in theirs, changed or used in mine; it is kept"},
    {Kind::NameDoubled, "name-doubled", "has the same name as"},
    {Kind::TableChanged, "table-changed", "changed in both; mine is kept"},
    {Kind::TableGone, "table-gone", "gone in theirs; it is kept"},
};
const KindText& TextOf(Kind kind) {
    return *std::ranges::find(kKinds, kind, &KindText::kind);
}

void AppendConflict(const MergeConflict& conflict, TextBuffer& out) {
    out.Append("conflict: ");
    const KindText& kind = TextOf(conflict.kind);
    if (conflict.id != 0) {
        AppendRow(conflict.table, conflict.id, conflict.name, out);
    } else {
        out.Append("table " + conflict.table);
    }
    out.Append(conflict.column.empty() ? ": " : ", " + conflict.column + ": ");
    out.Append(kind.text);
    if (conflict.kind == Kind::NameDoubled) {
        out.Append(' ');
        AppendRow(conflict.table, conflict.other, conflict.otherName, out);
    }
    out.Append('\n');
    if (conflict.column.empty()) return;
    const std::pair<const char*, const ado::Value*> values[] = {{"  base:   ", &conflict.base},
                                                                {"  mine:   ", &conflict.mine},
                                                                {"  theirs: ", &conflict.theirs}};
    for (const auto& [who, value] : values) {
        out.Append(who);
        AppendWords(*value, out);
        out.Append('\n');
    }
}

}  // namespace

void AppendMerged(const project::Merged& merged, TextBuffer& out) {
    for (const auto& row : merged.renumbered) {
        out.Append("renumbered: ");
        AppendRow(row.table, row.was, row.name, out);
        out.Append(" of theirs is now ");
        out.AppendNumber(row.is);
        out.Append('\n');
    }
    for (const MergeConflict& conflict : merged.conflicts) AppendConflict(conflict, out);
}

void AppendJson(const project::Merged& merged, TextBuffer& out) {
    JsonLines lines(out);
    for (const auto& row : merged.renumbered) {
        lines.Begin(row.table, "kind", "renumbered");
        lines.Put("id", ado::Value(row.is));
        lines.Put("name", ado::Value(row.name));
        lines.Put("was", ado::Value(row.was));
        out.Append('}');
    }
    for (const MergeConflict& conflict : merged.conflicts) {
        lines.Begin(conflict.table, "kind", TextOf(conflict.kind).name);
        if (conflict.id != 0) {
            lines.Put("id", ado::Value(conflict.id));
            lines.Put("name", ado::Value(conflict.name));
        }
        if (conflict.other != 0) lines.Put("other", ado::Value(conflict.other));
        if (!conflict.column.empty()) {
            lines.Put("column", std::string_view(conflict.column));
            lines.Put("base", conflict.base);
            lines.Put("mine", conflict.mine);
            lines.Put("theirs", conflict.theirs);
        }
        out.Append('}');
    }
}

}  // namespace tools
