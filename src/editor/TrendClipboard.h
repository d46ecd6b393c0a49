#pragma once

#include <memory>
#include <optional>
#include <QLocale>
#include <QMimeData>
#include <QString>
#include <vector>

#include "commands/PasteCommands.h"
#include "controls/GridSplit.h"
#include "editor/TrendRows.h"

/// Trends for and from the clipboard, as text: a line of headings, then a line for each trend,
/// cells separated by tabs, as spreadsheets give and take them. What the editor copies for itself
/// lies beside it in a format of its own.
namespace TrendClipboard {

/// The rows with the columns that are shown, in the order shown.
[[nodiscard]] QString Copy(const GridSplit& split, const QList<GridRowId>& rows);
/// That text, and the whole trends for the editor itself: hidden settings and the texts in all
/// languages, values whatever the locale.
[[nodiscard]] std::unique_ptr<QMimeData> CopyTrends(const GridSplit& trends, const TrendRows& rows,
                                                    const MResources::TextTable& texts,
                                                    const QList<GridRowId>& ids);

struct Pasted {
    std::vector<project::NewTrend> trends;
    QString refusal;       // not empty: what is wrong, in words; nothing may be pasted then
    bool isWhole = false;  // the editor's own copy, of which new trends are meant
    bool isBlock = false;  // cells without headings, for rows that are there; no trends then
};

/// What is needed to read cells; borrowed. `locale`: how numbers and dates are written. `asStored`:
/// the cells are stored values.
struct Reader {
    const GridSplit& trends;
    const TrendRows& rows;
    const MResources::TextTable& texts;
    QLocale locale;
    bool asStored = false;
};

/// nullopt: the clipboard holds a single cell. Otherwise the first line of its text holds headings,
/// in any order: captions of the grid's columns or names of fields; where none of them is one the
/// cells are a block. Listed values are read by their
/// texts or their codes. Lines without anything are no trends.
[[nodiscard]] std::optional<Pasted> Parse(const QMimeData& data, const Reader& reader);
[[nodiscard]] std::optional<Pasted> Parse(const QString& text, const Reader& reader);

/// One cell of a column; nullopt when the text is no value for it.
[[nodiscard]] std::optional<ado::Value> ReadCell(const QString& text, int column,
                                                 const Reader& reader);

/// The text of a single cell as spreadsheets give it, without quotes and line end.
[[nodiscard]] QString SingleCell(const QString& text);

}  // namespace TrendClipboard
