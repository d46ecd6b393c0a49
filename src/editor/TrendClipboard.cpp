#include "editor/TrendClipboard.h"

#include "editor/CellInput.h"
#include "editor/TabText.h"
#include "languages/MResourceTable.h"
#include "projectdb/Text.h"

namespace TrendClipboard {
namespace {

using namespace Qt::Literals::StringLiterals;

QList<int> ShownColumns(const GridSplit& trends) {
    QList<int> columns;
    for (const int column : trends.ColumnOrders()) {
        if (trends.ColumnAt(column)->Visible()) columns.append(column);
    }
    return columns;
}

/// The column with this heading; -1 when there is none that a new trend can be given.
int ColumnOf(const QString& heading, const GridSplit& trends, const TrendRows& rows) {
    for (int column = 0; column < trends.ColumnCount(); ++column) {
        if (!rows.Columns()[static_cast<std::size_t>(column)].editable) continue;
        const GridColumn* known = trends.ColumnAt(column);
        if (heading.compare(known->Caption(), Qt::CaseInsensitive) == 0 ||
            heading.compare(known->DataField(), Qt::CaseInsensitive) == 0) {
            return column;
        }
    }
    return -1;
}

}  // namespace

std::optional<ado::Value> ReadCell(const QString& text, const GridColumn& column,
                                   const ado::Field& field, const QLocale& locale,
                                   const MResources::TextTable& texts) {
    for (const GridValueItem& item : column.ValueItems()) {
        if (text.compare(item.text, Qt::CaseInsensitive) == 0) return ado::Value(item.code);
    }
    return CellInput(text, field, locale, texts);
}

QString Refusal(const MResources::TextTable& texts, qsizetype row, const QString& column,
                const QString& cell) {
    QString text = texts.GetText(MResourceTable::kTextPasteInvalid);
    text.replace(u"<row>"_s, QString::number(row));
    text.replace(u"<column>"_s, column);
    return text.replace(u"<text>"_s, cell);
}

QString Copy(const GridSplit& trends, const QList<GridRowId>& rows) {
    const QList<int> columns = ShownColumns(trends);
    QList<QStringList> lines{{}};
    for (const int column : columns) lines[0].append(trends.ColumnAt(column)->Caption());
    for (const GridRowId row : rows) {
        QStringList line;
        for (const int column : columns) line.append(trends.CellText(row, column));
        lines.append(line);
    }
    return TabText::Format(lines);
}

std::optional<Pasted> Parse(const QString& text, const GridSplit& trends, const TrendRows& rows,
                            const QLocale& locale, const MResources::TextTable& texts) {
    const QList<QStringList> lines = TabText::Parse(text);
    if (lines.isEmpty() || (lines.size() == 1 && lines[0].size() == 1)) return std::nullopt;

    Pasted pasted;
    QList<int> columns;
    QString unknown;
    for (const QString& heading : lines[0]) {
        columns.append(ColumnOf(heading.trimmed(), trends, rows));
        if (columns.back() < 0 && unknown.isEmpty()) unknown = heading;
    }
    if (columns.count(-1) == columns.size() || lines.size() == 1) {
        pasted.refusal = texts.GetText(MResourceTable::kTextPasteNoHeadings);
        return pasted;
    }
    if (columns.contains(-1)) {
        pasted.refusal =
            texts.GetText(MResourceTable::kTextPasteUnknownColumn).replace(u"<column>"_s, unknown);
        return pasted;
    }
    for (qsizetype row = 1; row < lines.size(); ++row) {
        PastedTrend trend;
        for (qsizetype i = 0; i < lines[row].size(); ++i) {
            const QString& cell = lines[row][i];
            if (i >= columns.size()) {
                pasted.refusal = Refusal(texts, row, QString::number(i + 1), cell);
                return pasted;
            }
            const GridColumn& column = *trends.ColumnAt(columns[i]);
            const std::optional<ado::Value> value =
                ReadCell(cell, column, rows.FieldAt(columns[i]), locale, texts);
            if (!value) {
                pasted.refusal = Refusal(texts, row, column.Caption(), cell);
                return pasted;
            }
            if (column.DataField() == u"Name"_s) {
                trend.name = cell.trimmed();
            } else if (!ado::IsNull(*value)) {
                trend.values.emplace_back(projectdb::ToUtf8(column.DataField()), *value);
            }
        }
        pasted.trends.push_back(std::move(trend));
    }
    return pasted;
}

}  // namespace TrendClipboard
