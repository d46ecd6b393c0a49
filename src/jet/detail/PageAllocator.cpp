#include "jet/detail/PageAllocator.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "jet/detail/DataPageEditor.h"
#include "jet/detail/GlobalMap.h"

namespace jet {
namespace {

constexpr std::uint32_t kFirstUsable = 6;  // header, map and the four definitions of the system
constexpr std::size_t kStep = 4;           // bytes by which an inline row grows
constexpr std::uint8_t kBitmapType = 5;

bool IsInline(Bytes row) {
    return LoadU8(row, 0) == 0;
}

/// Offset of a bitmap page's number in the row of a list of them.
std::size_t FieldOf(PageNo page) {
    return 1 + 4 * std::size_t{Raw(page) / GlobalMap::kPagesPerBitmap};
}

/// The lowest set bit of a page inside the file; `bits` begin with the page `first`.
std::optional<PageNo> LowestIn(Bytes bits, std::uint32_t first, std::uint32_t pageCount) {
    for (std::size_t i = 0; i < bits.size() && first + 8 * i < pageCount; ++i) {
        for (unsigned rest = LoadU8(bits, i); rest != 0; rest &= rest - 1) {
            const auto page = first + static_cast<std::uint32_t>(8 * i) +
                              static_cast<std::uint32_t>(std::countr_zero(rest));
            if (page >= pageCount) return std::nullopt;
            // A map that offers the file's own head is damaged; its bits there are passed over.
            if (page >= kFirstUsable) return PageNo{page};
        }
    }
    return std::nullopt;
}

/// Clears bits: pages inside the file of which the map has said nothing are better not given away.
void ClearBits(MutableBytes bits, std::size_t begin, std::size_t end) {
    for (std::size_t bit = begin; bit < end && bit / 8 < bits.size(); ++bit) {
        bits[bit / 8] &= ~static_cast<std::byte>(1U << bit % 8);
    }
}

Status BadBitmap(PageNo page) {
    return Status::Corrupt(PageText(page) + " is not a page of the map of free pages");
}

}  // namespace

Result<MutableBytes> PageAllocator::Row() {
    MutableBytes page;
    JET_ASSIGN(page, cache_.Edit(GlobalMap::kPage));
    Result<DataPageEditor> editor = DataPageEditor::Open(page, GlobalMap::kPage);
    if (!editor.IsOk()) return editor.GetStatus().In("the map of free pages");
    if (editor->SlotCount() < 1 || editor->Row(GlobalMap::kRow).size() < GlobalMap::kHead) {
        return Status::Corrupt("the map of free pages is missing");
    }
    const MutableBytes row = editor->Row(GlobalMap::kRow);
    if (LoadU8(row, 0) > 1 || (IsInline(row) && LoadU32(row, 1) != 0)) {
        return Status::Unsupported("the map of free pages has a form that cannot be written");
    }
    return row;
}

Result<std::optional<PageNo>> PageAllocator::LowestFree() {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    const std::uint32_t pageCount = cache_.PageCount();
    if (IsInline(row)) return LowestIn(row.subspan(GlobalMap::kHead), 0, pageCount);
    for (std::uint32_t first = 0; first < pageCount; first += GlobalMap::kPagesPerBitmap) {
        const std::size_t field = FieldOf(PageNo{first});
        const PageNo bitmap{field + 4 <= row.size() ? LoadU32(row, field) : 0};
        if (Raw(bitmap) == 0) continue;
        PageRef ref;
        JET_ASSIGN(ref, cache_.Read(bitmap));
        if (LoadU8(ref.Bytes(), 0) != kBitmapType) return BadBitmap(bitmap);
        const auto found = LowestIn(ref.Bytes().subspan(GlobalMap::kBitmapHead), first, pageCount);
        if (found) return found;
    }
    return std::optional<PageNo>();
}

Result<PageNo> PageAllocator::Allocate() {
    std::optional<PageNo> found;
    JET_ASSIGN(found, LowestFree());
    PageNo page = found.value_or(PageNo{});
    if (found) {
        MutableBytes bytes;
        JET_ASSIGN(bytes, cache_.Edit(page));
        std::fill(bytes.begin(), bytes.end(), std::byte{0});
    } else {
        JET_ASSIGN(page, AddPage());
    }
    JET_TRY(SetBit(page, false));
    return page;
}

Result<PageNo> PageAllocator::AddPage() {
    for (;;) {
        PageNo page{};
        JET_ASSIGN(page, cache_.AddPage());
        bool reaches = false;
        JET_ASSIGN(reaches, Reaches(page));
        if (reaches) return page;
        // The map takes this page for itself.
        JET_TRY(AddBitmap(page));
    }
}

/// Lengthens an inline map where there is room.
Result<bool> PageAllocator::Reaches(PageNo page) {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    if (!IsInline(row)) {
        const std::size_t field = FieldOf(page);
        return field + 4 <= row.size() && LoadU32(row, field) != 0;
    }
    if (Raw(page) / 8 < row.size() - GlobalMap::kHead) return true;
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(GlobalMap::kPage));
    Result<DataPageEditor> editor = DataPageEditor::Open(bytes, GlobalMap::kPage);
    if (!editor.IsOk()) return editor.GetStatus();
    std::vector<std::byte> longer(row.begin(), row.end());
    while (Raw(page) / 8 >= longer.size() - GlobalMap::kHead) {
        longer.insert(longer.end(), kStep, std::byte{0xFF});
    }
    if (longer.size() - row.size() > editor->Free()) return false;
    ClearBits(MutableBytes(longer).subspan(GlobalMap::kHead), 8 * (row.size() - GlobalMap::kHead),
              Raw(page));
    editor->Replace(GlobalMap::kRow, longer, editor->Flags(GlobalMap::kRow));
    return true;
}

/// Makes `bitmap` the page of the map that speaks of it. An inline map becomes a list first: its
/// row keeps its length, and all its bits fit one bitmap page.
Status PageAllocator::AddBitmap(PageNo bitmap) {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(bitmap));
    std::fill(bytes.begin(), bytes.end(), std::byte{0xFF});
    GlobalMap::FormatBitmap(bytes);
    const std::size_t field = FieldOf(bitmap);
    if (field + 4 > row.size()) {
        return Status::Corrupt("the map of free pages is too short for " + PageText(bitmap));
    }
    ClearBits(bytes.subspan(GlobalMap::kBitmapHead), 0, Raw(bitmap) % GlobalMap::kPagesPerBitmap);
    if (IsInline(row)) {
        if (Raw(bitmap) >= GlobalMap::kPagesPerBitmap) {
            return Status::Corrupt("the map of free pages has an impossible size");
        }
        const MutableBytes bits = row.subspan(GlobalMap::kHead);
        std::copy(bits.begin(), bits.end(), bytes.begin() + GlobalMap::kBitmapHead);
        std::fill(row.begin(), row.end(), std::byte{0});
        row[0] = std::byte{1};
    }
    StoreU32(row, field, Raw(bitmap));
    return SetBit(bitmap, false);
}

Result<MutableBytes> PageAllocator::EditBitmap(PageNo page) {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    const std::size_t field = FieldOf(page);
    const PageNo bitmap{field + 4 <= row.size() ? LoadU32(row, field) : 0};
    if (Raw(bitmap) < kFirstUsable) {
        return Status::Corrupt("the map of free pages does not reach " + PageText(page));
    }
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(bitmap));
    if (LoadU8(bytes, 0) != kBitmapType) return BadBitmap(bitmap);
    return bytes.subspan(GlobalMap::kBitmapHead);
}

Status PageAllocator::SetBit(PageNo page, bool isFree) {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    MutableBytes bits = row.subspan(GlobalMap::kHead);
    std::uint32_t bit = Raw(page);
    if (!IsInline(row)) {
        JET_ASSIGN(bits, EditBitmap(page));
        bit %= GlobalMap::kPagesPerBitmap;
    }
    if (bit / 8 >= bits.size()) {
        return Status::Corrupt("the map of free pages does not reach " + PageText(page));
    }
    const auto mask = static_cast<std::byte>(1U << bit % 8);
    std::byte& byte = bits[bit / 8];
    byte = isFree ? byte | mask : byte & ~mask;
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
