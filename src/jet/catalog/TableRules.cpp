#include "jet/catalog/TableRules.h"

#include <algorithm>

#include "jet/open/TableRep.h"
#include "jet/page/Bytes.h"
#include "jet/Unicode.h"

namespace jet {
namespace {

constexpr std::uint16_t kNames = 0x80;
constexpr std::uint16_t kColumn = 1;
constexpr std::uint8_t kBoolean = 1;
constexpr std::size_t kMark = 4;
constexpr std::size_t kBlockHead = 6;
constexpr std::size_t kValueHead = 8;

Status Damaged() {
    return Status::Corrupt("its properties are damaged");
}

/// A text with its length in front of it; moves `bytes` behind it.
Result<std::string> TakeText(Bytes& bytes) {
    if (bytes.size() < 2 || bytes.size() - 2 < LoadU16(bytes, 0)) return Damaged();
    const std::size_t size = LoadU16(bytes, 0);
    std::u16string text(size / 2, u'\0');
    std::memcpy(text.data(), bytes.data() + 2, 2 * text.size());
    bytes = bytes.subspan(2 + size);
    return ToUtf8(text);
}

class PropertyReader {
public:
    PropertyReader(const TableDef& def, TableRules& rules) : def_(def), rules_(rules) {}

    Status Read(Bytes bytes) {
        constexpr std::string_view kOwnMark("MR2\0", kMark);
        const std::string_view mark(reinterpret_cast<const char*>(bytes.data()),
                                    std::min(bytes.size(), kMark));
        // What is written in another way says nothing that could be obeyed.
        if (mark != kOwnMark) return {};
        for (bytes = bytes.subspan(kMark); bytes.size() >= kBlockHead;) {
            const std::size_t length = LoadU32(bytes, 0);
            if (length < kBlockHead || length > bytes.size()) return Damaged();
            const std::uint16_t kind = LoadU16(bytes, 4);
            const Bytes body = bytes.subspan(kBlockHead, length - kBlockHead);
            if (kind == kNames) JET_TRY(ReadNames(body));
            if (kind == kColumn) JET_TRY(ReadColumn(body));
            bytes = bytes.subspan(length);
        }
        return {};
    }

private:
    Status ReadNames(Bytes bytes) {
        names_.clear();
        while (!bytes.empty()) {
            JET_ASSIGN(names_.emplace_back(), TakeText(bytes));
        }
        return {};
    }

    Status ReadColumn(Bytes bytes) {
        if (bytes.size() < 4) return Damaged();
        const std::size_t head = LoadU32(bytes, 0);
        if (head < 4 || head > bytes.size()) return Damaged();
        Bytes title = bytes.subspan(4, head - 4);
        std::string name;
        JET_ASSIGN(name, TakeText(title));
        const auto column = def_.FindColumn(name);
        for (bytes = bytes.subspan(head); !bytes.empty();) {
            const std::size_t length = bytes.size() < kValueHead ? 0 : LoadU16(bytes, 0);
            if (length < kValueHead || length > bytes.size() ||
                LoadU16(bytes, 4) >= names_.size()) {
                return Damaged();
            }
            // Columns that have been dropped may have left theirs.
            if (column) Obey(*column, bytes.first(length));
            bytes = bytes.subspan(length);
        }
        return {};
    }

    void Obey(std::size_t column, Bytes value) {
        if (LoadU8(value, 3) != kBoolean || value.size() <= kValueHead) return;
        const bool isSet = LoadU8(value, kValueHead) != 0;
        const std::string& name = names_[LoadU16(value, 4)];
        if (SameName(name, "Required")) rules_.isRequired[column] = isSet;
        if (SameName(name, "AllowZeroLength")) rules_.refusesEmptyTexts[column] = !isSet;
    }

    const TableDef& def_;
    TableRules& rules_;
    std::vector<std::string> names_;
};

/// The index of the catalog on its column Id alone, if it has one that can be used.
std::optional<std::size_t> IndexOnId(const Table& catalog, std::size_t id) {
    const auto& indexes = catalog.Definition().realIndexes;
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        const auto& columns = indexes[i].columns;
        if (columns.size() == 1 && columns[0].column == id && catalog.CanSeek(i)) return i;
    }
    return std::nullopt;
}

/// The catalog's row of a table; a Row without an address when there is none.
Result<std::optional<Row>> FindRow(Table& catalog, std::size_t id, PageNo table) {
    const Value wanted = static_cast<std::int32_t>(Raw(table));
    if (const auto index = IndexOnId(catalog, id)) {
        std::string key;
        JET_ASSIGN(key, catalog.MakeKey(*index, {&wanted, 1}));
        Result<IndexCursor> cursor = catalog.Seek(*index, key);
        if (!cursor.IsOk()) return cursor.GetStatus();
        bool found = false;
        JET_ASSIGN(found, cursor->Next());
        if (!found || cursor->Key() != key) return std::optional<Row>();
        Row row;
        JET_ASSIGN(row, catalog.Fetch(cursor->Row()));
        return std::optional(row);
    }
    Result<RowCursor> rows = catalog.Scan();
    if (!rows.IsOk()) return rows.GetStatus();
    for (;;) {
        bool found = false;
        JET_ASSIGN(found, rows->Next());
        if (!found) return std::optional<Row>();
        Value value;
        JET_ASSIGN(value, rows->Current().Get(id));
        if (value == wanted) return std::optional(rows->Current());
    }
}

}  // namespace

Result<TableRules> ReadTableRules(const FileContext& file, const TableDef& def) {
    TableRules rules;
    rules.isRequired.resize(def.columns.size());
    rules.refusesEmptyTexts.resize(def.columns.size());
    std::unique_ptr<Table> catalog;
    JET_ASSIGN(catalog, OpenTableAt(file, kCatalogPage, "MSysObjects"));
    const auto id = catalog->Definition().FindColumn("Id");
    const auto name = catalog->Definition().FindColumn("Name");
    const auto properties = catalog->Definition().FindColumn("LvProp");
    if (!id || !name || !properties) return rules;
    std::optional<Row> row;
    JET_ASSIGN(row, FindRow(*catalog, *id, def.page));
    if (!row) return rules;
    Value value;
    JET_TRY(row->Read(*name, value));
    if (const auto* text = std::get_if<std::u16string>(&value)) rules.name = ToUtf8(*text);
    JET_TRY(row->Read(*properties, value));
    const auto* stored = std::get_if<LongValue>(&value);
    if (stored == nullptr) return rules;
    Binary bytes;
    JET_ASSIGN(bytes, catalog->ReadBinary(*stored));
    JET_TRY(PropertyReader(def, rules).Read(bytes));
    return rules;
}

}  // namespace jet
