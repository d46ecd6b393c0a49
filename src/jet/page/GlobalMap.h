#pragma once

#include <algorithm>
#include <cstddef>

#include "jet/page/Bytes.h"

namespace jet {

/// Most pages of a file: it may have 2 GB.
inline constexpr std::uint32_t kMostPages = 524'288;

/// Sizes of the map of free pages, row 0 of page 1 (Jet 4). It has the form of every usage map, but
/// a set bit means that the page is free, and the bits of pages behind the end of the file are set.
/// Pages of which it does not speak are in use.
struct GlobalMap {
    static constexpr PageNo kPage{1};
    static constexpr std::size_t kRow = 0;
    static constexpr std::size_t kHead = 5;        // bytes in front of an inline map's bits
    static constexpr std::size_t kBitmapHead = 4;  // bytes in front of the bits of a bitmap page
    static constexpr std::uint32_t kPagesPerBitmap = (kPageSizeJet4 - kBitmapHead) * 8;
    /// Bytes of a list that reaches every page there can be.
    static constexpr std::size_t kListSize =
        1 + std::size_t{4} * ((kMostPages - 1) / kPagesPerBitmap + 1);
    /// Most pages of an inline map: what the page holds beside its head, its two slots, the other
    /// map's row and this map's head, in steps of four bytes.
    static constexpr std::uint32_t kMostInline = (kPageSizeJet4 - 14 - 2 * 2 - 69 - kHead) / 4 * 32;

    /// Bytes of an inline row.
    [[nodiscard]] static constexpr std::size_t RowSize(std::uint32_t pageCount) {
        return kHead + std::max<std::size_t>(64, 4 * ((std::size_t{pageCount} + 31) / 32));
    }
    static void FormatBitmap(MutableBytes page) {
        page[0] = std::byte{5};
        page[1] = std::byte{1};
        page[2] = page[3] = std::byte{0};
    }
};

}  // namespace jet
