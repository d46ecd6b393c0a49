#pragma once

#include <map>
#include <string>
#include <vector>

#include "jet/compact/DefinitionCopy.h"
#include "jet/compact/LongValueCopier.h"
#include "jet/compact/MapPages.h"
#include "jet/compact/RowPacker.h"
#include "jet/Database.h"
#include "jet/index/EntryCursor.h"

namespace jet::compact {

/// The columns of a table that name tables by the page of their definition: their positions. Empty
/// for all tables but three of the system's own.
[[nodiscard]] std::vector<std::size_t> TableNumberColumns(const std::string& table,
                                                          const TableDef& def);

/// Copies one table into the draft: its rows as the bytes that they are, in their order, and each
/// index entry by entry, so that keys of any collation survive. Borrows its arguments.
///
/// The steps of all tables must be taken in their order: Place() for each, then Copy() for each.
class TableCopier {
public:
    TableCopier(PageCache& cache, Draft& draft, MapPages& maps, std::unique_ptr<Table> table)
        : cache_(cache), draft_(draft), maps_(maps), table_(std::move(table)) {}

    /// Takes pages for the definition, and rows for the maps. The first page of the definition of a
    /// table of the system, or one that the draft keeps, stays what it is.
    Status Place(TableMoves& moves);
    Status Copy(const TableMoves& moves);

private:
    struct MapPair {
        std::uint32_t owned = 0;
        std::uint32_t free = 0;
    };

    Status CopyRows(const TableMoves& moves);
    Status CopyRow(const Row& row, const TableMoves& moves);
    Status CopyIndex(std::size_t index, const TableMoves& moves);
    /// The key of an entry whose row names moved tables; the old one where it does not.
    [[nodiscard]] Result<std::string> NewKey(std::size_t index, const EntryCursor& entry,
                                             const TableMoves& moves);
    [[nodiscard]] Result<RowId> NewPlace(RowId old) const;
    [[nodiscard]] PageNo NewPage() const { return pages_.front(); }

    PageCache& cache_;
    Draft& draft_;
    MapPages& maps_;
    std::unique_ptr<Table> table_;
    std::vector<DefinitionCopy> definition_;  // one, when it has been loaded
    std::vector<PageNo> pages_;               // of the new definition
    MapPair rowMaps_;
    std::map<std::size_t, MapPair> longValueMaps_;  // by the position of the column
    std::vector<std::uint32_t> indexMaps_;
    std::vector<std::size_t> tableNumbers_;

    std::unique_ptr<RowPacker> rows_;
    std::map<std::size_t, LongValueCopier> longValues_;
    struct RowMove {
        std::uint32_t from, to;  // row pointers
    };
    std::vector<RowMove> rowMoves_;  // ascending in both
};

}  // namespace jet::compact
