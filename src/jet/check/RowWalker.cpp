#include "jet/check/RowWalker.h"

#include <algorithm>

#include "jet/check/DataPageCheck.h"
#include "jet/page/Bytes.h"

namespace jet::check {
namespace {

constexpr int kMostSlots = 256;  // more cannot be addressed
constexpr std::size_t kPointerSize = 4;

}  // namespace

RowWalker::RowWalker(PageCache& cache, Reporter& report, const PageLedger& pages,
                     const CheckedTable& table)
    : cache_(cache),
      report_(report),
      ledger_(pages),
      table_(table),
      pages_(pages.PagesOf(table.rows)) {}

bool RowWalker::NextPage() {
    const PageNo number = pages_[nextPage_++];
    const std::string name = table_.name + ", " + PageText(number);
    page_ = DataPage();
    nextSlot_ = slots_ = 0;
    Result<PageRef> ref = cache_.ReadOnce(number);
    Result<DataPage> page =
        ref.IsOk() ? DataPage::Open(*ref, Format::Jet4) : Result<DataPage>(ref.GetStatus());
    if (page.IsOk() && page->Owner() != Raw(table_.def.page)) {
        page = Status::Corrupt(PageText(number) + " names another owner (" +
                               std::to_string(page->Owner()) + ")");
    }
    if (!page.IsOk()) {
        report_.Error(Subject::Pages, table_.name + ": " + page.GetStatus().Text());
        unreadable_.pages.insert(Raw(number));
        return false;
    }
    isPacked_ = CheckPacking(report_, name, ref->Bytes());
    page_ = std::move(*page);
    slots_ = std::min(page_.SlotCount(), kMostSlots);
    return true;
}

bool RowWalker::Next() {
    while (!report_.IsStopped()) {
        if (nextSlot_ >= slots_) {
            if (nextPage_ < pages_.size()) {
                std::ignore = NextPage();
                continue;
            }
            PairTargets();
            return false;
        }
        id_ = {page_.Number(), static_cast<std::uint8_t>(nextSlot_)};
        Result<Slot> slot = page_.At(nextSlot_++);
        if (!slot.IsOk()) {
            if (isPacked_) Error(RowText(id_), slot.GetStatus().Text());
            ++count_;
            Reject();
            continue;
        }
        if (slot->isTarget) targets_.push_back(id_.Pointer());
        if (slot->isDeleted || slot->isTarget) continue;
        ++count_;
        row_ = slot->bytes;
        if (!slot->isMoved || Follow(*slot)) return true;
        Reject();
    }
    return false;
}

bool RowWalker::Follow(const Slot& slot) {
    const std::string where = RowText(id_);
    if (slot.bytes.size() < kPointerSize) {
        Error(where, "the pointer to the moved row is cut short");
        return false;
    }
    const RowId target = RowId::FromPointer(LoadU32(slot.bytes, 0));
    const std::string moved = "has moved to " + RowText(target);
    if (ledger_.OwnerOf(target.page) != table_.rows) {
        Error(where, moved + ", which is no page of the table");
        return false;
    }
    pointers_.push_back(target.Pointer());
    Result<PageRef> ref = cache_.Read(target.page);
    Result<DataPage> page = ref.IsOk() ? DataPage::Open(std::move(*ref), Format::Jet4)
                                       : Result<DataPage>(ref.GetStatus());
    if (!page.IsOk()) return false;  // reported with the page
    targetPage_ = std::move(*page);
    if (target.row >= targetPage_.SlotCount()) {
        Error(where, moved + ", which does not exist");
        return false;
    }
    const Result<Slot> there = targetPage_.At(target.row);
    if (!there.IsOk()) return false;
    if (!there->isTarget) {
        Error(where, moved + ", which holds no moved row");
        return false;
    }
    row_ = there->bytes;
    return true;
}

void RowWalker::PairTargets() {
    std::sort(targets_.begin(), targets_.end());
    std::sort(pointers_.begin(), pointers_.end());
    for (std::size_t i = 1; i < pointers_.size(); ++i) {
        if (pointers_[i] != pointers_[i - 1]) continue;
        Error(RowText(RowId::FromPointer(pointers_[i])), "two moved rows share this place");
    }
    for (const std::uint32_t target : targets_) {
        if (std::binary_search(pointers_.begin(), pointers_.end(), target)) continue;
        report_.Warn(Subject::Rows, table_.name + ", " + RowText(RowId::FromPointer(target)) +
                                        ": holds a moved row that no row leads to");
    }
}

}  // namespace jet::check
