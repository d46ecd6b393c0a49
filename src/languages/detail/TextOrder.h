#pragma once

#include <algorithm>
#include <span>

#include "languages/MResourceTable.h"

namespace MResourceTable::detail {

/// Whether each number stands once and the numbers ascend; for static_assert beside the tables.
constexpr bool IsAscending(std::span<const Entry> entries) {
    return std::ranges::adjacent_find(entries, std::ranges::greater_equal(), &Entry::id) ==
           entries.end();
}

}  // namespace MResourceTable::detail
