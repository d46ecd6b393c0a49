#pragma once

#include "jet/compact/RowPacker.h"
#include "jet/page/PageCache.h"

namespace jet::compact {

/// Copies the values of one memo or OLE column, byte for byte and in the form in which they are
/// stored. Borrows the old file's cache and the draft.
class LongValueCopier {
public:
    LongValueCopier(PageCache& cache, Draft& draft);

    /// `stored` is what the new row holds of the value; its pointer is changed.
    Status Copy(MutableBytes stored);
    Status Finish() { return packer_.Finish(); }
    [[nodiscard]] const RowPacker& Pages() const { return packer_; }

private:
    [[nodiscard]] Result<Bytes> RowAt(RowId id);
    [[nodiscard]] Result<RowId> CopyChain(RowId first);

    PageCache& cache_;
    Draft& draft_;
    RowPacker packer_;
    PageRef page_;  // keeps the row that was read last
};

}  // namespace jet::compact
