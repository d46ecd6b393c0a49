#pragma once

#include <optional>
#include <string>
#include <vector>

#include "jet/page/PageCache.h"
#include "jet/Status.h"

namespace jet {

/// View of one node or leaf of an index (Jet 4).
///
///   +0   u8    3 node, 4 leaf        +24  u16    prefix length
///   +4   u32   table definition      +27  453    mask: bit k set = an entry ends at 480 + k
///   +12  u32   previous page, same   +480 3616   entries; all but the first are stored without
///   +16  u32   next page    level                the prefix that they share with it
///   +20  u32   node: last child
/// Entry: key, page u24 and row u8 of the table row; in a node then the child page u32, all
/// most significant byte first.
class IndexPage {
public:
    IndexPage() = default;
    /// Fails when the page is no index page of `table` or its mask is impossible.
    [[nodiscard]] static Result<IndexPage> Open(PageRef page, PageNo table);

    [[nodiscard]] PageNo Number() const { return page_.Number(); }
    [[nodiscard]] bool IsLeaf() const;
    [[nodiscard]] PageNo Previous() const;
    [[nodiscard]] PageNo Next() const;
    /// The child behind all entries; 0 = none.
    [[nodiscard]] PageNo Tail() const;
    [[nodiscard]] std::size_t Count() const { return ends_.size(); }
    /// Bytes behind the entries: as the page states them and as they are.
    [[nodiscard]] std::size_t StatedFree() const;
    [[nodiscard]] std::size_t Free() const;

    /// Key, page and row of an entry, the prefix included; without a node's child number.
    [[nodiscard]] std::string Entry(std::size_t i) const;
    /// REQUIRES: !IsLeaf().
    [[nodiscard]] PageNo Child(std::size_t i) const;
    /// Position of the first entry that is not below `target`; Count() when there is none.
    [[nodiscard]] std::size_t LowerBound(const std::string& target) const;

private:
    [[nodiscard]] Bytes Stored(std::size_t i) const;
    [[nodiscard]] std::size_t TrailerSize() const;
    [[nodiscard]] bool IsBelow(std::size_t i, const std::string& target) const;

    PageRef page_;
    std::size_t prefix_ = 0;
    std::vector<std::uint16_t> ends_;  // offsets behind each entry, from the first entry on
};

}  // namespace jet
