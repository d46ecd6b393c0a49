#pragma once

#include <QList>
#include <QString>

#include "controls/GridColumn.h"
#include "project/Schema.h"
#include "texts/MResources.h"

/// The columns of trends as every grid shows them.
namespace TrendColumns {

/// Number format, caption, list of values and chooser of a column; `known` is null for one that is
/// no setting of a trend.
void SetUp(GridColumn& column, const project::Column* known, const MResources::TextTable& texts);

/// Fields of a trend in the order of their captions' numbers.
[[nodiscard]] QList<QString> Fields();

}  // namespace TrendColumns
