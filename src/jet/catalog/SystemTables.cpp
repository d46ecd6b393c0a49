#include "jet/catalog/SystemTables.h"

#include <bit>

#include "jet/catalog/TableDefWriter.h"
#include "jet/TextKey.h"

namespace jet {
namespace {

constexpr std::uint8_t kFixed = 0x01;
constexpr std::uint8_t kOfSystem = 0x12;
constexpr std::uint8_t kOwner = 0x20;

constexpr std::uint8_t kUnique = 0x81;
constexpr std::uint8_t kRequired = 0x88;
constexpr std::uint8_t kIgnoresNulls = 0x82;

using Type = ColumnType;

struct SystemColumn {
    const char* name;
    Type type;
    std::uint8_t moreFlags = 0;
};

struct SystemIndex {
    const char* name;
    std::uint8_t flags;
    std::vector<std::size_t> columns;
    LogicalIndex::Role role = LogicalIndex::Role::Ordinary;
};

/// Bytes at most; 0 for a long value.
std::uint16_t LengthOf(Type type) {
    switch (type) {
        case Type::Boolean:
        case Type::Byte:
            return 1;
        case Type::Integer:
            return 2;
        case Type::Long:
            return 4;
        case Type::DateTime:
            return 8;
        case Type::Text:
        case Type::Binary:
            return 510;
        default:
            return 0;
    }
}

bool IsVariable(Type type) {
    return LengthOf(type) == 0 || LengthOf(type) == 510;
}

SystemTable Make(std::string name, const std::vector<SystemColumn>& columns,
                 const std::vector<SystemIndex>& indexes) {
    TableDef def;
    def.isSystem = true;
    for (const SystemColumn& source : columns) {
        Column& column = def.columns.emplace_back();
        column.name = source.name;
        column.type = source.type;
        column.length = LengthOf(source.type);
        column.flags = kOfSystem | source.moreFlags;
        if (!IsVariable(source.type)) column.flags |= kFixed;
        column.collationLcid = kGeneralLcid;
    }
    for (const SystemIndex& source : indexes) {
        const std::size_t real = def.realIndexes.size();
        RealIndex& index = def.realIndexes.emplace_back();
        index.flags = source.flags;
        for (const std::size_t column : source.columns) index.columns.push_back({column, true});
        def.logicalIndexes.push_back(
            {source.name, static_cast<std::uint32_t>(real), real, source.role});
    }
    LayOutColumns(def);
    return {std::move(name), std::move(def)};
}

Binary Sid(unsigned first, unsigned second) {
    return {static_cast<std::byte>(first), static_cast<std::byte>(second)};
}

}  // namespace

SecurityIds NewFileSecurity() {
    // 2015-11-21; the four identifiers differ from each other alike in every file.
    return {std::bit_cast<double>(std::uint64_t{0x40E4AB3E3BD3853E}), Sid(0x65, 0x89),
            Sid(0x64, 0x8B), Sid(0x65, 0x8B), Sid(0x65, 0x8E)};
}

std::vector<SystemTable> SystemTables() {
    using Role = LogicalIndex::Role;
    std::vector<SystemTable> tables;
    tables.push_back(
        Make("MSysObjects",
             {{"Id", Type::Long},
              {"ParentId", Type::Long},
              {"Name", Type::Text},
              {"Type", Type::Integer},
              {"DateCreate", Type::DateTime},
              {"DateUpdate", Type::DateTime},
              {"Owner", Type::Binary, kOwner},
              {"Flags", Type::Long},
              {"Database", Type::Memo},
              {"Connect", Type::Memo},
              {"ForeignName", Type::Text},
              {"RmtInfoShort", Type::Binary},
              {"RmtInfoLong", Type::Ole},
              {"Lv", Type::Ole},
              {"LvProp", Type::Ole},
              {"LvModule", Type::Ole},
              {"LvExtra", Type::Ole}},
             {{"ParentIdName", kUnique, {1, 2}}, {"Id", kUnique, {0}, Role::PrimaryKey}}));
    tables.push_back(Make("MSysACEs",
                          {{"ObjectId", Type::Long},
                           {"SID", Type::Binary, kOwner},
                           {"ACM", Type::Long},
                           {"FInheritable", Type::Boolean}},
                          {{"ObjectId", kRequired, {0}}}));
    tables.push_back(Make("MSysQueries",
                          {{"ObjectId", Type::Long},
                           {"Attribute", Type::Byte},
                           {"Order", Type::Binary},
                           {"Name1", Type::Text},
                           {"Name2", Type::Text},
                           {"Expression", Type::Memo},
                           {"Flag", Type::Integer},
                           {"LvExtra", Type::Long}},
                          {{"ObjectIdAttribute", kUnique, {0, 1, 2}, Role::PrimaryKey}}));
    tables.push_back(Make("MSysRelationships",
                          {{"szRelationship", Type::Text},
                           {"grbit", Type::Long},
                           {"ccolumn", Type::Long},
                           {"icolumn", Type::Long},
                           {"szObject", Type::Text},
                           {"szColumn", Type::Text},
                           {"szReferencedObject", Type::Text},
                           {"szReferencedColumn", Type::Text}},
                          {{"szRelationship", kIgnoresNulls, {0}},
                           {"szObject", kIgnoresNulls, {4}},
                           {"szReferencedObject", kIgnoresNulls, {6}}}));
    std::uint32_t page = Raw(kCatalogPage);
    std::uint32_t root = Raw(kSystemMapsPage) + 1;
    for (SystemTable& table : tables) {
        table.def.page = PageNo{page++};
        for (RealIndex& index : table.def.realIndexes) index.root = PageNo{root++};
    }
    return tables;
}

}  // namespace jet
