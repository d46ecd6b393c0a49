#pragma once

#include <QPalette>

/// The palette of a field or drop-down in a dialog with the palette `dialog`: usable fields lie on
/// the colour of a window (role Base), others on that of a button's face (role Button). Where a
/// desktop's colours are alike the second is shifted until the eye tells them apart.
[[nodiscard]] QPalette FieldPalette(const QPalette& dialog, bool usable);
