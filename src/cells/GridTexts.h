#pragma once

#include <functional>
#include <QString>

#include "controls/GridText.h"
#include "texts/MResources.h"

/// What TDBGrid::SetTexts wants. `texts` is borrowed and outlives the grid.
[[nodiscard]] std::function<QString(GridText)> GridTexts(const MResources::TextTable& texts);
