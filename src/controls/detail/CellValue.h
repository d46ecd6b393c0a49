#pragma once

#include <QString>

#include "controls/GridSource.h"

/// What can be typed into a cell; what it then means is for the source to say.
namespace cellvalue {

/// The characters that an editor of this kind lets through; empty: all.
[[nodiscard]] QString InputPattern(GridKind kind);

/// Whether an editor of this kind would let `typed` through.
[[nodiscard]] bool Accepts(const QString& typed, GridKind kind);

}  // namespace cellvalue
