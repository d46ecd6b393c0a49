#pragma once

#include <string_view>

#include "ado/Recordset.h"

namespace tools {

/// The value that a text form stands for, as `kvs dump` writes it, for a field of this type.
/// Throws AdoError (kWrongType) when the text is none of the type's.
[[nodiscard]] ado::Value ParseValue(const ado::Field& field, std::string_view text);

}  // namespace tools
