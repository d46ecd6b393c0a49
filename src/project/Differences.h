#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "ado/Connection.h"
#include "ado/RowChange.h"

namespace project {

/// A table or a column that only one of two projects has. Its values are not compared.
struct TableDifference {
    enum class Kind : std::uint8_t { TableGone, TableNew, ColumnGone, ColumnNew };
    Kind kind = Kind::TableGone;
    std::string table;
    std::string column;  // of ColumnGone and ColumnNew
};

/// Names of rows by table and ID.
using RowNames = std::map<std::pair<std::string, std::int32_t>, std::u16string>;

/// How a project differs from another, whatever the order in which their rows are stored. A value:
/// it outlives both files.
struct Differences {
    /// Rows that are not the same in both, matched by ID: the earlier project's in `before`, the
    /// later one's in `after`. The project's own tables come in the order of Tables(), others
    /// behind them; the rows of a table in the order of their IDs. A column that one of the
    /// projects does not have holds Null there. In a table whose rows have no ID, or not one each,
    /// no row is known again: each is new or gone.
    std::vector<ado::RowChange> rows;
    std::vector<TableDifference> tables;
    std::vector<std::string> withoutIds;  // tables in which no row is known again
    // The names of archives and groups that the rows name, in each of the projects; of other rows
    // where what names them has changed.
    RowNames before;
    RowNames after;

    [[nodiscard]] bool IsEmpty() const noexcept { return rows.empty() && tables.empty(); }
};

/// A comparison that was told to stop.
class CompareStopped : public std::runtime_error {
public:
    CompareStopped() : std::runtime_error("the comparison has been stopped") {}
};

/// Compares two projects, each in one committed state; nothing but what differs is kept. Throws
/// ado::AdoError when something cannot be read. Both connections are open, and borrowed. `goOn`
/// hears every few hundred rows how many have been looked at, and throws CompareStopped by giving
/// false; may be empty.
[[nodiscard]] Differences Compare(ado::Connection& before, ado::Connection& after,
                                  const std::function<bool(std::size_t rows)>& goOn = {});

/// A project that is new, or gone, as a whole.
[[nodiscard]] Differences CompareWithNothing(ado::Connection& project, bool isNew);

/// Whether two values are the same, "not a number" among them.
[[nodiscard]] bool IsSame(const ado::Value& a, const ado::Value& b);

}  // namespace project
