#include "editor/TrendClipboard.h"

#include <algorithm>

#include "cells/CellBlock.h"
#include "cells/CellInput.h"
#include "cells/CellText.h"
#include "cells/TabText.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace TrendClipboard {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kWholeTrends = u"application/x-korvala-trends"_s;

/// The column with this heading; -1 when there is none that a new trend can be given.
int ColumnOf(const QString& heading, const Reader& reader) {
    for (int column = 0; column < reader.trends.ColumnCount(); ++column) {
        if (!reader.rows.IsSetting(column) && !reader.rows.IsLanguage(column)) continue;
        const GridColumn* known = reader.trends.ColumnAt(column);
        if (heading.compare(known->Caption(), Qt::CaseInsensitive) == 0 ||
            heading.compare(known->DataField(), Qt::CaseInsensitive) == 0) {
            return column;
        }
    }
    return -1;
}

/// Takes one cell into the trend; false when it is no value. An empty one has the default, unless
/// it is a stored Null.
bool TakeCell(const QString& cell, int column, const Reader& reader, project::NewTrend& trend) {
    if (cell.isEmpty() && !reader.asStored) return true;
    const bool isName = reader.trends.ColumnAt(column)->DataField() == u"Name"_s;
    const std::optional<ado::Value> value =
        cell.isEmpty() ? ado::Value(ado::Null())
                       : ReadCell(isName ? cell.trimmed() : cell, column, reader);
    if (!value) return false;
    if (isName) {
        trend.name = projectdb::ToUtf16(cell.trimmed());
    } else {
        project::Values& values = reader.rows.IsLanguage(column) ? trend.texts : trend.values;
        values.emplace_back(reader.rows.FieldAt(column).baseColumn, *value);
    }
    return true;
}

/// What is wrong with the headings, in words; fills `columns` when nothing is.
QString ReadHeadings(const QStringList& headings, const Reader& reader, QList<int>& columns) {
    QString unknown;
    for (const QString& heading : headings) {
        columns.append(ColumnOf(heading.trimmed(), reader));
        if (columns.back() < 0 && unknown.isNull()) unknown = heading;
    }
    if (!columns.contains(-1)) return {};
    return reader.texts.GetText(MResourceTable::kTextPasteUnknownColumn, {{u"column", unknown}});
}

bool IsBlank(const QStringList& line) {
    return std::all_of(line.begin(), line.end(),
                       [](const QString& cell) { return cell.isEmpty(); });
}

}  // namespace

std::optional<ado::Value> ReadCell(const QString& text, int column, const Reader& reader) {
    const project::Reading read =
        CellInput(text, reader.rows.FieldAt(column), reader.locale, reader.texts, reader.asStored);
    if (read.problem != project::Problem::None) return std::nullopt;
    return read.value;
}

QString Copy(const GridSplit& split, const QList<GridRowId>& rows) {
    QList<int> columns;
    QList<QStringList> lines{{}};
    for (const int column : split.ColumnOrders()) {
        if (!split.ColumnAt(column)->Visible()) continue;
        columns.append(column);
        lines[0].append(split.ColumnAt(column)->Caption());
    }
    for (const GridRowId row : rows) {
        QStringList line;
        for (const int column : columns) line.append(split.CellText(row, column));
        lines.append(line);
    }
    return TabText::Format(lines);
}

std::unique_ptr<QMimeData> CopyTrends(const GridSplit& trends, const TrendRows& rows,
                                      const MResources::TextTable& texts,
                                      const QList<GridRowId>& ids) {
    QList<int> columns;
    QList<QStringList> lines{{}};
    for (int column = 0; column < trends.ColumnCount(); ++column) {
        if (!rows.IsSetting(column) && !rows.IsLanguage(column)) continue;
        columns.append(column);
        lines[0].append(trends.ColumnAt(column)->DataField());
    }
    for (const GridRowId id : ids) {
        const int row = rows.RowOf(id);
        if (row < 0) continue;
        QStringList line;
        for (const int column : columns) {
            line.append(WholeText(rows.ValueAt(row, column), texts));
        }
        lines.append(line);
    }
    auto data = std::make_unique<QMimeData>();
    data->setText(Copy(trends, ids));
    data->setData(kWholeTrends, TabText::Format(lines).toUtf8());
    return data;
}

std::optional<Pasted> Parse(const QMimeData& data, const Reader& reader) {
    if (!data.hasFormat(kWholeTrends)) return Parse(data.text(), reader);
    Reader neutral{reader};
    neutral.locale = QLocale::c();
    neutral.asStored = true;
    auto pasted = Parse(QString::fromUtf8(data.data(kWholeTrends)), neutral);
    if (pasted) pasted->isWhole = true;
    return pasted;
}

std::optional<Pasted> Parse(const QString& text, const Reader& reader) {
    const QList<QStringList> lines = TabText::Parse(text);
    if (lines.isEmpty() || (lines.size() == 1 && lines[0].size() == 1)) return std::nullopt;

    Pasted pasted;
    QList<int> columns;
    pasted.refusal = ReadHeadings(lines[0], reader, columns);
    pasted.isBlock = columns.count(-1) == columns.size();
    if (pasted.isBlock) return pasted;
    if (pasted.refusal.isEmpty() && lines.size() == 1) {
        pasted.refusal = reader.texts.GetText(MResourceTable::kTextPasteNoHeadings);
    }
    if (!pasted.refusal.isEmpty()) return pasted;
    for (qsizetype row = 1; row < lines.size(); ++row) {
        if (IsBlank(lines[row])) continue;
        project::NewTrend trend;
        for (qsizetype i = 0; i < lines[row].size(); ++i) {
            const QString& cell = lines[row][i];
            const bool headed = i < columns.size();
            if (!headed && cell.isEmpty()) continue;
            if (headed && TakeCell(cell, columns[i], reader, trend)) continue;
            pasted.refusal = CellBlock::PasteRefusal(
                row,
                headed ? reader.trends.ColumnAt(columns[i])->Caption() : QString::number(i + 1),
                cell, reader.texts);
            return pasted;
        }
        pasted.trends.push_back(std::move(trend));
    }
    return pasted;
}

QString SingleCell(const QString& text) {
    const QList<QStringList> lines = TabText::Parse(text);
    return lines.size() == 1 && lines[0].size() == 1 ? lines[0][0] : QString();
}

}  // namespace TrendClipboard
