#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ado/Value.h"

namespace ado {

/// One row that a transaction has changed, with all columns of its table.
struct RowChange {
    std::string table;
    std::shared_ptr<const std::vector<std::string>> columns;  // of the table
    std::vector<Value> before;                                // by column; none: the row is new
    std::vector<Value> after;                                 // by column; none: the row has gone
    bool isWhole = true;  // false: a value could not be read and stands as Null
};

/// Hears of the rows that a transaction has changed, in the order in which they were, once it is
/// in the file. A row may stand in it several times. Must not throw.
using ChangeListener = std::function<void(std::vector<RowChange> changes)>;

}  // namespace ado
