#include "cells/CellBlock.h"

#include <algorithm>
#include <cstdint>
#include <QLocale>

#include "cells/TabText.h"
#include "project/Counting.h"
#include "project/Number.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace CellBlock {
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

QVariant ExactAt(const GridSplit& split, GridRowId row, int column) {
    const GridSource& source = *split.Source();
    return source.index(source.RowOf(row), column).data(GridRole::kExact);
}

Result Hint(QString text) {
    return {{}, std::move(text), {}};
}

}  // namespace

Result FillDown(const GridSplit& split, bool counting, const MResources::TextTable& texts,
                int sources) {
    const GridSplit::Cells selected = split.SelectedCells();
    const qsizetype given = std::max(sources, 1);
    if (selected.rows.size() <= given) return Hint(texts.GetText(MResourceTable::kTextHintNoCells));
    Result result;
    for (const int column : selected.columns) {
        const GridColumn& shown = *split.ColumnAt(column);
        QVariant value = ExactAt(split, selected.rows[given - 1], column);
        const bool counts =
            counting && shown.ValueItems().isEmpty() && shown.Kind() != GridKind::Colour;
        const double step = counts && sources != 1
                                ? StepOf(ExactAt(split, selected.rows[0], column),
                                         ExactAt(split, selected.rows[1], column))
                                : 1;
        for (qsizetype row = given; row < selected.rows.size(); ++row) {
            if (!split.CanEdit(selected.rows[row], column)) {
                return Hint(texts.GetText(MResourceTable::kTextHintCellLocked));
            }
            if (counts) {
                const auto next = Following(value, step);
                if (!next) {
                    return Hint(
                        texts.GetText(MResourceTable::kTextHintNoCounting,
                                      {{u"column", shown.Caption()},
                                       {u"text", split.CellText(selected.rows.front(), column)}}));
                }
                value = *next;
            } else {
                value = ExactAt(split, selected.rows[row % given], column);
            }
            result.cells.append({selected.rows[row], column, value});
        }
    }
    return result;
}

Result Paste(const GridSplit& split, const QList<QStringList>& lines, const Reader& read,
             const MResources::TextTable& texts) {
    const GridSplit::Cells selected = split.SelectedCells();
    if (selected.rows.isEmpty()) return Hint(texts.GetText(MResourceTable::kTextHintCellLocked));
    const bool isSingle = lines.size() == 1 && lines.front().size() == 1;
    QList<GridRowId> rows = selected.rows;
    if (lines.size() > 1) {
        const QList<GridRowId> shown = split.ShownRows();
        rows = shown.mid(shown.indexOf(selected.rows.front()), lines.size());
    }
    const QList<int> shownColumns = split.ShownColumns();
    const QList<int> columns =
        isSingle ? selected.columns
                 : shownColumns.mid(shownColumns.indexOf(selected.columns.front()));
    const auto widest =
        std::max_element(lines.begin(), lines.end(),
                         [](const auto& a, const auto& b) { return a.size() < b.size(); });
    if (rows.size() < lines.size() || columns.size() < widest->size()) {
        return {{},
                {},
                texts.GetText(MResourceTable::kTextPasteNoRoom,
                              {{u"rows", QString::number(lines.size())},
                               {u"columns", QString::number(widest->size())}})};
    }
    Result result;
    for (qsizetype row = 0; row < rows.size(); ++row) {
        const qsizetype from = lines.size() > 1 ? row : 0;
        const qsizetype width = isSingle ? columns.size() : lines[from].size();
        for (qsizetype i = 0; i < width; ++i) {
            const QString& text = lines[from][isSingle ? 0 : i];
            const auto value = read(text, columns[i]);
            if (!split.CanEdit(rows[row], columns[i]) && isSingle) {
                return Hint(texts.GetText(MResourceTable::kTextHintCellLocked));
            }
            if (!value || !split.CanEdit(rows[row], columns[i])) {
                return {{},
                        {},
                        PasteRefusal(from + 1, split.ColumnAt(columns[i])->Caption(), text, texts)};
            }
            result.cells.append({rows[row], columns[i], *value});
        }
    }
    return result;
}

QString Copy(const GridSplit& split) {
    const GridSplit::Cells selected = split.SelectedCells();
    if (selected.rows.isEmpty()) return {};
    const bool areRows = !split.SelectedRows().isEmpty() && !split.AreCellsSelected();
    if (!areRows && selected.Count() == 1) {
        return split.CellText(selected.rows.front(), selected.columns.front());
    }
    const QList<int> columns = areRows ? split.ShownColumns() : selected.columns;
    QList<QStringList> lines;
    if (areRows) {
        lines.append(QStringList());
        for (const int column : columns) lines[0].append(split.ColumnAt(column)->Caption());
    }
    for (const GridRowId row : selected.rows) {
        QStringList line;
        for (const int column : columns) line.append(split.CellText(row, column));
        lines.append(line);
    }
    return TabText::Format(lines);
}

QString PasteRefusal(qsizetype line, const QString& column, const QString& cell,
                     const MResources::TextTable& texts) {
    return texts.GetText(MResourceTable::kTextPasteInvalid,
                         {{u"row", QString::number(line)}, {u"column", column}, {u"text", cell}});
}

QString Summary(const GridSplit& split, const MResources::TextTable& texts) {
    const GridSplit::Cells selected = split.SelectedCells();
    if (selected.Count() < 2) return {};
    const GridSource& source = *split.Source();
    qsizetype numbers = 0;
    double smallest = 0;
    double largest = 0;
    double sum = 0;
    for (const int column : selected.columns) {
        const GridColumn& shown = *split.ColumnAt(column);
        if (!shown.ValueItems().isEmpty() || shown.Kind() == GridKind::Colour) continue;
        for (const GridRowId row : selected.rows) {
            const QModelIndex cell = source.index(source.RowOf(row), column);
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
    return texts.GetText(MResourceTable::kTextCells, {{u"n", locale.toString(selected.Count())},
                                                      {u"min", text(smallest)},
                                                      {u"max", text(largest)},
                                                      {u"sum", text(sum)}});
}

}  // namespace CellBlock
