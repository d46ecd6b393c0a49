#pragma once

#include <map>

#include "jet/File.h"
#include "jet/Status.h"
#include "jet/Types.h"

namespace jet::compact {

/// Where the definitions of the tables lie in the new file, by where they lay in the old one.
using TableMoves = std::map<std::uint32_t, std::uint32_t>;

/// The file that a compaction writes, page by page, each once. Borrows the file.
class Draft {
public:
    /// The first page behind the header, the global map and the definitions of the system's tables,
    /// which lie where every program looks for them.
    static constexpr std::uint32_t kFirst = 6;

    explicit Draft(File& file) : file_(file) {}

    /// The number of a page that is still to be written.
    [[nodiscard]] Result<PageNo> Take();
    Status Write(PageNo page, Bytes bytes);
    /// Writes page 1: no page is free. To be called last, since it may take pages itself.
    Status WriteGlobalMaps();

    [[nodiscard]] std::uint32_t PageCount() const { return next_; }

private:
    File& file_;
    std::uint32_t next_ = kFirst;
};

}  // namespace jet::compact
