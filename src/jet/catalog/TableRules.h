#pragma once

#include <string>
#include <vector>

#include "jet/open/FileContext.h"
#include "jet/TableDef.h"

namespace jet {

/// What the catalog says of a table beside its definition.
struct TableRules {
    std::string name;  // of the table, UTF-8; empty when the catalog does not list it
    // By position in TableDef::columns.
    std::vector<bool> isRequired;         // Null is refused
    std::vector<bool> refusesEmptyTexts;  // a text without characters is refused
};

/// Reads the rules of a table (Jet 4). A table without properties has none. Corrupt when its
/// properties are damaged: nothing can be written then without breaking a rule perhaps.
///
/// Properties are one long value:
///   +0  4    "MR2" 0, then blocks of
///       u32  length of the block, this field included
///       u16  kind: 0x80 names of properties, 1 properties of one column, others
///   Names:  u16 bytes, UTF-16 text, and so on.
///   Column: u32 length of its head, this field included; u16 bytes, UTF-16 name; then values of
///           u16 length, this field included; u8; u8 type; u16 number of the name; u16 bytes; data.
[[nodiscard]] Result<TableRules> ReadTableRules(const FileContext& file, const TableDef& def);

}  // namespace jet
