// What the user has changed in the editor window, taken back and done again.

#include <algorithm>
#include <optional>
#include <QLabel>
#include <QScopedValueRollback>
#include <QScopeGuard>
#include <set>
#include <tuple>

#include "controls/TDBGrid.h"
#include "editor/EditorHistory.h"
#include "editor/frmtabGrid.h"
#include "editor/TrendRows.h"
#include "findings/FindingPane.h"
#include "guard/Guard.h"
#include "project/Schema.h"
#include "projectdb/NodeKey.h"
#include "projectdb/ProjectRows.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

using Direction = EditorHistory::Direction;

/// As it is now, or as it was before it went.
std::int32_t NumberIn(const ado::RowChange& row, std::string_view column) {
    const ado::Value* value = row.ValueIn(row.after.empty() ? row.before : row.after, column);
    return value != nullptr ? ado::ToLong(*value) : 0;
}

/// The field of the trend query that a change of one field shows in; empty for several.
std::string FieldOf(const ado::RowChange& row) {
    std::string field;
    if (row.before.empty() || row.after.empty()) return field;
    for (std::size_t i = 0; i < row.columns->size(); ++i) {
        if (row.before[i] == row.after[i]) continue;
        if (!field.empty()) return {};
        field = (*row.columns)[i];
    }
    return field;
}

/// Where a change shows: in an archive, at trends of it, in a field.
struct Shown {
    std::int32_t archive = 0;
    bool isArchiveItself = false;  // not only its trends
    std::vector<std::int32_t> trends;
    std::string field;
};

Shown PlaceOf(const project::ChangeSet& changes, projectdb::ProjectRows& rows) {
    Shown shown;
    std::set<std::int32_t> texts;
    for (const ado::RowChange& row : changes.Rows()) {
        const std::int32_t id = NumberIn(row, project::kKeyColumn);
        if (row.table == project::kArchiveTable && !row.after.empty()) {
            shown.archive = id;
            shown.isArchiveItself = true;
        }
        if (row.table == project::kTextTable && !row.after.empty()) texts.insert(id);
        if (row.table != project::kTrendTable) continue;
        if (shown.archive == 0) shown.archive = NumberIn(row, "ArchiveID");
        if (row.after.empty()) continue;
        shown.trends.push_back(id);
        shown.field = FieldOf(row);
    }
    if (shown.archive != 0 || texts.size() != 1) return shown;
    // A text alone: that of a trend.
    ado::Recordset& trends = rows.Trends();
    trends.SetFilter("TextID = " + std::to_string(*texts.begin()));
    if (trends.IsEOF()) return shown;
    shown.archive = ado::ToLong(trends.Get("ArchiveID"));
    shown.trends = {ado::ToLong(trends.Get(project::kKeyColumn))};
    shown.field = FieldOf(changes.Rows().front());
    return shown;
}

}  // namespace

void frmtabGrid::EndStep() {
    if (const QString step = history_->EndStep(); !step.isEmpty()) ShowDone(step);
    UpdateCommands();
    findings_->Look();
}

/// Says what has just happened, to the ear too, and how it is taken back; no step: nothing.
void frmtabGrid::ShowDone(const QString& step) {
    const QString key = commandset::KeyText(commandset::Id::Undo, texts_);
    lblDone->setText(step.isEmpty() ? QString()
                                    : texts_.GetText(MResourceTable::kTextHintDone,
                                                     {{u"step", step}, {u"key", key}}));
    lblDone->setToolTip(lblDone->text());
}

void frmtabGrid::GoSteps(commandset::Id direction, int steps) {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!MayStore()) return;
    const QScopedValueRollback busy(busy_, true);
    if (!CommitPendingEdit()) return;
    EndStep();
    const bool back = direction == commandset::Id::Undo;
    const auto isThere = [&] { return back ? history_->CanUndo() : history_->CanRedo(); };
    if (!isThere()) {
        return Hint(back ? MResourceTable::kTextHintNothingToUndo
                         : MResourceTable::kTextHintNothingToRedo);
    }
    const QString beside = ArchiveBeside(project_.currentNodeKey);
    std::optional<EditorHistory::Moved> last;
    // What has been done is shown, even when a later step fails.
    const auto show = qScopeGuard([&] {
        if (!last) return;
        guard::Guard(QStringLiteral("frmtabGrid"), [&] { ShowChanges(last->changes, beside); });
        UpdateCommands();
        findings_->Look();
        ShowDone({});
        Hint(
            texts_.GetText(back ? MResourceTable::kTextHintUndone : MResourceTable::kTextHintRedone,
                           {{u"step", last->step}}));
    });
    for (int i = 0; i < steps && isThere(); ++i) {
        auto moved = history_->Move(back ? Direction::Back : Direction::Forward);
        if (!moved) return;
        last = std::move(moved);
    }
}

void frmtabGrid::ShowChanges(const project::ChangeSet& changes, const QString& beside) {
    FollowArchives(beside);
    NamesInGroup(projectdb::kArchiveNames);
    Shown shown;
    {
        projectdb::ProjectRows rows(project_.Environment());
        shown = PlaceOf(changes, rows);
        if (shown.archive != 0 && !rows.SeekArchive(shown.archive)) shown.archive = 0;
    }
    const QString key = projectdb::ArchiveNodeKey(shown.archive);
    if (shown.archive != 0 && key != project_.currentNodeKey) {
        addIn_.SelectArchive(key);
    } else {
        projectdb::ReloadTrends(project_, *this);
    }
    if (shown.isArchiveItself) return;
    if (shown.trends.size() != 1 || shown.field.empty()) return ShowTrends(shown.trends);
    GridSplit& trends = tdbA->SplitAt(1);
    const int column = trends.ColumnIndex(projectdb::ToQString(shown.field));
    if (column < 0) return ShowTrends(shown.trends);
    if (!trends.SetCurrentCell(shown.trends.front(), column)) return ShowTrends(shown.trends);
    tdbA->SetSplit(1);
}
