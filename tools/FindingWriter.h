#pragma once

#include <string>

#include "project/CheckSettings.h"
#include "tools/TextBuffer.h"

namespace tools {

/// Text: a line for each finding, "error: TchrTrends/228/Maximum: ... [range-inverted]". Json: an
/// array with an object a finding, a line each. Sarif: SARIF 2.1.0, the accepted ones marked; the
/// others leave those out.
enum class FindingFormat { Text, Json, Sarif };

/// What is wrong with the row, which it names, in English.
[[nodiscard]] std::string MessageOf(const project::Finding& finding);

/// `file` is the project's name as the user gave it.
void WriteFindings(FindingFormat format, const std::string& file,
                   const project::Judgement& judgement, TextBuffer& out);

}  // namespace tools
