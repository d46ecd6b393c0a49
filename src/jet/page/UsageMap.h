#pragma once

#include <optional>

#include "jet/page/DataPage.h"

namespace jet {

/// A set of page numbers, stored as a row of a usage-map page.
///
///   +0  u8    0: inline            1: reference
///   +1  u32   page of the first    u32[]: numbers of bitmap pages, 0 = none; page i holds the
///             bit, then the bits   bits of its share of pages behind a header of four bytes
/// Read on demand: no list of the pages is made.
///
/// Bits of pages that lie behind the end of the file come in two kinds. Where the map of free pages
/// says that such a page is in use, or just behind the end, the file has been cut short. Bits far
/// behind that, which some programs leave, are nothing but left over; see IsLeftOver.
class UsageMap {
public:
    UsageMap() = default;
    /// An empty set for the pointer 0, which stands for "no map".
    [[nodiscard]] static Result<UsageMap> Open(PageCache& cache, Format format,
                                               std::uint32_t pointer);

    /// The lowest page of the set that is not below `from`. Fails when it lies behind the end of
    /// the file and is not left over.
    [[nodiscard]] Result<std::optional<PageNo>> Next(PageNo from);

    /// Where to go on after a failure of Next(): the first page that the next bitmap page speaks
    /// of. Empty when there is none.
    [[nodiscard]] std::optional<PageNo> BehindDamage() const;

    /// True when a bit for this page, in whatever map, means nothing.
    [[nodiscard]] static bool IsLeftOver(PageCache& cache, Format format, std::uint64_t page);

    /// The map's row as it is stored, at least five bytes; empty for "no map".
    [[nodiscard]] Bytes Stored() const { return row_; }

private:
    [[nodiscard]] static std::optional<std::uint64_t> NextBit(Bytes bits, std::uint64_t first,
                                                              std::uint64_t from);
    /// Pages that one bitmap page speaks of.
    [[nodiscard]] std::uint64_t Share() const;
    [[nodiscard]] Result<Bytes> BitmapPage(std::uint32_t index);
    /// The lowest page of the set that is not below `from`, wherever it lies.
    [[nodiscard]] Result<std::optional<std::uint64_t>> NextStored(std::uint64_t from);
    /// True when the bit is set or behind all that the map speaks of.
    [[nodiscard]] Result<bool> HoldsOrEndsBefore(std::uint64_t page);

    PageCache* cache_ = nullptr;
    Format format_ = Format::Jet4;
    DataPage page_;  // keeps row_ alive
    Bytes row_;
    PageRef bitmap_;             // reference maps: the bitmap page read last
    std::uint32_t reading_ = 0;  // its place among them
};

}  // namespace jet
