#pragma once

#include "unicode/Unicode.h"

namespace jet {

using unicode::AppendUtf8;
using unicode::FindInvalidUtf8;
using unicode::ToUtf16;
using unicode::ToUtf8;

}  // namespace jet
