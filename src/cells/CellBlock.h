#pragma once

#include <functional>
#include <optional>
#include <QList>
#include <QString>
#include <QStringList>

#include "controls/GridSplit.h"
#include "texts/MResources.h"

/// Several cells of a grid as one: filled down, pasted as a block, summed up. What comes out is to
/// be handed to GridSplit::WriteCells.
namespace CellBlock {

struct Result {
    QList<GridCell> cells;
    QString hint{};     // why there are none; to be said in passing
    QString refusal{};  // why there are none; to be told
};

/// The selected cells get what stands in the first rows of them, `sources` of them over and over;
/// `counting`: each what follows the one above it, by the step from the first source to the second,
/// else 1. 0: what stands in the first row, and a step that the first two show.
[[nodiscard]] Result FillDown(const GridSplit& split, bool counting,
                              const MResources::TextTable& texts, int sources = 0);

/// What a text means in a column; nothing where it is no value for it.
using Reader = std::function<std::optional<QVariant>(const QString& text, int column)>;

/// A single cell goes into all selected ones, a block over those that are shown, from the first
/// of the selected ones on. A single line goes into each of the selected rows. REQUIRES: `lines`
/// holds a cell.
[[nodiscard]] Result Paste(const GridSplit& split, const QList<QStringList>& lines,
                           const Reader& read, const MResources::TextTable& texts);

/// The selected cells as text for the clipboard: with their headings where rows are selected as
/// such. Null: there are none.
[[nodiscard]] QString Copy(const GridSplit& split);

/// How many cells are selected, and what their numbers come to; empty for a single one.
[[nodiscard]] QString Summary(const GridSplit& split, const MResources::TextTable& texts);

/// What is told of a pasted cell that is no value for its column; `line` counts from 1.
[[nodiscard]] QString PasteRefusal(qsizetype line, const QString& column, const QString& cell,
                                   const MResources::TextTable& texts);

}  // namespace CellBlock
