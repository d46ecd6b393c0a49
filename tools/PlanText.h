#pragma once

#include <string>

#include "exchange/Plan.h"

namespace tools {

/// What an import does with a row: a line for the row and, indented, one for each field. `sheet` is
/// of the project for which the plan was made.
[[nodiscard]] std::string TextOf(const exchange::Plan& plan, const exchange::PlannedRow& row,
                                 const exchange::Sheet& sheet, const words::Language& language);

/// A line for each field of a row that a spreadsheet may have spoilt; often none.
[[nodiscard]] std::string DoubtsOf(const exchange::Plan& plan, const exchange::PlannedRow& row,
                                   const exchange::Sheet& sheet, const words::Language& language);

/// "3 new, 12 changed, 213 as they are, 1 missing here, 2 ambiguous, 1 refused".
[[nodiscard]] std::string Summary(const exchange::Plan& plan);

}  // namespace tools
