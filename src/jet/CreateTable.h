#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jet/Database.h"

namespace jet {

/// A column of a table to be made.
struct ColumnSpec {
    std::string name;  // UTF-8
    ColumnType type = ColumnType::Long;
    std::size_t length = 0;     // Text: 1..255 UTF-16 units, Binary: 1..510 bytes, others: not used
    bool isAutoNumber = false;  // Long and Guid, one a table
    bool mayCompress = true;    // Text and Memo: stored in the shorter form where there is one
    std::uint8_t precision = 18;  // Numeric: 1..28 digits
    std::uint8_t scale = 0;       // Numeric: 0..precision digits behind the point
};

/// An index of a table to be made.
struct IndexSpec {
    enum class Kind : std::uint8_t { Plain, Unique, PrimaryKey };
    struct Key {
        std::string column;
        bool ascending = true;
    };
    std::string name;  // UTF-8; a primary key is called "PrimaryKey" by custom
    Kind kind = Kind::Plain;
    std::vector<Key> keys;  // 1..10
};

/// A table to be made.
struct TableSpec {
    std::string name;                 // UTF-8
    std::vector<ColumnSpec> columns;  // 1..255
    std::vector<IndexSpec> indexes;   // at most 32
};

/// Adds an empty table to a database (Jet 4) and to its catalog, as a change of the running
/// transaction or as one of its own. Texts sort in the collation "General".
///
/// BadArgument for what the format cannot hold and Duplicate when there is a table of this name
/// change nothing. After any other failure nothing is left of the whole transaction.
Status CreateTable(Database& database, const TableSpec& wanted);

}  // namespace jet
