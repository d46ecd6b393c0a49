#pragma once

#include <string_view>

#include "jet/index/IndexSearch.h"

namespace jet {

/// Changes one entry of an index leaf where it lies (Jet 4), which is most of what an index has to
/// do. What needs the page taken apart is left to IndexNode: a page that is empty, overflows or
/// needs a shorter prefix. Borrows the bytes of a page that a transaction edits.
class IndexLeafEditor {
public:
    /// `search` is of the same leaf, before it was edited.
    IndexLeafEditor(MutableBytes page, const IndexSearch& search)
        : page_(page), size_(search.Size()), prefix_(search.Prefix()) {}

    /// True when `entry` can be put in front of `place`.
    [[nodiscard]] static bool CanInsert(const IndexSearch& search, IndexSearch::Place place,
                                        std::string_view entry);
    /// REQUIRES: CanInsert(search, place, entry).
    void Insert(IndexSearch::Place place, std::string_view entry);

    /// True when the entry at `place` can be taken out. A last one may be named by a node.
    [[nodiscard]] static bool CanRemove(const IndexSearch& search, IndexSearch::Place place);
    /// REQUIRES: CanRemove(search, place).
    void Remove(IndexSearch::Place place);

private:
    void MoveEndsUp(std::size_t behind, std::size_t by);
    void MoveEndsDown(std::size_t behind, std::size_t by);
    [[nodiscard]] std::uint64_t Ends(std::size_t from) const;
    void SetEnds(std::size_t from, std::size_t count, std::uint64_t ends);
    void StoreFree();

    MutableBytes page_;
    std::size_t size_;  // bytes of all entries
    std::size_t prefix_;
};

}  // namespace jet
