#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "jet/check/Reporter.h"
#include "jet/Types.h"

namespace jet::check {

/// Number of somebody whom pages belong to: a definition, the rows of a table, an index, ...
enum class OwnerId : std::uint32_t { Nobody = 0 };

/// Tells for every page of the file to whom it belongs. First all owners claim their pages, then,
/// after Seal(), the content of the pages is checked owner by owner; so each page is looked at
/// once, however many claim it. Twelve bytes a page.
class PageLedger {
public:
    /// `report` is borrowed.
    PageLedger(Reporter& report, std::uint32_t pageCount);

    [[nodiscard]] std::uint32_t PageCount() const {
        return static_cast<std::uint32_t>(owners_.size());
    }

    [[nodiscard]] OwnerId AddOwner(std::string name);
    [[nodiscard]] const std::string& NameOf(OwnerId owner) const {
        return names_[static_cast<std::size_t>(owner)];
    }

    /// Enters that a page belongs to `owner`. False, with a finding, when the page lies behind the
    /// end of the file or belongs to somebody already.
    bool Claim(PageNo page, OwnerId owner);
    /// Nobody for a page behind the end of the file.
    [[nodiscard]] OwnerId OwnerOf(PageNo page) const {
        return Raw(page) < owners_.size() ? owners_[Raw(page)] : OwnerId::Nobody;
    }

    /// Ends the claims.
    void Seal();
    /// By ascending number. REQUIRES: Seal() has been called.
    [[nodiscard]] std::span<const PageNo> PagesOf(OwnerId owner) const;

    /// Begins a walk over pages in which each is to be visited once.
    void BeginWalk() { ++walk_; }
    /// False when the walk has been on this page before. REQUIRES: page < PageCount().
    bool Visit(PageNo page);
    [[nodiscard]] bool WasVisited(PageNo page) const { return walks_[Raw(page)] == walk_; }

private:
    Reporter& report_;
    std::vector<std::string> names_;     // by OwnerId
    std::vector<OwnerId> owners_;        // by page
    std::vector<PageNo> sorted_;         // pages by owner
    std::vector<std::uint32_t> begins_;  // by OwnerId: its first place in sorted_
    std::vector<std::uint32_t> walks_;   // by page: the last walk that was there
    std::uint32_t walk_ = 0;
};

}  // namespace jet::check
