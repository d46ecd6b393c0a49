#include "project/Number.h"

#include <array>
#include <charconv>
#include <limits>

namespace project {
namespace {

constexpr int kSignificantDigits = 15;

bool IsBlank(char16_t c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r') || c == u'\xA0';
}

bool IsDigit(std::u16string_view text, std::size_t at) {
    return at < text.size() && text[at] >= u'0' && text[at] <= u'9';
}

std::size_t SkipDigits(std::u16string_view text, std::size_t at) {
    while (IsDigit(text, at)) ++at;
    return at;
}

std::size_t SkipSign(std::u16string_view text, std::size_t at) {
    return at < text.size() && (text[at] == u'+' || text[at] == u'-') ? at + 1 : at;
}

/// The end of the number at the start of `text`; 0 when there is none.
std::size_t EndOfNumber(std::u16string_view text, bool comma) {
    const std::size_t first = SkipSign(text, 0);
    std::size_t at = SkipDigits(text, first);
    std::size_t digits = at - first;
    if (at < text.size() && (text[at] == u'.' || (comma && text[at] == u','))) {
        const std::size_t behind = SkipDigits(text, at + 1);
        digits += behind - at - 1;
        at = behind;
    }
    if (digits == 0) return 0;
    if (at < text.size() && (text[at] == u'e' || text[at] == u'E')) {
        const std::size_t power = SkipSign(text, at + 1);
        if (IsDigit(text, power)) at = SkipDigits(text, power);
    }
    return at;
}

/// REQUIRES: `text` is a number.
NumberText ToDouble(std::u16string_view text) {
    std::string ascii;
    for (const char16_t c : text) ascii += c == u',' ? '.' : static_cast<char>(c);
    const char* begin = ascii.c_str();
    const bool negative = *begin == '-';
    if (*begin == '+' || negative) ++begin;
    NumberText read{.any = true};
    const auto result = std::from_chars(begin, ascii.c_str() + ascii.size(), read.number);
    if (result.ec == std::errc::result_out_of_range) {
        // from_chars tells too large and too small alike; the exponent's sign tells them apart.
        const bool tiny = ascii.find("e-") != ascii.npos || ascii.find("E-") != ascii.npos;
        read.number = tiny ? 0 : std::numeric_limits<double>::max();
        read.tooLarge = !tiny;
    }
    if (negative) read.number = -read.number;
    return read;
}

}  // namespace

std::u16string_view WithoutBlanks(std::u16string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

NumberText ReadNumber(std::u16string_view text, bool comma) {
    text = WithoutBlanks(text);
    const std::size_t end = EndOfNumber(text, comma);
    if (end == 0) return {};
    NumberText read = ToDouble(text.substr(0, end));
    read.whole = end == text.size();
    return read;
}

std::u16string FormatNumber(double number, char16_t point) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                   std::chars_format::general, kSignificantDigits)
                         .ptr;
    std::u16string text(digits.data(), end);
    for (char16_t& c : text) {
        if (c == u'e') c = u'E';
        if (c == u'.') c = point;
    }
    return text;
}

std::u16string FormatNumber(float number, char16_t point) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    double same = number;
    std::from_chars(digits.data(), end, same);
    return FormatNumber(same, point);
}

}  // namespace project
