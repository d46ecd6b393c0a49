#pragma once

#include <memory>
#include <utility>

#include "jet/Status.h"
#include "jet/TableDef.h"
#include "jet/Value.h"

namespace jet {

/// One row as it was when it was read. Keeps its page and its table's definition alive; whatever
/// happens to the file or the table later, it does not change. A copy costs next to nothing.
class Row {
public:
    struct Rep;       // the library's own
    Row() = default;  // of no table: to be assigned one
    explicit Row(std::shared_ptr<const Rep> rep) : rep_(std::move(rep)) {}

    /// Where the row is known to be: its address in every index, also when it has moved.
    [[nodiscard]] RowId Id() const;
    /// The value of a column by its position in TableDef::columns. Memo and OLE values come as
    /// LongValue. Corrupt when the value does not fit the row.
    [[nodiscard]] Result<Value> Get(std::size_t column) const;
    /// The same into `value`, whose memory is used again: for loops over many rows. BadArgument
    /// when there is no such column.
    Status Read(std::size_t column, Value& value) const;
    /// The row's bytes as they are stored. Valid as long as the row.
    [[nodiscard]] Bytes Stored() const;

private:
    friend struct Inside;
    std::shared_ptr<const Rep> rep_;
};

}  // namespace jet
