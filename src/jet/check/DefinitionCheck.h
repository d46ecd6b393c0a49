#pragma once

#include <map>
#include <string>
#include <vector>

#include "jet/check/MapCheck.h"
#include "jet/TableDef.h"

namespace jet::check {

/// A table of the catalog while the file is checked. Its owners in the ledger are numbered in a
/// row: definition, rows, real indexes, long-value columns in the order of the columns.
struct TableEntry {
    std::string name;
    PageNo page{};
    OwnerId firstOwner = OwnerId::Nobody;  // Nobody: the definition cannot be used
};

/// A table whose definition can be used.
struct CheckedTable {
    std::string name;  // table "X"
    TableDef def;
    OwnerId rows = OwnerId::Nobody;
    std::vector<OwnerId> indexes;     // by real index
    std::vector<OwnerId> longValues;  // by column; Nobody for other columns

    CheckedTable(const TableEntry& entry, TableDef definition);
    [[nodiscard]] std::string IndexName(std::size_t realIndex) const;
};

/// Checks table definitions, and claims the pages of each table for it. Borrows its arguments.
class DefinitionCheck {
public:
    DefinitionCheck(PageCache& cache, Reporter& report, PageLedger& pages, MapCheck& maps)
        : cache_(cache), report_(report), pages_(pages), maps_(maps) {}

    /// Fills entry.firstOwner.
    void Check(TableEntry& entry);
    /// When all tables have been checked: the two ends of each relationship.
    void CheckRelationships();

private:
    /// A logical index: one end of a relationship, perhaps.
    struct End {
        std::string name;
        bool isForeign = false;
        std::uint8_t side = 0;
        std::int32_t partner = -1;
        PageNo otherTable{};
    };

    [[nodiscard]] bool CheckChain(const std::string& name, PageNo first, OwnerId owner);
    void CheckLength(const CheckedTable& table);
    void CheckColumns(const CheckedTable& table);
    void CheckIndexes(const CheckedTable& table);
    void ClaimMaps(const CheckedTable& table);
    void Error(const std::string& name, const std::string& what) {
        report_.Error(Subject::Definitions, name + ": " + what);
    }
    /// Of a column whose values are read and written where others are.
    void Misplaced(const std::string& name, const std::string& what) {
        report_.Error(Subject::Columns, name + ": " + what);
    }

    PageCache& cache_;
    Reporter& report_;
    PageLedger& pages_;
    MapCheck& maps_;
    std::vector<std::byte> stream_;      // of the definition checked last
    std::map<std::uint64_t, End> ends_;  // by page of the table << 32 | index number
};

}  // namespace jet::check
