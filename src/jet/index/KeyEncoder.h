#pragma once

#include <string>

#include "jet/Status.h"
#include "jet/TableDef.h"
#include "jet/Value.h"

namespace jet {

/// True when keys for this column can be made: any type but OLE, and texts in the collation that
/// TextKey knows.
[[nodiscard]] bool CanEncodeKey(const Column& column);

/// Appends the key bytes of one column's value to `key`: a flag byte, then an encoding whose
/// unsigned byte order is the order of the values. REQUIRES: CanEncodeKey(column).
/// BadArgument when the value's type does not fit the column's; memo values must have been read
/// into text before.
Status AppendKey(const Column& column, bool ascending, const Value& value, std::string& key);

}  // namespace jet
