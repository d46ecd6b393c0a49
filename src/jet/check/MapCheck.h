#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "jet/check/PageLedger.h"
#include "jet/page/PageCache.h"
#include "jet/page/UsageMap.h"

namespace jet::check {

/// Checks usage maps and enters the pages that they name into the ledger. Borrows its arguments.
class MapCheck {
public:
    MapCheck(PageCache& cache, Reporter& report, PageLedger& pages);

    /// The page of the global maps and its two rows.
    void CheckGlobalPage();

    /// Claims for `owner` all pages of the map behind a row pointer.
    void ClaimPages(std::uint32_t pointer, OwnerId owner);
    /// Checks that the map names no page but those of `owner`, whose pages have been claimed.
    void CheckFreeSpace(std::uint32_t pointer, OwnerId owner);

    /// When all owners have claimed their pages: holds them against the global map of free pages.
    void CheckAccounting();
    /// The same, but only that no page is free and in use at the same time. Reads no page.
    void CheckDoubleUse();
    /// Row pointers of the maps in which bits are left over behind the end of the file.
    [[nodiscard]] const std::vector<std::uint32_t>& WithLeftOvers() const { return leftOvers_; }
    /// What the maps do not allow to be stored: see PageState.
    [[nodiscard]] const std::vector<std::string>& Limits() const { return limits_; }
    void AddLimit(std::string limit) { limits_.push_back(std::move(limit)); }

private:
    [[nodiscard]] std::optional<UsageMap> Open(std::uint32_t pointer, const std::string& name);
    void CheckReach(const UsageMap& map, RowId id, const std::string& name);
    /// Calls `each` for the pages of a map in ascending order until it returns false. Pages behind
    /// the end of the file come too.
    void ForEachPage(const UsageMap& map, const std::string& name,
                     const std::function<bool(PageNo)>& each);
    /// True for a page that no map means: see UsageMap. Remembers the map.
    [[nodiscard]] bool IsLeftOver(PageNo page, std::uint32_t pointer);
    [[nodiscard]] Bytes OpenBitmap(PageNo page, const std::string& name, PageRef& ref);
    void ReportDoubleUse(PageNo page);
    /// kFine, kLost or the type that a free page still has.
    [[nodiscard]] int StateOf(PageNo page);
    void WarnOf(std::uint32_t begin, std::uint32_t end, int state);

    PageCache& cache_;
    Reporter& report_;
    PageLedger& pages_;
    OwnerId globalPage_;
    OwnerId mapRows_;
    OwnerId bitmaps_;
    std::unordered_set<std::uint32_t> seen_;  // row pointers of maps
    std::vector<std::uint32_t> leftOvers_;
    std::vector<std::string> limits_;
    std::vector<bool> isFree_;  // by page; empty when the global map is unreadable
};

}  // namespace jet::check
