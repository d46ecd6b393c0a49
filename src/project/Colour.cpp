#include "project/Colour.h"

#include <array>
#include <charconv>
#include <limits>

#include "project/Number.h"

namespace project {
namespace {

constexpr std::uint32_t kLargestColour = 0xFFFFFF;
constexpr std::uint32_t kSystemColour = 0x80000000;
constexpr std::uint32_t kSystemColours = 0x1F;  // as many there are
constexpr std::size_t kHexDigits = 6;

/// Red and blue change places.
std::uint32_t Turned(std::uint32_t bits) {
    return (bits & 0xFF) << 16 | (bits & 0xFF00) | (bits >> 16 & 0xFF);
}

std::u16string HexText(std::uint32_t number) {
    std::array<char, 8> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    std::u16string text;
    for (const char* digit = digits.data(); digit != end; ++digit) {
        text += static_cast<char16_t>(*digit >= 'a' ? *digit - 'a' + 'A' : *digit);
    }
    return text;
}

std::optional<std::uint32_t> ReadHex(std::u16string_view digits) {
    std::string ascii;
    for (const char16_t c : digits) ascii += c < 0x80 ? static_cast<char>(c) : '?';
    std::uint32_t number = 0;
    const char* end = ascii.data() + ascii.size();
    const auto parsed = std::from_chars(ascii.data(), end, number, 16);
    if (parsed.ec != std::errc() || parsed.ptr != end) return std::nullopt;
    return number;
}

std::optional<std::uint32_t> ReadBits(std::u16string_view text) {
    if (text.starts_with(u'#')) {
        if (text.size() != 1 + kHexDigits) return std::nullopt;
        const auto rgb = ReadHex(text.substr(1));
        return rgb ? std::optional(Turned(*rgb)) : std::nullopt;
    }
    if (text.starts_with(u"&H") || text.starts_with(u"&h")) return ReadHex(text.substr(2));
    const NumberText read = ReadNumber(text);
    using Limits = std::numeric_limits<std::int32_t>;
    const bool fits = read.number >= Limits::min() && read.number <= Limits::max();
    if (!read.whole || !fits || read.number != static_cast<std::int32_t>(read.number)) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(read.number));
}

}  // namespace

ColourParts PartsOf(std::int32_t stored) {
    const auto bits = static_cast<std::uint32_t>(stored);
    return {static_cast<int>(bits & 0xFF), static_cast<int>(bits >> 8 & 0xFF),
            static_cast<int>(bits >> 16 & 0xFF)};
}

bool IsColour(std::int32_t stored) {
    const auto bits = static_cast<std::uint32_t>(stored);
    return bits <= kLargestColour || (bits & ~kSystemColours) == kSystemColour;
}

std::u16string ColourText(std::int32_t stored) {
    const auto bits = static_cast<std::uint32_t>(stored);
    if (bits > kLargestColour) return u"&H" + HexText(bits);
    const std::u16string digits = HexText(Turned(bits));
    return u'#' + std::u16string(kHexDigits - digits.size(), u'0') + digits;
}

std::optional<std::int32_t> ReadColour(std::u16string_view text) {
    const auto bits = ReadBits(text);
    return bits ? std::optional(static_cast<std::int32_t>(*bits)) : std::nullopt;
}

}  // namespace project
