#pragma once

#include <array>
#include <map>
#include <vector>

#include "jet/compact/Draft.h"

namespace jet::compact {

/// The usage maps of the new file. Borrows the draft.
class MapPages {
public:
    explicit MapPages(Draft& draft) : draft_(draft) {}

    /// The maps that follow begin a page of their own, as a table's do.
    Status BeginPage();
    /// The row pointer of a new, empty map.
    [[nodiscard]] Result<std::uint32_t> Reserve();
    /// `pages` ascend. The pages that a large map needs are taken here.
    Status Fill(std::uint32_t pointer, const std::vector<PageNo>& pages);
    /// Writes the pages of the maps. To be called once all are filled.
    Status Write();

private:
    using Image = std::array<std::byte, kPageSizeJet4>;

    Status FillBitmaps(std::vector<std::byte>& row, const std::vector<PageNo>& pages);

    Draft& draft_;
    std::map<std::uint32_t, Image> images_;  // by page
};

}  // namespace jet::compact
