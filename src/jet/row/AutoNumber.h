#pragma once

#include <cstdint>
#include <limits>

namespace jet {

/// True for a number that leaves fewer than a million behind it. No table gets there by counting:
/// such a number has been assigned, or comes from damage.
[[nodiscard]] constexpr bool IsNearLastAutoNumber(std::int32_t number) {
    constexpr std::int32_t kMargin = 1'000'000;
    return number < 0 || number > std::numeric_limits<std::int32_t>::max() - kMargin;
}

}  // namespace jet
