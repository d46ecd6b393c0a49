#include "jet/RowCursor.h"

#include "jet/open/OwnedPage.h"
#include "jet/open/RowCursorRep.h"
#include "jet/Table.h"

namespace jet {

RowCursor::RowCursor() = default;
RowCursor::RowCursor(std::unique_ptr<Rep> rep) : rep_(std::move(rep)) {}
RowCursor::RowCursor(RowCursor&&) noexcept = default;
RowCursor& RowCursor::operator=(RowCursor&&) noexcept = default;
RowCursor::~RowCursor() = default;

Result<bool> RowCursor::Next() {
    return rep_->Next();
}

const Row& RowCursor::Current() const {
    return rep_->current;
}

RowCursor::Rep::Rep(const FileContext& context, std::string table,
                    std::shared_ptr<const TableDef> definition)
    : file_(context), tableName_(std::move(table)), def_(std::move(definition)) {}

Row::Rep& RowCursor::Rep::OwnRow() {
    if (row_.use_count() != 2) {  // itself and `current`
        row_ = std::make_shared<Row::Rep>();
        row_->def = def_;
        row_->codePage = file_.codePage;
        current = Row(row_);
        rowHasPage_ = false;
    }
    return *row_;
}

/// Reads some pages at once: a look at the file for each would cost more than reading it.
Status RowCursor::Rep::ReadAhead() {
    constexpr std::size_t kPages = 16;
    const ReadScope scope(file_.cache);
    Status status = scope.GetStatus();
    if (status.IsOk()) status = Reopen();
    // Who was only kept waiting may ask again.
    if (!status.IsOk()) atEnd_ = status.Code() != StatusCode::Busy;
    JET_TRY(status);
    ahead_.clear();
    nextAhead_ = 0;
    while (ahead_.size() < kPages && !atEnd_) {
        Result<std::optional<PageNo>> next = pages_.Next(nextPage_);
        if (!next.IsOk()) {
            const std::optional<PageNo> behind = pages_.BehindDamage();
            atEnd_ = !behind;
            if (behind) nextPage_ = *behind;
            ahead_.emplace_back(next.GetStatus());
        } else if (!*next) {
            atEnd_ = true;
        } else {
            nextPage_ = PageNo{Raw(**next) + 1};
            ahead_.push_back(OpenOwned(file_, file_.cache.ReadOnce(**next), **next, def_->page));
        }
    }
    return {};
}

Result<bool> RowCursor::Rep::NextPage() {
    if (nextAhead_ >= ahead_.size()) {
        if (atEnd_) return false;
        // Rows that the caller keeps hold their pages; the cursor itself lets go of the last ones.
        OwnRow().page = DataPage();
        rowHasPage_ = false;
        JET_TRY(ReadAhead());
        if (ahead_.empty()) return false;
    }
    nextSlot_ = 0;
    rowHasPage_ = false;
    JET_ASSIGN(page_, std::move(ahead_[nextAhead_++]));
    return true;
}

/// Reads the table's map again when another program has changed the file.
Status RowCursor::Rep::Reopen() {
    if (generation_ != file_.cache.Generation()) {
        JET_ASSIGN(pages_, UsageMap::Open(file_.cache, file_.format, def_->ownedMap));
        generation_ = file_.cache.Generation();
    }
    return {};
}

Result<bool> RowCursor::Rep::Next() {
    const auto named = [&](const Status& status) { return status.In(TableText(tableName_)); };
    for (;;) {
        if (nextSlot_ >= page_.SlotCount()) {
            page_ = DataPage();
            Result<bool> found = NextPage();
            if (!found.IsOk()) return named(found.GetStatus());
            if (!*found) return false;
            continue;
        }
        const int number = nextSlot_++;
        const RowId id{page_.Number(), static_cast<std::uint8_t>(number)};
        Result<Slot> slot = page_.At(number);
        if (!slot.IsOk()) return named(slot.GetStatus());
        if (slot->isDeleted || slot->isTarget) continue;
        Row::Rep& row = OwnRow();
        row.id = id;
        if (!rowHasPage_) row.page = page_;
        rowHasPage_ = !slot->isMoved;  // one that has moved lies on another page
        Result<Bytes> bytes = slot->bytes;
        if (slot->isMoved) {
            bytes = MovedBytes(number, row.page);
            // Meanwhile another program has deleted it.
            if (bytes.GetStatusOrOk().Code() == StatusCode::NotFound) continue;
        }
        if (!bytes.IsOk()) return named(bytes.GetStatus().In(RowText(id)));
        Result<RowView> view = RowView::Parse(file_.format, *def_, *bytes);
        if (!view.IsOk()) return named(view.GetStatus().In(RowText(id)));
        row.view = *view;
        return true;
    }
}

/// The bytes of a row that lies on two pages, both read at one time; `page` becomes the one that
/// holds them.
Result<Bytes> RowCursor::Rep::MovedBytes(int number, DataPage& page) {
    const ReadScope scope(file_.cache);
    JET_TRY(scope.GetStatus());
    const PageNo own = page_.Number();
    JET_ASSIGN(page, OpenOwned(file_, file_.cache.Read(own), own, def_->page));
    if (number >= page.SlotCount()) return Status::NotFound("it has been deleted");
    Slot slot;
    JET_ASSIGN(slot, page.At(number));
    if (slot.isDeleted || slot.isTarget) return Status::NotFound("it has been deleted");
    if (!slot.isMoved) return slot.bytes;
    return FollowMove(file_, def_->page, slot, page);
}

}  // namespace jet
