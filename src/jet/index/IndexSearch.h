#pragma once

#include <string>
#include <string_view>

#include "jet/page/Bytes.h"
#include "jet/Status.h"

namespace jet {

/// Searches one index page (Jet 4) in its stored form; see IndexPage for the layout. The page is
/// not taken apart: of the entries only those that a look-up passes are found, through the mask.
/// Borrows the page's bytes.
class IndexSearch {
public:
    /// An entry by where its stored bytes lie among the entries; empty behind the last one.
    struct Place {
        std::size_t begin = 0;
        std::size_t end = 0;
        [[nodiscard]] bool IsEnd() const { return begin == end; }
    };

    IndexSearch() = default;
    /// Fails when the page is no index page of `table` or its mask is impossible.
    [[nodiscard]] static Result<IndexSearch> Open(Bytes page, PageNo number, PageNo table);

    [[nodiscard]] bool IsLeaf() const { return isLeaf_; }
    [[nodiscard]] PageNo Previous() const { return PageNo{LoadU32(page_, 12)}; }
    [[nodiscard]] PageNo Next() const { return PageNo{LoadU32(page_, 16)}; }
    /// The child behind all entries; 0 = none.
    [[nodiscard]] PageNo Tail() const { return PageNo{LoadU32(page_, 20)}; }
    /// Bytes that all entries take as they are stored.
    [[nodiscard]] std::size_t Size() const { return size_; }
    /// Bytes of the first entry that the others have too, and are stored without.
    [[nodiscard]] std::size_t Prefix() const { return prefix_; }

    /// True when `entry` begins with the prefix. REQUIRES: Size() > 0.
    [[nodiscard]] bool SharesPrefix(std::string_view entry) const {
        return entry.substr(0, prefix_) == std::string_view(Entries(), prefix_);
    }

    /// The entry that begins at an offset. REQUIRES: one ends there, or it is 0.
    [[nodiscard]] Place At(std::size_t begin) const;
    /// The entry in front of another. REQUIRES: place.begin > 0.
    [[nodiscard]] Place Before(Place place) const {
        return {EndAtOrBefore(place.begin - 1), place.begin};
    }
    /// The first entry that is not below `target`.
    [[nodiscard]] Place LowerBound(std::string_view target) const;

    // REQUIRES for the rest: !place.IsEnd().
    /// Key, page and row, into memory that is used again.
    void Read(Place place, std::string& entry) const;
    /// True when key, page and row are these.
    [[nodiscard]] bool Equals(Place place, std::string_view entry) const {
        return SizeOf(place) == entry.size() && Compare(place, entry) == 0;
    }
    [[nodiscard]] bool HasKey(Place place, std::string_view key) const;
    /// REQUIRES: !IsLeaf().
    [[nodiscard]] PageNo Child(Place place) const;

    static constexpr std::size_t kEntries = 480;  // offset of the first entry on the page
    static constexpr std::size_t kRoom = 3616;    // bytes for entries
    static constexpr std::size_t kMask = 27;      // offset of the mask
    static constexpr std::size_t kMaskSize = 453;
    static constexpr std::size_t kRowSize = 4;    // page and row behind the key
    static constexpr std::size_t kChildSize = 4;  // behind those in a node

private:
    /// The least end of an entry that is not below `from`. REQUIRES: there is one.
    [[nodiscard]] std::size_t EndAtOrBehind(std::size_t from) const;
    /// The greatest end of an entry up to `from`; 0 when there is none.
    [[nodiscard]] std::size_t EndAtOrBefore(std::size_t from) const;
    [[nodiscard]] bool IsMaskSound() const;
    /// Bytes of the entry's key, page and row.
    [[nodiscard]] std::size_t SizeOf(Place place) const;
    /// Compares the first bytes of the entry with `target`: 0 when they are the same as far as
    /// both go.
    [[nodiscard]] int Compare(Place place, std::string_view target) const;
    [[nodiscard]] const char* Entries() const {
        return reinterpret_cast<const char*>(page_.data() + kEntries);
    }

    Bytes page_;
    bool isLeaf_ = false;
    std::size_t prefix_ = 0;
    std::size_t size_ = 0;
};

}  // namespace jet
