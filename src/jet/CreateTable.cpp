#include "jet/CreateTable.h"

#include <algorithm>
#include <optional>
#include <tuple>

#include "jet/catalog/CatalogWriter.h"
#include "jet/catalog/TableDefWriter.h"
#include "jet/index/IndexNode.h"
#include "jet/open/DatabaseRep.h"
#include "jet/row/RowEncoder.h"
#include "jet/TextKey.h"
#include "jet/Unicode.h"
#include "jet/write/DataPageEditor.h"
#include "jet/write/NewUsageMap.h"
#include "jet/write/PageAllocator.h"

namespace jet {
namespace {

constexpr std::size_t kMostColumns = 255;
constexpr std::size_t kMostIndexes = 32;
constexpr std::size_t kMostKeys = 10;
constexpr std::size_t kLongestName = 64;  // UTF-16 units
constexpr std::size_t kMostText = 255;    // UTF-16 units
constexpr std::size_t kMostBinary = 510;  // bytes
constexpr int kMostDigits = 28;

constexpr std::uint8_t kFixed = 0x01;
constexpr std::uint8_t kUpdatable = 0x02;
constexpr std::uint8_t kAutoNumber = 0x04;
constexpr std::uint8_t kAutoGuid = 0x40;
constexpr std::uint8_t kCompressed = 0x01;

Status CheckName(const std::string& what, const std::string& name) {
    const std::u16string text = ToUtf16(name);
    const bool hasForbidden = std::any_of(text.begin(), text.end(), [](char16_t c) {
        return c < u' ' || std::u16string_view(u".![]`").find(c) != std::u16string_view::npos;
    });
    if (!text.empty() && text.size() <= kLongestName && text[0] != u' ' && !hasForbidden) return {};
    return Status::BadArgument("\"" + name + "\" cannot be the name of " + what);
}

struct TypeForm {
    ColumnType type;
    bool isFixed;
    std::uint16_t length;  // bytes; of Text and Binary given by the column
};
constexpr TypeForm kForms[] = {
    {ColumnType::Boolean, true, 1}, {ColumnType::Byte, true, 1},     {ColumnType::Integer, true, 2},
    {ColumnType::Long, true, 4},    {ColumnType::Currency, true, 8}, {ColumnType::Single, true, 4},
    {ColumnType::Double, true, 8},  {ColumnType::DateTime, true, 8}, {ColumnType::Binary, false, 0},
    {ColumnType::Text, false, 0},   {ColumnType::Ole, false, 0},     {ColumnType::Memo, false, 0},
    {ColumnType::Guid, true, 16},   {ColumnType::Numeric, true, 17},
};

Result<Column> MakeColumn(const ColumnSpec& wanted) {
    const auto wrong = [&](const char* what) {
        return Status::BadArgument("column \"" + wanted.name + "\": " + what);
    };
    JET_TRY(CheckName("a column", wanted.name));
    const auto* form = std::find_if(std::begin(kForms), std::end(kForms),
                                    [&](const TypeForm& f) { return f.type == wanted.type; });
    if (form == std::end(kForms)) return wrong("no table can be made with this type");
    Column column;
    column.name = wanted.name;
    column.type = wanted.type;
    column.length = form->length;
    column.flags = kUpdatable;
    if (form->isFixed) column.flags |= kFixed;
    if (wanted.isAutoNumber) {
        column.flags |= wanted.type == ColumnType::Guid ? kAutoGuid : kAutoNumber;
    }
    if (column.IsText()) {
        column.collationLcid = kGeneralLcid;
        column.collationVersion = kGeneralVersion;
        if (wanted.mayCompress) column.extraFlags = kCompressed;
    }
    const bool isText = wanted.type == ColumnType::Text;
    if (isText || wanted.type == ColumnType::Binary) {
        if (wanted.length < 1 || wanted.length > (isText ? kMostText : kMostBinary)) {
            return wrong("its length is out of range");
        }
        column.length = static_cast<std::uint16_t>(isText ? 2 * wanted.length : wanted.length);
    }
    if (wanted.type == ColumnType::Numeric) {
        if (wanted.precision < 1 || wanted.precision > kMostDigits ||
            wanted.scale > wanted.precision) {
            return wrong("its number of digits is out of range");
        }
        column.precision = wanted.precision;
        column.scale = wanted.scale;
    }
    if (wanted.isAutoNumber && wanted.type != ColumnType::Long && wanted.type != ColumnType::Guid) {
        return wrong("only Long and Guid can be AutoNumbers");
    }
    return column;
}

Status AddColumns(const TableSpec& wanted, TableDef& def) {
    if (wanted.columns.empty() || wanted.columns.size() > kMostColumns) {
        return Status::BadArgument("a table has 1 to " + std::to_string(kMostColumns) +
                                   " columns, not " + std::to_string(wanted.columns.size()));
    }
    int autoNumbers = 0;
    for (const ColumnSpec& source : wanted.columns) {
        if (def.FindColumn(source.name)) {
            return Status::BadArgument("column \"" + source.name + "\" is there twice");
        }
        Column column;
        JET_ASSIGN(column, MakeColumn(source));
        if (column.IsAutoNumber() && ++autoNumbers > 1) {
            return Status::BadArgument("only one column can be an AutoNumber");
        }
        def.columns.push_back(std::move(column));
    }
    LayOutColumns(def);
    // With every column that need not be there Null, a row must fit.
    if (const auto empty = RowImage(def).Assemble(); !empty.IsOk()) {
        return Status::BadArgument("its rows would be too long");
    }
    return {};
}

Status AddIndex(const IndexSpec& wanted, TableDef& def) {
    const auto wrong = [&](const std::string& what) {
        return Status::BadArgument("index \"" + wanted.name + "\": " + what);
    };
    JET_TRY(CheckName("an index", wanted.name));
    const bool isPrimary = wanted.kind == IndexSpec::Kind::PrimaryKey;
    for (const LogicalIndex& other : def.logicalIndexes) {
        if (SameName(other.name, wanted.name)) return wrong("it is there twice");
    }
    if (isPrimary && def.PrimaryKey()) return wrong("there is a primary key already");
    if (wanted.keys.empty() || wanted.keys.size() > kMostKeys)
        return wrong("it needs 1 to 10 columns");
    const std::size_t real = def.realIndexes.size();
    RealIndex index;
    index.flags = isPrimary ? 0x89 : wanted.kind == IndexSpec::Kind::Unique ? 0x81 : 0x80;
    for (const IndexSpec::Key& key : wanted.keys) {
        const auto column = def.FindColumn(key.column);
        if (!column) return wrong("there is no column \"" + key.column + "\"");
        const bool isTwice =
            std::any_of(index.columns.begin(), index.columns.end(),
                        [&](const IndexColumn& other) { return other.column == *column; });
        if (isTwice) return wrong("column \"" + key.column + "\" is there twice");
        if (def.columns[*column].IsLongValue()) {
            return wrong("column \"" + key.column + "\" is of a type that has no order");
        }
        index.columns.push_back({*column, key.ascending});
    }
    def.realIndexes.push_back(std::move(index));
    // Other programs find an index's columns by taking its number for its position.
    def.logicalIndexes.push_back(
        {wanted.name, static_cast<std::uint32_t>(real), real,
         isPrimary ? LogicalIndex::Role::PrimaryKey : LogicalIndex::Role::Ordinary});
    return {};
}

Result<TableDef> MakeDefinition(const TableSpec& wanted) {
    TableDef def;
    JET_TRY(CheckName("a table", wanted.name));
    JET_TRY(AddColumns(wanted, def));
    if (wanted.indexes.size() > kMostIndexes) {
        return Status::BadArgument("a table has at most " + std::to_string(kMostIndexes) +
                                   " indexes");
    }
    for (const IndexSpec& index : wanted.indexes) JET_TRY(AddIndex(index, def));
    return def;
}

/// Takes the pages of a new table and writes them.
class TablePages {
public:
    TablePages(PageCache& cache, TableDef& def) : cache_(cache), def_(def) {}

    Status Make() {
        JET_ASSIGN(def_.page, Allocate());
        JET_TRY(AddMapsPage());
        for (RealIndex& index : def_.realIndexes) {
            MutableBytes page;
            JET_ASSIGN(index.root, Allocate());
            JET_ASSIGN(page, cache_.Edit(index.root));
            IndexNode(true).Save(page, def_.page);
        }
        JET_TRY(MakeMaps(def_, [this](std::optional<PageNo> held) { return MakeMap(held); }));
        return SaveDefinition();
    }

private:
    Result<PageNo> Allocate() { return PageAllocator(cache_).Allocate(); }

    Status AddMapsPage() {
        MutableBytes page;
        JET_ASSIGN(mapsPage_, Allocate());
        JET_ASSIGN(page, cache_.Edit(mapsPage_));
        DataPageEditor::Format(page, 0);
        return {};
    }

    Result<std::uint32_t> MakeMap(std::optional<PageNo> held) {
        const auto row = NewUsageMapRow(held);
        for (;;) {
            MutableBytes page;
            JET_ASSIGN(page, cache_.Edit(mapsPage_));
            Result<DataPageEditor> editor = DataPageEditor::Open(page, mapsPage_);
            if (!editor.IsOk()) return editor.GetStatus();
            if (editor->Fits(row.size())) {
                const auto slot = static_cast<std::uint8_t>(editor->Append(row, 0));
                return RowId{mapsPage_, slot}.Pointer();
            }
            JET_TRY(AddMapsPage());
        }
    }

    Status SaveDefinition() {
        const TableDefImage image(def_);
        std::vector<PageNo> pages = {def_.page};
        while (pages.size() < image.PageCount()) {
            JET_ASSIGN(pages.emplace_back(), Allocate());
        }
        for (std::size_t i = 0; i < pages.size(); ++i) {
            MutableBytes page;
            JET_ASSIGN(page, cache_.Edit(pages[i]));
            image.Save(i, i + 1 < pages.size() ? pages[i + 1] : PageNo{0}, page);
        }
        return {};
    }

    PageCache& cache_;
    TableDef& def_;
    PageNo mapsPage_{};
};

}  // namespace

Status CreateTable(Database& database, const TableSpec& wanted) {
    const auto named = [&](const Status& status) { return status.In(TableText(wanted.name)); };
    auto def = MakeDefinition(wanted);
    if (!def.IsOk()) return named(def.GetStatus());
    CatalogWriter catalog;
    JET_ASSIGN(catalog, CatalogWriter::Open(Inside::Of(database).context));
    bool exists = false;
    JET_ASSIGN(exists, catalog.HasTable(wanted.name));
    if (exists) return named({StatusCode::Duplicate, "there is one of this name already"});

    JET_TRY(database.Begin());
    Status status = TablePages(Inside::Of(database).context.cache, *def).Make();
    if (status.IsOk()) status = catalog.AddTable(def->page, wanted.name);
    if (status.IsOk()) return database.Commit();
    // Half a table cannot stay in a transaction that goes on.
    std::ignore = database.Rollback();
    return named(status);
}

}  // namespace jet
