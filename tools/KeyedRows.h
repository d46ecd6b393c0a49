#pragma once

#include <optional>
#include <string>
#include <unordered_map>

#include "ado/Recordset.h"

namespace tools {

/// The rows that a table holds, by their values in one column: who changes them by a key from
/// outside finds them here.
class KeyedRows {
public:
    /// Goes through `rows`, which is borrowed for the call and not to be requeried afterwards.
    KeyedRows(ado::Recordset& rows, std::size_t field);

    [[nodiscard]] std::size_t Field() const { return field_; }
    /// The row that has this value, to the letter; nothing where none has. Throws ado::AdoError for
    /// Null, for a value of several rows, and for one that has been taken before.
    [[nodiscard]] std::optional<ado::Bookmark> Take(const ado::Value& value);

private:
    struct Row {
        ado::Bookmark place;
        std::size_t count = 0;
        bool isTaken = false;
    };
    std::size_t field_;
    std::unordered_map<std::u16string, Row> rows_;
};

}  // namespace tools
