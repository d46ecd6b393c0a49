#pragma once

#include <span>

#include "jet/Table.h"

namespace jet {

/// A new value for one column: by its position in TableDef::columns. Memo values are texts, OLE
/// values binaries.
struct Assignment {
    std::size_t column = 0;
    Value value;
};

/// Changes the rows of a table (Jet 4), inside a transaction of its database. Every index of the
/// table is kept, and what a failed change has done is taken back before it returns; the
/// transaction goes on. Borrows the table.
///
/// The properties Required and AllowZeroLength of the columns are obeyed, and so are relationships
/// that the database enforces: deletes and changes of keys go on to other tables where they say so.
/// Default values and validation rules, which are expressions, are not evaluated.
///
/// Failures: Unsupported when an index cannot be kept, Duplicate, Required, Related, TooLong,
/// NotFound when the row is gone, Corrupt.
class TableWriter {
public:
    explicit TableWriter(Table& table) : table_(table) {}

    /// Whether rows of the table can be changed at all: Unsupported when they cannot.
    Status CheckWritable() const;

    /// Columns that are not assigned are Null, Booleans false; an AutoNumber gets the next number,
    /// or a random GUID, unless it is assigned.
    [[nodiscard]] Result<RowId> Insert(std::span<const Assignment> values);
    /// Columns that are not assigned stay byte for byte as they are.
    Status Update(RowId row, std::span<const Assignment> values);
    Status Delete(RowId row);

private:
    Table& table_;
};

}  // namespace jet
