#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "jet/index/IndexPage.h"
#include "jet/page/Bytes.h"
#include "jet/Status.h"

namespace jet {

/// One index page taken apart to be changed (Jet 4); see IndexPage for its layout. Entries are
/// held without prefix compression: key, page and row, and in a node the child behind them.
class IndexNode {
public:
    static constexpr std::size_t kRoom = 3616;  // bytes for entries on a page
    static constexpr std::size_t kChild = 4;    // bytes of a node's child number

    explicit IndexNode(bool leaf) : isLeaf(leaf) {}
    [[nodiscard]] static Result<IndexNode> Load(PageRef page, PageNo table);

    [[nodiscard]] std::size_t Count() const { return ends_.size(); }
    /// Key, page and row.
    [[nodiscard]] std::string_view Entry(std::size_t i) const;
    [[nodiscard]] PageNo Child(std::size_t i) const;
    /// Position of the first entry that is not below `target`.
    [[nodiscard]] std::size_t LowerBound(std::string_view target) const;

    void Insert(std::size_t at, std::string_view entry, PageNo child = {});
    void Remove(std::size_t at);
    /// Replaces an entry's key, page and row.
    void Rename(std::size_t at, std::string_view entry);
    /// Moves the first `count` entries to the end of `to`.
    void MoveFront(std::size_t count, IndexNode& to);

    /// True when the entries fit a page, with a common prefix where they need one.
    [[nodiscard]] bool Fits() const;
    /// Writes the page whole. REQUIRES: Fits().
    void Save(MutableBytes page, PageNo table) const;

    bool isLeaf;
    std::uint8_t level = 0;  // 0: leaf
    PageNo previous{};       // of the same level; 0 = none
    PageNo next{};
    PageNo tail{};  // node: the child behind all entries

private:
    [[nodiscard]] std::size_t Begin(std::size_t i) const { return i == 0 ? 0 : ends_[i - 1]; }
    [[nodiscard]] std::size_t ChildSize() const { return isLeaf ? 0 : kChild; }
    [[nodiscard]] std::size_t Prefix() const;
    [[nodiscard]] std::size_t SizeWith(std::size_t prefix) const;
    void FindShortest();

    std::string bytes_;
    std::vector<std::size_t> ends_;
    std::size_t shortest_ = SIZE_MAX;  // bytes of the shortest entry
};

}  // namespace jet
