// Cells of the table over a project: chosen, copied, pasted, shown in the editor.

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>

#include "cells/HeadingMenu.h"
#include "cells/TabText.h"
#include "controls/TDBGrid.h"
#include "dialogs/CellColour.h"
#include "guard/Guard.h"
#include "messages/MessageBox.h"
#include "projecttable/frmProjectTable.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

void frmProjectTable::Choose(GridRowId row, int column) {
    if (!tdbTable->CommitPendingEdit()) return;
    const GridSplit& trends = tdbTable->SplitAt(1);
    const int place = trends_->RowOf(row);
    if (place < 0) return;
    const QVariant stored = trends_->index(place, column).data(GridRole::kStored);
    if (trends.ColumnAt(column)->Kind() == GridKind::Colour) {
        return ChooseCellColour(trends, stored, texts_, [this, column](int colour) {
            guard::Guard(u"frmProjectTable"_s, [&] { WriteToSelected(column, colour); });
        });
    }
    const auto variable = work_.ChooseVariable(this, stored.toString());
    if (variable) WriteToSelected(column, *variable);
}

void frmProjectTable::WriteToSelected(int column, const QVariant& value) {
    GridSplit& trends = tdbTable->SplitAt(1);
    QList<GridCell> cells;
    for (const GridRowId row : trends.SelectedCells().rows) cells.append({row, column, value});
    trends.WriteCells(cells);
}

void frmProjectTable::WriteBlock(const CellBlock::Result& block) {
    if (!block.hint.isEmpty()) return Hint(block.hint);
    if (!block.refusal.isEmpty()) return ShowError(block.refusal, {});
    tdbTable->SplitAt(1).WriteCells(block.cells);
}

void frmProjectTable::Copy() {
    if (auto* field = qobject_cast<QLineEdit*>(QApplication::focusWidget())) return field->copy();
    const QString text = CellBlock::Copy(tdbTable->SplitAt(tdbTable->Split()));
    if (text.isNull()) return Hint(texts_.GetText(MResourceTable::kTextHintNothingToCopy));
    QApplication::clipboard()->setText(text);
}

void frmProjectTable::Paste() {
    if (auto* field = qobject_cast<QLineEdit*>(QApplication::focusWidget())) return field->paste();
    if (!tdbTable->CommitPendingEdit()) return;
    const QList<QStringList> lines = TabText::Parse(QApplication::clipboard()->text());
    if (lines.isEmpty()) return Hint(texts_.GetText(MResourceTable::kTextHintNothingToPaste));
    const auto read = [this](const QString& text, int column) {
        return trends_->ReadCell(column, text);
    };
    WriteBlock(CellBlock::Paste(tdbTable->SplitAt(1), lines, read, texts_));
}

void frmProjectTable::GoToEditor() {
    if (!tdbTable->CommitPendingEdit()) return;
    const GridSplit& trends = tdbTable->SplitAt(1);
    if (trends.CurrentRow() == kNoGridRow) return;
    const projectdb::Place place = trends_->PlaceOf(trends.CurrentRow(), trends.CurrentColumn());
    if (!work_.ShowPlace(place)) Hint(texts_.GetText(MResourceTable::kTextCellRowGone));
}

std::vector<std::int32_t> frmProjectTable::ChosenTrends() const {
    std::vector<std::int32_t> ids;
    for (const GridRowId id : tdbTable->SplitAt(1).SelectedRows()) {
        ids.push_back(static_cast<std::int32_t>(id));
    }
    if (!ids.empty()) return ids;
    for (int row = 0; row < trends_->rowCount(); ++row) {
        ids.push_back(static_cast<std::int32_t>(trends_->IdAt(row)));
    }
    return ids;
}

void frmProjectTable::OpenContextMenu(const QPoint& position) {
    QMenu menu(this);
    menu.setObjectName(u"mnuContext"_s);
    for (const QString& name :
         {u"mnuGoTo"_s, u"mnuColumnFilter"_s, u"mnuReset"_s, QString(), u"mnuUndo"_s, u"mnuRedo"_s,
          QString(), u"mnuCopy"_s, u"mnuPaste"_s, u"mnuFill"_s, u"mnuFillCounting"_s, QString(),
          u"mnuExtra(9)"_s, u"mnuKeepView"_s, u"mnuRemoveView"_s, u"mnuRefresh"_s}) {
        if (name.isEmpty()) {
            menu.addSeparator();
        } else {
            menu.addAction(findChild<QAction*>(name));
        }
    }
    QMenu* column = menu.addMenu(texts_.GetText(MResourceTable::kTextColumnMenu));
    GridSplit& trends = tdbTable->SplitAt(1);
    HeadingMenu::Fill(*column, trends, trends.CurrentColumn(), texts_,
                      [](const GridColumn&) { return true; });
    menu.exec(position);
}

void frmProjectTable::ShowError(const QString& text, const QString& details) {
    messages::ShowMessage({text, messages::MessageButtons::Ok, windowTitle(), details}, this);
}
