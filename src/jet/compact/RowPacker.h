#pragma once

#include <array>
#include <vector>

#include "jet/compact/Draft.h"
#include "jet/write/DataPageEditor.h"

namespace jet::compact {

/// Fills data pages of one owner with rows, in their order and as many as fit. Borrows the draft.
class RowPacker {
public:
    /// `owner`: see DataPage.
    RowPacker(Draft& draft, std::uint32_t owner) : draft_(draft), owner_(owner) {}

    [[nodiscard]] Result<RowId> Append(Bytes row);
    /// Puts a row alone on a page that has been taken for it; `stamp`: see DataPage.
    Status AppendAlone(PageNo page, std::uint32_t stamp, Bytes row);
    /// Writes the last page. To be called once, behind all rows.
    Status Finish();

    /// All pages, in ascending order, and those of them with room for more rows.
    [[nodiscard]] const std::vector<PageNo>& Pages() const { return pages_; }
    [[nodiscard]] const std::vector<PageNo>& PagesWithRoom() const { return withRoom_; }

private:
    [[nodiscard]] Result<DataPageEditor> Open();

    Draft& draft_;
    std::uint32_t owner_;
    bool isOpen_ = false;
    PageNo page_{};
    std::array<std::byte, kPageSizeJet4> image_{};
    std::vector<PageNo> pages_;
    std::vector<PageNo> withRoom_;
};

}  // namespace jet::compact
