#pragma once

#include <functional>
#include <QVariant>

#include "controls/GridSplit.h"
#include "texts/MResources.h"

/// Opens the palette of a colour selector that stands over the current cell until it closes.
/// `stored`: what the cell holds; `chosen` hears of what the user picks. `texts` is borrowed.
void ChooseCellColour(const GridSplit& split, const QVariant& stored,
                      const MResources::TextTable& texts, const std::function<void(int)>& chosen);
