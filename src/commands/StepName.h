#pragma once

#include <QString>

#include "project/Changes.h"
#include "texts/MResources.h"

/// What a step is called: "Deletion of archive Sudhaus with 24 trends". Read off the rows that it
/// has changed, so that every command has a name for what it does, and the right number.
[[nodiscard]] QString StepName(const project::ChangeSet& step, const MResources::TextTable& texts);
