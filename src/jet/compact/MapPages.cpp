#include "jet/compact/MapPages.h"

#include "jet/page/DataPage.h"
#include "jet/page/GlobalMap.h"
#include "jet/write/DataPageEditor.h"
#include "jet/write/NewUsageMap.h"

namespace jet::compact {

Status MapPages::BeginPage() {
    PageNo page{};
    JET_ASSIGN(page, draft_.Take());
    DataPageEditor::Format(images_[Raw(page)], DataPage::kUsageMapOwner);
    return {};
}

Result<std::uint32_t> MapPages::Reserve() {
    const auto row = NewUsageMapRow({});
    // Pages are taken in ascending order: the last one is the one being filled.
    const auto open = [&] {
        return DataPageEditor::Open(images_.rbegin()->second, PageNo{images_.rbegin()->first});
    };
    Result<DataPageEditor> editor = open();
    if (!editor.IsOk()) return editor.GetStatus();
    if (!editor->Fits(row.size())) {
        JET_TRY(BeginPage());
        JET_ASSIGN(*editor, open());
    }
    const std::size_t slot = editor->Append(row, 0);
    return RowId{PageNo{images_.rbegin()->first}, static_cast<std::uint8_t>(slot)}.Pointer();
}

Status MapPages::Fill(std::uint32_t pointer, const std::vector<PageNo>& pages) {
    if (pages.empty()) return {};
    const auto emptyRow = NewUsageMapRow({});
    std::vector<std::byte> row(emptyRow.begin(), emptyRow.end());
    const auto capacity = static_cast<std::uint32_t>(8 * (row.size() - GlobalMap::kHead));
    // A window that begins with page 0 is the common form.
    const std::uint32_t start = Raw(pages.back()) < capacity ? 0 : Raw(pages.front()) / 8 * 8;
    if (Raw(pages.back()) - start < capacity) {
        StoreU32(row, 1, start);
        for (const PageNo page : pages) {
            const std::uint32_t bit = Raw(page) - start;
            row[GlobalMap::kHead + bit / 8] |= static_cast<std::byte>(1U << bit % 8);
        }
    } else {
        JET_TRY(FillBitmaps(row, pages));
    }
    const RowId id = RowId::FromPointer(pointer);
    Result<DataPageEditor> editor = DataPageEditor::Open(images_.at(Raw(id.page)), id.page);
    if (!editor.IsOk()) return editor.GetStatus();
    editor->Replace(id.row, row, 0);
    return {};
}

Status MapPages::FillBitmaps(std::vector<std::byte>& row, const std::vector<PageNo>& pages) {
    row[0] = std::byte{1};
    for (std::size_t i = 0; i < pages.size();) {
        const std::uint32_t share = Raw(pages[i]) / GlobalMap::kPagesPerBitmap;
        Image image{};
        GlobalMap::FormatBitmap(image);
        for (; i < pages.size() && Raw(pages[i]) / GlobalMap::kPagesPerBitmap == share; ++i) {
            const std::uint32_t bit = Raw(pages[i]) % GlobalMap::kPagesPerBitmap;
            image[GlobalMap::kBitmapHead + bit / 8] |= static_cast<std::byte>(1U << bit % 8);
        }
        PageNo page{};
        JET_ASSIGN(page, draft_.Take());
        JET_TRY(draft_.Write(page, image));
        StoreU32(row, 1 + 4 * std::size_t{share}, Raw(page));
    }
    return {};
}

Status MapPages::Write() {
    for (const auto& [page, image] : images_) JET_TRY(draft_.Write(PageNo{page}, image));
    return {};
}

}  // namespace jet::compact
