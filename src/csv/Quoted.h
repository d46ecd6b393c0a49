#pragma once

#include <algorithm>
#include <string_view>

namespace csv {

/// What is there, but has no length; nothing at all is Null.
inline constexpr std::string_view kEmpty = "\"\"";

/// Whether a text with that character must stand in quotes. The separator is not among them.
[[nodiscard]] constexpr bool IsSpecial(char c) {
    return c == '"' || c == '\r' || c == '\n';
}

/// Appends what stands between the quotes for a text; `out` has Append(char).
template <typename Out>
void AppendDoublingQuotes(std::string_view text, Out& out) {
    for (const char c : text) {
        if (c == '"') out.Append('"');
        out.Append(c);
    }
}

/// Appends a text, UTF-8, in quotes where it needs them; an empty one as kEmpty. `out` has
/// Append(char) and Append(std::string_view).
template <typename Out>
void AppendText(std::string_view text, char separator, Out& out) {
    const bool isPlain = !text.empty() && std::none_of(text.begin(), text.end(), [&](char c) {
        return c == separator || IsSpecial(c);
    });
    if (isPlain) return out.Append(text);
    out.Append('"');
    AppendDoublingQuotes(text, out);
    out.Append('"');
}

}  // namespace csv
