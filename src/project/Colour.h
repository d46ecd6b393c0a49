#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Colours as projects store them: 0x00BBGGRR, or 0x80000000 and the index of a colour of the
/// system's scheme.
namespace project {

/// The parts of a stored colour, 0 to 255 each.
struct ColourParts {
    int red = 0;
    int green = 0;
    int blue = 0;
};
/// Of one of the system's scheme nothing can be said; its bits count as parts.
[[nodiscard]] ColourParts PartsOf(std::int32_t stored);

/// Whether a number is a colour that can be shown.
[[nodiscard]] bool IsColour(std::int32_t stored);

/// "#RRGGBB"; what is more than that as "&H" and the stored bits.
[[nodiscard]] std::u16string ColourText(std::int32_t stored);
/// What such a text stands for, or the stored number as text; nothing for what is none of them.
/// Whether it IsColour is another question.
[[nodiscard]] std::optional<std::int32_t> ReadColour(std::u16string_view text);

}  // namespace project
