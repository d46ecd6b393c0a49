#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/Types.h"

namespace jet {

/// One column of a table.
struct Column {
    std::string name;  // UTF-8
    ColumnType type = ColumnType::Long;
    std::uint16_t number = 0;         // bit in the null mask; never reused
    std::uint16_t variableIndex = 0;  // place in the row's offset table, variable columns only
    std::uint16_t fixedOffset = 0;    // bytes into the fixed area, fixed columns only
    std::uint16_t length = 0;         // bytes at most; 0 for memo and OLE
    std::uint8_t flags = 0;
    std::uint8_t extraFlags = 0;
    std::uint16_t collationLcid = 0;  // text and memo
    std::uint8_t collationVersion = 0;
    std::uint8_t precision = 0;  // Numeric: 1..28 digits
    std::uint8_t scale = 0;      // Numeric: 0..28 digits behind the point
    std::uint32_t ownedMap = 0;  // memo and OLE: row pointers of the maps of their pages, may be 0
    std::uint32_t freeMap = 0;

    // The storage class follows from the flag alone, whatever the type.
    [[nodiscard]] bool operator==(const Column&) const = default;

    [[nodiscard]] bool IsFixed() const { return (flags & 0x01) != 0; }
    [[nodiscard]] bool IsAutoNumber() const { return (flags & 0x44) != 0; }
    [[nodiscard]] bool MayCompress() const { return (extraFlags & 0x01) != 0; }
    [[nodiscard]] bool IsText() const {
        return type == ColumnType::Text || type == ColumnType::Memo;
    }
    [[nodiscard]] bool IsLongValue() const {
        return type == ColumnType::Memo || type == ColumnType::Ole;
    }
};

/// One key column of an index.
struct IndexColumn {
    std::size_t column = 0;  // position in TableDef::columns
    bool ascending = true;
    [[nodiscard]] bool operator==(const IndexColumn&) const = default;
};

/// A B-tree. One or more logical indexes may share it.
struct RealIndex {
    std::vector<IndexColumn> columns;  // 1..10
    std::uint32_t ownedMap = 0;        // row pointer of the map of its pages
    PageNo root{};
    std::uint8_t flags = 0;
    std::uint32_t uniqueCount = 0;  // a statistic only

    [[nodiscard]] bool IsUnique() const { return (flags & 0x01) != 0; }
    [[nodiscard]] bool IgnoresNulls() const { return (flags & 0x02) != 0; }
    [[nodiscard]] bool IsRequired() const { return (flags & 0x08) != 0; }
};

/// A name and a role for a real index.
struct LogicalIndex {
    enum class Role : std::uint8_t { Ordinary = 0, PrimaryKey = 1, ForeignKey = 2 };
    std::string name;  // UTF-8
    std::uint32_t number = 0;
    std::size_t real = 0;  // position in TableDef::realIndexes
    Role role = Role::Ordinary;
    std::uint8_t side = 0;  // foreign key: 1 referenced, 2 referencing
    PageNo otherTable{};    // foreign key
    std::int32_t partner = -1;
    // Foreign key: what happens to the referencing rows when the referenced one changes. Without
    // any of them its key cannot change as long as there are such rows.
    bool cascadesUpdates = false;
    bool cascadesDeletes = false;
    bool setsNull = false;  // on a delete
};

/// What a table definition says.
struct TableDef {
    PageNo page{};  // first page of the definition; identifies the table
    bool isSystem = false;
    std::uint32_t rowCount = 0;  // as stored; an estimate
    std::uint32_t lastAutoNumber = 0;
    std::uint16_t highestColumnCount = 0;   // dropped columns included
    std::uint16_t variableColumnCount = 0;  // dropped columns included
    std::uint32_t ownedMap = 0;             // row pointers
    std::uint32_t freeMap = 0;
    std::vector<Column> columns;  // by ascending number
    std::vector<RealIndex> realIndexes;
    std::vector<LogicalIndex> logicalIndexes;

    /// Names compare without case.
    [[nodiscard]] std::optional<std::size_t> FindColumn(std::string_view name) const;
    /// Position in realIndexes; empty when the table has no primary key.
    [[nodiscard]] std::optional<std::size_t> PrimaryKey() const;
};

/// True when two definitions have the same columns and indexes in the same places, so that
/// positions found in one hold in the other. Counters may differ.
[[nodiscard]] bool SameStructure(const TableDef& a, const TableDef& b);

/// True when two names of tables or columns mean the same to the file.
[[nodiscard]] bool SameName(std::string_view a, std::string_view b);

}  // namespace jet
