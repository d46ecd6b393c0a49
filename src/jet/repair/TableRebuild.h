#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "jet/compact/DefinitionCopy.h"
#include "jet/compact/MapPages.h"
#include "jet/compact/RowPacker.h"
#include "jet/Repair.h"
#include "jet/Table.h"

namespace jet::repair {

/// Writes one table anew from those of its rows that can be read; its definition stays on its page.
/// Borrows its arguments.
///
/// The steps of all tables must be taken in their order: Place() for each, then Copy() for each.
class TableRebuild {
public:
    /// `isKept` says whether a row of the catalog is to be kept; empty for other tables.
    using RowFilter = std::function<bool(const Row&)>;

    TableRebuild(PageCache& cache, compact::Draft& draft, compact::MapPages& maps,
                 std::unique_ptr<Table> table, const LossSink& lost)
        : cache_(cache), draft_(draft), maps_(maps), table_(std::move(table)), lost_(lost) {}

    [[nodiscard]] const Table& Source() const { return *table_; }
    /// Makes an index that is one end of a relationship an ordinary one.
    void DropRelationship(std::size_t logicalIndex) { dropped_.push_back(logicalIndex); }
    void SetFilter(RowFilter isKept) { isKept_ = std::move(isKept); }

    Status Place();
    Status Copy();
    /// Rows that have been saved. After Copy().
    [[nodiscard]] std::uint64_t RowCount() const { return rowCount_; }

private:
    struct MapPair {
        std::uint32_t owned = 0;
        std::uint32_t free = 0;
    };
    using Entry = std::pair<std::string, RowId>;
    /// An index while its table is read.
    struct Index {
        std::uint32_t map = 0;
        bool canMakeKeys = false;
        std::vector<Entry> entries;
        std::unordered_set<std::string> keys;  // of a unique one
    };

    Status CopyRows();
    Status CopyRow(const Row& row);
    /// True when the value is Null, or can be read and has been stored anew if it is a long one.
    [[nodiscard]] Status SaveValue(std::size_t column, const Row& row, MutableBytes bytes);
    [[nodiscard]] Status SaveLongValue(std::size_t column, const LongValue& value,
                                       MutableBytes head);
    [[nodiscard]] Result<RowId> StorePieces(compact::RowPacker& pages, Bytes data,
                                            std::uint32_t stamp);
    /// Computes the keys of a row; false when an index cannot hold it.
    [[nodiscard]] Result<bool> MakeKeys(const Row& row, Bytes bytes);
    Status WriteIndex(std::size_t index);
    void HarvestEntries(std::size_t index);
    void SetCounters();
    void Lose(const std::string& what) { lost_(TableText(table_->Name()) + ", " + what); }

    PageCache& cache_;
    compact::Draft& draft_;
    compact::MapPages& maps_;
    std::unique_ptr<Table> table_;
    const LossSink& lost_;
    RowFilter isKept_;
    std::vector<std::size_t> dropped_;

    std::optional<compact::DefinitionCopy> definition_;
    std::vector<PageNo> pages_;  // of the definition
    MapPair rowMaps_;
    std::unique_ptr<compact::RowPacker> rows_;
    std::map<std::size_t, MapPair> longValueMaps_;  // by the position of the column
    std::map<std::size_t, compact::RowPacker> longValues_;
    std::vector<Index> indexes_;
    std::vector<bool> mustHave_;                     // by column: an index forbids Null
    std::vector<std::string> keys_;                  // of the row at hand, by index
    std::vector<bool> hasEntry_;                     // the same
    std::map<std::uint32_t, std::uint32_t> places_;  // new row pointers, for HarvestEntries
    std::uint64_t rowCount_ = 0;
    std::int32_t greatest_ = 0;  // of the automatic numbers
};

}  // namespace jet::repair
