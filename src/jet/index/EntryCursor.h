#pragma once

#include <memory>
#include <optional>
#include <string>

#include "jet/index/IndexSearch.h"
#include "jet/page/PageCache.h"
#include "jet/Status.h"
#include "jet/Types.h"

namespace jet {

/// Walks the entries of one index in ascending order of their bytes. The cache must outlive it.
/// After a failure it is at its end.
class EntryCursor {
public:
    /// Stands in front of the first entry that is not below `from`.
    [[nodiscard]] static Result<EntryCursor> Seek(PageCache& cache, PageNo table, PageNo root,
                                                  const std::string& from);
    /// Stands in front of the first entry that is not below `from`; faster than a new cursor when
    /// that is near to where this one stands.
    Status MoveTo(const std::string& from);

    /// Steps to the next entry; false at the end.
    [[nodiscard]] Result<bool> Next();

    // REQUIRES: Next() has returned true.
    [[nodiscard]] const std::string& Key() const { return key_; }
    [[nodiscard]] RowId Row() const { return row_; }

private:
    EntryCursor(PageCache& cache, PageNo table, PageNo root)
        : cache_(&cache), table_(table), root_(root) {}
    Status Open(PageNo page);
    [[nodiscard]] Result<bool> Step();
    Status Descend(const std::string& from);
    [[nodiscard]] Result<bool> IsInLeaf(const std::string& from);
    Status GoToNextLeaf();

    PageCache* cache_;
    PageNo table_;
    PageNo root_;
    std::string from_;
    std::uint64_t generation_ = 0;  // of the page cache when leaf_ was read
    PageRef leaf_;                  // empty at the end
    IndexSearch search_;            // of leaf_
    IndexSearch::Place at_;         // the next entry of leaf_
    std::string entry_;             // the current one whole: key, page and row
    std::string next_;              // memory for the one behind it
    std::string key_;
    RowId row_;
};

}  // namespace jet
