#pragma once

#include <optional>
#include <string>

#include "ado/Value.h"
#include "jet/Table.h"

namespace ado {

[[nodiscard]] DataType TypeOf(const jet::Column& column);
[[nodiscard]] jet::ColumnType ColumnTypeOf(DataType type);

/// A stored value as recordsets show it; memo and OLE values are read whole.
[[nodiscard]] jet::Result<Value> FromStored(const jet::Table& table, const jet::Value& stored);
/// The same into `value`, whose memory is used again: for loops over many rows.
jet::Status AssignStored(const jet::Table& table, const jet::Value& stored, Value& value);

/// The value in the column's own type for an index look-up; empty when it has no exact counterpart
/// there, so that the index cannot tell which values compare as equal. Null stays Null.
[[nodiscard]] std::optional<jet::Value> ToStored(const jet::Column& column, const Value& value);

/// The value as it is stored when it is assigned to the column: numbers are rounded to whole ones
/// where the column holds those, texts are read as numbers and numbers written as texts. Throws
/// kWrongType when it cannot be converted, kDoesNotFit when it is out of the column's range.
[[nodiscard]] jet::Value ForAssignment(const jet::Column& column, const Value& value);

/// The number that a value stands for in a comparison: True is -1, a text is read as a number as
/// a whole. Empty for what is no number.
[[nodiscard]] std::optional<double> AsNumber(const Value& value);

}  // namespace ado
