#include "jet/catalog/TableDefReader.h"

#include <algorithm>
#include <vector>

#include "jet/page/Bytes.h"
#include "jet/row/TextDecoder.h"
#include "jet/Unicode.h"

namespace jet {
namespace {

constexpr std::uint8_t kTableDefType = 2;
constexpr std::size_t kPageHeader = 8;
constexpr std::size_t kMaxColumns = 255;
constexpr std::size_t kMaxIndexes = 255;        // 32 by the rules; relationships add logical ones
constexpr std::size_t kMaxLength = 256 * 1024;  // bytes; 255 columns and indexes need under 80 KB
constexpr std::uint16_t kUnusedKeyColumn = 0xFFFF;
constexpr std::size_t kKeyColumns = 10;
constexpr std::uint8_t kSystemTable = 0x53;

/// Where the fields lie in the two generations of the format. Offsets in bytes.
struct Layout {
    std::size_t rows, autoNumber, kind, highestColumns, variableColumns, columns, logicalIndexes,
        realIndexes, ownedMap, freeMap, variablePart;
    std::size_t counterSize;  // per real index, the unique count at +4
    std::size_t columnSize, columnNumber, variableIndex, collation, flags, fixedOffset, length;
    std::size_t nameLengthSize;
    std::size_t realSize, keyColumns, realMap, realRoot, realFlags;
    std::size_t logicalSize, logicalNumber, logicalReal, logicalSide, logicalPartner, logicalTable,
        logicalUpdates, logicalDeletes, logicalRole;
};

constexpr Layout kJet4 = {.rows = 0x10,
                          .autoNumber = 0x14,
                          .kind = 0x28,
                          .highestColumns = 0x29,
                          .variableColumns = 0x2B,
                          .columns = 0x2D,
                          .logicalIndexes = 0x2F,
                          .realIndexes = 0x33,
                          .ownedMap = 0x37,
                          .freeMap = 0x3B,
                          .variablePart = 0x3F,
                          .counterSize = 12,
                          .columnSize = 25,
                          .columnNumber = 5,
                          .variableIndex = 7,
                          .collation = 11,
                          .flags = 15,
                          .fixedOffset = 21,
                          .length = 23,
                          .nameLengthSize = 2,
                          .realSize = 52,
                          .keyColumns = 4,
                          .realMap = 34,
                          .realRoot = 38,
                          .realFlags = 46,
                          .logicalSize = 28,
                          .logicalNumber = 4,
                          .logicalReal = 8,
                          .logicalSide = 12,
                          .logicalPartner = 13,
                          .logicalTable = 17,
                          .logicalUpdates = 21,
                          .logicalDeletes = 22,
                          .logicalRole = 23};

constexpr Layout kJet3 = {.rows = 12,
                          .autoNumber = 16,
                          .kind = 20,
                          .highestColumns = 21,
                          .variableColumns = 23,
                          .columns = 25,
                          .logicalIndexes = 27,
                          .realIndexes = 31,
                          .ownedMap = 35,
                          .freeMap = 39,
                          .variablePart = 43,
                          .counterSize = 8,
                          .columnSize = 18,
                          .columnNumber = 1,
                          .variableIndex = 3,
                          .collation = 7,
                          .flags = 13,
                          .fixedOffset = 14,
                          .length = 16,
                          .nameLengthSize = 1,
                          .realSize = 39,
                          .keyColumns = 0,
                          .realMap = 30,
                          .realRoot = 34,
                          .realFlags = 38,
                          .logicalSize = 20,
                          .logicalNumber = 0,
                          .logicalReal = 4,
                          .logicalSide = 8,
                          .logicalPartner = 9,
                          .logicalTable = 13,
                          .logicalUpdates = 17,
                          .logicalDeletes = 18,
                          .logicalRole = 19};

Status DamageOf(PageNo page, const std::string& what) {
    return Status::Corrupt("the table definition on " + PageText(page) + " " + what);
}

class Reader {
public:
    Reader(PageCache& cache, Format format, const CodePage* codePage, PageNo page)
        : cache_(cache),
          codePage_(codePage),
          layout_(format == Format::Jet4 ? kJet4 : kJet3),
          format_(format) {
        def_.page = page;
    }

    Result<TableDef> Read() {
        JET_ASSIGN(stream_, ReadTableDefStream(cache_, format_, def_.page));
        JET_TRY(ReadFixedPart());
        JET_TRY(ReadCounters());
        JET_TRY(ReadColumns());
        JET_TRY(ReadRealIndexes());
        JET_TRY(ReadLogicalIndexes());
        JET_TRY(ReadLongValueMaps());
        return std::move(def_);
    }

private:
    Status ReadFixedPart() {
        const Bytes s = stream_;
        def_.rowCount = LoadU32(s, layout_.rows);
        def_.lastAutoNumber = LoadU32(s, layout_.autoNumber);
        def_.isSystem = LoadU8(s, layout_.kind) == kSystemTable;
        def_.highestColumnCount = LoadU16(s, layout_.highestColumns);
        def_.variableColumnCount = LoadU16(s, layout_.variableColumns);
        columnCount_ = LoadU16(s, layout_.columns);
        logicalCount_ = LoadU32(s, layout_.logicalIndexes);
        realCount_ = LoadU32(s, layout_.realIndexes);
        def_.ownedMap = LoadU32(s, layout_.ownedMap);
        def_.freeMap = LoadU32(s, layout_.freeMap);
        at_ = layout_.variablePart;
        if (columnCount_ > kMaxColumns || realCount_ > kMaxIndexes || logicalCount_ > kMaxIndexes) {
            return Damage("states " + std::to_string(columnCount_) + " columns and " +
                          std::to_string(std::max(realCount_, logicalCount_)) + " indexes");
        }
        return {};
    }

    Status ReadCounters() {
        for (std::size_t i = 0; i < realCount_; ++i) {
            Bytes block;
            JET_ASSIGN(block, Take(layout_.counterSize));
            def_.realIndexes.emplace_back().uniqueCount = LoadU32(block, 4);
        }
        return {};
    }

    Status ReadColumns() {
        for (std::size_t i = 0; i < columnCount_; ++i) {
            Bytes block;
            JET_ASSIGN(block, Take(layout_.columnSize));
            def_.columns.push_back(ParseColumn(block));
        }
        for (Column& column : def_.columns) {
            JET_ASSIGN(column.name, TakeName());
        }
        std::sort(def_.columns.begin(), def_.columns.end(),
                  [](const Column& a, const Column& b) { return a.number < b.number; });
        for (std::size_t i = 0; i < def_.columns.size(); ++i) {
            const Column& column = def_.columns[i];
            if (column.number >= def_.highestColumnCount ||
                (i > 0 && column.number == def_.columns[i - 1].number)) {
                return Damage("gives column \"" + column.name + "\" the impossible number " +
                              std::to_string(column.number));
            }
        }
        return {};
    }

    Column ParseColumn(Bytes block) const {
        Column column;
        column.type = ColumnType{LoadU8(block, 0)};
        column.number = LoadU16(block, layout_.columnNumber);
        column.variableIndex = LoadU16(block, layout_.variableIndex);
        column.flags = LoadU8(block, layout_.flags);
        column.fixedOffset = LoadU16(block, layout_.fixedOffset);
        column.length = LoadU16(block, layout_.length);
        if (format_ == Format::Jet4) column.extraFlags = LoadU8(block, 16);
        if (column.IsText()) {
            column.collationLcid = LoadU16(block, layout_.collation);
            if (format_ == Format::Jet4) column.collationVersion = LoadU8(block, 14);
        } else if (column.type == ColumnType::Numeric) {
            // Jet 3 keeps the pair two bytes further on than Jet 4.
            const std::size_t pair = format_ == Format::Jet4 ? 11 : 9;
            column.precision = LoadU8(block, pair);
            column.scale = LoadU8(block, pair + 1);
        }
        return column;
    }

    Status ReadRealIndexes() {
        for (RealIndex& index : def_.realIndexes) {
            Bytes block;
            JET_ASSIGN(block, Take(layout_.realSize));
            for (std::size_t i = 0; i < kKeyColumns; ++i) {
                const std::size_t entry = layout_.keyColumns + 3 * i;
                const std::uint16_t number = LoadU16(block, entry);
                if (number == kUnusedKeyColumn) continue;
                const auto column =
                    std::find_if(def_.columns.begin(), def_.columns.end(),
                                 [&](const Column& c) { return c.number == number; });
                if (column == def_.columns.end()) {
                    return Damage("has an index on a column that does not exist (number " +
                                  std::to_string(number) + ")");
                }
                index.columns.push_back({static_cast<std::size_t>(column - def_.columns.begin()),
                                         LoadU8(block, entry + 2) != 0});
            }
            index.ownedMap = LoadU32(block, layout_.realMap);
            index.root = PageNo{LoadU32(block, layout_.realRoot)};
            index.flags = LoadU8(block, layout_.realFlags);
        }
        return {};
    }

    Status ReadLogicalIndexes() {
        for (std::size_t i = 0; i < logicalCount_; ++i) {
            Bytes block;
            JET_ASSIGN(block, Take(layout_.logicalSize));
            LogicalIndex index;
            index.number = LoadU32(block, layout_.logicalNumber);
            index.real = LoadU32(block, layout_.logicalReal);
            index.side = LoadU8(block, layout_.logicalSide);
            index.partner = Load<std::int32_t>(block, layout_.logicalPartner);
            index.otherTable = PageNo{LoadU32(block, layout_.logicalTable)};
            index.role = LogicalIndex::Role{LoadU8(block, layout_.logicalRole)};
            if (index.role == LogicalIndex::Role::ForeignKey) {
                index.cascadesUpdates = LoadU8(block, layout_.logicalUpdates) == 1;
                index.cascadesDeletes = (LoadU8(block, layout_.logicalDeletes) & 1) != 0;
                index.setsNull = (LoadU8(block, layout_.logicalDeletes) & 2) != 0;
            }
            if (index.real >= realCount_) return Damage("names an index that does not exist");
            def_.logicalIndexes.push_back(std::move(index));
        }
        for (LogicalIndex& index : def_.logicalIndexes) {
            JET_ASSIGN(index.name, TakeName());
        }
        return {};
    }

    Status ReadLongValueMaps() {
        while (at_ + 2 <= stream_.size()) {
            const std::uint16_t number = LoadU16(stream_, at_);
            if (number == kUnusedKeyColumn) break;
            Bytes block;
            JET_ASSIGN(block, Take(10));
            for (Column& column : def_.columns) {
                if (column.number != number) continue;
                column.ownedMap = LoadU32(block, 2);
                column.freeMap = LoadU32(block, 6);
            }
        }
        return {};
    }

    Result<Bytes> Take(std::size_t size) {
        if (size > stream_.size() - at_) return Damage("is cut short");
        const Bytes bytes = Bytes(stream_).subspan(at_, size);
        at_ += size;
        return bytes;
    }

    Result<std::string> TakeName() {
        Bytes length;
        JET_ASSIGN(length, Take(layout_.nameLengthSize));
        Bytes text;
        JET_ASSIGN(text, Take(format_ == Format::Jet4 ? LoadU16(length, 0) : LoadU8(length, 0)));
        std::u16string name;
        TextDecoder(codePage_).Append(text, name);
        return ToUtf8(name);
    }

    Status Damage(const std::string& what) const { return DamageOf(def_.page, what); }

    PageCache& cache_;
    const CodePage* codePage_;
    const Layout& layout_;
    Format format_;
    TableDef def_;
    std::vector<std::byte> stream_;
    std::size_t at_ = 0;
    std::size_t columnCount_ = 0;
    std::size_t realCount_ = 0;
    std::size_t logicalCount_ = 0;
};

}  // namespace

Result<std::vector<std::byte>> ReadTableDefStream(PageCache& cache, Format format, PageNo page) {
    const std::size_t shortest = (format == Format::Jet4 ? kJet4 : kJet3).variablePart;
    const PageNo first = page;
    std::vector<std::byte> stream;
    std::size_t length = kPageHeader + 4;
    for (std::size_t size = 0; size < length; size = stream.size()) {
        if (Raw(page) == 0) return DamageOf(first, "ends before its stated length");
        PageRef ref;
        JET_ASSIGN(ref, cache.Read(page));
        const Bytes bytes = ref.Bytes();
        if (LoadU8(bytes, 0) != kTableDefType) {
            return Status::Corrupt(PageText(page) + " is not a table definition (type " +
                                   std::to_string(LoadU8(bytes, 0)) + ")");
        }
        if (stream.empty()) {
            length = LoadU32(bytes, kPageHeader);
            if (length < shortest || length > kMaxLength) {
                return DamageOf(first, "states a length of " + std::to_string(length) + " bytes");
            }
        }
        const Bytes part = bytes.subspan(stream.empty() ? 0 : kPageHeader);
        stream.insert(stream.end(), part.begin(), part.end());
        page = PageNo{LoadU32(bytes, 4)};
    }
    stream.resize(length);
    return stream;
}

Result<TableDef> ReadTableDef(PageCache& cache, Format format, const CodePage* codePage,
                              PageNo page) {
    return Reader(cache, format, codePage, page).Read();
}

}  // namespace jet
