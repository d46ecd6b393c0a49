#include "jet/write/PageAllocator.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "jet/page/GlobalMap.h"
#include "jet/write/DataPageEditor.h"

namespace jet {
namespace {

constexpr std::uint32_t kFirstUsable = 6;  // header, map and the four definitions of the system
constexpr std::uint8_t kBitmapType = 5;

bool IsInline(Bytes row) {
    return LoadU8(row, 0) == 0;
}

/// Offset of a bitmap page's number in the row of a list of them.
std::size_t FieldOf(PageNo page) {
    return 1 + 4 * std::size_t{Raw(page) / GlobalMap::kPagesPerBitmap};
}

/// The place of a page among the bits of an inline map; none when they do not reach it.
std::optional<std::size_t> BitOf(Bytes row, PageNo page) {
    const std::uint64_t first = LoadU32(row, 1);
    const std::uint64_t end = first + 8 * std::uint64_t{row.size() - GlobalMap::kHead};
    if (Raw(page) < first || Raw(page) >= end) return std::nullopt;
    return static_cast<std::size_t>(Raw(page) - first);
}

/// Calls `each` for the set bits of pages inside the file, in ascending order, until it returns
/// false; `bits` begin with the page `first`. The file's own head is passed over: a map that offers
/// it is damaged there.
template <typename Each>
void ForEachFree(Bytes bits, std::uint64_t first, std::uint32_t pageCount, const Each& each) {
    constexpr std::size_t kStride = 4;
    for (std::size_t i = 0; i < bits.size() && first + 8 * i < pageCount; ++i) {
        if (i + kStride <= bits.size() && LoadU32(bits, i) == 0) {
            i += kStride - 1;
            continue;
        }
        for (unsigned rest = LoadU8(bits, i); rest != 0; rest &= rest - 1) {
            const std::uint64_t page =
                first + 8 * i + static_cast<std::uint64_t>(std::countr_zero(rest));
            if (page >= pageCount) return;
            if (page >= kFirstUsable && !each(PageNo{static_cast<std::uint32_t>(page)})) return;
        }
    }
}

std::optional<PageNo> LowestIn(Bytes bits, std::uint64_t first, std::uint32_t pageCount) {
    std::optional<PageNo> lowest;
    ForEachFree(bits, first, pageCount, [&](PageNo page) {
        lowest = page;
        return false;
    });
    return lowest;
}

void StoreBit(MutableBytes bits, std::size_t bit, bool isSet) {
    const auto mask = static_cast<std::byte>(1U << bit % 8);
    std::byte& byte = bits[bit / 8];
    byte = isSet ? byte | mask : byte & ~mask;
}

/// Sets the bits of pages behind the end of the file, as every program leaves them; `bits` begin
/// with the page `first` and are clear.
void SetBehind(MutableBytes bits, std::uint32_t first, std::uint32_t pageCount) {
    const std::size_t begin = pageCount > first ? pageCount - first : 0;
    for (std::size_t bit = begin; bit < 8 * bits.size(); ++bit) StoreBit(bits, bit, true);
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
    if (LoadU8(row, 0) > 1) return Status::Corrupt("the map of free pages is of an unknown form");
    return row;
}

Result<std::optional<PageNo>> PageAllocator::LowestFree() {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    const std::uint32_t pageCount = cache_.PageCount();
    if (IsInline(row)) {
        return LowestIn(row.subspan(GlobalMap::kHead), LoadU32(row, 1), pageCount);
    }
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
    if (found) {
        MutableBytes bytes;
        JET_ASSIGN(bytes, cache_.Edit(*found));
        std::fill(bytes.begin(), bytes.end(), std::byte{0});
        JET_TRY(SetBit(*found, false));
        return *found;
    }
    for (;;) {
        PageNo page{};
        JET_ASSIGN(page, cache_.AddPage());
        bool reaches = false;
        JET_ASSIGN(reaches, Reaches(page));
        if (reaches) {
            JET_TRY(SetBit(page, false));
            return page;
        }
        JET_TRY(GiveToMap(page));
    }
}

Result<bool> PageAllocator::Reaches(PageNo page) {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    if (IsInline(row)) return BitOf(row, page) ? Result<bool>(true) : Lengthen(page);
    const std::size_t field = FieldOf(page);
    return field + 4 <= row.size() && LoadU32(row, field) != 0;
}

/// Writes an inline map anew, from page 0 to `page` or to where it ended. False when it does not
/// fit on its page.
Result<bool> PageAllocator::Lengthen(PageNo page) {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    const Bytes bits = Bytes(row).subspan(GlobalMap::kHead);
    const std::uint64_t first = LoadU32(row, 1);
    // Bits behind the end of the file say nothing; a window may lie far behind it.
    const std::uint64_t last = std::max<std::uint64_t>(
        Raw(page) + std::uint64_t{1},
        std::min<std::uint64_t>(first + 8 * bits.size(), cache_.PageCount()));
    if (last > GlobalMap::kMostInline) return false;
    std::vector<std::byte> longer(
        std::max(row.size(), GlobalMap::RowSize(static_cast<std::uint32_t>(last))));
    const MutableBytes newBits = MutableBytes(longer).subspan(GlobalMap::kHead);
    SetBehind(newBits, 0, cache_.PageCount());
    ForEachFree(bits, first, cache_.PageCount(), [&](PageNo free) {
        StoreBit(newBits, Raw(free), true);
        return true;
    });
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(GlobalMap::kPage));
    Result<DataPageEditor> editor = DataPageEditor::Open(bytes, GlobalMap::kPage);
    if (!editor.IsOk()) return editor.GetStatus();
    if (longer.size() > row.size() + editor->Free()) return false;
    editor->Replace(GlobalMap::kRow, longer, editor->Flags(GlobalMap::kRow));
    return true;
}

/// Makes `bitmap` the page of the map that speaks of it and its neighbours, unless there is one: it
/// may have come when the map was turned into a list.
Status PageAllocator::GiveToMap(PageNo bitmap) {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    if (IsInline(row)) JET_TRY(TurnIntoList());
    bool reaches = false;
    JET_ASSIGN(reaches, Reaches(bitmap));
    if (reaches) return SetBit(bitmap, true);
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(bitmap));
    std::fill(bytes.begin(), bytes.end(), std::byte{0});
    GlobalMap::FormatBitmap(bytes);
    SetBehind(bytes.subspan(GlobalMap::kBitmapHead),
              Raw(bitmap) / GlobalMap::kPagesPerBitmap * GlobalMap::kPagesPerBitmap,
              cache_.PageCount());
    return SetField(bitmap, bitmap);
}

/// The lowest free page of each share becomes the bitmap page of that share, so that no page has to
/// be found for it.
Status PageAllocator::TurnIntoList() {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    std::vector<PageNo> pages;
    ForEachFree(Bytes(row).subspan(GlobalMap::kHead), LoadU32(row, 1), cache_.PageCount(),
                [&](PageNo page) {
                    pages.push_back(page);
                    return true;
                });
    std::fill(row.begin(), row.end(), std::byte{0});
    row[0] = std::byte{1};
    for (const PageNo page : pages) JET_TRY(GiveToMap(page));
    return {};
}

/// Enters the bitmap page of the share that `of` belongs to; lengthens a row that has no field for
/// it.
Status PageAllocator::SetField(PageNo of, PageNo bitmap) {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    const std::size_t field = FieldOf(of);
    if (field + 4 > row.size()) {
        std::vector<std::byte> longer(row.begin(), row.end());
        longer.resize(GlobalMap::kListSize);
        MutableBytes bytes;
        JET_ASSIGN(bytes, cache_.Edit(GlobalMap::kPage));
        Result<DataPageEditor> editor = DataPageEditor::Open(bytes, GlobalMap::kPage);
        if (!editor.IsOk()) return editor.GetStatus();
        if (field + 4 > longer.size() || longer.size() > row.size() + editor->Free()) {
            return Status::Unsupported("the map of free pages cannot be lengthened for " +
                                       PageText(of));
        }
        editor->Replace(GlobalMap::kRow, longer, editor->Flags(GlobalMap::kRow));
        JET_ASSIGN(row, Row());
    }
    StoreU32(row, field, Raw(bitmap));
    return {};
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

/// REQUIRES: Reaches(page).
Status PageAllocator::SetBit(PageNo page, bool isFree) {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    if (IsInline(row)) {
        const auto bit = BitOf(row, page);
        if (!bit) {
            return Status::Corrupt("the map of free pages does not reach " + PageText(page));
        }
        StoreBit(row.subspan(GlobalMap::kHead), *bit, isFree);
        return {};
    }
    MutableBytes bits;
    JET_ASSIGN(bits, EditBitmap(page));
    StoreBit(bits, Raw(page) % GlobalMap::kPagesPerBitmap, isFree);
    return {};
}

Status PageAllocator::Free(PageNo page) {
    if (Raw(page) < kFirstUsable) {
        return Status::Corrupt(PageText(page) + " belongs to the file's head and cannot be freed");
    }
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(page));
    // What free pages of other programs look like: former definitions 8, former data pages 9.
    const std::uint8_t type = LoadU8(bytes, 0);
    bytes[0] = type == 1 ? std::byte{9} : type == 2 ? std::byte{8} : std::byte{0};
    bool reaches = false;
    JET_ASSIGN(reaches, Reaches(page));
    // A page that cannot be entered as free is the one that the map lacks.
    return reaches ? SetBit(page, true) : GiveToMap(page);
}

}  // namespace jet
