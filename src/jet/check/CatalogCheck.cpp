#include "jet/check/CatalogCheck.h"

#include <array>
#include <optional>
#include <unordered_set>

#include "jet/open/TableRep.h"
#include "jet/page/Bytes.h"
#include "jet/TextKey.h"
#include "jet/Unicode.h"

namespace jet::check {
namespace {

constexpr const char* kCatalogName = "MSysObjects";
constexpr std::int32_t kTable = 1;
constexpr std::int32_t kDatabase = 2;
constexpr std::int32_t kContainer = 3;

/// What every file has.
struct Required {
    const char* name;
    std::int32_t type;
    std::int32_t id;
};
constexpr std::array<Required, 8> kRequired = {{{"Tables", kContainer, 0x0F000001},
                                                {"Databases", kContainer, 0x0F000002},
                                                {"Relationships", kContainer, 0x0F000003},
                                                {"MSysDb", kDatabase, 0x10000000},
                                                {kCatalogName, kTable, 2},
                                                {"MSysACEs", kTable, 3},
                                                {"MSysQueries", kTable, 4},
                                                {"MSysRelationships", kTable, 5}}};

/// A row of the catalog; a column that is Null or cannot be read is 0 or empty.
struct Object {
    std::int32_t id = 0;
    std::int32_t parent = 0;
    std::int32_t type = 0;
    std::u16string name;
};

class CatalogCheck {
public:
    CatalogCheck(PageCache& cache, Reporter& report)
        : file_{cache, Format::Jet4, nullptr}, report_(report) {}

    std::vector<TableEntry> Run() {
        Add(kCatalogName, kCatalogPage);
        // What hinders reading is reported when the catalog is checked as a table.
        Result<std::unique_ptr<Table>> table = OpenTableAt(file_, kCatalogPage, kCatalogName);
        if (table.IsOk()) ReadRows(**table);
        return std::move(tables_);
    }

private:
    void ReadRows(Table& table) {
        constexpr std::array<const char*, 4> kNames = {"Id", "ParentId", "Type", "Name"};
        for (std::size_t i = 0; i < kNames.size(); ++i) {
            const auto column = table.Definition().FindColumn(kNames[i]);
            if (!column) {
                Error("the catalog has no column \"" + std::string(kNames[i]) + "\"");
                return;
            }
            columns_[i] = *column;
        }
        Result<RowCursor> rows = table.Scan();
        if (!rows.IsOk()) return;
        while (!report_.IsStopped()) {
            const Result<bool> found = rows->Next();
            if (found.IsOk() && !*found) break;
            if (found.IsOk()) Check(ReadObject(rows->Current()));
        }
        for (std::size_t i = 0; i < kRequired.size(); ++i) {
            if (!found_[i]) {
                Error(std::string("the catalog lacks \"") + kRequired[i].name + "\"");
            }
        }
    }

    [[nodiscard]] Object ReadObject(const Row& row) const {
        Object object;
        const auto number = [&](std::size_t column) {
            const Result<Value> value = row.Get(column);
            const auto* held = value.IsOk() ? std::get_if<std::int32_t>(&*value) : nullptr;
            return held != nullptr ? *held : 0;
        };
        object.id = number(columns_[0]);
        object.parent = number(columns_[1]);
        object.type = number(columns_[2]);
        const Result<Value> name = row.Get(columns_[3]);
        const auto* text = name.IsOk() ? std::get_if<std::u16string>(&*name) : nullptr;
        if (text != nullptr) object.name = *text;
        return object;
    }

    void Check(const Object& object) {
        const std::string name = ToUtf8(object.name);
        std::string key(reinterpret_cast<const char*>(&object.parent), sizeof object.parent);
        AppendTextKey(object.name, true, key);
        if (!names_.insert(std::move(key)).second) {
            Error("the catalog has two objects \"" + name + "\" in one container");
        }
        for (std::size_t i = 0; i < kRequired.size(); ++i) {
            const Required& wanted = kRequired[i];
            found_[i] = found_[i] || (wanted.type == object.type && wanted.id == object.id &&
                                      SameName(wanted.name, name));
        }
        if (object.type != kTable) return;
        const PageNo page{static_cast<std::uint32_t>(object.id)};
        const bool isCatalog = page == kCatalogPage && SameName(name, kCatalogName);
        if (!isCatalog) Add(name, page);
    }

    void Add(const std::string& name, PageNo page) {
        if (pages_.insert(Raw(page)).second) {
            tables_.push_back({name, page});
        } else {
            Error("table \"" + name + "\": " + PageText(page) +
                  " is the definition of another table");
        }
    }

    void Error(std::string what) { report_.Error(Subject::Catalog, std::move(what)); }

    FileContext file_;
    Reporter& report_;
    std::array<std::size_t, 4> columns_{};
    std::array<bool, kRequired.size()> found_{};
    std::unordered_set<std::string> names_;  // parent and key of the name
    std::unordered_set<std::uint32_t> pages_;
    std::vector<TableEntry> tables_;
};

}  // namespace

std::vector<TableEntry> CheckCatalog(PageCache& cache, Reporter& report) {
    return CatalogCheck(cache, report).Run();
}

}  // namespace jet::check
