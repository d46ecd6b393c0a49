#pragma once

#include "jet/page/PageCache.h"
#include "jet/Status.h"

namespace jet {

/// A row slot of a data page. Deleted slots have no bytes.
struct Slot {
    bool isDeleted = false;
    bool isMoved = false;   // the bytes begin with the row pointer of the place that holds the row
    bool isTarget = false;  // the row of a moved slot elsewhere; reached only through that one
    Bytes bytes;
};

/// View of a data page: rows of a table, pieces of long values, or usage maps.
///
///            Jet 4   Jet 3
///   u16       +2      +2    free bytes
///   u32       +4      +4    owner: page of the table definition, "LVAL", or 0 for usage maps
///   u16      +12      +8    number of slots
///   u16[]    +14     +10    slots: bits 0..12 offset of the row, 0x4000 moved, 0x8000 target,
///                           both: deleted
/// Rows are packed from the page's end downwards in the order of their slots.
class DataPage {
public:
    static constexpr std::uint32_t kLongValueOwner = 0x4C41564C;  // "LVAL"
    static constexpr std::uint32_t kUsageMapOwner = 0;

    DataPage() = default;
    /// Fails when the page is no data page or its slot table does not fit.
    [[nodiscard]] static Result<DataPage> Open(PageRef page, Format format);

    [[nodiscard]] PageNo Number() const { return page_.Number(); }
    [[nodiscard]] std::uint32_t Owner() const;
    [[nodiscard]] int SlotCount() const { return slotCount_; }
    /// Bytes 8..11: on the first page of a long value in several pieces its stamp. Jet 4 only.
    [[nodiscard]] std::uint32_t Stamp() const;
    /// REQUIRES: 0 <= row < SlotCount(). Fails when the slot's offsets contradict each other.
    [[nodiscard]] Result<Slot> At(int row) const;

private:
    PageRef page_;
    Format format_ = Format::Jet4;
    int slotCount_ = 0;
};

[[nodiscard]] std::string RowText(RowId row);

}  // namespace jet
