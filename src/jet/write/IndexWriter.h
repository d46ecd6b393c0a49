#pragma once

#include <string>
#include <vector>

#include "jet/index/IndexNode.h"
#include "jet/index/IndexSearch.h"
#include "jet/Status.h"
#include "jet/TableDef.h"

namespace jet {

/// Inserts into and removes from one index (Jet 4), inside a transaction of the cache.
///
/// Invariants that hold between calls: every node entry equals the last leaf entry below its
/// child; the last child of a node is its tail, except that an only child is an ordinary entry;
/// all pages of a level are linked left to right; the root keeps its page. A change that makes a
/// page overflow first splits it and then begins again from the root, so that no path has to be
/// mended. A change that concerns its leaf alone is made in place.
class IndexWriter {
public:
    /// Borrows the cache. `table` is the page of the table's definition.
    IndexWriter(PageCache& cache, PageNo table, const RealIndex& index)
        : cache_(cache), table_(table), root_(index.root), map_(index.ownedMap) {}

    /// Longest entry, in bytes: a page must hold two of them.
    static constexpr std::size_t kMostEntry = 1780;

    /// True when no other row has the key. TooLong when the key is longer than an entry may be;
    /// Duplicate, and nothing is inserted, when `isUnique` and another row has it.
    [[nodiscard]] Result<bool> Insert(const std::string& key, RowId row, bool isUnique);
    /// True when another row has an entry with the same key. Corrupt when the entry is missing.
    [[nodiscard]] Result<bool> Remove(const std::string& key, RowId row);

private:
    /// A page on the way from the root to a leaf, and the place of its child on that way: an
    /// entry's position, or the number of entries for the tail.
    struct Step {
        PageNo page{};
        IndexNode node;
        std::size_t position = 0;
    };
    using Path = std::vector<Step>;

    /// The leaf where an entry is or belongs. Good until the index is changed.
    struct Spot {
        PageRef leaf;
        IndexSearch search;        // of the leaf
        IndexSearch::Place place;  // of the first entry that is not below the one looked for
        bool isBelowNodes = true;  // the nodes need not be changed for it
        bool isOnTail = true;      // no node names the last entry of the leaf
    };
    [[nodiscard]] Result<Spot> Find(const std::string& entry) const;
    [[nodiscard]] Result<bool> HasKey(const Spot& spot, const std::string& key) const;
    /// The same beside the entry that has been found.
    [[nodiscard]] Result<bool> HasTwin(const Spot& spot, const std::string& key) const;
    [[nodiscard]] Result<bool> InsertInPlace(Spot& spot, const std::string& entry);
    [[nodiscard]] Result<bool> RemoveInPlace(Spot& spot);

    [[nodiscard]] Result<IndexNode> Load(PageNo page) const;
    Status Save(PageNo page, const IndexNode& node);
    /// The way to the leaf where `entry` is or belongs. The last step's position is the entry's.
    [[nodiscard]] Result<Path> Descend(const std::string& entry) const;
    [[nodiscard]] Result<bool> TryInsert(const std::string& entry);
    Status Split(Path& path, std::size_t depth);
    Status GrowRoot(Step& root);
    Status LinkBefore(PageNo left, IndexNode& leftNode, PageNo right, IndexNode& rightNode);

    Status RemoveEmpty(Path& path, std::size_t depth);
    Status Unlink(const IndexNode& node);
    [[nodiscard]] Result<std::string> LastBelow(PageNo page) const;
    [[nodiscard]] Result<bool> MendStale(const std::string& entry);

    PageCache& cache_;
    PageNo table_;
    PageNo root_;
    std::uint32_t map_;
};

}  // namespace jet
