#include "jet/write/DataPageEditor.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::uint16_t kFlags = 0xC000;
constexpr std::uint16_t kOffset = 0x1FFF;

}  // namespace

Result<DataPageEditor> DataPageEditor::Open(MutableBytes page, PageNo number) {
    DataPageEditor editor(page);
    if (LoadU8(page, 0) != 0x01) {
        return Status::Corrupt(PageText(number) + " is not a data page");
    }
    const std::size_t slots = editor.SlotCount();
    bool sound = slots <= kMostSlots && kHead + kSlot * slots <= page.size();
    for (std::size_t i = 0; sound && i < slots; ++i) {
        sound = editor.Start(i) <= editor.End(i) && editor.Start(i) >= kHead + kSlot * slots;
    }
    if (!sound) return Status::Corrupt(PageText(number) + " has rows that overlap");
    return editor;
}

void DataPageEditor::Format(MutableBytes page, std::uint32_t owner) {
    std::fill(page.begin(), page.end(), std::byte{0});
    page[0] = std::byte{1};
    page[1] = std::byte{1};
    StoreU32(page, 4, owner);
    DataPageEditor(page).StoreFree();
}

std::size_t DataPageEditor::Start(std::size_t slot) const {
    return LoadU16(page_, kHead + kSlot * slot) & kOffset;
}

std::size_t DataPageEditor::End(std::size_t slot) const {
    return slot == 0 ? page_.size() : Start(slot - 1);
}

std::size_t DataPageEditor::Lowest() const {
    const std::size_t slots = SlotCount();
    return slots == 0 ? page_.size() : Start(slots - 1);
}

std::uint16_t DataPageEditor::Flags(std::size_t slot) const {
    return LoadU16(page_, kHead + kSlot * slot) & kFlags;
}

MutableBytes DataPageEditor::Row(std::size_t slot) const {
    return page_.subspan(Start(slot), End(slot) - Start(slot));
}

void DataPageEditor::SetSlot(std::size_t slot, std::size_t start, std::uint16_t flags) {
    StoreU16(page_, kHead + kSlot * slot, start | flags);
}

void DataPageEditor::StoreFree() {
    StoreU16(page_, 2, Free());
}

std::size_t DataPageEditor::Append(Bytes row, std::uint16_t flags) {
    const std::size_t slot = SlotCount();
    const std::size_t start = Lowest() - row.size();
    std::copy(row.begin(), row.end(), page_.begin() + static_cast<std::ptrdiff_t>(start));
    SetSlot(slot, start, flags);
    StoreU16(page_, 12, slot + 1);
    StoreFree();
    return slot;
}

void DataPageEditor::Replace(std::size_t slot, Bytes row, std::uint16_t flags) {
    const std::size_t lowest = Lowest();
    const std::size_t start = Start(slot);
    const std::size_t end = End(slot);
    const std::size_t newStart = end - row.size();
    // The rows behind this one lie below it and move by the difference.
    std::memmove(page_.data() + lowest + newStart - start, page_.data() + lowest, start - lowest);
    for (std::size_t i = slot + 1; i < SlotCount(); ++i) {
        SetSlot(i, Start(i) + newStart - start, Flags(i));
    }
    SetSlot(slot, newStart, flags);
    std::copy(row.begin(), row.end(), page_.begin() + static_cast<std::ptrdiff_t>(newStart));
    StoreFree();
}

bool DataPageEditor::HasOnlyDeletedSlots() const {
    for (std::size_t i = 0; i < SlotCount(); ++i) {
        if (Flags(i) != kDeleted) return false;
    }
    return true;
}

}  // namespace jet
