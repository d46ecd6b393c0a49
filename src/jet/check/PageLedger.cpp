#include "jet/check/PageLedger.h"

#include "jet/page/Bytes.h"

namespace jet::check {

PageLedger::PageLedger(Reporter& report, std::uint32_t pageCount)
    : report_(report), names_{"nobody"}, owners_(pageCount), walks_(pageCount) {}

OwnerId PageLedger::AddOwner(std::string name) {
    names_.push_back(std::move(name));
    return OwnerId{static_cast<std::uint32_t>(names_.size() - 1)};
}

bool PageLedger::Claim(PageNo page, OwnerId owner) {
    if (Raw(page) >= owners_.size()) {
        report_.Error(Subject::Pages, NameOf(owner) + ": " + PageText(page) +
                                          " lies behind the end of the file (" +
                                          std::to_string(owners_.size()) + " pages)");
        return false;
    }
    OwnerId& holder = owners_[Raw(page)];
    if (holder != OwnerId::Nobody) {
        report_.Error(Subject::Pages, PageText(page) + ": belongs to " + NameOf(holder) + " and " +
                                          (holder == owner ? std::string("is named once more there")
                                                           : "to " + NameOf(owner) + " as well"));
        return false;
    }
    holder = owner;
    return true;
}

void PageLedger::Seal() {
    begins_.assign(names_.size() + 1, 0);
    for (const OwnerId owner : owners_) ++begins_[static_cast<std::size_t>(owner) + 1];
    for (std::size_t i = 1; i < begins_.size(); ++i) begins_[i] += begins_[i - 1];
    sorted_.resize(owners_.size());
    std::vector<std::uint32_t> next = begins_;
    for (std::uint32_t page = 0; page < owners_.size(); ++page) {
        sorted_[next[static_cast<std::size_t>(owners_[page])]++] = PageNo{page};
    }
}

std::span<const PageNo> PageLedger::PagesOf(OwnerId owner) const {
    const auto at = static_cast<std::size_t>(owner);
    return std::span(sorted_).subspan(begins_[at], begins_[at + 1] - begins_[at]);
}

bool PageLedger::Visit(PageNo page) {
    if (walks_[Raw(page)] == walk_) return false;
    walks_[Raw(page)] = walk_;
    return true;
}

}  // namespace jet::check
