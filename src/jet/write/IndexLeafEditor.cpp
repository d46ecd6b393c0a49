#include "jet/write/IndexLeafEditor.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::size_t kMask = IndexSearch::kMask;
constexpr std::size_t kEntries = IndexSearch::kEntries;
// Bits of the mask that are moved at a time: as many as a word holds from any bit of a byte on.
constexpr std::size_t kStep = 56;

}  // namespace

bool IndexLeafEditor::CanInsert(const IndexSearch& search, IndexSearch::Place place,
                                std::string_view entry) {
    if (!search.IsLeaf() || search.Size() == 0) return false;
    const std::size_t prefix = search.Prefix();
    if (search.Size() + entry.size() - std::min(prefix, entry.size()) > IndexSearch::kRoom) {
        return false;
    }
    if (prefix == 0) return true;
    return place.begin > 0 && entry.size() > prefix && search.SharesPrefix(entry);
}

void IndexLeafEditor::Insert(IndexSearch::Place place, std::string_view entry) {
    const std::string_view stored = entry.substr(prefix_);
    std::byte* at = page_.data() + kEntries + place.begin;
    std::memmove(at + stored.size(), at, size_ - place.begin);
    std::memcpy(at, stored.data(), stored.size());
    MoveEndsUp(place.begin, stored.size());
    size_ += stored.size();
    StoreFree();
}

bool IndexLeafEditor::CanRemove(const IndexSearch& search, IndexSearch::Place place) {
    if (place.begin > 0) return search.IsLeaf();
    return search.IsLeaf() && place.end < search.Size() && place.end > search.Prefix();
}

void IndexLeafEditor::Remove(IndexSearch::Place place) {
    // What a first entry shares with the others stays for the next one.
    const std::size_t begin = place.begin == 0 ? prefix_ : place.begin;
    const std::size_t count = place.end - begin;
    std::byte* at = page_.data() + kEntries + begin;
    std::memmove(at, at + count, size_ - place.end);
    std::fill_n(page_.data() + kEntries + size_ - count, count, std::byte{0});
    MoveEndsDown(place.end, count);
    size_ -= count;
    StoreFree();
}

void IndexLeafEditor::StoreFree() {
    StoreU16(page_, 2, IndexSearch::kRoom - size_);
}

/// At least 57 bits of the mask.
std::uint64_t IndexLeafEditor::Ends(std::size_t from) const {
    return Load<std::uint64_t>(page_, kMask + from / 8) >> from % 8;
}

/// Puts up to 56 bits into the mask.
void IndexLeafEditor::SetEnds(std::size_t from, std::size_t count, std::uint64_t ends) {
    const std::uint64_t mask = (std::uint64_t{1} << count) - 1;
    auto word = Load<std::uint64_t>(page_, kMask + from / 8);
    word = (word & ~(mask << from % 8)) | (ends & mask) << from % 8;
    Store(page_, kMask + from / 8, word);
}

/// Makes room for an entry of `by` bytes behind an offset, with its end.
void IndexLeafEditor::MoveEndsUp(std::size_t behind, std::size_t by) {
    for (std::size_t end = size_; end > behind;) {
        const std::size_t count = std::min(kStep, end - behind);
        end -= count;
        SetEnds(end + 1 + by, count, Ends(end + 1));
    }
    for (std::size_t at = 0; at < by; at += kStep) {
        SetEnds(behind + 1 + at, std::min(kStep, by - at), 0);
    }
    SetEnds(behind + by, 1, 1);
}

/// Closes the room of `by` bytes in front of an end, with that end.
void IndexLeafEditor::MoveEndsDown(std::size_t behind, std::size_t by) {
    for (std::size_t at = behind; at < size_; at += kStep) {
        SetEnds(at + 1 - by, std::min(kStep, size_ - at), Ends(at + 1));
    }
    for (std::size_t at = 0; at < by; at += kStep) {
        SetEnds(size_ - by + 1 + at, std::min(kStep, by - at), 0);
    }
}

}  // namespace jet
