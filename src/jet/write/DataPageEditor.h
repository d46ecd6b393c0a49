#pragma once

#include <optional>

#include "jet/page/Bytes.h"
#include "jet/Status.h"

namespace jet {

/// Changes the rows of one data page (Jet 4); see DataPage for its layout. Borrows the bytes of a
/// page that a transaction edits. Rows stay packed from the end of the page downwards in the order
/// of their slots, and the count of free bytes stays right.
class DataPageEditor {
public:
    static constexpr std::size_t kMostSlots = 255;  // row numbers are bytes
    static constexpr std::size_t kHead = 14;        // bytes in front of the slots
    static constexpr std::size_t kSlot = 2;         // bytes of a slot
    static constexpr std::uint16_t kMoved = 0x4000;
    static constexpr std::uint16_t kTarget = 0x8000;
    static constexpr std::uint16_t kDeleted = 0xC000;

    /// Fails when the slots contradict each other, so that nothing could be moved safely.
    [[nodiscard]] static Result<DataPageEditor> Open(MutableBytes page, PageNo number);
    /// Makes an empty data page.
    static void Format(MutableBytes page, std::uint32_t owner);

    [[nodiscard]] std::size_t SlotCount() const { return LoadU16(page_, 12); }
    /// Bytes between the slots and the rows.
    [[nodiscard]] std::size_t Free() const { return Lowest() - kHead - kSlot * SlotCount(); }
    /// True when a new row of this size fits.
    [[nodiscard]] bool Fits(std::size_t size) const {
        return SlotCount() < kMostSlots && size + kSlot <= Free();
    }
    [[nodiscard]] std::uint16_t Flags(std::size_t slot) const;
    [[nodiscard]] MutableBytes Row(std::size_t slot) const;

    /// REQUIRES: Fits(row.size()). Returns the new slot.
    std::size_t Append(Bytes row, std::uint16_t flags);
    /// Gives a row new bytes. REQUIRES: they fit, see Free().
    void Replace(std::size_t slot, Bytes row, std::uint16_t flags);
    /// Removes the row's bytes; its slot stays, marked as deleted.
    void Delete(std::size_t slot) { Replace(slot, {}, kDeleted); }
    [[nodiscard]] bool HasOnlyDeletedSlots() const;

private:
    explicit DataPageEditor(MutableBytes page) : page_(page) {}
    [[nodiscard]] std::size_t Start(std::size_t slot) const;
    [[nodiscard]] std::size_t End(std::size_t slot) const;
    [[nodiscard]] std::size_t Lowest() const;
    void SetSlot(std::size_t slot, std::size_t start, std::uint16_t flags);
    void StoreFree();

    MutableBytes page_;
};

}  // namespace jet
