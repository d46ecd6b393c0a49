// Several cells of a GridSplit as one: which they are, and writing them.

#include <algorithm>
#include <QApplication>
#include <QScopedValueRollback>

#include "controls/detail/CellEdit.h"
#include "controls/detail/ColumnLayout.h"
#include "controls/detail/GridRows.h"
#include "controls/detail/GridView.h"
#include "controls/GridSplit.h"

QList<int> GridSplit::ShownColumns() const {
    QList<int> columns;
    for (const int column : layout_->Shown()) {
        if (!view_.isColumnHidden(column)) columns.append(column);
    }
    return columns;
}

GridSplit::Cells GridSplit::SelectedCells() const {
    const QModelIndex current = view_.currentIndex();
    if (!current.isValid()) return {};
    if (!view_.IsRowSelected(current.row())) {
        return {{rows_->IdAt(current.row())}, {current.column()}};
    }
    Cells cells{view_.SelectedRowIds(), {}};
    for (const int column : ShownColumns()) {
        if (view_.InColumnRange(column)) cells.columns.append(column);
    }
    return cells;
}

bool GridSplit::AreCellsSelected() const {
    const QModelIndex current = view_.currentIndex();
    return current.isValid() && view_.IsRowSelected(current.row()) && !view_.SelectsWholeRows();
}

bool GridSplit::WriteCells(const QList<GridCell>& cells) {
    GridSource* source = rows_->Source();
    if (source == nullptr || storing_ || cells.isEmpty()) return false;
    GridCommit commit;
    {
        const QScopedValueRollback storing(storing_, true);
        commit = source->CommitCells(cells);
    }
    if (!Report(commit, cells.front().row, cells.front().column)) return false;
    emit AfterColUpdate(cells.front().row, cells.front().column);
    return true;
}

void GridSplit::ClearCells() {
    const Cells selected = SelectedCells();
    QList<GridCell> cells;
    for (const GridRowId row : selected.rows) {
        const int place = rows_->RowOf(row);
        for (const int column : selected.columns) {
            // A list accepts its own values only, and nothing is none of them.
            if (!CanEdit(row, column) || !ColumnAt(column)->ValueItems().isEmpty()) continue;
            const QVariant stored = rows_->index(place, column).data(GridRole::kStored);
            if (stored.isValid() && !stored.isNull()) cells.append({row, column, {}});
        }
    }
    WriteCells(cells);
}

std::optional<QList<GridCell>> GridSplit::CellsWith(const QString& text) {
    const Cells selected = SelectedCells();
    QList<GridCell> cells;
    for (const int column : selected.columns) {
        const std::optional<QVariant> value = Source()->ReadCell(column, text);
        const bool locked = std::any_of(selected.rows.begin(), selected.rows.end(),
                                        [&](GridRowId row) { return !CanEdit(row, column); });
        if (!value || locked) {
            emit TextRefused(column, text);
            return std::nullopt;
        }
        for (const GridRowId row : selected.rows) cells.append({row, column, *value});
    }
    return cells;
}
