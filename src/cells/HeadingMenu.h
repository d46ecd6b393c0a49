#pragma once

#include <functional>

#include "controls/GridSplit.h"
#include "texts/MResources.h"

class QMenu;

/// The menu of a heading: order of the rows, which columns are shown, how wide they are, and which
/// stay in view when scrolling sideways. What it changes is the grid's own, as if done by mouse.
namespace HeadingMenu {

/// Whether a hidden column is offered.
using IsForUser = std::function<bool(const GridColumn& column)>;

/// Adds the commands for a column of the split, or with -1 those for all columns. Split and texts
/// are borrowed and outlive the menu.
void Fill(QMenu& menu, GridSplit& split, int column, const MResources::TextTable& texts,
          const IsForUser& isForUser);

}  // namespace HeadingMenu
