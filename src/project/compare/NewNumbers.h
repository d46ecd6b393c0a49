#pragma once

#include <map>

#include "project/compare/RowMerge.h"

namespace project {

/// The rows of theirs that must have another ID: both sides have made a row under it, and they are
/// not the same. What a text belongs to and what names such a row goes along, so that nothing of
/// theirs comes to hang from a row of mine. Without a common base, rows of the same name are the
/// same.
[[nodiscard]] std::set<RowKey> FindTaken(const RowChanges& mine, const RowChanges& theirs,
                                         bool hasBase);

using NewNumbers = std::map<RowKey, std::int32_t>;
/// Gives the rows of theirs their new IDs, with all that names them.
void Renumber(RowChanges& theirs, const NewNumbers& numbers);

}  // namespace project
