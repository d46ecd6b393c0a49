#include "jet/row/LongValuePieces.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "jet/page/Bytes.h"

namespace jet {

LongValuePieces::LongValuePieces(PageCache& cache, Format format, const LongValue& value,
                                 std::string name)
    : cache_(cache),
      format_(format),
      value_(value),
      left_(value.length),
      next_(value.first),
      name_(std::move(name)) {}

Status LongValuePieces::Damage(const std::string& what) const {
    return Status::Corrupt("the long value on " + RowText(value_.first) + " " + what);
}

Result<Bytes> LongValuePieces::NextRow(RowId id, std::size_t atLeast) {
    const ReadScope scope(cache_);
    JET_TRY(scope.GetStatus());
    if (changes_ == 0) changes_ = cache_.Changes();
    if (changes_ != cache_.Changes()) {
        return Status(StatusCode::Conflict,
                      "another program has changed the file while the value on " +
                          RowText(value_.first) + " was read; read it again");
    }
    const auto damaged = [&](const char* what) {
        return Status::Corrupt("long value on " + RowText(id) + ": " + what);
    };
    PageRef ref;
    JET_ASSIGN(ref, cache_.Read(id.page));
    JET_ASSIGN(page_, DataPage::Open(std::move(ref), format_));
    if (page_.Owner() != DataPage::kLongValueOwner) {
        return damaged("not a page of long values");
    }
    if (id.row >= page_.SlotCount()) return damaged("no such row");
    Slot slot;
    JET_ASSIGN(slot, page_.At(id.row));
    if (slot.isDeleted || slot.isMoved || slot.bytes.size() < atLeast) {
        return damaged("the row is deleted or too short");
    }
    return slot.bytes;
}

Result<Bytes> LongValuePieces::Next() {
    Result<Bytes> piece = NextPiece();
    if (piece.IsOk()) return piece;
    left_ = 0;
    return name_.empty() ? piece : piece.GetStatus().In(name_);
}

Result<Bytes> LongValuePieces::NextPiece() {
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
    // Every piece lies on a page of its own.
    if (std::uint64_t{value_.length} > std::uint64_t{cache_.PageCount()} * cache_.PageSize()) {
        return Damage("states more bytes than the file has");
    }
    if (next_ == RowId{}) return Damage("ends " + std::to_string(left_) + " bytes too early");
    if (next_ == mark_) return Damage("runs in a circle");
    // The mark moves on at every power of two, so that any circle is found after two rounds.
    ++pieces_;
    if (std::has_single_bit(pieces_)) mark_ = next_;
    Bytes row;
    JET_ASSIGN(row, NextRow(next_, 5));
    if (pieces_ == 1 && page_.Stamp() != value_.stamp) {
        return Damage("has made room for another");
    }
    next_ = RowId::FromPointer(LoadU32(row, 0));
    const Bytes piece = row.subspan(4, std::min(row.size() - 4, left_));
    left_ -= piece.size();
    return piece;
}

Result<std::u16string_view> MemoPieces::Next() {
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
