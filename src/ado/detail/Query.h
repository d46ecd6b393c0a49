#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ado/detail/Expression.h"

namespace ado {

/// A SELECT statement as it was written: SELECT columns FROM tables [WHERE condition].
struct Query {
    struct Item {
        bool isAll = false;  // T.* or *, the qualifier in `column`
        ColumnRef column;
        std::string alias;  // may be empty
    };
    struct Source {
        std::string table;
        std::string alias;  // equals `table` when there is none
    };
    std::vector<Item> items;
    std::vector<Source> sources;
    std::unique_ptr<Expression> where;  // may be null
};

[[nodiscard]] Query ParseQuery(std::string_view text);

}  // namespace ado
