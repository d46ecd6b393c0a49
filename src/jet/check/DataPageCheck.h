#pragma once

#include <string>

#include "jet/check/Reporter.h"
#include "jet/Types.h"

namespace jet::check {

/// Checks how the rows are packed on a data page of any kind: at most 255 slots, every row where
/// the one before begins, the stated free space. `bytes` is a page whose slot table fits, `name`
/// names page and owner. False when a slot has impossible offsets, which is then reported.
bool CheckPacking(Reporter& report, const std::string& name, Bytes bytes);

}  // namespace jet::check
