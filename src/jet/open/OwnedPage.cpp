#include "jet/open/OwnedPage.h"

#include "jet/page/Bytes.h"

namespace jet {

Result<DataPage> OpenOwned(const FileContext& file, Result<PageRef> ref, PageNo number,
                           PageNo table) {
    if (!ref.IsOk()) return ref.GetStatus();
    DataPage page;
    JET_ASSIGN(page, DataPage::Open(std::move(*ref), file.format));
    if (page.Owner() != Raw(table)) {
        return Status::Corrupt(PageText(number) + " belongs to another table");
    }
    return page;
}

bool MayBeGone(const FileContext& file, PageNo number) {
    constexpr std::uint8_t kGreatestType = 9;
    if (Raw(number) >= file.cache.PageCount()) return true;
    const Result<PageRef> ref = file.cache.Read(number);
    return ref.IsOk() && LoadU8(ref->Bytes(), 0) <= kGreatestType;
}

Result<Bytes> FollowMove(const FileContext& file, PageNo table, const Slot& slot, DataPage& page) {
    if (slot.bytes.size() < 4) return Status::Corrupt("the pointer to the moved row is cut short");
    const RowId target = RowId::FromPointer(LoadU32(slot.bytes, 0));
    JET_ASSIGN(page, OpenOwned(file, file.cache.Read(target.page), target.page, table));
    if (target.row >= page.SlotCount()) {
        return Status::Corrupt("it has moved to " + RowText(target) + ", which does not exist");
    }
    Slot moved;
    JET_ASSIGN(moved, page.At(target.row));
    if (!moved.isTarget) {
        return Status::Corrupt("it has moved to " + RowText(target) + ", which holds another row");
    }
    return moved.bytes;
}

}  // namespace jet
