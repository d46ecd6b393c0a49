#pragma once

#include <vector>

#include "ado/Recordset.h"
#include "editor/RecordsetModel.h"

/// Which columns the two splits of the grid show, in which order, and their captions.
namespace GridColumns {

[[nodiscard]] std::vector<RecordsetModel::Column> OfArchives(const MResources::TextTable& texts);

/// The trend's name, its texts in the project's languages (as many as `trends` has), then the
/// trend's own columns.
[[nodiscard]] std::vector<RecordsetModel::Column> OfTrends(const ado::Recordset& trends,
                                                           const MResources::TextTable& texts);

}  // namespace GridColumns
