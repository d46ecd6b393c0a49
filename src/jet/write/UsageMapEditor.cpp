#include "jet/write/UsageMapEditor.h"

#include <algorithm>
#include <vector>

#include "jet/page/GlobalMap.h"
#include "jet/page/UsageMap.h"
#include "jet/write/DataPageEditor.h"

namespace jet {
namespace {

constexpr std::size_t kHead = GlobalMap::kHead;
constexpr std::size_t kBitmapHead = GlobalMap::kBitmapHead;
constexpr std::uint32_t kPagesPerBitmap = GlobalMap::kPagesPerBitmap;

void SetBitIn(MutableBytes bits, std::uint32_t bit, bool isSet) {
    const auto mask = static_cast<std::byte>(1U << (bit % 8));
    std::byte& byte = bits[bit / 8];
    byte = isSet ? byte | mask : byte & ~mask;
}

}  // namespace

Result<MutableBytes> UsageMapEditor::Row() {
    // Reading it first checks everything about it.
    JET_TRY(UsageMap::Open(cache_, Format::Jet4, pointer_).GetStatusOrOk());
    const RowId id = RowId::FromPointer(pointer_);
    MutableBytes page;
    JET_ASSIGN(page, cache_.Edit(id.page));
    Result<DataPageEditor> editor = DataPageEditor::Open(page, id.page);
    if (!editor.IsOk()) return editor.GetStatus();
    return editor->Row(id.row);
}

Result<std::vector<PageNo>> UsageMapEditor::Pages() {
    UsageMap map;
    JET_ASSIGN(map, UsageMap::Open(cache_, Format::Jet4, pointer_));
    std::vector<PageNo> pages;
    for (PageNo from{0};; from = PageNo{Raw(pages.back()) + 1}) {
        std::optional<PageNo> next;
        JET_ASSIGN(next, map.Next(from));
        if (!next) return pages;
        pages.push_back(*next);
    }
}

Status UsageMapEditor::Add(PageNo page) {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    if (LoadU8(row, 0) != 0) return AddToReference(page);
    const std::uint32_t start = LoadU32(row, 1);
    const auto capacity = static_cast<std::uint32_t>(8 * (row.size() - kHead));
    if (Raw(page) >= start && Raw(page) - start < capacity) {
        SetBitIn(row.subspan(kHead), Raw(page) - start, true);
        return {};
    }
    return MoveWindow(page);
}

Status UsageMapEditor::MoveWindow(PageNo page) {
    std::vector<PageNo> pages;
    JET_ASSIGN(pages, Pages());
    pages.push_back(page);
    std::sort(pages.begin(), pages.end());
    MutableBytes row;
    JET_ASSIGN(row, Row());
    const std::uint32_t start = Raw(pages.front()) / 8 * 8;
    const bool fits = Raw(pages.back()) - start < 8 * (row.size() - kHead);
    std::fill(row.begin(), row.end(), std::byte{0});
    if (fits) {
        StoreU32(row, 1, start);
        for (const PageNo p : pages) SetBitIn(row.subspan(kHead), Raw(p) - start, true);
        return {};
    }
    row[0] = std::byte{1};
    for (const PageNo p : pages) JET_TRY(AddToReference(p));
    return {};
}

Status UsageMapEditor::AddToReference(PageNo page) {
    const std::size_t field = 1 + 4 * std::size_t{Raw(page) / kPagesPerBitmap};
    MutableBytes row;
    JET_ASSIGN(row, RowOfSize(field + 4));
    if (LoadU32(row, field) == 0) {
        PageNo bitmap{};
        JET_ASSIGN(bitmap, PageAllocator(cache_).Allocate());
        MutableBytes bytes;
        JET_ASSIGN(bytes, cache_.Edit(bitmap));
        GlobalMap::FormatBitmap(bytes);
        JET_ASSIGN(row, Row());
        StoreU32(row, field, Raw(bitmap));
    }
    return SetReferenceBit(page, true);
}

/// The row of a list, which is lengthened when it is shorter than `size`.
Result<MutableBytes> UsageMapEditor::RowOfSize(std::size_t size) {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    if (row.size() >= size) return row;
    const RowId id = RowId::FromPointer(pointer_);
    MutableBytes page;
    JET_ASSIGN(page, cache_.Edit(id.page));
    Result<DataPageEditor> editor = DataPageEditor::Open(page, id.page);
    if (!editor.IsOk()) return editor.GetStatus();
    std::vector<std::byte> longer(row.begin(), row.end());
    longer.resize(std::min(GlobalMap::kListSize, row.size() + editor->Free()));
    if (longer.size() < size) {
        return Status::Unsupported("the usage map on " + RowText(id) +
                                   " cannot be lengthened; a repair writes it anew");
    }
    editor->Replace(id.row, longer, editor->Flags(id.row));
    return editor->Row(id.row);
}

Status UsageMapEditor::SetReferenceBit(PageNo page, bool isSet) {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    const std::size_t field = 1 + 4 * std::size_t{Raw(page) / kPagesPerBitmap};
    const PageNo bitmap{field + 4 <= row.size() ? LoadU32(row, field) : 0};
    if (Raw(bitmap) == 0) return {};
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(bitmap));
    if (LoadU8(bytes, 0) != 5) {
        return Status::Corrupt(PageText(bitmap) + " is not a page of a usage map");
    }
    SetBitIn(bytes.subspan(kBitmapHead), Raw(page) % kPagesPerBitmap, isSet);
    return {};
}

Status UsageMapEditor::Remove(PageNo page) {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    if (LoadU8(row, 0) != 0) return SetReferenceBit(page, false);
    const std::uint32_t start = LoadU32(row, 1);
    if (Raw(page) >= start && Raw(page) - start < 8 * (row.size() - kHead)) {
        SetBitIn(row.subspan(kHead), Raw(page) - start, false);
    }
    return {};
}

Status UsageMapEditor::RemoveBehindEnd() {
    MutableBytes row;
    JET_ASSIGN(row, Row());
    const auto clear = [&](MutableBytes bits, std::uint64_t first) {
        const std::uint64_t count = cache_.PageCount();
        for (std::size_t bit = count > first ? count - first : 0; bit < 8 * bits.size(); ++bit) {
            SetBitIn(bits, static_cast<std::uint32_t>(bit), false);
        }
    };
    if (LoadU8(row, 0) == 0) {
        clear(row.subspan(kHead), LoadU32(row, 1));
        return {};
    }
    for (std::size_t i = 0; 5 + 4 * i <= row.size(); ++i) {
        const PageNo bitmap{LoadU32(row, 1 + 4 * i)};
        if (Raw(bitmap) == 0) continue;
        MutableBytes bytes;
        JET_ASSIGN(bytes, cache_.Edit(bitmap));
        if (LoadU8(bytes, 0) != 5) {
            return Status::Corrupt(PageText(bitmap) + " is not a page of a usage map");
        }
        clear(bytes.subspan(kBitmapHead), std::uint64_t{kPagesPerBitmap} * i);
    }
    return {};
}

}  // namespace jet
