#pragma once

#include <string>
#include <string_view>

namespace jet {

/// Language and version of the one collation whose keys this engine makes ("General").
inline constexpr unsigned kGeneralLcid = 0x0409;
inline constexpr unsigned kGeneralVersion = 0;

/// Appends the index key of a text in the collation "General" without its leading flag byte. The
/// key ignores case and trailing blanks, and weighs accents, hyphens and apostrophes only between
/// texts that are otherwise equal. Only the first 255 UTF-16 units count.
/// At most 255 x 10 + 20 bytes are appended.
void AppendTextKey(std::u16string_view text, bool ascending, std::string& key);

/// The same unit for all that differ at most in case.
[[nodiscard]] char16_t FoldUnit(char16_t unit);
/// True when two units differ at most in case.
[[nodiscard]] inline bool SameUnit(char16_t a, char16_t b) {
    return a == b || FoldUnit(a) == FoldUnit(b);
}

}  // namespace jet
