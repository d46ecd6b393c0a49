#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "jet/page/PageCache.h"
#include "jet/row/RowView.h"
#include "jet/TableDef.h"

namespace jet::check {

/// What an index holds, as far as comparing needs it: equal sums come from the same entries,
/// whatever their order.
struct IndexSum {
    std::uint64_t count = 0;
    std::uint64_t hashes = 0;

    void Add(std::string_view key, RowId row) {
        ++count;
        hashes += Hash(key, row);
    }
    [[nodiscard]] static std::uint64_t Hash(std::string_view key, RowId row);
    [[nodiscard]] bool operator==(const IndexSum&) const = default;
};

/// The key of a row in one index.
struct IndexKey {
    std::string bytes;
    bool isInIndex = true;  // false: the index leaves out rows with nothing but Nulls
};

/// True when the keys of the index can be computed.
[[nodiscard]] bool CanMakeKeys(const TableDef& def, const RealIndex& index);

/// True for the key of a row with nothing but Nulls, which a unique index may hold many times.
[[nodiscard]] bool IsKeyOfNulls(const RealIndex& index, std::string_view key);

/// Computes the key of a row. `key` gets it; its memory is used again. REQUIRES: CanMakeKeys.
Status MakeIndexKey(PageCache& cache, const TableDef& def, const RealIndex& index,
                    const RowView& row, IndexKey& key);

}  // namespace jet::check
