#pragma once

#include <QString>

#include "exchange/Plan.h"
#include "texts/MResources.h"
#include "words/Words.h"

/// What an import's plan says, in the language of the interface.
namespace transfer {

/// The language of headings and words in files.
[[nodiscard]] const words::Language& FileLanguage(const MResources::TextTable& texts);

/// "Trends 5", "Zeile 5"; empty for a row that has not come in.
[[nodiscard]] QString PlaceOf(const exchange::Plan& plan, const exchange::PlannedRow& row,
                              const MResources::TextTable& texts);
/// "changed", "refused" and so on.
[[nodiscard]] QString StateOf(const exchange::Plan& plan, const exchange::PlannedRow& row,
                              const MResources::TextTable& texts);
/// Why nothing is done with a row; empty when something is.
[[nodiscard]] QString ReasonOf(const exchange::PlannedRow& row, const exchange::Sheet& sheet,
                               const MResources::TextTable& texts);
/// The heading of a field, of a workbook with its cell.
[[nodiscard]] QString FieldOf(const exchange::Plan& plan, const exchange::PlannedRow& row,
                              const exchange::FieldChange& change, const exchange::Sheet& sheet,
                              const MResources::TextTable& texts);
[[nodiscard]] QString ValueOf(const exchange::FieldChange& change, const ado::Value& value,
                              const exchange::Sheet& sheet, const MResources::TextTable& texts);
/// What a spreadsheet may have done to a value; often empty.
[[nodiscard]] QString DoubtOf(exchange::Suspicion suspicion, const MResources::TextTable& texts);
/// "Trends: 3 new, 12 changed, ...", a sentence for each plan.
[[nodiscard]] QString SummaryOf(const std::vector<exchange::Plan>& plans,
                                const MResources::TextTable& texts);

}  // namespace transfer
