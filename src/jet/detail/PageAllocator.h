#pragma once

#include "jet/detail/PageCache.h"
#include "jet/Status.h"

namespace jet {

/// Takes pages from the file and gives them back (Jet 4): keeps the global map of free pages, row
/// 0 of page 1, inside a transaction of the cache. Borrows the cache.
///
/// In that map a set bit means free, and the bits of pages behind the end of the file are
/// normally set. The row grows in place, 32 pages at a time, as the program that made the file
/// does it.
class PageAllocator {
public:
    explicit PageAllocator(PageCache& cache) : cache_(cache) {}

    /// A page of zeros that belongs to nobody else: the lowest free one, or a new one at the end.
    [[nodiscard]] Result<PageNo> Allocate();
    /// Gives a page back. It must have been taken out of every map before.
    Status Free(PageNo page);

private:
    Status SetBit(PageNo page, bool isFree);
    Status Grow(PageNo page);

    PageCache& cache_;
};

}  // namespace jet
