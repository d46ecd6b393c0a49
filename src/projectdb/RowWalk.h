#pragma once

#include <optional>
#include <QString>
#include <utility>

#include "ado/AdoError.h"
#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "projectdb/Failure.h"

namespace projectdb {

/// What could not be read of a file that is damaged in places.
class RowFailures {
public:
    void Note(const ado::AdoError& error, int times = 1);

    [[nodiscard]] int Count() const noexcept { return count_; }
    /// REQUIRES: Count() > 0.
    [[nodiscard]] const Failure& First() const { return *first_; }

private:
    std::optional<Failure> first_;
    int count_ = 0;
};

/// One way forward through the rows of a recordset that passes over those that cannot be read and
/// notes them. Where the way itself is blocked it is given up, which counts as one failure.
///
/// All rows are of one committed state, as long as the walk is there: it is no place to change
/// anything, nor to ask the user.
///
///     for (bool found = walk.First(); found; found = walk.Next()) {
///         walk.Read([&] { ... recordset.Get(...) ... });
///     }
class RowWalk {
public:
    /// Both are borrowed.
    RowWalk(ado::Recordset& recordset, RowFailures& failures);

    /// To the first row that can be reached; false when there is none.
    [[nodiscard]] bool First();
    /// To the next row that can be reached; false when there is none.
    [[nodiscard]] bool Next();

    /// Runs `body`, which reads the current row.
    template <typename Body>
    void Read(Body&& body) {
        try {
            std::forward<Body>(body)();
        } catch (const ado::AdoError& error) {
            failures_.Note(error);
        }
    }

private:
    template <typename Step>
    bool Repeat(Step step);

    ado::Recordset& recordset_;
    RowFailures& failures_;
    std::optional<ado::OneState> state_;  // empty: the way is blocked, and that has been noted
};

}  // namespace projectdb
