// Copying and pasting in the editor window.

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QScopeGuard>

#include "commands/PasteCommands.h"
#include "controls/TDBGrid.h"
#include "editor/frmtabGrid.h"
#include "editor/RowProgress.h"
#include "editor/TabText.h"
#include "editor/TrendClipboard.h"
#include "editor/TrendRows.h"
#include "guard/Guard.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

void frmtabGrid::Copy() {
    const GridSplit& split = tdbA->SplitAt(tdbA->Split());
    const QList<GridRowId> rows = split.SelectedRows();
    if (!rows.isEmpty() && tdbA->Split() == 1) {
        QApplication::clipboard()->setMimeData(
            TrendClipboard::CopyTrends(split, *trends_, texts_, rows).release());
    } else if (!rows.isEmpty()) {
        QApplication::clipboard()->setText(TrendClipboard::Copy(split, rows));
    } else if (split.CurrentRow() != kNoGridRow) {
        QApplication::clipboard()->setText(
            split.CellText(split.CurrentRow(), split.CurrentColumn()));
    } else {
        Hint(MResourceTable::kTextHintNothingToCopy);
    }
}

void frmtabGrid::Paste() {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!MayStore()) return;
    if (tdbA->Split() != 1) return Hint(MResourceTable::kTextHintPasteIntoTrends);
    const QScopedValueRollback busy(busy_, true);
    if (!CommitPendingEdit()) return;
    if (!IsThere(project_.currentNodeKey)) return;
    const QMimeData* held = QApplication::clipboard()->mimeData();
    if (held == nullptr || held->text().isEmpty()) {
        return Hint(MResourceTable::kTextHintNothingToPaste);
    }
    const TrendClipboard::Reader reader{tdbA->SplitAt(1), *trends_, texts_, QLocale()};
    const auto pasted = TrendClipboard::Parse(*held, reader);
    if (!pasted) return PasteCell(TrendClipboard::SingleCell(held->text()));
    if (pasted->isBlock) return PasteBlock(TabText::Parse(held->text()));
    if (!pasted->refusal.isEmpty()) return Tell(pasted->refusal);
    const auto step = qScopeGuard([this] { EndStep(); });
    RowProgress progress(texts_, MResourceTable::kTextPastingTrends, this);
    PasteCommands commands(project_, *this, texts_);
    try {
        ShowTrends(commands.PasteTrends(pasted->trends, progress.Function()));
    } catch (const ado::AdoError&) {
        if (!commands.Refused()) throw;
        const auto& [trend, column] = *commands.Refused();
        const GridColumn* known = tdbA->SplitAt(1).Column(projectdb::ToQString(column));
        Tell(texts_.GetText(
            MResourceTable::kTextPasteRefused,
            {{u"row", QString::number(trend + 1)},
             {u"column", known != nullptr ? known->Caption() : projectdb::ToQString(column)},
             {u"cause", projectdb::Failure::Current().Text()}}));
    }
}

void frmtabGrid::PasteCell(const QString& text) {
    GridSplit& trends = tdbA->SplitAt(1);
    const GridSplit::Cells selected = trends.SelectedCells();
    if (selected.rows.isEmpty()) return Hint(MResourceTable::kTextHintCellLocked);
    QList<GridCell> cells;
    for (const int column : selected.columns) {
        const auto value =
            TrendClipboard::ReadCell(text, column, {trends, *trends_, texts_, QLocale()});
        for (const GridRowId row : selected.rows) {
            if (!trends.CanEdit(row, column)) return Hint(MResourceTable::kTextHintCellLocked);
            if (value) cells.append({row, column, RecordsetModel::Stored(*value)});
        }
        if (!value) {
            return Tell(
                TrendClipboard::Refusal(texts_, 1, trends.ColumnAt(column)->Caption(), text));
        }
    }
    trends.WriteCells(cells);
}
