#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "project/Check.h"

/// What is said of a finding, in any language.
namespace project {

/// The words for it. The texts are those of the interface; their keys are "Finding." or
/// "FindingRow." and a name.
struct FindingWords {
    /// Of a key; empty where there is none.
    std::function<std::u16string(std::string_view key)> text;
    /// What people call a column of a table; empty: its name.
    std::function<std::u16string(std::string_view table, std::string_view column)> caption{};
    /// Rows are told by their IDs, for who works with those, else by their names.
    bool tellsIds = false;
};

/// How a sentence about a finding begins.
enum class Subject {
    Named,  // "trend "A" of archive "B" has no text"
    This,   // "The trend has no text", where its name stands beside it
};

/// A sentence about the row, without a full stop.
[[nodiscard]] std::u16string MessageOf(const Finding& finding, const FindingWords& words,
                                       Subject subject = Subject::Named);
/// "trend "A" of archive "B""
[[nodiscard]] std::u16string NameOf(const FoundRow& row, const FindingWords& words);

}  // namespace project
