#pragma once

#include "jet/Database.h"
#include "jet/detail/compact/Draft.h"

namespace jet::compact {

/// Holds the rows of all tables of two files against each other, in their order and with their long
/// values. Fails at the first difference.
Status CompareContent(Database& before, Database& after, const TableMoves& moves);

}  // namespace jet::compact
