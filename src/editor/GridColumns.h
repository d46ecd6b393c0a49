#pragma once

#include <QList>
#include <QString>

#include "ado/Connection.h"
#include "controls/GridSplit.h"
#include "editor/RecordsetModel.h"
#include "texts/MResources.h"

/// The columns of the grid's two splits: captions, formats, lists of values and choosers, and the
/// order of the trend columns as the settings keep it.
namespace GridColumns {

/// The columns of the archives that are shown.
[[nodiscard]] std::vector<RecordsetModel::Column> OfArchives();

void SetUpArchives(GridSplit& archives, const MResources::TextTable& texts);

/// Gives the columns of the trend split all that does not change with the rows. Those that are no
/// setting of a trend (keys and texts) are hidden; the others keep their visibility.
void SetUpTrends(GridSplit& trends, const MResources::TextTable& texts);

/// Shows the units that the trends' numbers of units stand for. A project without a table of units,
/// or with one that cannot be read, goes on showing the numbers.
void SetUpUnits(GridSplit& trends, ado::Connection& project);

/// Whether a column is one that users may show and hide; keys and the texts of other languages are
/// none.
[[nodiscard]] bool IsForUser(const GridColumn& column);

/// A column order as the settings hold it: a comma, so that it is taken for a text, then the
/// 0-based positions of all columns in the order shown, separated by commas.
[[nodiscard]] QString FormatOrders(const QList<int>& columns);
/// Numbers that cannot be positions among `count` columns, repeated ones and what is no number
/// are left out.
[[nodiscard]] QList<int> ParseOrders(QStringView text, int count);

}  // namespace GridColumns
