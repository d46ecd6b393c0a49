#pragma once

#include <initializer_list>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "jet/open/FileContext.h"
#include "jet/Table.h"

namespace jet {

/// Adds objects to the catalog of a database, inside a transaction of its cache.
class CatalogWriter {
public:
    // Ids of objects that every database has, and containers of others.
    static constexpr std::int32_t kRoot = 0x0F000000;  // has no row of its own
    static constexpr std::int32_t kTables = 0x0F000001;
    static constexpr std::int32_t kDatabases = 0x0F000002;
    static constexpr std::int32_t kRelationships = 0x0F000003;
    static constexpr std::int32_t kThisDatabase = 0x10000000;

    enum class Type : std::int16_t { Table = 1, Database = 2, Container = 3 };  // as stored

    /// A row of MSysObjects. The columns that are not here stay Null.
    struct Object {
        std::int32_t id = 0;  // of a table: the page of its definition
        std::int32_t parent = kTables;
        std::string_view name;
        Type type = Type::Table;
        Binary owner;
        std::uint32_t flags = 0;
    };
    /// A row of MSysACEs: what a user may do with an object.
    struct Ace {
        std::int32_t object = 0;
        Binary user;
        std::uint32_t rights = 0;
        bool isInheritable = false;
    };

    /// `file` is borrowed.
    [[nodiscard]] static Result<CatalogWriter> Open(const FileContext& file);

    /// Duplicate when the container has an object of this name.
    Status Add(const Object& object);
    Status Add(const Ace& ace);
    /// Adds a table for the same owner and users as other tables have.
    Status AddTable(PageNo page, std::string_view name);
    [[nodiscard]] Result<bool> HasTable(std::string_view name);

private:
    using Named = std::pair<const char*, Value>;  // a column and its value
    static Status Insert(Table& table, std::initializer_list<Named> values);

    std::unique_ptr<Table> objects_;
    std::unique_ptr<Table> aces_;
    Date now_;
};

}  // namespace jet
