#pragma once

#include <optional>

#include "jet/detail/Bytes.h"
#include "jet/detail/PageCache.h"
#include "jet/Status.h"

namespace jet {

/// Takes pages from the file and gives them back (Jet 4): keeps the global map of free pages, see
/// GlobalMap, inside a transaction of the cache. Borrows the cache.
///
/// The inline form of the map grows in place, 32 pages at a time, as the program that made the file
/// does it. When its page is full (at 131 MB) it becomes a list of bitmap pages, as the maps of
/// large tables are.
class PageAllocator {
public:
    explicit PageAllocator(PageCache& cache) : cache_(cache) {}

    /// A page of zeros that belongs to nobody else: the lowest free one, or a new one at the end.
    [[nodiscard]] Result<PageNo> Allocate();
    /// Gives a page back. It must have been taken out of every map before.
    Status Free(PageNo page);

private:
    [[nodiscard]] Result<MutableBytes> Row();
    [[nodiscard]] Result<std::optional<PageNo>> LowestFree();
    /// Adds a page at the end that the map reaches.
    [[nodiscard]] Result<PageNo> AddPage();
    [[nodiscard]] Result<bool> Reaches(PageNo page);
    Status AddBitmap(PageNo bitmap);
    [[nodiscard]] Result<MutableBytes> EditBitmap(PageNo page);
    Status SetBit(PageNo page, bool isFree);

    PageCache& cache_;
};

}  // namespace jet
