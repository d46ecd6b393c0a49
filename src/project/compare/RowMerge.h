#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ado/RowChange.h"
#include "project/Merge.h"

namespace project {

/// A row of a table by its ID.
using RowKey = std::pair<std::string, std::int32_t>;
/// The changes of one side, by row.
using RowChanges = std::map<RowKey, ado::RowChange>;

/// Two sides' changes of the same rows, joined. Both have the columns of the project into which
/// theirs are to come.
class RowMerge {
public:
    RowMerge(RowChanges mine, RowChanges theirs)
        : mine_(std::move(mine)), theirs_(std::move(theirs)) {}

    void Run();

    /// What is to be done: `before` is what stands in mine, `after` what shall stand there.
    std::vector<ado::RowChange> steps;
    std::vector<MergeConflict> conflicts;

    [[nodiscard]] const RowChanges& Mine() const { return mine_; }
    [[nodiscard]] const RowChanges& Theirs() const { return theirs_; }

private:
    using Kind = MergeConflict::Kind;
    using Values = std::vector<ado::Value>;

    void MergeRow(const RowKey& key, const ado::RowChange* mine, const ado::RowChange* theirs);
    void MergeFields(const ado::RowChange& mine, const ado::RowChange& theirs);
    void KeepLimits(const ado::RowChange& mine, const ado::RowChange& theirs, Values& merged);
    void AddStep(const ado::RowChange& row, Values before, Values after);
    void AddConflict(Kind kind, const ado::RowChange& row);
    void AddField(Kind kind, const ado::RowChange& mine, const ado::RowChange& theirs,
                  std::size_t column);

    RowChanges mine_;
    RowChanges theirs_;
    std::set<RowKey> neededByMine_;    // of those that they have deleted
    std::set<RowKey> neededByTheirs_;  // of those that I have deleted
};

/// The changes as rows by their IDs.
[[nodiscard]] RowChanges ByKey(std::vector<ado::RowChange> rows);

}  // namespace project
