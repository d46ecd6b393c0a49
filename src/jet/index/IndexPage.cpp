#include "jet/index/IndexPage.h"

#include <algorithm>
#include <bit>

#include "jet/page/Bytes.h"

namespace jet {
namespace {

constexpr std::uint8_t kNodeType = 3;
constexpr std::uint8_t kLeafType = 4;
constexpr std::size_t kMask = 27;
constexpr std::size_t kMaskSize = 453;
constexpr std::size_t kEntries = 480;
constexpr std::size_t kEntryBytes = 3616;
constexpr std::size_t kRowSize = 4;    // page and row behind the key
constexpr std::size_t kChildSize = 4;  // behind those in a node

}  // namespace

Result<IndexPage> IndexPage::Open(PageRef page, PageNo table) {
    const Bytes bytes = page.Bytes();
    const std::string name = "index " + PageText(page.Number());
    const std::uint8_t type = LoadU8(bytes, 0);
    if ((type != kNodeType && type != kLeafType) || LoadU32(bytes, 4) != Raw(table)) {
        return Status::Corrupt(name + " does not belong to the index");
    }
    IndexPage view;
    view.prefix_ = LoadU16(bytes, 24);
    for (std::size_t i = 0; i < kMaskSize; ++i) {
        for (unsigned rest = LoadU8(bytes, kMask + i); rest != 0; rest &= rest - 1) {
            const auto end = 8 * i + static_cast<std::size_t>(std::countr_zero(rest));
            const std::size_t begin = view.ends_.empty() ? 0 : view.ends_.back();
            const std::size_t size =
                end - std::min(begin, end) + (view.ends_.empty() ? 0 : view.prefix_);
            const std::size_t least = 1 + kRowSize + (type == kNodeType ? kChildSize : 0);
            const bool childFits = type == kLeafType || end - std::min(begin, end) >= kChildSize;
            if (end > kEntryBytes || end <= begin || size < least || !childFits) {
                return Status::Corrupt(name + " has an impossible entry at offset " +
                                       std::to_string(kEntries + begin));
            }
            view.ends_.push_back(static_cast<std::uint16_t>(end));
        }
    }
    if (!view.ends_.empty() && view.prefix_ > view.ends_.front()) {
        return Status::Corrupt(name + " has an impossible prefix");
    }
    view.page_ = std::move(page);
    return view;
}

bool IndexPage::IsLeaf() const {
    return LoadU8(page_.Bytes(), 0) == kLeafType;
}
PageNo IndexPage::Previous() const {
    return PageNo{LoadU32(page_.Bytes(), 12)};
}
PageNo IndexPage::Next() const {
    return PageNo{LoadU32(page_.Bytes(), 16)};
}
PageNo IndexPage::Tail() const {
    return PageNo{LoadU32(page_.Bytes(), 20)};
}

std::size_t IndexPage::StatedFree() const {
    return LoadU16(page_.Bytes(), 2);
}
std::size_t IndexPage::Free() const {
    return kEntryBytes - (ends_.empty() ? 0 : ends_.back());
}

std::size_t IndexPage::TrailerSize() const {
    return IsLeaf() ? 0 : kChildSize;
}

Bytes IndexPage::Stored(std::size_t i) const {
    const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
    return page_.Bytes().subspan(kEntries + begin, ends_[i] - begin);
}

std::string IndexPage::Entry(std::size_t i) const {
    const auto* first = reinterpret_cast<const char*>(page_.Bytes().data() + kEntries);
    const Bytes stored = Stored(i);
    std::string entry(first, i == 0 ? 0 : prefix_);
    entry.append(reinterpret_cast<const char*>(stored.data()), stored.size() - TrailerSize());
    return entry;
}

PageNo IndexPage::Child(std::size_t i) const {
    const Bytes stored = Stored(i);
    return PageNo{LoadU32BigEndian(stored, stored.size() - kChildSize)};
}

bool IndexPage::IsBelow(std::size_t i, const std::string& target) const {
    const Bytes bytes = page_.Bytes();
    const std::size_t shared = i == 0 ? 0 : prefix_;
    const std::size_t common = std::min(shared, target.size());
    if (const int order = std::memcmp(bytes.data() + kEntries, target.data(), common); order != 0) {
        return order < 0;
    }
    if (common == target.size()) return false;
    const Bytes stored = Stored(i);
    const std::size_t size = stored.size() - TrailerSize();
    const std::size_t rest = target.size() - common;
    const int order = std::memcmp(stored.data(), target.data() + common, std::min(size, rest));
    return order != 0 ? order < 0 : size < rest;
}

std::size_t IndexPage::LowerBound(const std::string& target) const {
    std::size_t low = 0;
    std::size_t high = Count();
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        if (IsBelow(middle, target)) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

}  // namespace jet
