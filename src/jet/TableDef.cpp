#include "jet/TableDef.h"

#include "jet/TextKey.h"
#include "jet/Unicode.h"

namespace jet {

bool SameName(std::string_view a, std::string_view b) {
    if (a == b) return true;
    // The catalog's own order decides, as the unique index on the names does.
    std::string keyA;
    std::string keyB;
    AppendTextKey(ToUtf16(a), true, keyA);
    AppendTextKey(ToUtf16(b), true, keyB);
    return keyA == keyB;
}

std::optional<std::size_t> TableDef::FindColumn(std::string_view name) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (SameName(columns[i].name, name)) return i;
    }
    return std::nullopt;
}

std::optional<std::size_t> TableDef::PrimaryKey() const {
    for (const LogicalIndex& index : logicalIndexes) {
        if (index.role == LogicalIndex::Role::PrimaryKey) return index.real;
    }
    return std::nullopt;
}

}  // namespace jet
