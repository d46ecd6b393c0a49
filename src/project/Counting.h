#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Texts that count: "SS0012" goes on to "SS0013", "Tank 9.Druck" to "Tank 10.Druck".
namespace project {

/// The text with the last number in it changed by `step`; leading zeros stay as long as there is
/// room for them. Nothing when there is no number of up to 18 digits, or it would fall below 0.
[[nodiscard]] std::optional<std::u16string> CountOn(std::u16string_view text, std::int64_t step);

/// By how much the last number grows from one text to the other; nothing when they differ in
/// anything else, or in nothing.
[[nodiscard]] std::optional<std::int64_t> StepBetween(std::u16string_view from,
                                                      std::u16string_view to);

}  // namespace project
