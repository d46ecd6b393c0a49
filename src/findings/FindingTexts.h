#pragma once

#include <QIcon>
#include <QString>

#include "project/FindingText.h"
#include "texts/MResources.h"

/// Findings in the words of the interface.
namespace findings {

/// `texts` is borrowed by what is returned.
[[nodiscard]] project::FindingWords WordsOf(const MResources::TextTable& texts);
/// What is wrong, where the row's name stands beside it.
[[nodiscard]] QString ListTextOf(const project::Finding& finding,
                                 const project::FindingWords& words);
/// What the rule means and what can be done.
[[nodiscard]] QString MeaningOf(project::Rule rule, const MResources::TextTable& texts);
/// What the user calls the column; empty for the row as a whole.
[[nodiscard]] QString CaptionOf(std::string_view table, std::string_view column,
                                const MResources::TextTable& texts);
/// The row that a user would look for: of a text the one that has it.
[[nodiscard]] project::FoundRow RowOf(const project::Finding& finding);
/// "Error"
[[nodiscard]] QString SeverityText(project::Severity severity, const MResources::TextTable& texts);
[[nodiscard]] QIcon SeverityIcon(project::Severity severity);

/// How many findings there are of each severity.
struct Counts {
    qsizetype errors = 0;
    qsizetype warnings = 0;
    qsizetype notes = 0;
};
[[nodiscard]] Counts CountsOf(const std::vector<project::Finding>& findings);
/// "3 errors, 28 warnings"
[[nodiscard]] QString CountText(const Counts& counts, const MResources::TextTable& texts);

}  // namespace findings
