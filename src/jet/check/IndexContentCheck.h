#pragma once

#include "jet/check/IndexWalk.h"
#include "jet/check/RowCheck.h"

namespace jet::check {

/// Checks one index: its tree, and its entries against the keys of the rows, which `rows` has
/// summed up. Sums are compared first; only when they differ are rows and entries gathered, a part
/// of them at a time, to name those that do not agree.
void CheckIndex(PageCache& cache, Reporter& report, PageLedger& pages, const CheckedTable& table,
                std::size_t realIndex, const RowSums& rows);

}  // namespace jet::check
