#include "jet/compact/LongValueCopier.h"

#include <vector>

#include "jet/page/DataPage.h"

namespace jet::compact {
namespace {

// What a row holds of a value: length and flags, pointer, stamp.
constexpr std::size_t kHead = 12;
constexpr std::size_t kPointer = 4;
constexpr std::uint32_t kInlineFlag = 0x80000000;
constexpr std::uint32_t kSingleRowFlag = 0x40000000;
constexpr std::uint32_t kLengthMask = 0x3FFFFFFF;
constexpr std::size_t kNext = 4;  // bytes in front of a piece's data: the pointer of the next one

}  // namespace

LongValueCopier::LongValueCopier(PageCache& cache, Draft& draft)
    : cache_(cache), draft_(draft), packer_(draft, DataPage::kLongValueOwner) {}

Result<Bytes> LongValueCopier::RowAt(RowId id) {
    JET_ASSIGN(page_, cache_.Read(id.page));
    Result<DataPage> page = DataPage::Open(page_, Format::Jet4);
    if (!page.IsOk()) return page.GetStatus();
    Slot slot;
    if (id.row < page->SlotCount()) {
        JET_ASSIGN(slot, page->At(id.row));
    }
    if (page->Owner() != DataPage::kLongValueOwner || slot.isDeleted || slot.bytes.empty()) {
        return Status::Corrupt("long value on " + RowText(id) + ": there is no such row");
    }
    return slot.bytes;
}

Status LongValueCopier::Copy(MutableBytes stored) {
    if (stored.size() < kHead) return Status::Corrupt("a long value is cut short");
    const std::uint32_t head = LoadU32(stored, 0);
    if ((head & kInlineFlag) != 0 || (head & kLengthMask) == 0) return {};
    const RowId first = RowId::FromPointer(LoadU32(stored, kPointer));
    RowId copy;
    if ((head & kSingleRowFlag) != 0) {
        Bytes row;
        JET_ASSIGN(row, RowAt(first));
        JET_ASSIGN(copy, packer_.Append(row));
    } else {
        JET_ASSIGN(copy, CopyChain(first));
    }
    StoreU32(stored, kPointer, copy.Pointer());
    return {};
}

Result<RowId> LongValueCopier::CopyChain(RowId first) {
    PageNo page{};
    JET_ASSIGN(page, draft_.Take());
    const RowId copy{page, 0};
    RowId from = first;
    for (std::uint32_t pieces = 0; pieces <= cache_.PageCount(); ++pieces) {
        Bytes row;
        JET_ASSIGN(row, RowAt(from));
        if (row.size() <= kNext) break;
        std::vector<std::byte> piece(row.begin(), row.end());
        const std::uint32_t stamp = pieces == 0 ? LoadU32(page_.Bytes(), 8) : 0;
        const std::uint32_t next = LoadU32(piece, 0);
        PageNo nextPage{};
        if (next != 0) {
            JET_ASSIGN(nextPage, draft_.Take());
        }
        StoreU32(piece, 0, next == 0 ? 0 : RowId{nextPage, 0}.Pointer());
        JET_TRY(packer_.AppendAlone(page, stamp, piece));
        if (next == 0) return copy;
        from = RowId::FromPointer(next);
        page = nextPage;
    }
    return Status::Corrupt("the long value on " + RowText(first) + " is damaged");
}

}  // namespace jet::compact
