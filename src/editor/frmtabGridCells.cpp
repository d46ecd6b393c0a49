// Several cells of the trends as one: filled down, counted on, pasted as a block, summed up.

#include <algorithm>
#include <optional>
#include <QLabel>
#include <QLocale>
#include <QScopedValueRollback>
#include <tuple>

#include "controls/TDBGrid.h"
#include "editor/frmtabGrid.h"
#include "editor/TabText.h"
#include "editor/TrendClipboard.h"
#include "editor/TrendRows.h"
#include "project/Counting.h"
#include "project/Number.h"
#include "projectdb/Text.h"
#include "records/MTrend.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

namespace {

/// What follows a value in a column that counts; nothing where it is none that can count.
std::optional<QVariant> Following(const QVariant& value, double step) {
    if (value.typeId() != QMetaType::QString) {
        if (!value.isValid()) return std::nullopt;
        return value.typeId() == QMetaType::Int ? QVariant(value.toInt() + static_cast<int>(step))
                                                : QVariant(value.toDouble() + step);
    }
    const auto text =
        project::CountOn(projectdb::ToUtf16(value.toString()), static_cast<std::int64_t>(step));
    if (!text) return std::nullopt;
    return projectdb::ToQString(*text);
}

/// By how much a column grows that begins with two values; 1 where they do not say.
double StepOf(const QVariant& first, const QVariant& second) {
    if (first.typeId() == QMetaType::QString && second.typeId() == QMetaType::QString) {
        return static_cast<double>(project::StepBetween(projectdb::ToUtf16(first.toString()),
                                                        projectdb::ToUtf16(second.toString()))
                                       .value_or(1));
    }
    const double step = second.toDouble() - first.toDouble();
    return second.isValid() && step != 0 ? step : 1;
}

}  // namespace

/// The selected cells get what stands in the first of their column; `counting`: each what follows
/// the one above it.
void frmtabGrid::FillDown(bool counting) {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!MayStore()) return;
    const QScopedValueRollback busy(busy_, true);
    if (!CommitPendingEdit()) return;
    GridSplit& trends = tdbA->SplitAt(1);
    const GridSplit::Cells selected = trends.SelectedCells();
    if (selected.rows.size() < 2) return Hint(MResourceTable::kTextHintNoCells);
    const auto stored = [&](qsizetype row, int column) {
        return RecordsetModel::Exact(
            trends_->ValueAt(trends_->RowOf(selected.rows.at(row)), column));
    };
    QList<GridCell> cells;
    for (const int column : selected.columns) {
        QVariant value = stored(0, column);
        const bool counts = counting && trends.ColumnAt(column)->ValueItems().isEmpty() &&
                            trends.ColumnAt(column)->Kind() != GridKind::Colour;
        const double step = counts ? StepOf(value, stored(1, column)) : 0;
        for (qsizetype row = 1; row < selected.rows.size(); ++row) {
            if (!trends.CanEdit(selected.rows[row], column)) {
                return Hint(MResourceTable::kTextHintCellLocked);
            }
            if (counts) {
                const auto next = Following(value, step);
                if (!next) {
                    return Hint(texts_.GetText(
                        MResourceTable::kTextHintNoCounting,
                        {{u"column", trends.ColumnAt(column)->Caption()},
                         {u"text", trends.CellText(selected.rows.front(), column)}}));
                }
                value = *next;
            }
            cells.append({selected.rows[row], column, value});
        }
    }
    trends.WriteCells(cells);
}

/// All trends that are selected, in one dialog.
void frmtabGrid::EditSelected() {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!MayStore()) return;
    const QScopedValueRollback busy(busy_, true);
    if (!CommitPendingEdit()) return;
    if (!IsThere(project_.currentNodeKey)) return;
    GridSplit& trends = tdbA->SplitAt(1);
    const QList<GridRowId> ids = trends.SelectedCells().rows;
    if (ids.size() < 2) return Hint(MResourceTable::kTextHintNoCells);
    MTrend::Many many;
    many.count = static_cast<std::size_t>(ids.size());
    many.differs = [&](std::string_view field) {
        const int column = trends_->ColumnOf(field);
        const ado::Value& first = trends_->ValueAt(trends_->RowOf(ids.front()), column);
        return std::any_of(ids.begin(), ids.end(), [&](GridRowId id) {
            return trends_->ValueAt(trends_->RowOf(id), column) != first;
        });
    };
    many.store = [&](const MTrend::Values& values) {
        QList<GridCell> cells;
        for (const GridRowId id : ids) {
            for (const auto& [field, value] : values) {
                cells.append({id, trends_->ColumnOf(field), RecordsetModel::Exact(value)});
            }
        }
        return trends.WriteCells(cells);
    };
    DialogServices services = Services();
    services.drafts = nullptr;  // what would be kept is several rows' and finds no way back
    trends_->MoveTo(trends_->RowOf(ids.front()));
    std::ignore =
        MTrend::EditTrends(project_.Environment().Recordset(ADOArchiv::Command::tabTrends), many,
                           CurrentLcid(), services, this);
}

/// Lays a block of cells over those that are shown, from the first of the selected ones on. One
/// line goes into each of the selected rows.
void frmtabGrid::PasteBlock(const QList<QStringList>& lines) {
    GridSplit& trends = tdbA->SplitAt(1);
    const GridSplit::Cells selected = trends.SelectedCells();
    if (selected.rows.isEmpty()) return Hint(MResourceTable::kTextHintCellLocked);
    QList<GridRowId> rows = selected.rows;
    if (lines.size() > 1) {
        const QList<GridRowId> shown = trends.ShownRows();
        rows = shown.mid(shown.indexOf(selected.rows.front()), lines.size());
    }
    const QList<int> shownColumns = trends.ShownColumns();
    const QList<int> columns = shownColumns.mid(shownColumns.indexOf(selected.columns.front()));
    const auto widest =
        std::max_element(lines.begin(), lines.end(),
                         [](const auto& a, const auto& b) { return a.size() < b.size(); });
    if (rows.size() < lines.size() || columns.size() < widest->size()) {
        return Tell(texts_.GetText(MResourceTable::kTextPasteNoRoom,
                                   {{u"rows", QString::number(lines.size())},
                                    {u"columns", QString::number(widest->size())}}));
    }
    const TrendClipboard::Reader reader{trends, *trends_, texts_, QLocale()};
    QList<GridCell> cells;
    for (qsizetype row = 0; row < rows.size(); ++row) {
        const qsizetype from = lines.size() > 1 ? row : 0;
        for (qsizetype i = 0; i < lines[from].size(); ++i) {
            const auto value = TrendClipboard::ReadCell(lines[from][i], columns[i], reader);
            const QString& caption = trends.ColumnAt(columns[i])->Caption();
            if (!value || !trends.CanEdit(rows[row], columns[i])) {
                return Tell(TrendClipboard::Refusal(texts_, static_cast<std::size_t>(from + 1),
                                                    caption, lines[from][i]));
            }
            cells.append({rows[row], columns[i], RecordsetModel::Stored(*value)});
        }
    }
    trends.WriteCells(cells);
}

/// Gives the selected cells of a column the same value, as a chooser does.
void frmtabGrid::WriteColumn(int column, const QVariant& value) {
    GridSplit& trends = tdbA->SplitAt(1);
    QList<GridCell> cells;
    for (const GridRowId row : trends.SelectedCells().rows) cells.append({row, column, value});
    trends.WriteCells(cells);
}

/// How many cells are selected, and what their numbers come to.
void frmtabGrid::ShowCells() {
    const GridSplit& trends = tdbA->SplitAt(1);
    const GridSplit::Cells selected = trends.SelectedCells();
    lblCells->setVisible(selected.Count() > 1);
    if (selected.Count() < 2) return;
    qsizetype numbers = 0;
    double smallest = 0;
    double largest = 0;
    double sum = 0;
    for (const int column : selected.columns) {
        const GridColumn& shown = *trends.ColumnAt(column);
        if (!shown.ValueItems().isEmpty() || shown.Kind() == GridKind::Colour) continue;
        for (const GridRowId row : selected.rows) {
            const QModelIndex cell = trends_->index(trends_->RowOf(row), column);
            const QVariant number = shown.Kind() == GridKind::Text ? cell.data(GridRole::kNumber)
                                                                   : cell.data(GridRole::kStored);
            if (!number.isValid()) continue;
            const double value = number.toDouble();
            smallest = numbers == 0 ? value : std::min(smallest, value);
            largest = numbers == 0 ? value : std::max(largest, value);
            sum += value;
            ++numbers;
        }
    }
    const QLocale locale;
    const auto text = [&](double value) {
        return numbers == 0 ? QString()
                            : projectdb::ToQString(project::FormatNumber(
                                  value, locale.decimalPoint().front().unicode()));
    };
    lblCells->setText(
        texts_.GetText(MResourceTable::kTextCells, {{u"n", locale.toString(selected.Count())},
                                                    {u"min", text(smallest)},
                                                    {u"max", text(largest)},
                                                    {u"sum", text(sum)}}));
}
