#include "tools/DiffText.h"

#include <algorithm>
#include <array>
#include <span>

#include "project/Changes.h"
#include "project/FieldParts.h"
#include "project/Schema.h"
#include "tools/JsonText.h"
#include "tools/TableChange.h"
#include "unicode/Unicode.h"

namespace tools {
namespace {

using project::TableDifference;
using Rows = std::span<const ado::RowChange>;

/// What a row of the table is called; empty for tables that are no project's.
std::string_view Noun(std::string_view table) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 7> kNouns = {{
        {project::kArchiveTable, "archive"},
        {project::kTrendTable, "trend"},
        {project::kTextTable, "text"},
        {project::kGroupTable, "group"},
        {project::kStructTable, "structure"},
        {project::kVariableTable, "variable"},
        {project::kLanguageTable, "language"},
    }};
    const auto found = std::ranges::find(kNouns, table, &decltype(kNouns)::value_type::first);
    return found == kNouns.end() ? std::string_view() : found->second;
}

std::string_view ChangeOf(const ado::RowChange& row) {
    if (row.before.empty()) return "new";
    return row.after.empty() ? "gone" : "changed";
}

/// How many rows of a table are new, gone and changed.
struct Counts {
    std::size_t added = 0;
    std::size_t gone = 0;
    std::size_t changed = 0;
};
Counts CountsOf(Rows rows) {
    Counts counts;
    for (const ado::RowChange& row : rows) {
        ++(row.before.empty() ? counts.added : row.after.empty() ? counts.gone : counts.changed);
    }
    return counts;
}

/// What people call a part of a column.
std::string CaptionOf(const project::FieldPart& part, const std::string& column,
                      const words::Language& language) {
    if (part.caption == 0) return column;
    const std::string caption = unicode::ToUtf8(language.Text(part.caption));
    return project::IsLanguageColumn(column) ? caption + ' ' + column : caption;
}

/// Calls `row` for each row of a project's tables and `rows` for all those of each other table.
template <typename OfRow, typename OfTable>
void ForEach(Rows rows, OfRow row, OfTable others) {
    while (!rows.empty()) {
        const auto end = std::ranges::find_if(
            rows, [&](const ado::RowChange& each) { return each.table != rows.front().table; });
        const auto count = static_cast<std::size_t>(end - rows.begin());
        if (Noun(rows.front().table).empty()) {
            others(rows.first(count));
        } else {
            for (const ado::RowChange& each : rows.first(count)) row(each);
        }
        rows = rows.subspan(count);
    }
}

bool IsChanged(const ado::RowChange& row, std::string_view column) {
    if (row.before.empty() || row.after.empty()) return false;
    const ado::Value* before = row.ValueIn(row.before, column);
    return before != nullptr && !project::IsSame(*before, *row.ValueIn(row.after, column));
}

/// Another archive owns the trend.
bool IsMoved(const ado::RowChange& row) {
    return row.table == project::kTrendTable && IsChanged(row, "ArchiveID");
}

class Writer {
public:
    Writer(const project::Differences& differences, const words::Language& language,
           TextBuffer& out)
        : differences_(differences), language_(language), out_(out) {}

    void Write() {
        for (const TableDifference& table : differences_.tables) WriteTable(table);
        ForEach(
            differences_.rows, [this](const ado::RowChange& row) { WriteRow(row); },
            [this](Rows rows) { WriteCounts(rows); });
    }

private:
    void WriteTable(const TableDifference& found) {
        using Kind = TableDifference::Kind;
        out_.Append("table " + found.table + ": ");
        const bool isNew = found.kind == Kind::TableNew || found.kind == Kind::ColumnNew;
        if (!found.column.empty()) out_.Append("column " + found.column + " ");
        out_.Append(isNew ? "new\n" : "gone\n");
    }
    void WriteCounts(Rows rows) {
        const Counts counts = CountsOf(rows);
        const std::pair<std::size_t, const char*> parts[] = {
            {counts.added, " new"}, {counts.gone, " gone"}, {counts.changed, " changed"}};
        out_.Append("table " + rows.front().table);
        std::string_view separator = ": ";
        for (const auto& [count, what] : parts) {
            if (count == 0) continue;
            out_.Append(separator);
            out_.Append(RowCount(count) + what);
            separator = ", ";
        }
        out_.Append('\n');
    }
    void WriteRow(const ado::RowChange& row) {
        const bool isGone = row.after.empty();
        const std::vector<ado::Value>& side = isGone ? row.before : row.after;
        const ado::Value* name = row.ValueIn(side, "Name");
        AppendRow(row.table, *row.ValueIn(side, project::kKeyColumn),
                  name != nullptr ? *name : ado::Value(), out_);
        if (row.table == project::kTrendTable) {
            out_.Append(" in archive ");
            AppendReference(project::kArchiveTable, *row.ValueIn(side, "ArchiveID"), !isGone);
        }
        out_.Append(": ");
        const bool isRenamed = IsChanged(row, "Name");
        const bool isMoved = IsMoved(row);
        if (isRenamed) {
            out_.Append("renamed from ");
            AppendWords(*row.ValueIn(row.before, "Name"), out_);
        }
        if (isMoved) {
            out_.Append(isRenamed ? ", moved from archive " : "moved from archive ");
            AppendReference(project::kArchiveTable, *row.ValueIn(row.before, "ArchiveID"), false);
        }
        if (!isRenamed && !isMoved) out_.Append(ChangeOf(row));
        out_.Append('\n');
        for (std::size_t i = 0; i < row.columns->size() && !isGone; ++i) {
            const std::string& column = (*row.columns)[i];
            const bool isTold = (isRenamed && column == "Name") ||
                                (row.table == project::kTrendTable && column == "ArchiveID");
            if (!isTold && column != project::kKeyColumn) WriteField(row, i);
        }
    }
    void WriteField(const ado::RowChange& row, std::size_t column) {
        const bool isNew = row.before.empty();
        // What a new row does not have needs no line.
        if (isNew ? ado::IsNull(row.after[column])
                  : project::IsSame(row.before[column], row.after[column])) {
            return;
        }
        const std::string& name = (*row.columns)[column];
        const std::string_view target = project::TargetOf(row, name);
        for (const project::FieldPart& part : project::PartsOf(row.table, name)) {
            const ado::Value after = project::PartOf(part, row.after[column]);
            const ado::Value before =
                isNew ? ado::Value() : project::PartOf(part, row.before[column]);
            const bool isNothing = part.mask != 0 && part.codes.empty() && after == ado::Value(0);
            if (isNew ? isNothing : project::IsSame(before, after)) continue;
            out_.Append("  " + CaptionOf(part, name, language_) + ": ");
            if (!isNew) {
                AppendPart(part, target, before, false);
                out_.Append(" -> ");
            }
            AppendPart(part, target, after, true);
            out_.Append('\n');
        }
    }
    void AppendPart(const project::FieldPart& part, std::string_view target,
                    const ado::Value& value, bool isLater) {
        const std::string word = unicode::ToUtf8(
            project::WordOf(part, value, [this](int number) { return language_.Text(number); }));
        if (word.empty()) return AppendReference(target, value, isLater);
        out_.Append(word);
    }
    /// A value and, when it is the ID of a row, how that is called.
    void AppendReference(std::string_view table, const ado::Value& value, bool isLater) {
        AppendWords(value, out_);
        const auto* id = std::get_if<std::int32_t>(&value);
        if (table.empty() || id == nullptr) return;
        const project::RowNames& names = isLater ? differences_.after : differences_.before;
        const auto found = names.find({std::string(table), *id});
        if (found == names.end()) return;
        out_.Append(' ');
        AppendWords(found->second, out_);
    }

    const project::Differences& differences_;
    const words::Language& language_;
    TextBuffer& out_;
};

void AppendFields(const ado::RowChange& row, TextBuffer& out) {
    out.Append('{');
    bool isFirst = true;
    for (std::size_t i = 0; i < row.columns->size(); ++i) {
        const bool isSame = !row.before.empty() && !row.after.empty() &&
                            project::IsSame(row.before[i], row.after[i]);
        if (isSame) continue;
        if (!isFirst) out.Append(',');
        isFirst = false;
        AppendJson((*row.columns)[i], out);
        out.Append(":{");
        if (!row.before.empty()) {
            out.Append("\"from\":");
            AppendJson(row.before[i], out);
        }
        if (!row.after.empty()) {
            out.Append(row.before.empty() ? "\"to\":" : ",\"to\":");
            AppendJson(row.after[i], out);
        }
        out.Append('}');
    }
    out.Append('}');
}

}  // namespace

void AppendWords(const ado::Value& value, TextBuffer& out) {
    if (ado::IsNull(value)) {
        out.Append("nothing");
    } else {
        AppendJson(value, out);
    }
}

void AppendRow(const std::string& table, const ado::Value& id, const ado::Value& name,
               TextBuffer& out) {
    const std::string_view noun = Noun(table);
    out.Append(noun.empty() ? "row of " + table : std::string(noun));
    for (const ado::Value* value : {&id, &name}) {
        if (ado::IsNull(*value)) continue;
        out.Append(' ');
        AppendWords(*value, out);
    }
}

void AppendDifferences(const project::Differences& differences, const words::Language& language,
                       TextBuffer& out) {
    Writer(differences, language, out).Write();
}

void AppendJson(const project::Differences& differences, TextBuffer& out) {
    JsonLines lines(out);
    for (const TableDifference& found : differences.tables) {
        using Kind = TableDifference::Kind;
        const bool isNew = found.kind == Kind::TableNew || found.kind == Kind::ColumnNew;
        lines.Begin(found.table, "change", isNew ? "new" : "gone");
        if (!found.column.empty()) lines.Put("column", std::string_view(found.column));
        out.Append('}');
    }
    const auto row = [&](const ado::RowChange& each) {
        lines.Begin(each.table, "change", ChangeOf(each));
        const std::vector<ado::Value>& side = each.after.empty() ? each.before : each.after;
        if (const ado::Value* id = each.ValueIn(side, project::kKeyColumn)) lines.Put("id", *id);
        if (const ado::Value* name = each.ValueIn(side, "Name")) lines.Put("name", *name);
        if (IsChanged(each, "Name")) lines.Put("renamed", ado::Value(true));
        if (IsMoved(each)) lines.Put("moved", ado::Value(true));
        lines.Key("fields");
        AppendFields(each, out);
        out.Append('}');
    };
    const auto others = [&](Rows rows) {
        const Counts counts = CountsOf(rows);
        lines.Begin(rows.front().table, "change", "changed");
        lines.Key("rows");
        out.Append("{\"new\":");
        out.AppendNumber(counts.added);
        out.Append(",\"gone\":");
        out.AppendNumber(counts.gone);
        out.Append(",\"changed\":");
        out.AppendNumber(counts.changed);
        out.Append("}}");
    };
    ForEach(differences.rows, row, others);
}

}  // namespace tools
