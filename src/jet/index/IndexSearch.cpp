#include "jet/index/IndexSearch.h"

#include <algorithm>
#include <bit>

namespace jet {
namespace {

constexpr std::uint8_t kNodeType = 3;
constexpr std::uint8_t kLeafType = 4;

using Word = std::uint64_t;
constexpr std::size_t kWordBits = 64;

}  // namespace

Result<IndexSearch> IndexSearch::Open(Bytes page, PageNo number, PageNo table) {
    const std::uint8_t type = LoadU8(page, 0);
    if ((type != kNodeType && type != kLeafType) || LoadU32(page, 4) != Raw(table)) {
        return Status::Corrupt("index " + PageText(number) + " does not belong to the index");
    }
    IndexSearch search;
    search.page_ = page;
    search.isLeaf_ = type == kLeafType;
    search.size_ = search.EndAtOrBefore(kRoom);
    if (search.size_ > 0) search.prefix_ = LoadU16(page, 24);
    if (!search.IsMaskSound()) {
        return Status::Corrupt("index " + PageText(number) + " has an impossible entry");
    }
    return search;
}

/// Every entry must hold at least a flag byte, a row and in a node a child: their ends must not lie
/// too near to each other. Looks at 56 bits and the 8 before them at a time.
bool IndexSearch::IsMaskSound() const {
    constexpr std::size_t kStep = 7;  // bytes
    const std::size_t trailer = isLeaf_ ? 0 : kChildSize;
    const std::size_t least = 1 + kRowSize + trailer;
    if (LoadU8(page_, kMask + kMaskSize - 1) > 1 || (LoadU8(page_, kMask) & 1U) != 0) return false;
    if (size_ == 0) return true;
    const std::size_t first = EndAtOrBehind(1);
    if (first < least || prefix_ > first) return false;
    const std::size_t stored = std::max(least - std::min(prefix_, least), trailer);
    if (stored < 2) return true;
    // Shifts that spread a bit over as many places as must stay empty behind it.
    const std::size_t spread = stored - 1;  // at most 8
    const std::size_t one = std::min<std::size_t>(1, spread - 1);
    const std::size_t two = std::min<std::size_t>(2, spread - 1 - one);
    const std::size_t four = spread - 1 - one - two;
    Word clashes = 0;
    for (std::size_t at = 0; at * 8 <= size_; at += kStep) {
        Word word = 0;
        std::memcpy(&word, page_.data() + kMask + at, std::min(sizeof word, kMaskSize - at));
        Word behind = word | word << one;
        behind |= behind << two;
        behind |= behind << four;
        clashes |= word & behind << 1;
    }
    return clashes == 0;
}

std::size_t IndexSearch::EndAtOrBehind(std::size_t from) const {
    // Bits of entries, which are read along at the mask's end, lie behind the one looked for.
    for (std::size_t at = from;; at = (at / 8 + 8) * 8) {
        const Word word = Load<Word>(page_, kMask + at / 8) >> at % 8;
        if (word != 0) return at + static_cast<std::size_t>(std::countr_zero(word));
    }
}

std::size_t IndexSearch::EndAtOrBefore(std::size_t from) const {
    for (std::size_t at = from;;) {
        // Bits of the head, which are read along at the mask's beginning, lie in front of bit 0.
        const Word word = Load<Word>(page_, kMask + at / 8 + 1 - sizeof(Word)) << (7 - at % 8);
        const auto distance = static_cast<std::size_t>(std::countl_zero(word));
        if (distance < kWordBits) return at - std::min(at, distance);
        const std::size_t seen = kWordBits - (7 - at % 8);
        if (at < seen) return 0;
        at -= seen;
    }
}

IndexSearch::Place IndexSearch::At(std::size_t begin) const {
    return {begin, begin == size_ ? begin : EndAtOrBehind(begin + 1)};
}

IndexSearch::Place IndexSearch::LowerBound(std::string_view target) const {
    std::size_t low = 0;
    std::size_t high = size_;
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        const Place place{EndAtOrBefore(middle), EndAtOrBehind(middle + 1)};
        const int order = Compare(place, target);
        if (order < 0 || (order == 0 && SizeOf(place) < target.size())) {
            low = place.end;
        } else {
            high = place.begin;
        }
    }
    return At(low);
}

std::size_t IndexSearch::SizeOf(Place place) const {
    const std::size_t stored = place.end - place.begin - (isLeaf_ ? 0 : kChildSize);
    return stored + (place.begin == 0 ? 0 : prefix_);
}

int IndexSearch::Compare(Place place, std::string_view target) const {
    const std::size_t size = std::min(SizeOf(place), target.size());
    const std::size_t shared = std::min(place.begin == 0 ? 0 : prefix_, size);
    const int order = std::memcmp(Entries(), target.data(), shared);
    if (order != 0) return order;
    return std::memcmp(Entries() + place.begin, target.data() + shared, size - shared);
}

void IndexSearch::Read(Place place, std::string& entry) const {
    const std::size_t shared = place.begin == 0 ? 0 : prefix_;
    entry.assign(Entries(), shared);
    entry.append(Entries() + place.begin, SizeOf(place) - shared);
}

bool IndexSearch::HasKey(Place place, std::string_view key) const {
    return SizeOf(place) == key.size() + kRowSize && Compare(place, key) == 0;
}

PageNo IndexSearch::Child(Place place) const {
    return PageNo{LoadU32BigEndian(page_, kEntries + place.end - kChildSize)};
}

}  // namespace jet
