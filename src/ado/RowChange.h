#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
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

    /// What is known of the row: as it was, or as it is when it is new.
    [[nodiscard]] const std::vector<Value>& Known() const {
        return before.empty() ? after : before;
    }
    /// The value of `side`, which is `before` or `after` and not empty, in a column, by exact name;
    /// null when the table has none.
    [[nodiscard]] const Value* ValueIn(const std::vector<Value>& side,
                                       std::string_view column) const {
        const auto found = std::find(columns->begin(), columns->end(), column);
        if (found == columns->end()) return nullptr;
        return &side.at(static_cast<std::size_t>(found - columns->begin()));
    }
    [[nodiscard]] const Value* KnownIn(std::string_view column) const {
        return ValueIn(Known(), column);
    }
};

/// Hears of the rows that a transaction has changed, in the order in which they were, once it is
/// in the file. A row may stand in it several times. Must not throw.
using ChangeListener = std::function<void(std::vector<RowChange> changes)>;

}  // namespace ado
