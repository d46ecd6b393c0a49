#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace csv {

/// How the characters of a text file are stored.
enum class Encoding { Utf8, Windows1252 };

/// The encoding of this name, in any case of letters; empty for one that is not known.
[[nodiscard]] std::optional<Encoding> EncodingOf(std::string_view name);

/// The position of the first byte that the encoding does not have, or that is no whole character;
/// empty when all is well.
[[nodiscard]] std::optional<std::size_t> FirstBadByte(std::string_view text, Encoding encoding);

/// REQUIRES: !FirstBadByte(text, encoding).
[[nodiscard]] std::size_t CountCharacters(std::string_view text, Encoding encoding);

/// UTF-8 in the encoding; false, and `text` is of no use, when that has not all of its characters.
[[nodiscard]] bool FromUtf8(std::string& text, Encoding encoding);

/// The text as UTF-8. REQUIRES: !FirstBadByte(text, encoding).
void ToUtf8(std::string& text, Encoding encoding);

}  // namespace csv
