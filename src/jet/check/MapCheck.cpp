#include "jet/check/MapCheck.h"

#include <algorithm>
#include <array>
#include <bit>

#include "jet/check/DataPageCheck.h"
#include "jet/page/Bytes.h"
#include "jet/page/GlobalMap.h"

namespace jet::check {
namespace {

constexpr PageNo kGlobalPage{1};
constexpr std::uint8_t kInline = 0;
constexpr std::uint8_t kBitmapPageType = 5;
constexpr std::size_t kFreeBytes = 2;     // offset of their number on a page of rows
constexpr std::size_t kBitmapHeader = 4;  // bytes
constexpr std::uint32_t kBitmapPages = (kPageSizeJet4 - kBitmapHeader) * 8;
constexpr int kUnwritten = 0;
constexpr int kFormerDefinition = 8;
constexpr int kFormerData = 9;
constexpr int kPageTypes = 10;

// What is to be said of a page; a page type says that a free page still has it.
constexpr int kFine = -1;
constexpr int kLost = -2;

/// What kind of page a type byte stands for.
const char* TypeText(int type) {
    constexpr std::array<const char*, kPageTypes> kNames = {
        "an unwritten page", "a data page",   "a table definition",
        "an index node",     "an index leaf", "a usage map",
        "unknown",           "unknown",       "a former definition",
        "a former data page"};
    return type < kPageTypes ? kNames[static_cast<std::size_t>(type)] : "unknown";
}

/// Calls `each` for every set bit, which stands for the page first + its position.
bool ForEachBit(Bytes bits, std::uint64_t first, const std::function<bool(PageNo)>& each) {
    for (std::size_t i = 0; i < bits.size(); ++i) {
        for (unsigned rest = LoadU8(bits, i); rest != 0; rest &= rest - 1) {
            const std::uint64_t page =
                first + 8 * i + static_cast<std::uint64_t>(std::countr_zero(rest));
            if (page > 0xFFFFFFFF) return false;
            if (!each(PageNo{static_cast<std::uint32_t>(page)})) return false;
        }
    }
    return true;
}

}  // namespace

MapCheck::MapCheck(PageCache& cache, Reporter& report, PageLedger& pages)
    : cache_(cache),
      report_(report),
      pages_(pages),
      globalPage_(pages.AddOwner("the global map")),
      mapRows_(pages.AddOwner("usage maps")),
      bitmaps_(pages.AddOwner("bitmaps of usage maps")) {}

void MapCheck::CheckGlobalPage() {
    pages_.Claim(kGlobalPage, globalPage_);
    const std::string name = PageText(kGlobalPage);
    Result<PageRef> ref = cache_.Read(kGlobalPage);
    Result<DataPage> page =
        ref.IsOk() ? DataPage::Open(*ref, Format::Jet4) : Result<DataPage>(ref.GetStatus());
    if (!page.IsOk()) {
        report_.Error(Subject::Maps, "the global map: " + page.GetStatus().Text());
        return;
    }
    if (page->SlotCount() != 2) {
        report_.Error(Subject::Maps, name + ": the page of the global map has " +
                                         std::to_string(page->SlotCount()) + " rows, not 2");
    }
    CheckPacking(report_, name, ref->Bytes());
    const std::string global = "the global map";
    if (const auto map = Open(RowId{kGlobalPage, 0}.Pointer(), global)) {
        isFree_.resize(pages_.PageCount());
        ForEachPage(*map, global, [&](PageNo number) {
            // Bits of pages behind the end are normally set.
            if (Raw(number) >= isFree_.size()) return false;
            isFree_[Raw(number)] = true;
            return true;
        });
    }
    // Nobody knows what the second map is for; it only must be one.
    const std::string second = "the second global map";
    if (const auto map = Open(RowId{kGlobalPage, 1}.Pointer(), second)) {
        ForEachPage(*map, second, [](PageNo) { return false; });
    }
}

std::optional<UsageMap> MapCheck::Open(std::uint32_t pointer, const std::string& name) {
    const RowId id = RowId::FromPointer(pointer);
    if (!seen_.insert(pointer).second) {
        report_.Error(Subject::Maps,
                      name + ": its usage map on " + RowText(id) + " serves something else too");
        return std::nullopt;
    }
    const bool isGlobal = id.page == kGlobalPage;
    if (!isGlobal && pages_.OwnerOf(id.page) != mapRows_) {
        if (!pages_.Claim(id.page, mapRows_)) return std::nullopt;
        Result<PageRef> ref = cache_.Read(id.page);
        if (ref.IsOk() && DataPage::Open(*ref, Format::Jet4).IsOk()) {
            CheckPacking(report_, PageText(id.page), ref->Bytes());
        }
    }
    Result<UsageMap> map = UsageMap::Open(cache_, Format::Jet4, pointer);
    if (map.IsOk()) {
        CheckReach(*map, id, name);
        return std::move(*map);
    }
    report_.Error(Subject::Maps, name + ": " + map.GetStatus().Text());
    return std::nullopt;
}

/// A list of bitmap pages needs a field for each share of the file. A row that is too short for
/// those of a file that grows, on a page without room for a longer one, ends the growth.
void MapCheck::CheckReach(const UsageMap& map, RowId id, const std::string& name) {
    Result<PageRef> ref = cache_.Read(id.page);
    if (!ref.IsOk()) return;
    const std::size_t size =
        std::min(GlobalMap::kListSize, map.Stored().size() + LoadU16(ref->Bytes(), kFreeBytes));
    const std::uint64_t reach = (size - 1) / 4 * std::uint64_t{kBitmapPages};
    if (reach >= std::min(kMostPages, cache_.PageCount() + kBitmapPages)) return;
    constexpr std::uint64_t kMegabyte = std::uint64_t{1} << 20;
    AddLimit(name + ": its usage map on " + RowText(id) + " reaches no further than " +
             std::to_string(reach * kPageSizeJet4 / kMegabyte) +
             " MB and has no room to be lengthened");
}

Bytes MapCheck::OpenBitmap(PageNo page, const std::string& name, PageRef& ref) {
    Result<PageRef> read = cache_.Read(page);
    if (!read.IsOk()) {
        report_.Error(Subject::Maps, name + ": " + read.GetStatus().Text());
        return {};
    }
    ref = std::move(*read);
    if (LoadU8(ref.Bytes(), 0) != kBitmapPageType) {
        report_.Error(Subject::Maps, name + ": " + PageText(page) + " of its usage map is " +
                                         TypeText(LoadU8(ref.Bytes(), 0)) + ", no bitmap");
        return {};
    }
    return ref.Bytes().subspan(kBitmapHeader);
}

void MapCheck::ForEachPage(const UsageMap& map, const std::string& name,
                           const std::function<bool(PageNo)>& each) {
    const Bytes row = map.Stored();
    if (LoadU8(row, 0) == kInline) {
        ForEachBit(row.subspan(5), LoadU32(row, 1), each);
        return;
    }
    bool goesOn = true;
    for (std::size_t i = 0; 5 + 4 * i <= row.size(); ++i) {
        const PageNo number{LoadU32(row, 1 + 4 * i)};
        if (Raw(number) == 0 || !pages_.Claim(number, bitmaps_)) continue;
        PageRef ref;
        const Bytes bits = OpenBitmap(number, name, ref);
        goesOn = goesOn && ForEachBit(bits, i * kBitmapPages, each);
    }
}

void MapCheck::ClaimPages(std::uint32_t pointer, OwnerId owner) {
    const std::optional<UsageMap> map = Open(pointer, pages_.NameOf(owner));
    if (!map) return;
    // One page behind the end is reported; the bits behind it say the same.
    ForEachPage(*map, pages_.NameOf(owner), [&](PageNo page) {
        if (IsLeftOver(page, pointer)) return true;
        pages_.Claim(page, owner);
        return Raw(page) < pages_.PageCount();
    });
}

void MapCheck::CheckFreeSpace(std::uint32_t pointer, OwnerId owner) {
    const std::string& name = pages_.NameOf(owner);
    const std::optional<UsageMap> map = Open(pointer, name);
    if (!map) return;
    ForEachPage(*map, name, [&](PageNo page) {
        if (IsLeftOver(page, pointer)) return true;
        if (pages_.OwnerOf(page) != owner) {
            report_.Error(Subject::Maps, name + ": its map of pages with room names " +
                                             PageText(page) + ", which is none of its pages");
        }
        return Raw(page) < pages_.PageCount();
    });
}

bool MapCheck::IsLeftOver(PageNo page, std::uint32_t pointer) {
    if (Raw(page) < pages_.PageCount()) return false;
    if (!UsageMap::IsLeftOver(cache_, Format::Jet4, Raw(page))) return false;
    if (leftOvers_.empty() || leftOvers_.back() != pointer) leftOvers_.push_back(pointer);
    return true;
}

void MapCheck::ReportDoubleUse(PageNo page) {
    report_.Error(Subject::Pages, PageText(page) + ": belongs to " +
                                      pages_.NameOf(pages_.OwnerOf(page)) +
                                      " and is free at the same time");
}

void MapCheck::CheckDoubleUse() {
    for (std::uint32_t page = 0; page < isFree_.size(); ++page) {
        if (isFree_[page] && pages_.OwnerOf(PageNo{page}) != OwnerId::Nobody) {
            ReportDoubleUse(PageNo{page});
        }
    }
}

int MapCheck::StateOf(PageNo page) {
    const OwnerId owner = pages_.OwnerOf(page);
    if (!isFree_[Raw(page)]) return owner == OwnerId::Nobody ? kLost : kFine;
    if (owner != OwnerId::Nobody) {
        ReportDoubleUse(page);
        return kFine;
    }
    Result<PageRef> ref = cache_.ReadOnce(page);
    if (!ref.IsOk()) {
        report_.Error(Subject::Pages, ref.GetStatus().Text());
        return kFine;
    }
    const int type = LoadU8(ref->Bytes(), 0);
    return type == kUnwritten || type == kFormerDefinition || type == kFormerData ? kFine : type;
}

void MapCheck::CheckAccounting() {
    if (isFree_.empty()) return;
    // Neighbours of the same state make one finding.
    int state = kFine;
    std::uint32_t begin = 0;
    for (std::uint32_t page = 0; page <= isFree_.size() && !report_.IsStopped(); ++page) {
        const int next = page < isFree_.size() ? StateOf(PageNo{page}) : kFine;
        if (next == state) continue;
        if (state != kFine) WarnOf(begin, page, state);
        state = next;
        begin = page;
    }
}

void MapCheck::WarnOf(std::uint32_t begin, std::uint32_t end, int state) {
    const std::string pages =
        end - begin == 1 ? PageText(PageNo{begin})
                         : "pages " + std::to_string(begin) + " to " + std::to_string(end - 1);
    report_.Warn(Subject::Pages,
                 pages + (state == kLost ? std::string(": neither free nor in use by anything")
                                         : ": free, and still of type " + std::to_string(state) +
                                               " (" + TypeText(state) + ")"));
}

}  // namespace jet::check
