#pragma once

#include <utility>

#include "jet/index/EntryCursor.h"
#include "jet/open/TableRep.h"

namespace jet {

/// Borrows the table.
struct IndexCursor::Rep {
    Rep(const Table::Rep& of, EntryCursor cursor) : table(of), entries(std::move(cursor)) {}

    const Table::Rep& table;
    EntryCursor entries;
};

}  // namespace jet
