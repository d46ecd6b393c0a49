#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "jet/check/DefinitionCheck.h"
#include "jet/index/IndexPage.h"

namespace jet::check {

/// Walks the tree of one index from its root, in order, and checks its structure: pages, order of
/// the entries, links between leaves, entries of nodes, equal keys where they must not be. Every
/// page is visited once. Borrows its arguments.
class IndexWalk {
public:
    /// Called for every entry of a leaf. The key is valid during the call.
    using EntrySink = std::function<void(std::string_view key, RowId row)>;

    IndexWalk(PageCache& cache, Reporter& report, PageLedger& pages, const CheckedTable& table,
              std::size_t realIndex, EntrySink sink);

    void Run();
    /// Only compares the pages of the tree with those of its map. Of the leaves it reads none but
    /// the first below each node.
    void RunPages();

    /// Different keys found. After Run().
    [[nodiscard]] std::uint64_t DistinctKeys() const { return distinct_; }

private:
    /// True when the page is one of the index's and has not been visited before.
    [[nodiscard]] bool Enter(PageNo number, int depth);
    [[nodiscard]] Result<IndexPage> Open(PageNo number, PageRef& ref);
    bool Visit(PageNo number, int depth);
    /// True when the page is a leaf.
    bool VisitPlace(PageNo number, int depth);
    [[nodiscard]] bool VisitLeaf(const IndexPage& page, bool isRoot);
    [[nodiscard]] bool VisitNode(const IndexPage& page, int depth);
    void CheckLeafLink(const IndexPage& page);
    void CheckEntry(const IndexPage& page, std::size_t i);
    void CheckUnvisited();
    void Error(PageNo page, const std::string& what);

    PageCache& cache_;
    Reporter& report_;
    PageLedger& pages_;
    const RealIndex& index_;
    PageNo table_;
    OwnerId owner_;
    std::string name_;
    EntrySink sink_;

    std::string entry_;
    std::string last_;           // the last entry of a leaf, with its row
    std::uint64_t entries_ = 0;  // of leaves, so far
    std::uint64_t distinct_ = 0;
    PageNo lastLeaf_{};  // 0: none so far
    PageNo linkOfLastLeaf_{};
};

}  // namespace jet::check
