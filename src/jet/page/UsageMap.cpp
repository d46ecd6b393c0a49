#include "jet/page/UsageMap.h"

#include <bit>

#include "jet/page/Bytes.h"
#include "jet/page/GlobalMap.h"

namespace jet {
namespace {

constexpr std::uint8_t kInline = 0;
constexpr std::uint8_t kReference = 1;
constexpr std::uint8_t kBitmapPageType = 5;
constexpr std::size_t kHead = 5;          // bytes in front of an inline map's bits
constexpr std::size_t kBitmapHeader = 4;  // bytes

}  // namespace

Result<UsageMap> UsageMap::Open(PageCache& cache, Format format, std::uint32_t pointer) {
    UsageMap map;
    map.cache_ = &cache;
    map.format_ = format;
    if (pointer == 0) return map;
    const RowId id = RowId::FromPointer(pointer);
    PageRef page;
    JET_ASSIGN(page, cache.Read(id.page));
    JET_ASSIGN(map.page_, DataPage::Open(std::move(page), format));
    const std::string name = "usage map on " + RowText(id);
    if (map.page_.Owner() != DataPage::kUsageMapOwner && Raw(id.page) != 1) {
        return Status::Corrupt(name + ": not a page of usage maps");
    }
    if (id.row >= map.page_.SlotCount()) return Status::Corrupt(name + ": no such row");
    Slot slot;
    JET_ASSIGN(slot, map.page_.At(id.row));
    if (slot.isDeleted || slot.isMoved || slot.bytes.size() < kHead ||
        LoadU8(slot.bytes, 0) > kReference) {
        return Status::Corrupt(name + ": not a usage map");
    }
    map.row_ = slot.bytes;
    return map;
}

std::optional<std::uint64_t> UsageMap::NextBit(Bytes bits, std::uint64_t first,
                                               std::uint64_t from) {
    std::uint64_t bit = from > first ? from - first : 0;
    while (bit / 8 < bits.size()) {
        const unsigned rest = LoadU8(bits, bit / 8) >> (bit % 8);
        if (rest != 0) return first + bit + static_cast<std::uint64_t>(std::countr_zero(rest));
        bit = (bit / 8 + 1) * 8;
    }
    return std::nullopt;
}

Result<Bytes> UsageMap::BitmapPage(std::uint32_t index) {
    const std::uint32_t number = LoadU32(row_, 1 + 4 * std::size_t{index});
    if (number == 0) return Bytes{};
    if (!bitmap_ || bitmap_.Number() != PageNo{number}) {
        JET_ASSIGN(bitmap_, cache_->Read(PageNo{number}));
    }
    if (LoadU8(bitmap_.Bytes(), 0) != kBitmapPageType) {
        return Status::Corrupt(PageText(PageNo{number}) + " is not a page of a usage map");
    }
    return bitmap_.Bytes().subspan(kBitmapHeader);
}

std::uint64_t UsageMap::Share() const {
    return (cache_->PageSize() - kBitmapHeader) * 8;
}

Result<std::optional<std::uint64_t>> UsageMap::NextStored(std::uint64_t from) {
    std::optional<std::uint64_t> page;
    if (row_.empty()) return page;
    if (LoadU8(row_, 0) == kInline) return NextBit(row_.subspan(kHead), LoadU32(row_, 1), from);
    const auto shares = static_cast<std::uint32_t>((row_.size() - 1) / 4);
    for (auto i = static_cast<std::uint32_t>(from / Share()); i < shares && !page; ++i) {
        reading_ = i;
        Bytes bits;
        JET_ASSIGN(bits, BitmapPage(i));
        page = NextBit(bits, i * Share(), from);
    }
    return page;
}

Result<std::optional<PageNo>> UsageMap::Next(PageNo from) {
    std::optional<std::uint64_t> page;
    JET_ASSIGN(page, NextStored(Raw(from)));
    while (page && *page >= cache_->PageCount()) {
        if (!IsLeftOver(*cache_, format_, *page)) {
            return Status::Corrupt("the usage map on " + PageText(page_.Number()) + " names page " +
                                   std::to_string(*page) +
                                   ", which lies behind the end of the file");
        }
        JET_ASSIGN(page, NextStored(*page + 1));
    }
    if (!page) return std::optional<PageNo>();
    return std::optional(PageNo{static_cast<std::uint32_t>(*page)});
}

Result<bool> UsageMap::HoldsOrEndsBefore(std::uint64_t page) {
    if (LoadU8(row_, 0) == kInline) {
        return page >= LoadU32(row_, 1) + 8 * std::uint64_t{row_.size() - kHead} ||
               NextBit(row_.subspan(kHead), LoadU32(row_, 1), page) == page;
    }
    auto last = static_cast<std::uint32_t>((row_.size() - 1) / 4);
    while (last > 0 && LoadU32(row_, 1 + 4 * (std::size_t{last} - 1)) == 0) --last;
    const auto share = static_cast<std::uint32_t>(page / Share());
    if (share >= last) return true;
    Bytes bits;
    JET_ASSIGN(bits, BitmapPage(share));
    return NextBit(bits, share * Share(), page) == page;
}

bool UsageMap::IsLeftOver(PageCache& cache, Format format, std::uint64_t page) {
    // The map of free pages grows by as many pages at a time.
    constexpr std::uint64_t kNear = 32;
    if (page < cache.PageCount() + kNear) return false;
    if (page >= kMostPages) return true;
    Result<UsageMap> free = Open(cache, format, RowId{GlobalMap::kPage, GlobalMap::kRow}.Pointer());
    if (!free.IsOk()) return false;
    const Result<bool> isFree = free->HoldsOrEndsBefore(page);
    return isFree.IsOk() && *isFree;
}

std::optional<PageNo> UsageMap::BehindDamage() const {
    const std::uint64_t next = (std::uint64_t{reading_} + 1) * Share();
    if (row_.empty() || LoadU8(row_, 0) == kInline || next >= cache_->PageCount()) {
        return std::nullopt;
    }
    return PageNo{static_cast<std::uint32_t>(next)};
}

}  // namespace jet
