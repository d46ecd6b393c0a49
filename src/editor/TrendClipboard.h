#pragma once

#include <optional>
#include <QLocale>
#include <QString>
#include <vector>

#include "controls/GridSplit.h"
#include "editor/PasteCommands.h"
#include "editor/TrendRows.h"

/// Trends as text for and from the clipboard: a line of headings, then a line for each trend, cells
/// separated by tabs, as spreadsheets give and take them.
namespace TrendClipboard {

/// The rows with the columns that are shown, in the order shown.
[[nodiscard]] QString Copy(const GridSplit& trends, const QList<GridRowId>& rows);

struct Pasted {
    std::vector<PastedTrend> trends;
    QString refusal;  // not empty: what is wrong, in words; nothing may be pasted then
};

/// nullopt: the text is a single cell. Otherwise its first line holds headings, in any order:
/// captions of the grid's columns or names of fields. Listed values are read by their texts or
/// their codes.
[[nodiscard]] std::optional<Pasted> Parse(const QString& text, const GridSplit& trends,
                                          const TrendRows& rows, const QLocale& locale,
                                          const MResources::TextTable& texts);

/// One cell of a column; nullopt when the text is no value for it.
[[nodiscard]] std::optional<ado::Value> ReadCell(const QString& text, const GridColumn& column,
                                                 const ado::Field& field, const QLocale& locale,
                                                 const MResources::TextTable& texts);
/// Says which cell is no valid value. Rows count from 1.
[[nodiscard]] QString Refusal(const MResources::TextTable& texts, qsizetype row,
                              const QString& column, const QString& cell);

}  // namespace TrendClipboard
