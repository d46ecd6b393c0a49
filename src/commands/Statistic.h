#pragma once

#include "projectdb/ADOArchiv.h"
#include "projectdb/FunctionCounters.h"

namespace Statistic {

/// Shows in the status bar how many archives and trends the whole project has.
void Show(ADOArchiv& environment, projectdb::FunctionCounters& counters);

}  // namespace Statistic
