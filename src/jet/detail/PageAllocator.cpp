#include "jet/detail/PageAllocator.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <vector>

#include "jet/detail/DataPageEditor.h"

namespace jet {
namespace {

constexpr PageNo kMapPage{1};
constexpr std::size_t kMapRow = 0;
constexpr std::size_t kMapHead = 5;        // bytes in front of the bits
constexpr std::uint32_t kFirstUsable = 6;  // header, map and the four definitions of the system
constexpr std::size_t kStep = 4;           // bytes by which the row grows

/// The bits of the map. Pages from bit 0 on.
Result<MutableBytes> MapBits(PageCache& cache) {
    MutableBytes page;
    JET_ASSIGN(page, cache.Edit(kMapPage));
    Result<DataPageEditor> editor = DataPageEditor::Open(page, kMapPage);
    if (!editor.IsOk()) return editor.GetStatus().In("the map of free pages");
    if (editor->SlotCount() < 1 || editor->Row(kMapRow).size() < kMapHead) {
        return Status::Corrupt("the map of free pages is missing");
    }
    const MutableBytes row = editor->Row(kMapRow);
    if (LoadU8(row, 0) != 0 || LoadU32(row, 1) != 0) {
        return Status::Unsupported("the map of free pages has a form that cannot be written");
    }
    return row.subspan(kMapHead);
}

std::optional<std::uint32_t> LowestFree(Bytes bits, std::uint32_t pageCount) {
    for (std::size_t i = 0; i < bits.size() && 8 * i < pageCount; ++i) {
        const unsigned byte = LoadU8(bits, i);
        if (byte == 0) continue;
        const auto page =
            static_cast<std::uint32_t>(8 * i) + static_cast<std::uint32_t>(std::countr_zero(byte));
        if (page >= pageCount) break;
        // A map that offers the file's own head is damaged; its bits there are passed over.
        if (page >= kFirstUsable) return page;
    }
    return std::nullopt;
}

}  // namespace

Result<PageNo> PageAllocator::Allocate() {
    MutableBytes bits;
    JET_ASSIGN(bits, MapBits(cache_));
    const auto found = LowestFree(bits, cache_.PageCount());
    PageNo page{found.value_or(0)};
    if (found) {
        MutableBytes bytes;
        JET_ASSIGN(bytes, cache_.Edit(page));
        std::fill(bytes.begin(), bytes.end(), std::byte{0});
    } else {
        JET_ASSIGN(page, cache_.AddPage());
        JET_TRY(Grow(page));
    }
    JET_TRY(SetBit(page, false));
    return page;
}

Status PageAllocator::Grow(PageNo page) {
    MutableBytes bits;
    JET_ASSIGN(bits, MapBits(cache_));
    if (Raw(page) / 8 < bits.size()) return {};
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(kMapPage));
    Result<DataPageEditor> editor = DataPageEditor::Open(bytes, kMapPage);
    if (!editor.IsOk()) return editor.GetStatus();
    if (editor->Free() < kStep) {
        return {StatusCode::Full, "the map of free pages is full; compact the file"};
    }
    const MutableBytes row = editor->Row(kMapRow);
    std::vector<std::byte> longer(row.begin(), row.end());
    longer.insert(longer.end(), kStep, std::byte{0xFF});
    editor->Replace(kMapRow, longer, editor->Flags(kMapRow));
    return {};
}

Status PageAllocator::SetBit(PageNo page, bool isFree) {
    MutableBytes bits;
    JET_ASSIGN(bits, MapBits(cache_));
    if (Raw(page) / 8 >= bits.size()) {
        return Status::Corrupt("the map of free pages does not reach " + PageText(page));
    }
    const auto bit = static_cast<std::byte>(1U << (Raw(page) % 8));
    std::byte& byte = bits[Raw(page) / 8];
    byte = isFree ? byte | bit : byte & ~bit;
    return {};
}

Status PageAllocator::Free(PageNo page) {
    if (Raw(page) < kFirstUsable) {
        return Status::Corrupt(PageText(page) + " belongs to the file's head and cannot be freed");
    }
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(page));
    // What free pages of other programs look like: former definitions 8, former data pages 9.
    if (LoadU8(bytes, 0) == 1) bytes[0] = std::byte{9};
    if (LoadU8(bytes, 0) == 2) bytes[0] = std::byte{8};
    return SetBit(page, true);
}

}  // namespace jet
