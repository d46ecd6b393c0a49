#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "ado/Connection.h"
#include "exchange/Plan.h"

namespace exchange {

/// Does what a plan says, as one transaction: changed and new rows, and missing ones where the plan
/// has them go. Rows with a cause are passed over.
///
/// Every field is held against what the plan has seen there. Where something else stands now, or a
/// row has gone, nothing is done and the result is false: the import is to be planned anew. Throws
/// ado::AdoError, and nothing has been changed; the text begins with the line of the row.
/// `connection` is borrowed; it may be in a transaction already, which is the caller's to take back
/// then.
[[nodiscard]] bool Apply(ado::Connection& connection, const Plan& plan);

enum class Outcome : std::uint8_t {
    Done,
    Stale,    // the import is to be planned anew
    GivenUp,  // by `goOn`
};
/// The same for the plans of sheets that come in together; only with Done something is changed.
/// `goOn` hears how many rows are done and gives it up with false; it may be empty.
[[nodiscard]] Outcome Apply(ado::Connection& connection, std::span<const Plan> plans,
                            const std::function<bool(std::size_t rows)>& goOn);

}  // namespace exchange
