#pragma once

#include <optional>

#include "jet/page/Bytes.h"
#include "jet/page/PageCache.h"
#include "jet/Status.h"

namespace jet {

/// Takes pages from the file and gives them back (Jet 4): keeps the global map of free pages, see
/// GlobalMap, inside a transaction of the cache. Borrows the cache.
///
/// The map may have any form that a usage map can have. Pages inside the file of which it does not
/// speak are in use; when one of them is given back, or the file grows, the map is made to reach
/// the page: an inline map grows in place and begins with page 0 then, as the program that made
/// the format writes it. When its page is full (at 131 MB) it becomes a list of bitmap pages, as
/// the maps of large tables are.
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
    /// True when the map has a bit for the page, and also after it has been given one in place.
    /// False when it needs a further page for that: see GiveToMap.
    [[nodiscard]] Result<bool> Reaches(PageNo page);
    [[nodiscard]] Result<bool> Lengthen(PageNo page);
    Status GiveToMap(PageNo bitmap);
    Status TurnIntoList();
    Status SetField(PageNo of, PageNo bitmap);
    [[nodiscard]] Result<MutableBytes> EditBitmap(PageNo page);
    Status SetBit(PageNo page, bool isFree);

    PageCache& cache_;
};

}  // namespace jet
