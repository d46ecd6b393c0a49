// Several cells of the trends as one: filled down, counted on, pasted as a block, summed up.

#include <QLabel>
#include <QLocale>
#include <QScopedValueRollback>

#include "cells/CellBlock.h"
#include "cells/CellValue.h"
#include "controls/TDBGrid.h"
#include "editor/frmtabGrid.h"
#include "editor/TrendClipboard.h"
#include "editor/TrendRows.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

void frmtabGrid::FillDown(bool counting, int sources) {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!MayStore()) return;
    const QScopedValueRollback busy(busy_, true);
    if (!CommitPendingEdit()) return;
    WriteBlock(CellBlock::FillDown(tdbA->SplitAt(1), counting, texts_, sources));
}

void frmtabGrid::WriteBlock(const CellBlock::Result& block) {
    if (!block.hint.isEmpty()) return Hint(block.hint);
    if (!block.refusal.isEmpty()) return Tell(block.refusal);
    tdbA->SplitAt(1).WriteCells(block.cells);
}

void frmtabGrid::PasteBlock(const QList<QStringList>& lines) {
    const TrendClipboard::Reader reader{tdbA->SplitAt(1), *trends_, texts_, QLocale()};
    const auto read = [&](const QString& text, int column) -> std::optional<QVariant> {
        const auto value = TrendClipboard::ReadCell(text, column, reader);
        if (!value) return std::nullopt;
        return StoredValue(*value);
    };
    WriteBlock(CellBlock::Paste(tdbA->SplitAt(1), lines, read, texts_));
}

/// Gives the selected cells of a column the same value, as a chooser does.
void frmtabGrid::WriteColumn(int column, const QVariant& value) {
    GridSplit& trends = tdbA->SplitAt(1);
    QList<GridCell> cells;
    for (const GridRowId row : trends.SelectedCells().rows) cells.append({row, column, value});
    trends.WriteCells(cells);
}

void frmtabGrid::ShowCells() {
    const QString summary = CellBlock::Summary(tdbA->SplitAt(1), texts_);
    lblCells->setVisible(!summary.isEmpty());
    lblCells->setText(summary);
}
