#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/compact/Draft.h"
#include "jet/index/IndexNode.h"

namespace jet::compact {

/// Builds the tree of an index from its entries in ascending order, with full pages. Borrows the
/// draft.
class IndexBuilder {
public:
    IndexBuilder(Draft& draft, PageNo table) : draft_(draft), table_(table) {}

    /// Corrupt when the entry is not greater than the one before.
    Status Add(std::string_view key, RowId row);
    /// Writes what is left and returns the root. To be called once.
    [[nodiscard]] Result<PageNo> Finish();

    /// All pages of the tree.
    [[nodiscard]] const std::vector<PageNo>& Pages() const { return pages_; }
    [[nodiscard]] std::uint32_t DistinctKeys() const { return distinct_; }

private:
    struct Child {
        std::string last;  // the last entry below it
        PageNo page{};
    };
    /// The page that is being filled on one level of the tree.
    struct Level {
        IndexNode node;
        PageNo page{};
        // The child that came last: it becomes an entry when there is one behind it, else the tail.
        std::optional<Child> pending;
    };

    [[nodiscard]] Result<PageNo> Take();
    Status AddLeafEntry(std::string_view entry);
    Status AddChild(std::size_t depth, Child child);
    /// Writes the full page of a level and begins the next one.
    Status Turn(std::size_t depth);
    Status Save(const Level& level);

    Draft& draft_;
    PageNo table_;
    std::vector<Level> levels_;  // the leaves in front
    std::vector<PageNo> pages_;
    std::string last_;
    std::uint32_t distinct_ = 0;
};

}  // namespace jet::compact
