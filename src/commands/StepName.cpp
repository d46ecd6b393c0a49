#include "commands/StepName.h"

#include <array>
#include <string_view>
#include <vector>

#include "project/Schema.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

using Rows = std::vector<const ado::RowChange*>;

/// The rows of one table by what has happened to them.
struct TableRows {
    Rows made;
    Rows changed;
    Rows gone;
};

TableRows RowsOf(const project::ChangeSet& step, std::string_view table) {
    TableRows rows;
    for (const ado::RowChange& row : step.Rows()) {
        if (row.table != table) continue;
        (row.before.empty()  ? rows.made
         : row.after.empty() ? rows.gone
                             : rows.changed)
            .push_back(&row);
    }
    return rows;
}

QString NameOf(const ado::RowChange& row) {
    // What the user knew it by when he began.
    const ado::Value* name = row.KnownIn("Name");
    return name != nullptr ? projectdb::ToQString(ado::ToText(*name)) : QString();
}

/// The heading of the one column that has changed; empty where there are several.
QString ColumnOf(const ado::RowChange& row, const MResources::TextTable& texts) {
    QString caption;
    for (std::size_t i = 0; i < row.columns->size(); ++i) {
        if (row.before[i] == row.after[i]) continue;
        const project::Column* column = project::FindTrendColumn((*row.columns)[i]);
        if (!caption.isEmpty() || column == nullptr || column->caption == 0) return {};
        caption = texts.GetText(column->caption);
    }
    return caption;
}

QString CountText(std::size_t n) {
    return QString::number(n);
}

QString TrendCount(std::size_t n, const MResources::TextTable& texts) {
    if (n == 0) return {};
    return n == 1 ? texts.GetText(MResourceTable::kTextStepOneTrend)
                  : texts.GetText(MResourceTable::kTextStepTrends, {{u"n", CountText(n)}});
}

}  // namespace

QString StepName(const project::ChangeSet& step, const MResources::TextTable& texts) {
    using namespace MResourceTable;
    const TableRows archives = RowsOf(step, project::kArchiveTable);
    const TableRows trends = RowsOf(step, project::kTrendTable);
    const auto archive = [&](int text, const Rows& rows, std::size_t withTrends) {
        return texts.GetText(
            text, {{u"name", NameOf(*rows.front())}, {u"trends", TrendCount(withTrends, texts)}});
    };
    if (archives.gone.size() == 1) {
        return archive(kTextStepDeleteArchive, archives.gone, trends.gone.size());
    }
    if (archives.made.size() == 1) {
        return archive(kTextStepNewArchive, archives.made, trends.made.size());
    }
    if (archives.changed.size() == 1 && trends.gone.empty() && trends.made.empty()) {
        return archive(kTextStepEditArchive, archives.changed, 0);
    }
    struct Case {
        const Rows& rows;
        int one;
        int many;
    };
    const std::array<Case, 3> cases{{{trends.gone, kTextStepDeleteTrend, kTextStepDeleteTrends},
                                     {trends.made, kTextStepNewTrend, kTextStepNewTrends},
                                     {trends.changed, kTextStepEditTrend, kTextStepEditTrends}}};
    for (const Case& c : cases) {
        if (c.rows.empty()) continue;
        if (c.rows.size() > 1) return texts.GetText(c.many, {{u"n", CountText(c.rows.size())}});
        const ado::RowChange& row = *c.rows.front();
        const bool isEdit = c.one == kTextStepEditTrend;
        return texts.GetText(c.one, {{u"name", NameOf(row)},
                                     {u"column", isEdit ? ColumnOf(row, texts) : QString()}});
    }
    const TableRows names = RowsOf(step, project::kTextTable);
    if (names.changed.size() == 1) {
        return texts.GetText(kTextStepEditText, {{u"name", NameOf(*names.changed.front())}});
    }
    return texts.GetText(kTextStepOther, {{u"n", CountText(step.Rows().size())}});
}
