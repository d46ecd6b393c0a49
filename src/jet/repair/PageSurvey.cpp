#include "jet/repair/PageSurvey.h"

#include <algorithm>

#include "jet/page/DataPage.h"
#include "jet/page/GlobalMap.h"
#include "jet/page/UsageMap.h"
#include "jet/write/DataPageEditor.h"

namespace jet::repair {
namespace {

constexpr std::uint8_t kDataType = 1;
constexpr std::uint8_t kDefinitionType = 2;
constexpr std::size_t kOwner = 4;
constexpr std::size_t kOwnedMap = 0x37;  // in a definition
constexpr std::size_t kSmallCache = std::size_t{1} << 20;

}  // namespace

PageSurvey::PageSurvey(const File& file, std::uint32_t pageCount)
    : file_(file), pageCount_(pageCount), nextPage_(pageCount) {}

Status PageSurvey::ReadPage(PageNo page, Image& image) const {
    std::size_t count = 0;
    JET_ASSIGN(count, file_.Read(std::uint64_t{Raw(page)} * kPageSizeJet4, image));
    return count == image.size() ? Status() : Status::Corrupt(PageText(page) + " is cut short");
}

Status PageSurvey::Run() {
    Image image{};
    for (std::uint32_t page = 2; page < pageCount_; ++page) {
        // A page that cannot be read is met again by whoever needs it.
        if (!ReadPage(PageNo{page}, image).IsOk()) continue;
        const std::uint32_t owner = LoadU32(image, kOwner);
        if (LoadU8(image, 0) != kDataType || owner < Raw(kCatalogPage) || owner >= pageCount_) {
            continue;
        }
        pagesByOwner_[owner].push_back(page);
        rowPages_.insert(page);
    }
    if (!PagesOfMap(RowId{GlobalMap::kPage, GlobalMap::kRow}.Pointer(), free_)) free_.clear();
    return {};
}

bool PageSurvey::PagesOfMap(std::uint32_t pointer, std::set<std::uint32_t>& pages) const {
    MendedFile file(file_, pageCount_, std::make_shared<MendedFile::Images>());
    PageCache cache(file, kSmallCache);
    if (!cache.Revalidate().IsOk()) return false;
    Result<UsageMap> map = UsageMap::Open(cache, Format::Jet4, pointer);
    if (!map.IsOk()) return false;
    for (PageNo from{0};;) {
        const Result<std::optional<PageNo>> next = map->Next(from);
        if (next.IsOk() && !*next) return true;
        if (!next.IsOk()) {
            // Bits behind the end are usual in the map of free pages.
            return pointer == RowId{GlobalMap::kPage, GlobalMap::kRow}.Pointer();
        }
        pages.insert(Raw(**next));
        from = PageNo{Raw(**next) + 1};
    }
}

/// Gives a page of rows whose head is damaged the head that it must have had.
bool PageSurvey::MendHead(std::uint32_t page, PageNo table) {
    Image image{};
    if (!ReadPage(PageNo{page}, image).IsOk()) return false;
    image[0] = image[1] = std::byte{1};
    StoreU32(image, kOwner, Raw(table));
    const Result<DataPageEditor> editor = DataPageEditor::Open(image, PageNo{page});
    if (!editor.IsOk() || editor->SlotCount() == 0) return false;
    images_[page] = image;
    return true;
}

PageSurvey::Pages PageSurvey::PagesOf(PageNo table, Bytes definition) {
    std::set<std::uint32_t> mapped;
    Pages pages;
    pages.isMapSound = PagesOfMap(LoadU32(definition, kOwnedMap), mapped);
    for (const std::uint32_t page : pagesByOwner_[Raw(table)]) {
        const bool isGivenBack = pages.isMapSound && !mapped.contains(page) && free_.contains(page);
        if (!isGivenBack) pages.found.insert(page);
    }
    for (const std::uint32_t page : mapped) {
        if (pages.found.contains(page)) continue;
        const bool isOfAnother =
            rowPages_.contains(page) || page <= Raw(kCatalogPage) || images_.contains(page);
        if (!isOfAnother && MendHead(page, table)) {
            pages.found.insert(page);
        } else {
            pages.unreadable.push_back(page);
        }
    }
    return pages;
}

/// The row pointer of a map behind the end of the file that holds these pages.
std::uint32_t PageSurvey::AddMap(const std::set<std::uint32_t>& pages) {
    const PageNo mapPage{nextPage_++};
    std::array<std::byte, GlobalMap::kListSize> row{};
    row[0] = std::byte{1};
    for (const std::uint32_t page : pages) {
        const std::size_t field = 1 + 4 * std::size_t{page / GlobalMap::kPagesPerBitmap};
        if (LoadU32(row, field) == 0) {
            GlobalMap::FormatBitmap(images_[nextPage_]);
            StoreU32(row, field, nextPage_++);
        }
        Image& bitmap = images_[LoadU32(row, field)];
        const std::uint32_t bit = page % GlobalMap::kPagesPerBitmap;
        bitmap[GlobalMap::kBitmapHead + bit / 8] |= static_cast<std::byte>(1U << bit % 8);
    }
    DataPageEditor::Format(images_[Raw(mapPage)], DataPage::kUsageMapOwner);
    Result<DataPageEditor> editor = DataPageEditor::Open(images_[Raw(mapPage)], mapPage);
    const std::size_t slot = editor->Append(row, 0);
    return RowId{mapPage, static_cast<std::uint8_t>(slot)}.Pointer();
}

std::optional<PageSurvey::Pages> PageSurvey::MendTable(PageNo table) {
    if (Raw(table) >= pageCount_ || !mended_.insert(Raw(table)).second) return {};
    Image definition{};
    if (!ReadPage(table, definition).IsOk()) return {};
    if (LoadU8(definition, 0) != kDefinitionType) return {};
    Pages pages = PagesOf(table, definition);
    StoreU32(definition, kOwnedMap, AddMap(pages.found));
    images_[Raw(table)] = definition;
    return pages;
}

std::unique_ptr<File> PageSurvey::Mended() const {
    return std::make_unique<MendedFile>(file_, pageCount_,
                                        std::make_shared<const MendedFile::Images>(images_));
}

}  // namespace jet::repair
