#pragma once

#include <optional>

#include "ado/Value.h"

namespace ado {

/// The order of two numbers, digit by digit: -1, 0 or 1. For amounts and decimals, of which a
/// double does not tell great ones apart. A double counts as the shortest number that names it.
/// Nothing when one of them is no number in plain digits.
[[nodiscard]] std::optional<int> OrderOfDigits(const Value& a, const Value& b);

}  // namespace ado
