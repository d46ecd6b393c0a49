#pragma once

#include <QList>
#include <vector>

#include "dialogs/FConflict.h"
#include "project/TakeBack.h"
#include "texts/MResources.h"

/// Conflicts in the user's words: headings instead of columns, values as the grid shows them.
namespace ConflictTexts {

[[nodiscard]] QList<FConflict::Row> RowsOf(const std::vector<project::Conflict>& conflicts,
                                           const MResources::TextTable& texts);

}  // namespace ConflictTexts
