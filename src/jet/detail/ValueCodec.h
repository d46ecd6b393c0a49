#pragma once

#include "jet/detail/CodePage.h"
#include "jet/Status.h"
#include "jet/TableDef.h"
#include "jet/Value.h"

namespace jet {

/// The value of `column` from its stored bytes. Not for Boolean, which lives in the null mask.
/// `codePage` is null for Jet 4.
[[nodiscard]] Result<Value> DecodeValue(const Column& column, const CodePage* codePage,
                                        Bytes bytes);

}  // namespace jet
