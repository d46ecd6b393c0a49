#pragma once

#include "controls/KVColorSelect.h"

namespace MResources {
class TextTable;
}

/// The words of a colour selector in the interface language.
[[nodiscard]] ColorTexts ColourTexts(const MResources::TextTable& texts);
