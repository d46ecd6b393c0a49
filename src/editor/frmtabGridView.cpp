// What the user sees of the rows in the editor window and where he is: narrowing, frozen columns,
// and the place that another window goes on from.

#include <array>
#include <QLabel>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QStatusBar>
#include <utility>

#include "controls/TDBGrid.h"
#include "editor/EditorLayout.h"
#include "editor/EditorMenus.h"
#include "editor/frmtabGrid.h"
#include "projectdb/NodeKey.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

EditorPlace frmtabGrid::Place() {
    CommitPendingEdit();
    EditorPlace place;
    place.nodeKey = project_.currentNodeKey;
    if (dblangs != nullptr) place.settings = layout_->Take(CurrentLcid());
    for (int i = 0; i < TDBGrid::kSplitCount; ++i) {
        const GridSplit& split = tdbA->SplitAt(i);
        const GridColumn* column = split.ColumnAt(split.CurrentColumn());
        place.splits.at(static_cast<std::size_t>(i)) = {
            split.SortField(), split.SortOrder(), split.CurrentRow(),
            column != nullptr ? column->DataField() : QString()};
    }
    place.split = tdbA->Split();
    place.keyboard = active_;
    return place;
}

void frmtabGrid::ReturnTo(const EditorPlace& place) {
    const QScopedValueRollback marking(marking_, true);
    for (int i = 0; i < TDBGrid::kSplitCount; ++i) {
        GridSplit& split = tdbA->SplitAt(i);
        const EditorPlace::Split& was = place.splits.at(static_cast<std::size_t>(i));
        split.Sort(was.sortField, was.sortOrder);
        // In the list of archives the current row is the open archive's, which may be another.
        if (i == 1 && was.row != kNoGridRow) {
            split.SetCurrentCell(was.row, split.ColumnIndex(was.column));
        }
    }
    if (place.keyboard) tdbA->SetSplit(place.split);
}

void frmtabGrid::Find(int split) {
    if (std::exchange(narrowed_, split) != split) txtFind->clear();
    ShowNarrowing();
    txtFind->setFocus(Qt::ShortcutFocusReason);
    txtFind->selectAll();
}

void frmtabGrid::FindArchives() {
    Find(0);
}

/// What stands in a split that has nothing to show.
void frmtabGrid::ShowEmptiness() {
    const bool isArchive = projectdb::NodeKind(project_.currentNodeKey) == projectdb::kArchiveKind;
    using commandset::Id;
    const auto text = [this](int number, Id helping) {
        return texts_.GetText(number, {{u"key", commandset::KeyText(helping, texts_)}});
    };
    const std::array<QString, TDBGrid::kSplitCount> texts = {
        text(MResourceTable::kTextNoArchives, Id::NewArchive),
        isArchive ? text(MResourceTable::kTextNoTrends, Id::NewTrend)
                  : texts_.GetText(MResourceTable::kTextNoArchiveOpen)};
    for (int split = 0; split < TDBGrid::kSplitCount; ++split) {
        GridSplit& grid = tdbA->SplitAt(split);
        const bool isNarrowed = !grid.FilterText().isEmpty();
        grid.SetEmptyText(isNarrowed ? texts_.GetText(MResourceTable::kTextNoHit)
                                     : texts.at(static_cast<std::size_t>(split)));
    }
}

void frmtabGrid::ShowNarrowing() {
    ShowEmptiness();
    const auto what = [&](const QString& key) {
        return texts_.GetText(narrowed_ == 0 ? MResourceTable::kTextNarrowArchives
                                             : MResourceTable::kTextNarrowTrends,
                              {{u"key", key}});
    };
    txtFind->setPlaceholderText(what({}));
    // Room for the magnifying glass, the cross that clears the field, and the margins.
    const QFontMetrics letters = txtFind->fontMetrics();
    txtFind->setMinimumWidth(letters.horizontalAdvance(what({})) + 4 * letters.height());
    const QString whole = what(commandset::KeyText(commandset::Id::Find, texts_));
    txtFind->setAccessibleName(whole);
    txtFind->setToolTip(whole);
    const GridSplit& split = tdbA->SplitAt(narrowed_);
    const QString text = split.FilterText();
    const bool empty = !text.isEmpty() && split.Source() != nullptr && split.RowCount() == 0 &&
                       split.Source()->rowCount() > 0;
    if (std::exchange(narrowedToNothing_, empty) && !empty) sb->clearMessage();
    lblFound->setVisible(!text.isEmpty());
    if (text.isEmpty() || split.Source() == nullptr) return;
    // A narrowed split has read all its rows.
    const int all = split.Source()->rowCount();
    lblFound->setText(texts_.GetText(
        MResourceTable::kTextRowsShown,
        {{u"n", QString::number(split.RowCount())}, {u"all", QString::number(all)}}));
    if (!empty) return;
    // For as long as it is so.
    sb->showMessage(texts_.GetText(MResourceTable::kTextNothingShown, {{u"text", text}}));
}

void frmtabGrid::FreezeName(bool freeze) {
    GridSplit& trends = tdbA->SplitAt(1);
    if (GridColumn* name = trends.Column(u"Name"); name != nullptr && freeze) name->SetOrder(0);
    trends.SetFrozenColumn(freeze ? u"Name"_s : QString());
}

void frmtabGrid::ShowFreezing() {
    menus_->Action(commandset::Id::FreezeName)
        ->setChecked(tdbA->SplitAt(1).FrozenColumn() == u"Name");
}
