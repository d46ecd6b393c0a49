#pragma once

#include <optional>

#include "jet/page/Bytes.h"
#include "jet/Status.h"
#include "jet/TableDef.h"
#include "jet/Types.h"

namespace jet {

/// Where the values lie inside the bytes of one row. Borrows both arguments of Parse.
///
/// Jet 4:  u16 column count | fixed area | variable data | u16 end of the data, then the starts of
///         the variable columns from the last to the first | u16 their count | null mask
/// Jet 3:  the same with u8 instead of u16; a table behind the starts tells which of them lie 256
///         bytes further on
/// The part behind the data exists only in tables that have ever had a variable column. Columns
/// added after the row was written are missing from it and read as Null.
class RowView {
public:
    RowView() = default;
    [[nodiscard]] static Result<RowView> Parse(Format format, const TableDef& def, Bytes row);

    [[nodiscard]] Bytes Stored() const { return row_; }

    /// The bit of the null mask: not Null, or for a Boolean its value.
    [[nodiscard]] bool HasBit(const Column& column) const {
        if (column.number >= columnCount_) return false;
        return (LoadU8(row_, mask_ + column.number / 8) >> (column.number % 8) & 1) != 0;
    }
    /// The stored bytes of a value that is not Null and no Boolean.
    [[nodiscard]] Result<Bytes> ValueBytes(const Column& column) const;
    /// The same for loops over many values: false when the row's offsets are damaged.
    [[nodiscard]] bool Locate(const Column& column, Bytes& bytes) const;

private:
    [[nodiscard]] std::size_t VariableOffset(std::size_t index) const;

    Format format_ = Format::Jet4;
    Bytes row_;
    std::size_t columnCount_ = 0;
    std::size_t variableCount_ = 0;
    std::size_t mask_ = 0;      // offset of the null mask
    std::size_t tableEnd_ = 0;  // offset of the lowest byte of the table of starts
    std::size_t jumps_ = 0;     // Jet 3: entries in the table of jumps that count
    std::size_t allJumps_ = 0;
};

}  // namespace jet
