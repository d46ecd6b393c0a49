#include "jet/LongValueReader.h"

#include <algorithm>
#include <utility>

#include "jet/detail/Bytes.h"

namespace jet {

LongValueReader::LongValueReader(PageCache& cache, Format format, const LongValue& value)
    : cache_(cache), format_(format), value_(value), left_(value.length), next_(value.first) {}

Result<Bytes> LongValueReader::NextRow(RowId id, std::size_t atLeast) {
    const std::string name = "long value on " + RowText(id);
    PageRef ref;
    JET_ASSIGN(ref, cache_.Read(id.page));
    JET_ASSIGN(page_, DataPage::Open(std::move(ref), format_));
    if (page_.Owner() != DataPage::kLongValueOwner) {
        return Status::Corrupt(name + ": not a page of long values");
    }
    if (id.row >= page_.SlotCount()) return Status::Corrupt(name + ": no such row");
    Slot slot;
    JET_ASSIGN(slot, page_.At(id.row));
    if (slot.isDeleted || slot.isMoved || slot.bytes.size() < atLeast) {
        return Status::Corrupt(name + ": the row is deleted or too short");
    }
    return slot.bytes;
}

Result<Bytes> LongValueReader::Next() {
    if (left_ == 0) return Bytes{};
    switch (value_.kind) {
        case LongValue::Kind::Inline:
            left_ = 0;
            return Bytes(value_.inlineBytes);
        case LongValue::Kind::SingleRow: {
            Bytes row;
            JET_ASSIGN(row, NextRow(next_, left_));
            return row.first(std::exchange(left_, 0));
        }
        case LongValue::Kind::Chain:
            break;
    }
    if (next_ == RowId{}) {
        return Status::Corrupt("a long value ends " + std::to_string(left_) + " bytes too early");
    }
    // Every piece lies on a page of its own, so more pieces than pages are a loop.
    if (++pieces_ > cache_.PageCount()) return Status::Corrupt("a long value runs in a circle");
    Bytes row;
    JET_ASSIGN(row, NextRow(next_, 5));
    if (pieces_ == 1 && page_.Stamp() != value_.stamp) {
        return Status::Corrupt("long value on " + RowText(next_) +
                               ": another value has taken its place");
    }
    next_ = RowId::FromPointer(LoadU32(row, 0));
    const Bytes piece = row.subspan(4, std::min(row.size() - 4, left_));
    left_ -= piece.size();
    return piece;
}

Result<std::u16string_view> MemoReader::Next() {
    text_ = std::exchange(held_, {});
    for (;;) {
        Result<Bytes> piece = bytes_.Next();
        if (!piece.IsOk()) return piece.GetStatus();
        if (piece->empty()) return std::u16string_view(text_);
        decoder_.Append(*piece, text_);
        if (!text_.empty() && (text_.back() & 0xFC00) == 0xD800) {
            held_ = text_.back();
            text_.pop_back();
        }
        if (!text_.empty()) return std::u16string_view(text_);
        text_ = std::exchange(held_, {});
    }
}

}  // namespace jet
