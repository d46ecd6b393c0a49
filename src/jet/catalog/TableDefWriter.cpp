#include "jet/catalog/TableDefWriter.h"

#include <algorithm>

#include "jet/TextKey.h"
#include "jet/Unicode.h"

namespace jet {
namespace {

constexpr std::size_t kPageHead = 8;
constexpr std::size_t kFurther = kPageSizeJet4 - kPageHead;  // bytes of the stream on such a page
constexpr std::uint32_t kMagic = 1625;
constexpr std::uint32_t kIndexMagic = 1923;
constexpr std::uint8_t kUserTable = 0x4E;
constexpr std::uint8_t kSystemTable = 0x53;
constexpr std::size_t kFixedPart = 0x3F;
constexpr std::size_t kCounterSize = 12;
constexpr std::size_t kColumnSize = 25;
constexpr std::size_t kRealSize = 52;
constexpr std::size_t kKeyColumns = 10;
constexpr std::size_t kLogicalSize = 28;
constexpr std::size_t kLongValueSize = 10;
constexpr std::byte kNoCascade{4};  // of an index that is no relationship

/// Things with names in the order of their names.
template <typename Named>
std::vector<const Named*> ByName(const std::vector<Named>& things) {
    std::vector<std::pair<std::string, const Named*>> keys;
    for (const Named& thing : things) {
        AppendTextKey(ToUtf16(thing.name), true, keys.emplace_back("", &thing).first);
    }
    std::sort(keys.begin(), keys.end());
    std::vector<const Named*> sorted;
    for (const auto& [key, thing] : keys) sorted.push_back(thing);
    return sorted;
}

}  // namespace

void LayOutColumns(TableDef& def) {
    std::uint16_t offset = 0;
    def.highestColumnCount = 0;
    def.variableColumnCount = 0;
    for (Column& column : def.columns) {
        column.number = def.highestColumnCount++;
        // A fixed column carries the number of variable ones in front of it.
        column.variableIndex = def.variableColumnCount;
        if (!column.IsFixed()) {
            ++def.variableColumnCount;
        } else if (column.type != ColumnType::Boolean) {
            column.fixedOffset = offset;
            offset = static_cast<std::uint16_t>(offset + column.length);
        }
    }
}

Status MakeMaps(TableDef& def,
                const std::function<Result<std::uint32_t>(std::optional<PageNo>)>& makeMap) {
    JET_ASSIGN(def.ownedMap, makeMap({}));
    JET_ASSIGN(def.freeMap, makeMap({}));
    for (Column& column : def.columns) {
        if (!column.IsLongValue()) continue;
        JET_ASSIGN(column.ownedMap, makeMap({}));
        JET_ASSIGN(column.freeMap, makeMap({}));
    }
    for (RealIndex& index : def.realIndexes) {
        JET_ASSIGN(index.ownedMap, makeMap(index.root));
    }
    return {};
}

TableDefImage::TableDefImage(const TableDef& def) {
    Columns columns;
    if (def.isSystem) {
        columns = ByName(def.columns);
    } else {
        for (const Column& column : def.columns) columns.push_back(&column);
    }
    AppendHead(def);
    AppendColumns(columns, def.isSystem);
    AppendRealIndexes(def);
    AppendLogicalIndexes(def);
    AppendLongValueMaps(columns);
    StoreU32(stream_, kPageHead, stream_.size());
}

/// Zeros at the end of the stream, to be filled. They stay valid until the next call.
MutableBytes TableDefImage::Grow(std::size_t size) {
    stream_.resize(stream_.size() + size);
    return MutableBytes(stream_).last(size);
}

void TableDefImage::AppendName(const std::string& name) {
    const std::u16string text = ToUtf16(name);
    const std::size_t size = 2 * text.size();
    const MutableBytes bytes = Grow(2 + size);
    StoreU16(bytes, 0, size);
    std::memcpy(bytes.data() + 2, text.data(), size);
}

void TableDefImage::AppendHead(const TableDef& def) {
    const MutableBytes head = Grow(kFixedPart + kCounterSize * def.realIndexes.size());
    StoreU32(head, 0x0C, kMagic);
    StoreU32(head, 0x18, 1);
    head[0x28] = std::byte{def.isSystem ? kSystemTable : kUserTable};
    StoreU16(head, 0x29, def.highestColumnCount);
    StoreU16(head, 0x2B, def.variableColumnCount);
    StoreU16(head, 0x2D, def.columns.size());
    StoreU32(head, 0x2F, def.logicalIndexes.size());
    StoreU32(head, 0x33, def.realIndexes.size());
    StoreU32(head, 0x37, def.ownedMap);
    StoreU32(head, 0x3B, def.freeMap);
}

//   +0 u8  type         +9  u16 ordinal              +16 u8  extra flags
//   +1 u32 1625         +11 collation (u16, 0, u8)   +21 u16 offset in the fixed area
//   +5 u16 number           or digits (u8, u8)       +23 u16 length
//   +7 u16 variable     +15 u8  flags
void TableDefImage::AppendColumns(const Columns& columns, bool isSystem) {
    for (const Column* column : columns) {
        const MutableBytes block = Grow(kColumnSize);
        block[0] = static_cast<std::byte>(column->type);
        StoreU32(block, 1, kMagic);
        StoreU16(block, 5, column->number);
        StoreU16(block, 7, column->variableIndex);
        if (!isSystem) StoreU16(block, 9, column->number);
        if (column->type == ColumnType::Numeric) {
            block[11] = std::byte{column->precision};
            block[12] = std::byte{column->scale};
        } else {
            StoreU16(block, 11, column->collationLcid);
            block[14] = std::byte{column->collationVersion};
        }
        block[15] = std::byte{column->flags};
        block[16] = std::byte{column->extraFlags};
        StoreU16(block, 21, column->fixedOffset);
        StoreU16(block, 23, column->length);
    }
    for (const Column* column : columns) AppendName(column->name);
}

//   +0 u32 1923         +34 u32 map of its pages     +46 u8 flags
//   +4 10 x (u16 column, u8 1 = ascending)           +38 u32 root page
void TableDefImage::AppendRealIndexes(const TableDef& def) {
    for (const RealIndex& index : def.realIndexes) {
        const MutableBytes block = Grow(kRealSize);
        StoreU32(block, 0, kIndexMagic);
        for (std::size_t i = 0; i < kKeyColumns; ++i) {
            const bool isUsed = i < index.columns.size();
            StoreU16(block, 4 + 3 * i,
                     isUsed ? def.columns[index.columns[i].column].number : 0xFFFF);
            block[6 + 3 * i] = std::byte{isUsed && index.columns[i].ascending};
        }
        StoreU32(block, 34, index.ownedMap);
        StoreU32(block, 38, Raw(index.root));
        block[46] = std::byte{index.flags};
    }
}

//   +0 u32 1625         +8  u32 real index           +21 u8, u8 cascades
//   +4 u32 number       +13 i32 partner, -1 = none   +23 u8 role
void TableDefImage::AppendLogicalIndexes(const TableDef& def) {
    const auto sorted = ByName(def.logicalIndexes);
    for (const LogicalIndex* index : sorted) {
        const MutableBytes block = Grow(kLogicalSize);
        StoreU32(block, 0, kMagic);
        StoreU32(block, 4, index->number);
        StoreU32(block, 8, index->real);
        Store(block, 13, std::int32_t{-1});
        block[21] = kNoCascade;
        block[22] = kNoCascade;
        block[23] = static_cast<std::byte>(index->role);
    }
    for (const LogicalIndex* index : sorted) AppendName(index->name);
}

void TableDefImage::AppendLongValueMaps(const Columns& columns) {
    for (const Column* column : columns) {
        if (!column->IsLongValue()) continue;
        const MutableBytes block = Grow(kLongValueSize);
        StoreU16(block, 0, column->number);
        StoreU32(block, 2, column->ownedMap);
        StoreU32(block, 6, column->freeMap);
    }
    StoreU16(Grow(2), 0, 0xFFFF);
}

std::size_t TableDefImage::PageCount() const {
    if (stream_.size() <= kPageSizeJet4) return 1;
    return 1 + (stream_.size() - kPageSizeJet4 + kFurther - 1) / kFurther;
}

void TableDefImage::Save(std::size_t i, PageNo next, MutableBytes page) const {
    // The stream's first eight bytes are left free for the head of its first page.
    const std::size_t begin = kPageHead + i * kFurther;
    const std::size_t size = std::min(kFurther, stream_.size() - begin);
    std::fill(page.begin(), page.end(), std::byte{0});
    page[0] = std::byte{2};
    page[1] = std::byte{1};
    const std::size_t left = kFurther - size;
    StoreU16(page, 2, left > kPageHead ? left - kPageHead : 0);
    StoreU32(page, 4, Raw(next));
    std::memcpy(page.data() + kPageHead, stream_.data() + begin, size);
}

}  // namespace jet
