#pragma once

#include <vector>

#include "jet/page/Bytes.h"
#include "jet/Status.h"
#include "jet/write/PageAllocator.h"

namespace jet {

/// Changes a usage map of a table, an index or a long-value column; see UsageMap for its layout.
/// Works inside a transaction of the cache, which is borrowed.
class UsageMapEditor {
public:
    /// `pointer` is the map's row pointer and not 0.
    UsageMapEditor(PageCache& cache, std::uint32_t pointer) : cache_(cache), pointer_(pointer) {}

    /// Adds a page; no harm when it is in the map already. A map that cannot reach the page moves
    /// its window, or becomes a list of bitmap pages when the window is too small.
    Status Add(PageNo page);
    /// Removes a page; no harm when it is not in the map.
    Status Remove(PageNo page);
    /// Removes what is left over behind the end of the file, before the file may grow over it.
    Status RemoveBehindEnd();

private:
    [[nodiscard]] Result<MutableBytes> Row();
    [[nodiscard]] Result<std::vector<PageNo>> Pages();
    [[nodiscard]] Result<MutableBytes> RowOfSize(std::size_t size);
    Status AddToReference(PageNo page);
    Status MoveWindow(PageNo page);
    Status SetReferenceBit(PageNo page, bool isSet);

    PageCache& cache_;
    std::uint32_t pointer_;
};

}  // namespace jet
