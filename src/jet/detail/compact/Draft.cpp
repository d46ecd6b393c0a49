#include "jet/detail/compact/Draft.h"

#include <array>
#include <vector>

#include "jet/detail/DataPageEditor.h"
#include "jet/detail/GlobalMap.h"
#include "jet/detail/NewUsageMap.h"

namespace jet::compact {
namespace {

/// Clears the bits of all pages below `pageCount`; `bits` begin with the page `first`.
void TakeBelow(MutableBytes bits, std::uint32_t first, std::uint32_t pageCount) {
    for (std::size_t i = 0; i < 8 * bits.size() && first + i < pageCount; ++i) {
        bits[i / 8] &= ~static_cast<std::byte>(1U << i % 8);
    }
}

}  // namespace

Result<PageNo> Draft::Take() {
    if (next_ >= kMostPages) {
        return Status(StatusCode::Full, "the compacted file would be larger than 2 GB");
    }
    return PageNo{next_++};
}

Status Draft::Write(PageNo page, Bytes bytes) {
    return file_.Write(std::uint64_t{Raw(page)} * kPageSizeJet4, bytes).In(PageText(page));
}

Status Draft::WriteGlobalMaps() {
    // The bits of pages behind the end say that they are free.
    constexpr std::byte kFree{0xFF};
    std::vector<std::byte> row;
    if (next_ <= GlobalMap::kMostInline) {
        row.resize(GlobalMap::RowSize(next_), kFree);
        std::fill_n(row.begin(), GlobalMap::kHead, std::byte{0});
        TakeBelow(MutableBytes(row).subspan(GlobalMap::kHead), 0, next_);
    } else {
        const auto emptyRow = NewUsageMapRow({});
        row.assign(emptyRow.begin(), emptyRow.end());
        row[0] = std::byte{1};
        std::vector<PageNo> bitmaps;
        while (bitmaps.size() * GlobalMap::kPagesPerBitmap < next_) {
            JET_ASSIGN(bitmaps.emplace_back(), Take());
        }
        for (std::uint32_t i = 0; i < bitmaps.size(); ++i) {
            std::array<std::byte, kPageSizeJet4> page{};
            page.fill(kFree);
            GlobalMap::FormatBitmap(page);
            TakeBelow(MutableBytes(page).subspan(GlobalMap::kBitmapHead),
                      i * GlobalMap::kPagesPerBitmap, next_);
            JET_TRY(Write(bitmaps[i], page));
            StoreU32(row, 1 + 4 * std::size_t{i}, Raw(bitmaps[i]));
        }
    }
    std::array<std::byte, kPageSizeJet4> page{};
    DataPageEditor::Format(page, Raw(GlobalMap::kPage));
    Result<DataPageEditor> editor = DataPageEditor::Open(page, GlobalMap::kPage);
    editor->Append(row, 0);
    editor->Append(NewUsageMapRow({}), 0);
    return Write(GlobalMap::kPage, page);
}

}  // namespace jet::compact
