#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "jet/page/Bytes.h"

namespace jet {

/// The row of a new usage map, see UsageMap: inline, empty or with one page. Other programs make
/// rows of this size too.
[[nodiscard]] inline std::array<std::byte, 69> NewUsageMapRow(std::optional<PageNo> page) {
    constexpr std::size_t kHead = 5;
    std::array<std::byte, 69> row{};
    if (!page) return row;
    const std::uint32_t start = Raw(*page) < 8 * (row.size() - kHead) ? 0 : Raw(*page) / 8 * 8;
    const std::uint32_t bit = Raw(*page) - start;
    StoreU32(row, 1, start);
    row[kHead + bit / 8] = static_cast<std::byte>(1U << bit % 8);
    return row;
}

}  // namespace jet
