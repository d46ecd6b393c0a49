#pragma once

#include <QString>

#include "project/CellChanges.h"
#include "texts/MResources.h"

/// What the user reads where values have not been written. `name`: of the row.
[[nodiscard]] QString CellRefusalText(const project::CellRefusal& refusal, const QString& name,
                                      const MResources::TextTable& texts);
