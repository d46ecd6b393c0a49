#pragma once

#include <memory>
#include <vector>

#include "ado/detail/RowSet.h"

namespace ado {

/// Hands out the rows of a row set one by one. Everything is read when it is asked for; a failure
/// concerns one row or one page of rows, and the next call goes on behind it. A damaged index is
/// no failure: the rows are then found without it.
class KeyStream {
public:
    virtual ~KeyStream() = default;
    /// False at the end.
    [[nodiscard]] virtual bool Next(RowKey& key) = 0;
};

/// The rows that meet the row set's own condition and `filter` (may be null). Uses an index for
/// equalities with constants and for the join where the tables have one. `reader` is used to read
/// rows that have to be tested, and is left on the row handed out last. All arguments are borrowed
/// and must outlive the stream.
[[nodiscard]] std::unique_ptr<KeyStream> OpenStream(const RowSet& rows, const Expression* filter,
                                                    RowReader& reader);

/// The rows of a one-table row set that an index finds for a condition's equalities; a superset
/// of the rows that meet it. Empty when no index fits.
[[nodiscard]] std::optional<std::vector<RowKey>> LookUp(const RowSet& rows,
                                                        const Expression& condition);

}  // namespace ado
