#pragma once

#include "jet/row/CodePage.h"
#include "jet/Status.h"
#include "jet/TableDef.h"
#include "jet/Value.h"

namespace jet {

/// Puts the value of `column` into `value` from its stored bytes; the memory of a text or binary
/// that is there already is used again. Not for Boolean, which lives in the null mask. `codePage`
/// is null for Jet 4.
Status DecodeValue(const Column& column, const CodePage* codePage, Bytes bytes, Value& value);

}  // namespace jet
