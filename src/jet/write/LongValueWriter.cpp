#include "jet/write/LongValueWriter.h"

#include <algorithm>
#include <random>

#include "jet/LongValueReader.h"
#include "jet/page/UsageMap.h"
#include "jet/row/ValueCodec.h"
#include "jet/write/DataPageEditor.h"
#include "jet/write/UsageMapEditor.h"

namespace jet {
namespace {

constexpr std::size_t kMostInRow = 4076;    // bytes of a value in a single row
constexpr std::size_t kMostInPiece = 4072;  // bytes of a piece of a chain, behind its pointer
constexpr std::size_t kHead = 12;
constexpr std::uint32_t kInlineFlag = 0x80000000;
constexpr std::uint32_t kSingleRowFlag = 0x40000000;
// A page with less room than this is not worth trying again.
constexpr std::size_t kWorthTrying = 64;

std::vector<std::byte> HeadOf(std::uint32_t length, std::uint32_t pointer, std::uint32_t stamp) {
    std::vector<std::byte> head(kHead);
    StoreU32(head, 0, length);
    StoreU32(head, 4, pointer);
    StoreU32(head, 8, stamp);
    return head;
}

/// Differs from value to value, so that a reader can tell that another has taken its place.
std::uint32_t NewStamp() {
    static std::mt19937 random(std::random_device{}());
    return static_cast<std::uint32_t>(random()) | 1;
}

}  // namespace

Result<std::vector<std::byte>> LongValueWriter::Store(Bytes data) {
    if (data.size() > kMostBytes) {
        return Status(StatusCode::TooLong, "column \"" + column_.name + "\": a value of " +
                                               std::to_string(data.size()) + " bytes");
    }
    const auto length = static_cast<std::uint32_t>(data.size());
    if (data.size() <= kMostInline) {
        std::vector<std::byte> stored = HeadOf(length | kInlineFlag, 0, 0);
        stored.insert(stored.end(), data.begin(), data.end());
        return stored;
    }
    if (data.size() <= kMostInRow) {
        RowId id;
        JET_ASSIGN(id, StoreRow(data, true));
        return HeadOf(length | kSingleRowFlag, id.Pointer(), 0);
    }
    // From the last piece to the first, since each one names the next.
    RowId next;
    std::size_t end = data.size();
    while (end > 0) {
        const std::size_t begin = (end - 1) / kMostInPiece * kMostInPiece;
        std::vector<std::byte> piece(4);
        StoreU32(piece, 0, next.Pointer());
        piece.insert(piece.end(), data.begin() + static_cast<std::ptrdiff_t>(begin),
                     data.begin() + static_cast<std::ptrdiff_t>(end));
        JET_ASSIGN(next, StoreRow(piece, false));
        end = begin;
    }
    const std::uint32_t stamp = NewStamp();
    MutableBytes first;
    JET_ASSIGN(first, cache_.Edit(next.page));
    StoreU32(first, 8, stamp);
    return HeadOf(length, next.Pointer(), stamp);
}

Result<PageNo> LongValueWriter::PageFor(std::size_t size, bool shared) {
    if (shared && column_.freeMap != 0) {
        UsageMap pages;
        JET_ASSIGN(pages, UsageMap::Open(cache_, Format::Jet4, column_.freeMap));
        std::optional<PageNo> page;
        for (PageNo from{0};; from = PageNo{Raw(*page) + 1}) {
            JET_ASSIGN(page, pages.Next(from));
            if (!page) break;
            PageRef ref;
            JET_ASSIGN(ref, cache_.Read(*page));
            DataPage view;
            JET_ASSIGN(view, DataPage::Open(ref, Format::Jet4));
            const bool fits = view.Owner() == DataPage::kLongValueOwner &&
                              view.SlotCount() < static_cast<int>(DataPageEditor::kMostSlots) &&
                              LoadU16(ref.Bytes(), 2) >= size + DataPageEditor::kSlot;
            if (fits) return *page;
        }
    }
    PageNo page{};
    JET_ASSIGN(page, PageAllocator(cache_).Allocate());
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(page));
    DataPageEditor::Format(bytes, DataPage::kLongValueOwner);
    JET_TRY(UsageMapEditor(cache_, column_.ownedMap).Add(page));
    if (shared && column_.freeMap != 0) {
        JET_TRY(UsageMapEditor(cache_, column_.freeMap).Add(page));
    }
    return page;
}

Result<RowId> LongValueWriter::StoreRow(Bytes row, bool shared) {
    if (column_.ownedMap == 0) {
        return Status::Unsupported("column \"" + column_.name +
                                   "\" has no map of its pages; a repair makes one");
    }
    PageNo page{};
    JET_ASSIGN(page, PageFor(row.size(), shared));
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(page));
    Result<DataPageEditor> editor = DataPageEditor::Open(bytes, page);
    if (!editor.IsOk()) return editor.GetStatus();
    if (!editor->Fits(row.size())) {
        return Status::Corrupt(PageText(page) + " has less room than it says");
    }
    const std::size_t slot = editor->Append(row, 0);
    if (shared && column_.freeMap != 0 && editor->Free() < kWorthTrying) {
        JET_TRY(UsageMapEditor(cache_, column_.freeMap).Remove(page));
    }
    return RowId{page, static_cast<std::uint8_t>(slot)};
}

Status LongValueWriter::DeleteRow(RowId id) {
    MutableBytes bytes;
    JET_ASSIGN(bytes, cache_.Edit(id.page));
    Result<DataPageEditor> editor = DataPageEditor::Open(bytes, id.page);
    if (!editor.IsOk()) return editor.GetStatus();
    if (LoadU32(bytes, 4) != DataPage::kLongValueOwner || id.row >= editor->SlotCount() ||
        editor->Flags(id.row) != 0) {
        return Status::Corrupt("long value on " + RowText(id) + ": there is no such row");
    }
    editor->Delete(id.row);
    if (!editor->HasOnlyDeletedSlots()) {
        if (column_.freeMap == 0) return {};
        return UsageMapEditor(cache_, column_.freeMap).Add(id.page);
    }
    JET_TRY(UsageMapEditor(cache_, column_.ownedMap).Remove(id.page));
    if (column_.freeMap != 0) JET_TRY(UsageMapEditor(cache_, column_.freeMap).Remove(id.page));
    return PageAllocator(cache_).Free(id.page);
}

Status LongValueWriter::Free(Bytes stored) {
    Value decoded;
    JET_TRY(DecodeValue(column_, nullptr, stored, decoded));
    const auto& value = std::get<LongValue>(decoded);
    if (value.kind == LongValue::Kind::Inline || value.length == 0) return {};
    if (value.kind == LongValue::Kind::SingleRow) return DeleteRow(value.first);
    // Every piece is read before the first is deleted: a damaged chain is left as it is.
    std::vector<RowId> pieces = {value.first};
    std::size_t read = 0;
    while (true) {
        PageRef ref;
        JET_ASSIGN(ref, cache_.Read(pieces.back().page));
        DataPage page;
        JET_ASSIGN(page, DataPage::Open(std::move(ref), Format::Jet4));
        Slot slot;
        if (pieces.back().row >= page.SlotCount()) {
            return Status::Corrupt("long value on " + RowText(pieces.back()) + ": no such row");
        }
        JET_ASSIGN(slot, page.At(pieces.back().row));
        if (page.Owner() != DataPage::kLongValueOwner || slot.isDeleted || slot.bytes.size() < 5 ||
            pieces.size() > cache_.PageCount()) {
            return Status::Corrupt("the long value on " + RowText(value.first) + " is damaged");
        }
        read += slot.bytes.size() - 4;
        const std::uint32_t next = LoadU32(slot.bytes, 0);
        if (next == 0) break;
        pieces.push_back(RowId::FromPointer(next));
    }
    if (read != value.length) {
        return Status::Corrupt("the long value on " + RowText(value.first) + " has a wrong length");
    }
    for (const RowId piece : pieces) JET_TRY(DeleteRow(piece));
    return {};
}

}  // namespace jet
