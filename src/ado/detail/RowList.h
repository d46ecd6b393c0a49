#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "ado/detail/KeyList.h"
#include "ado/detail/KeyStream.h"

namespace ado {

/// One column to sort by.
struct SortColumn {
    RowSet::Origin origin;
    bool descending = false;
};

/// The rows of a recordset in their order, fetched as far as somebody has asked. Sorting needs all
/// of them; without it a row is known when it or one behind it has been asked for.
class RowList {
public:
    /// Borrows both, which must outlive the list. `reader` is left on the row fetched last where
    /// rows have to be tested.
    RowList(const RowSet& rows, RowReader& reader) : rows_(rows), reader_(reader) {}

    /// Starts again: `filter` (borrowed, may be null) and the columns to sort by.
    void Restart(const Expression* filter, std::vector<SortColumn> sort);

    /// Lets go of the filter and forgets all rows.
    void Clear();

    /// True when there is a row at this position, counted from 0.
    [[nodiscard]] bool Has(std::size_t position);
    /// REQUIRES: Has(position).
    [[nodiscard]] RowKey At(std::size_t position) const { return keys_[position]; }
    /// Adds a row behind all others without fetching them.
    void Add(RowKey key) { added_.push_back(key); }
    /// Takes a row out; those behind it move up. REQUIRES: Has(position).
    void Remove(std::size_t position);

    /// Fetches everything.
    [[nodiscard]] std::size_t Count();
    /// Position of a row; empty when it is not in the list.
    [[nodiscard]] std::optional<std::size_t> Find(RowKey key);

private:
    void Sort();
    void AppendAdded();

    const RowSet& rows_;
    RowReader& reader_;
    std::unique_ptr<KeyStream> stream_;  // null when everything has been fetched
    std::vector<SortColumn> sort_;
    KeyList keys_;
    std::vector<RowKey> added_;  // not among keys_ before everything has been fetched
    std::size_t lastFound_ = 0;  // position; at most keys_.Size()
};

}  // namespace ado
