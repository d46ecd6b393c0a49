#include "jet/catalog/CatalogReader.h"

#include <array>
#include <optional>

#include "jet/open/TableRep.h"
#include "jet/Unicode.h"

namespace jet {
namespace {

constexpr std::int32_t kTableObject = 1;            // column Type of the catalog
constexpr std::uint32_t kSystemFlags = 0x80000002;  // column Flags: made by the system
constexpr const char* kCatalogName = "MSysObjects";

/// The columns of the catalog that matter here, by position.
struct CatalogColumns {
    std::size_t id, name, type, flags;

    static Result<CatalogColumns> Find(const TableDef& def) {
        std::array<std::size_t, 4> positions{};
        constexpr std::array<const char*, 4> kNames = {"Id", "Name", "Type", "Flags"};
        for (std::size_t i = 0; i < kNames.size(); ++i) {
            const auto column = def.FindColumn(kNames[i]);
            if (!column) {
                return Status::Corrupt(std::string("the catalog has no column \"") + kNames[i] +
                                       "\"");
            }
            positions[i] = *column;
        }
        return CatalogColumns{positions[0], positions[1], positions[2], positions[3]};
    }
};

/// Null for an object that is no table.
Result<std::optional<CatalogEntry>> ReadEntry(const Row& row, const CatalogColumns& columns) {
    const auto number = [&](std::size_t column) -> Result<std::int32_t> {
        Value value;
        JET_ASSIGN(value, row.Get(column));
        const auto* found = std::get_if<std::int32_t>(&value);
        return found != nullptr ? *found : 0;
    };
    std::int32_t type = 0;
    JET_ASSIGN(type, number(columns.type));
    if (type != kTableObject) return std::optional<CatalogEntry>();
    std::int32_t id = 0;
    JET_ASSIGN(id, number(columns.id));
    std::int32_t flags = 0;
    JET_ASSIGN(flags, number(columns.flags));
    Value name;
    JET_ASSIGN(name, row.Get(columns.name));
    const auto* text = std::get_if<std::u16string>(&name);
    if (text == nullptr || id <= 0) return Status::Corrupt("the catalog names a table badly");
    return std::optional(CatalogEntry{ToUtf8(*text), PageNo{static_cast<std::uint32_t>(id)},
                                      (static_cast<std::uint32_t>(flags) & kSystemFlags) == 0});
}

}  // namespace

Result<std::vector<CatalogEntry>> ReadCatalog(const FileContext& file,
                                              std::vector<Status>* damage) {
    std::unique_ptr<Table> catalog;
    JET_ASSIGN(catalog, OpenTableAt(file, kCatalogPage, kCatalogName));
    CatalogColumns columns{};
    JET_ASSIGN(columns, CatalogColumns::Find(catalog->Definition()));
    RowCursor rows;
    JET_ASSIGN(rows, catalog->Scan());
    std::vector<CatalogEntry> entries;
    for (;;) {
        Result<bool> found = rows.Next();
        if (found.IsOk() && !*found) return entries;
        Status problem = found.IsOk() ? Status() : found.GetStatus();
        if (found.IsOk()) {
            auto entry = ReadEntry(rows.Current(), columns);
            if (!entry.IsOk())
                problem = entry.GetStatus().In(kCatalogName);
            else if (*entry)
                entries.push_back(std::move(**entry));
        }
        if (!problem.IsOk() && damage != nullptr) damage->push_back(problem);
    }
}

}  // namespace jet
