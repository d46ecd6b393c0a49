#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "jet/catalog/TableRules.h"
#include "jet/open/FileContext.h"
#include "jet/open/Inside.h"
#include "jet/row/LongValuePieces.h"
#include "jet/Table.h"

namespace jet {

/// Borrows `file`.
struct Table::Rep {
    Rep(const FileContext& context, PageNo definition, std::string title, bool users)
        : file(context), page(definition), name(std::move(title)), isForUsers(users) {}

    Status Refresh();
    [[nodiscard]] Status Named(const Status& status) const { return status.In(TableText(name)); }
    [[nodiscard]] LongValuePieces Pieces(const LongValue& value) const {
        return {file.cache, file.format, value, TableText(name)};
    }
    /// For writing. Borrowed, and good until another program has changed the file.
    [[nodiscard]] Result<const TableRules*> Rules();

    const FileContext& file;
    PageNo page;
    std::string name;
    bool isForUsers;  // false: nothing is changed, whatever the definition says of it
    std::shared_ptr<const TableDef> def;
    std::uint64_t generation = 0;  // of the page cache when def was read
    std::optional<TableRules> rules;
    std::map<PageNo, std::unique_ptr<Table>> related;
    std::uint64_t changes = 0;  // of the page cache when the two were read
};

/// Opens the table whose definition begins on `page`.
[[nodiscard]] Result<std::unique_ptr<Table>> OpenTableAt(const FileContext& file, PageNo page,
                                                         std::string name, bool isForUsers = true);

/// The same with a definition that has been read already, while the file's state is held.
[[nodiscard]] std::unique_ptr<Table> OpenKnownTable(const FileContext& file,
                                                    const std::string& name,
                                                    std::shared_ptr<const TableDef> def,
                                                    bool isForUsers);

/// The table whose definition begins on `page`; `table` when it is its own. Borrowed, and good as
/// long as the rules of `table`.
[[nodiscard]] Result<Table*> RelatedTable(Table& table, PageNo page);

}  // namespace jet
