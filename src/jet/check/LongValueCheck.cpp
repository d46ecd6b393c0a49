#include "jet/check/LongValueCheck.h"

#include <algorithm>

#include "jet/check/DataPageCheck.h"
#include "jet/page/Bytes.h"
#include "jet/row/TextDecoder.h"

namespace jet::check {
namespace {

constexpr std::size_t kPointerSize = 4;
constexpr int kMostSlots = 256;

std::string BytesText(std::size_t count) {
    return std::to_string(count) + " bytes";
}

}  // namespace

Result<Bytes> LongValueCheck::UseRow(OwnerId owner, RowId id) {
    const auto bad = [&](const std::string& what) {
        return Status::Corrupt("its long value on " + RowText(id) + " " + what);
    };
    if (pages_.OwnerOf(id.page) != owner) return bad("lies on no page of the column");
    Result<PageRef> ref = cache_.Read(id.page);
    if (!ref.IsOk()) return ref.GetStatus();
    Result<DataPage> page = DataPage::Open(std::move(*ref), Format::Jet4);
    if (!page.IsOk()) return bad("lies on no data page");
    page_ = std::move(*page);
    if (page_.Owner() != DataPage::kLongValueOwner) return bad("lies on no page of long values");
    if (id.row >= page_.SlotCount()) return bad("does not exist");
    Result<Slot> slot = page_.At(id.row);
    if (!slot.IsOk()) return slot.GetStatus();
    if (slot->isDeleted || slot->isMoved || slot->isTarget) return bad("is deleted or moved");
    auto used = used_[Raw(id.page)][id.row];
    if (used) return bad("is used twice");
    used = true;
    return slot->bytes;
}

void LongValueCheck::Decode(TextDecoder& decoder, Bytes piece) {
    text_.clear();
    decoder.Append(piece, text_);
}

Status LongValueCheck::CheckChain(OwnerId owner, const LongValue& value, TextDecoder& decoder) {
    std::size_t length = 0;
    bool isFirst = true;
    // Ends because no row is used twice.
    for (RowId next = value.first; next.Pointer() != 0;) {
        Bytes row;
        JET_ASSIGN(row, UseRow(owner, next));
        if (row.size() < kPointerSize) {
            return Status::Corrupt("its long value has a piece of " + BytesText(row.size()) +
                                   " on " + RowText(next));
        }
        if (isFirst && page_.Stamp() != value.stamp) {
            return Status::Corrupt("its long value on " + RowText(next) + " has the stamp " +
                                   std::to_string(page_.Stamp()) + " instead of " +
                                   std::to_string(value.stamp));
        }
        isFirst = false;
        next = RowId::FromPointer(LoadU32(row, 0));
        length += row.size() - kPointerSize;
        if (value.isText) Decode(decoder, row.subspan(kPointerSize));
    }
    if (length == value.length) return {};
    return Status::Corrupt("its long value has " + BytesText(length) + " instead of " +
                           std::to_string(value.length));
}

Status LongValueCheck::Check(std::size_t column, const LongValue& value) {
    const OwnerId owner = table_.longValues[column];
    TextDecoder decoder(nullptr);
    switch (value.kind) {
        case LongValue::Kind::Inline:
            if (value.isText) Decode(decoder, value.inlineBytes);
            break;
        case LongValue::Kind::SingleRow: {
            Bytes row;
            JET_ASSIGN(row, UseRow(owner, value.first));
            if (row.size() != value.length) {
                return Status::Corrupt("its long value on " + RowText(value.first) + " has " +
                                       BytesText(row.size()) + " instead of " +
                                       std::to_string(value.length));
            }
            if (value.isText) Decode(decoder, row);
            break;
        }
        case LongValue::Kind::Chain:
            JET_TRY(CheckChain(owner, value, decoder));
            break;
    }
    if (decoder.IsComplete()) return {};
    return Status::Corrupt("its text ends inside a character");
}

void LongValueCheck::CheckPages() {
    for (std::size_t i = 0; i < table_.longValues.size(); ++i) {
        if (table_.longValues[i] == OwnerId::Nobody) continue;
        const std::string name = table_.name + ", column \"" + table_.def.columns[i].name + "\"";
        for (const PageNo page : pages_.PagesOf(table_.longValues[i])) {
            if (report_.IsStopped()) return;
            CheckPage(name, page);
        }
    }
}

void LongValueCheck::CheckPage(const std::string& name, PageNo number) {
    const std::string where = name + ", " + PageText(number);
    Result<PageRef> ref = cache_.ReadOnce(number);
    Result<DataPage> page =
        ref.IsOk() ? DataPage::Open(*ref, Format::Jet4) : Result<DataPage>(ref.GetStatus());
    if (page.IsOk() && page->Owner() != DataPage::kLongValueOwner) {
        page = Status::Corrupt(PageText(number) + " is no page of long values");
    }
    if (!page.IsOk()) {
        report_.Error(Subject::Pages, name + ": " + page.GetStatus().Text());
        return;
    }
    if (!CheckPacking(report_, where, ref->Bytes())) return;
    const auto used = used_.find(Raw(number));
    for (int row = 0; row < std::min(page->SlotCount(), kMostSlots); ++row) {
        const Result<Slot> slot = page->At(row);
        const bool isUsed = used != used_.end() && used->second[static_cast<std::size_t>(row)];
        if (!slot.IsOk() || slot->isDeleted || isUsed) continue;
        report_.Warn(Subject::LongValues,
                     where + " row " + std::to_string(row) + ": holds a value that no row uses");
    }
}

}  // namespace jet::check
