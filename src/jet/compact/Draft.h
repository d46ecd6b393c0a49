#pragma once

#include <map>
#include <set>

#include "jet/File.h"
#include "jet/page/Bytes.h"
#include "jet/Status.h"
#include "jet/Types.h"

namespace jet::compact {

/// Where the definitions of the tables lie in the new file, by where they lay in the old one.
using TableMoves = std::map<std::uint32_t, std::uint32_t>;

/// The file that a compaction writes, page by page, each once. Borrows the file; without one it
/// only counts the pages.
class Draft {
public:
    /// The first page behind the header, the global map and the definitions of the system's tables,
    /// which lie where every program looks for them.
    static constexpr std::uint32_t kFirst = 6;

    explicit Draft(File* file) : file_(file) {}

    /// Keeps a page from being taken: what lies there shall keep its number. To be called before
    /// the first Take().
    void Keep(PageNo page) { kept_.insert(Raw(page)); }
    [[nodiscard]] bool Keeps(PageNo page) const { return kept_.contains(Raw(page)); }

    /// The number of a page that is still to be written.
    [[nodiscard]] Result<PageNo> Take();
    Status Write(PageNo page, Bytes bytes);
    /// Writes page 1. To be called last, since it may take pages itself.
    Status WriteGlobalMaps();

    /// Pages of the file, and those of them that are in use: all, unless kept ones lie far behind.
    [[nodiscard]] std::uint32_t PageCount() const;
    [[nodiscard]] std::uint32_t UsedCount() const;

private:
    [[nodiscard]] bool IsUsed(std::uint32_t page) const {
        return page < next_ || kept_.contains(page);
    }
    /// Clears the bits of the pages in use; `bits` begin with the page `first`.
    void MarkUsed(MutableBytes bits, std::uint32_t first) const;

    File* file_;
    std::uint32_t next_ = kFirst;  // all pages below are in use
    std::set<std::uint32_t> kept_;
};

}  // namespace jet::compact
