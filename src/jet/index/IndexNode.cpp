#include "jet/index/IndexNode.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::uint8_t kNodeType = 3;
constexpr std::uint8_t kLeafType = 4;
constexpr std::size_t kMask = 27;
constexpr std::size_t kEntries = 480;

}  // namespace

Result<IndexNode> IndexNode::Load(PageRef ref, PageNo table) {
    const Bytes bytes = ref.Bytes();
    IndexPage page;
    JET_ASSIGN(page, IndexPage::Open(ref, table));
    IndexNode node(page.IsLeaf());
    node.level = LoadU8(bytes, 26);
    node.previous = PageNo{LoadU32(bytes, 12)};
    node.next = page.Next();
    node.tail = node.isLeaf ? PageNo{} : page.Tail();
    node.bytes_.reserve(kRoom);
    for (std::size_t i = 0; i < page.Count(); ++i) {
        node.bytes_ += page.Entry(i);
        if (!node.isLeaf) {
            const std::uint32_t child = __builtin_bswap32(Raw(page.Child(i)));
            node.bytes_.append(reinterpret_cast<const char*>(&child), sizeof child);
        }
        node.ends_.push_back(node.bytes_.size());
    }
    node.FindShortest();
    return node;
}

std::string_view IndexNode::Entry(std::size_t i) const {
    return std::string_view(bytes_).substr(Begin(i), ends_[i] - Begin(i) - ChildSize());
}

PageNo IndexNode::Child(std::size_t i) const {
    return PageNo{LoadU32BigEndian(std::as_bytes(std::span(bytes_)), ends_[i] - kChild)};
}

std::size_t IndexNode::LowerBound(std::string_view target) const {
    std::size_t low = 0;
    std::size_t high = Count();
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        if (Entry(middle) < target) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

void IndexNode::Insert(std::size_t at, std::string_view entry, PageNo child) {
    std::string whole(entry);
    if (!isLeaf) {
        const std::uint32_t number = __builtin_bswap32(Raw(child));
        whole.append(reinterpret_cast<const char*>(&number), sizeof number);
    }
    const std::size_t begin = Begin(at);
    bytes_.insert(begin, whole);
    ends_.insert(ends_.begin() + static_cast<std::ptrdiff_t>(at), begin);
    for (std::size_t i = at; i < ends_.size(); ++i) ends_[i] += whole.size();
    shortest_ = std::min(shortest_, entry.size());
}

void IndexNode::Remove(std::size_t at) {
    const bool isShortest = Entry(at).size() == shortest_;
    const std::size_t begin = Begin(at);
    const std::size_t size = ends_[at] - begin;
    bytes_.erase(begin, size);
    ends_.erase(ends_.begin() + static_cast<std::ptrdiff_t>(at));
    for (std::size_t i = at; i < ends_.size(); ++i) ends_[i] -= size;
    if (isShortest) FindShortest();
}

void IndexNode::FindShortest() {
    shortest_ = SIZE_MAX;
    for (std::size_t i = 0; i < Count(); ++i) shortest_ = std::min(shortest_, Entry(i).size());
}

void IndexNode::Rename(std::size_t at, std::string_view entry) {
    const PageNo child = isLeaf ? PageNo{} : Child(at);
    Remove(at);
    Insert(at, entry, child);
}

void IndexNode::MoveFront(std::size_t count, IndexNode& to) {
    for (std::size_t i = 0; i < count; ++i) {
        to.Insert(to.Count(), Entry(i), isLeaf ? PageNo{} : Child(i));
    }
    const std::size_t size = Begin(count);
    bytes_.erase(0, size);
    ends_.erase(ends_.begin(), ends_.begin() + static_cast<std::ptrdiff_t>(count));
    for (std::size_t& end : ends_) end -= size;
    FindShortest();
}

std::size_t IndexNode::Prefix() const {
    if (Count() < 2) return 0;
    // Entries ascend, so what the first and the last share all share. A byte of each entry must
    // be left, and a child number is never cut.
    const std::string_view first = Entry(0);
    const std::string_view last = Entry(Count() - 1);
    const auto differ = std::mismatch(first.begin(), first.end(), last.begin(), last.end());
    return std::min(static_cast<std::size_t>(differ.first - first.begin()), shortest_ - 1);
}

std::size_t IndexNode::SizeWith(std::size_t prefix) const {
    return bytes_.size() - (Count() < 2 ? 0 : prefix * (Count() - 1));
}

bool IndexNode::Fits() const {
    return bytes_.size() <= kRoom || SizeWith(Prefix()) <= kRoom;
}

void IndexNode::Save(MutableBytes page, PageNo table) const {
    // Other programs compress only where they must; a page without a prefix is the common form.
    const std::size_t prefix = bytes_.size() <= kRoom ? 0 : Prefix();
    std::fill(page.begin(), page.end(), std::byte{0});
    page[0] = static_cast<std::byte>(isLeaf ? kLeafType : kNodeType);
    page[1] = std::byte{1};
    StoreU16(page, 2, kRoom - SizeWith(prefix));
    StoreU32(page, 4, Raw(table));
    StoreU32(page, 12, Raw(previous));
    StoreU32(page, 16, Raw(next));
    StoreU32(page, 20, Raw(tail));
    StoreU16(page, 24, prefix);
    page[26] = static_cast<std::byte>(level);
    std::size_t at = 0;
    for (std::size_t i = 0; i < Count(); ++i) {
        const std::size_t skip = i == 0 ? 0 : prefix;
        const std::size_t size = ends_[i] - Begin(i) - skip;
        std::memcpy(page.data() + kEntries + at, bytes_.data() + Begin(i) + skip, size);
        at += size;
        page[kMask + at / 8] |= static_cast<std::byte>(1U << at % 8);
    }
}

}  // namespace jet
