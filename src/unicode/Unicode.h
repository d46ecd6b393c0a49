#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace unicode {

/// Appends `text` as UTF-8. A half of a surrogate pair without its partner becomes U+FFFD.
void AppendUtf8(std::u16string_view text, std::string& out);
[[nodiscard]] std::string ToUtf8(std::u16string_view text);
/// The position of the first byte that is not part of valid UTF-8; empty when there is none.
[[nodiscard]] std::optional<std::size_t> FindInvalidUtf8(std::string_view text);
/// Bytes that are not valid UTF-8 become U+FFFD.
[[nodiscard]] std::u16string ToUtf16(std::string_view text);

}  // namespace unicode
