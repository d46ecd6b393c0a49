#include "jet/check/DefinitionCheck.h"

#include <algorithm>

#include "jet/catalog/TableDefReader.h"
#include "jet/page/Bytes.h"
#include "jet/Unicode.h"

namespace jet::check {
namespace {

constexpr std::uint8_t kDefinitionType = 2;
constexpr std::size_t kPageHeader = 8;
constexpr std::size_t kLength = 8;
constexpr std::size_t kMaxLength = std::size_t{256} << 10;
constexpr std::uint32_t kMostLogicalRole = 2;

// Bytes of the parts of a definition.
constexpr std::size_t kFixedPart = 0x3F;
constexpr std::size_t kColumn = 25;
constexpr std::size_t kNameLength = 2;
constexpr std::size_t kRealIndex = 12 + 52;
constexpr std::size_t kLogicalIndex = 28;
constexpr std::size_t kLongValueMaps = 10;
constexpr std::size_t kEndMark = 2;

std::size_t NameSize(const std::string& name) {
    return kNameLength + 2 * ToUtf16(name).size();
}

/// Length of the definition that says what `def` says.
std::size_t LengthOf(const TableDef& def) {
    std::size_t length = kFixedPart + kRealIndex * def.realIndexes.size() + kEndMark;
    for (const Column& column : def.columns) {
        length += kColumn + NameSize(column.name) + (column.IsLongValue() ? kLongValueMaps : 0);
    }
    for (const LogicalIndex& index : def.logicalIndexes) {
        length += kLogicalIndex + NameSize(index.name);
    }
    return length;
}

std::uint64_t EndKey(PageNo table, std::uint32_t number) {
    return std::uint64_t{Raw(table)} << 32 | number;
}

}  // namespace

CheckedTable::CheckedTable(const TableEntry& entry, TableDef definition)
    : name("table \"" + entry.name + "\""), def(std::move(definition)) {
    auto owner = static_cast<std::uint32_t>(entry.firstOwner);
    rows = OwnerId{++owner};
    for (std::size_t i = 0; i < def.realIndexes.size(); ++i) indexes.push_back(OwnerId{++owner});
    for (const Column& column : def.columns) {
        longValues.push_back(column.IsLongValue() ? OwnerId{++owner} : OwnerId::Nobody);
    }
}

std::string CheckedTable::IndexName(std::size_t realIndex) const {
    for (const LogicalIndex& index : def.logicalIndexes) {
        if (index.real == realIndex) return name + ", index \"" + index.name + "\"";
    }
    return name + ", index " + std::to_string(realIndex);
}

void DefinitionCheck::Check(TableEntry& entry) {
    const std::string name = "table \"" + entry.name + "\"";
    const OwnerId owner = pages_.AddOwner("the definition of " + name);
    if (!CheckChain(name, entry.page, owner)) return;
    Result<TableDef> def = ReadTableDef(cache_, Format::Jet4, nullptr, entry.page);
    if (!def.IsOk()) {
        Error(name, def.GetStatus().Text());
        return;
    }
    entry.firstOwner = owner;
    const CheckedTable table(entry, std::move(*def));
    // In the order that TableEntry promises.
    std::ignore = pages_.AddOwner("the rows of " + name);
    for (std::size_t i = 0; i < table.indexes.size(); ++i) {
        std::ignore = pages_.AddOwner(table.IndexName(i));
    }
    for (const Column& column : table.def.columns) {
        if (!column.IsLongValue()) continue;
        std::ignore = pages_.AddOwner(name + ", column \"" + column.name + "\"");
    }
    CheckLength(table);
    CheckColumns(table);
    CheckIndexes(table);
    ClaimMaps(table);
}

bool DefinitionCheck::CheckChain(const std::string& name, PageNo first, OwnerId owner) {
    stream_.clear();
    std::size_t length = 0;
    for (PageNo page = first; Raw(page) != 0 || stream_.empty();) {
        if (!pages_.Claim(page, owner)) return false;
        Result<PageRef> ref = cache_.Read(page);
        if (!ref.IsOk()) {
            Error(name, ref.GetStatus().Text());
            return false;
        }
        const Bytes bytes = ref->Bytes();
        const std::string where = name + ", " + PageText(page);
        if (LoadU8(bytes, 0) != kDefinitionType) {
            Error(where,
                  "is not a table definition (type " + std::to_string(LoadU8(bytes, 0)) + ")");
            return false;
        }
        if (stream_.empty()) length = LoadU32(bytes, kLength);
        const Bytes part = bytes.subspan(stream_.empty() ? 0 : kPageHeader);
        const std::size_t left = length - std::min(length, stream_.size());
        if (left == 0) {
            Error(where, "the definition goes on behind its stated length of " +
                             std::to_string(length) + " bytes");
            return true;
        }
        // The stated number leaves out eight bytes, and is 0 where fewer are left.
        const std::size_t free = part.size() - std::min(left, part.size());
        const std::size_t expected = free < kPageHeader ? 0 : free - kPageHeader;
        if (const std::size_t stated = LoadU16(bytes, 2); stated != expected) {
            Error(where, "states " + std::to_string(stated) + " free bytes instead of " +
                             std::to_string(expected));
        }
        stream_.insert(stream_.end(), part.begin(), part.end());
        if (stream_.size() > kMaxLength) {
            Error(name, "its definition is longer than " + std::to_string(kMaxLength) + " bytes");
            return false;
        }
        page = PageNo{LoadU32(bytes, 4)};
    }
    // A chain that ends too early is reported by whoever reads the definition.
    stream_.resize(std::min(length, stream_.size()));
    return true;
}

void DefinitionCheck::CheckLength(const CheckedTable& table) {
    const std::size_t expected = LengthOf(table.def);
    if (expected != stream_.size()) {
        Error(table.name, "its definition states " + std::to_string(stream_.size()) +
                              " bytes and takes " + std::to_string(expected));
    } else if (LoadU16(stream_, stream_.size() - kEndMark) != 0xFFFF) {
        Error(table.name, "its definition lacks the mark at its end");
    }
}

void DefinitionCheck::CheckColumns(const CheckedTable& table) {
    struct Room {
        std::size_t begin, end;
        const Column* column;
    };
    std::vector<Room> rooms;
    std::vector<const Column*> byIndex(table.def.variableColumnCount);
    for (const Column& column : table.def.columns) {
        const std::string where = table.name + ", column \"" + column.name + "\"";
        if (column.type == ColumnType::Boolean) continue;  // lives in the null mask
        if (column.IsFixed()) {
            rooms.push_back(
                {column.fixedOffset, std::size_t{column.fixedOffset} + column.length, &column});
        } else if (column.variableIndex >= byIndex.size()) {
            Misplaced(where, "is variable column " + std::to_string(column.variableIndex) + " of " +
                                 std::to_string(byIndex.size()));
        } else if (const Column*& other = byIndex[column.variableIndex]; other != nullptr) {
            Misplaced(where, "shares its place with \"" + other->name + "\"");
        } else {
            other = &column;
        }
    }
    std::sort(rooms.begin(), rooms.end(),
              [](const Room& a, const Room& b) { return a.begin < b.begin; });
    for (std::size_t i = 1; i < rooms.size(); ++i) {
        if (rooms[i].begin >= rooms[i - 1].end) continue;
        Misplaced(table.name + ", column \"" + rooms[i].column->name + "\"",
                  "overlaps \"" + rooms[i - 1].column->name + "\" in the fixed area");
    }
}

void DefinitionCheck::CheckIndexes(const CheckedTable& table) {
    for (std::size_t i = 0; i < table.def.realIndexes.size(); ++i) {
        if (table.def.realIndexes[i].columns.empty()) Error(table.IndexName(i), "has no columns");
    }
    for (const LogicalIndex& index : table.def.logicalIndexes) {
        const std::string where = table.name + ", index \"" + index.name + "\"";
        if (static_cast<std::uint32_t>(index.role) > kMostLogicalRole) {
            Error(where,
                  "has the unknown role " + std::to_string(static_cast<std::uint32_t>(index.role)));
        }
        const End end = {where, index.role == LogicalIndex::Role::ForeignKey, index.side,
                         index.partner, index.otherTable};
        if (!ends_.emplace(EndKey(table.def.page, index.number), end).second) {
            Error(where, "shares its number " + std::to_string(index.number) +
                             " with another index of the table");
        }
    }
}

void DefinitionCheck::ClaimMaps(const CheckedTable& table) {
    maps_.ClaimPages(table.def.ownedMap, table.rows);
    maps_.CheckFreeSpace(table.def.freeMap, table.rows);
    for (std::size_t i = 0; i < table.indexes.size(); ++i) {
        maps_.ClaimPages(table.def.realIndexes[i].ownedMap, table.indexes[i]);
    }
    for (std::size_t i = 0; i < table.def.columns.size(); ++i) {
        const Column& column = table.def.columns[i];
        // Long values may do without a map as long as they have no pages, or none with room.
        if (column.IsLongValue() && column.ownedMap == 0) {
            maps_.AddLimit(table.name + ", column \"" + column.name +
                           "\": it has no map of its pages, so that no value of more than 64 bytes "
                           "can be stored");
        }
        if (column.IsLongValue() && column.ownedMap != 0) {
            maps_.ClaimPages(column.ownedMap, table.longValues[i]);
        }
        if (column.IsLongValue() && column.freeMap != 0) {
            maps_.CheckFreeSpace(column.freeMap, table.longValues[i]);
        }
    }
}

void DefinitionCheck::CheckRelationships() {
    for (const auto& [key, end] : ends_) {
        if (!end.isForeign) continue;
        const PageNo table{static_cast<std::uint32_t>(key >> 32)};
        const auto number = static_cast<std::uint32_t>(key);
        const auto other =
            ends_.find(EndKey(end.otherTable, static_cast<std::uint32_t>(end.partner)));
        const bool pointsBack = other != ends_.end() && other->second.isForeign &&
                                other->second.otherTable == table &&
                                static_cast<std::uint32_t>(other->second.partner) == number &&
                                other->second.side + end.side == 3;
        if (!pointsBack) {
            Error(end.name, "is one end of a relationship whose other end, index number " +
                                std::to_string(end.partner) + " of the table on " +
                                PageText(end.otherTable) + ", does not lead back");
        }
    }
}

}  // namespace jet::check
