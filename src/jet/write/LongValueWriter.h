#pragma once

#include <vector>

#include "jet/page/PageCache.h"
#include "jet/Status.h"
#include "jet/TableDef.h"

namespace jet {

/// Stores and frees the values of one memo or OLE column (Jet 4), inside a transaction of the
/// cache. Borrows the cache and the column.
class LongValueWriter {
public:
    LongValueWriter(PageCache& cache, const Column& column) : cache_(cache), column_(column) {}

    /// Stores `data` and returns what the row holds of it: a head of twelve bytes, with the data
    /// behind it when there is little.
    [[nodiscard]] Result<std::vector<std::byte>> Store(Bytes data);
    /// Frees what the row's bytes of a value point to.
    Status Free(Bytes stored);

    static constexpr std::size_t kMostInline = 64;  // bytes
    static constexpr std::size_t kMostBytes = (std::size_t{1} << 30) - 1;

private:
    [[nodiscard]] Result<RowId> StoreRow(Bytes row, bool shared);
    [[nodiscard]] Result<PageNo> PageFor(std::size_t size, bool shared);
    Status DeleteRow(RowId id);

    PageCache& cache_;
    const Column& column_;
};

}  // namespace jet
