#include "jet/compact/Draft.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

#include "jet/page/GlobalMap.h"
#include "jet/write/DataPageEditor.h"
#include "jet/write/NewUsageMap.h"

namespace jet::compact {

Result<PageNo> Draft::Take() {
    while (kept_.contains(next_)) ++next_;
    if (next_ >= kMostPages) {
        return Status(StatusCode::Full, "the new file would be larger than 2 GB");
    }
    return PageNo{next_++};
}

Status Draft::Write(PageNo page, Bytes bytes) {
    if (file_ == nullptr) return {};
    return file_->Write(std::uint64_t{Raw(page)} * kPageSizeJet4, bytes).In(PageText(page));
}

std::uint32_t Draft::PageCount() const {
    return kept_.empty() ? next_ : std::max(next_, *kept_.rbegin() + 1);
}

std::uint32_t Draft::UsedCount() const {
    return next_ + static_cast<std::uint32_t>(std::distance(kept_.lower_bound(next_), kept_.end()));
}

void Draft::MarkUsed(MutableBytes bits, std::uint32_t first) const {
    const std::uint32_t pageCount = PageCount();
    for (std::uint32_t i = 0; i < 8 * bits.size() && first + i < pageCount; ++i) {
        if (IsUsed(first + i)) bits[i / 8] &= ~static_cast<std::byte>(1U << i % 8);
    }
}

Status Draft::WriteGlobalMaps() {
    // The bits of pages behind the end say that they are free.
    constexpr std::byte kFree{0xFF};
    std::vector<std::byte> row;
    if (PageCount() <= GlobalMap::kMostInline) {
        row.resize(GlobalMap::RowSize(PageCount()), kFree);
        std::fill_n(row.begin(), GlobalMap::kHead, std::byte{0});
        MarkUsed(MutableBytes(row).subspan(GlobalMap::kHead), 0);
    } else {
        const auto emptyRow = NewUsageMapRow({});
        row.assign(emptyRow.begin(), emptyRow.end());
        row[0] = std::byte{1};
        std::vector<PageNo> bitmaps;
        while (bitmaps.size() * GlobalMap::kPagesPerBitmap < PageCount()) {
            JET_ASSIGN(bitmaps.emplace_back(), Take());
        }
        for (std::uint32_t i = 0; i < bitmaps.size(); ++i) {
            std::array<std::byte, kPageSizeJet4> page{};
            page.fill(kFree);
            GlobalMap::FormatBitmap(page);
            MarkUsed(MutableBytes(page).subspan(GlobalMap::kBitmapHead),
                     i * GlobalMap::kPagesPerBitmap);
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
