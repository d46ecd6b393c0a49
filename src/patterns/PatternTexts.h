#pragma once

#include <QString>

#include "project/Pattern.h"
#include "texts/MResources.h"

namespace patterns {

/// Why a pattern cannot be understood, as a sentence that names its field and the place in it.
[[nodiscard]] QString FaultText(const project::PatternFault& fault, const QString& field,
                                const MResources::TextTable& texts);

}  // namespace patterns
