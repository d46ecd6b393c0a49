#pragma once

#include "jet/compact/Draft.h"
#include "jet/Database.h"

namespace jet::compact {

/// Holds the rows of all tables of two files against each other, in their order and with their long
/// values. Fails at the first difference.
Status CompareContent(Database& before, Database& after, const TableMoves& moves);

}  // namespace jet::compact
