#include "project/FieldText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace project {
namespace {

constexpr std::int64_t kLargestColour = 0xFFFFFF;
constexpr std::uint32_t kSystemColour = 0x80000000;
constexpr std::uint32_t kSystemColours = 0x1F;  // as many there are

bool IsBlank(char16_t c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r') || c == u'\xA0';
}

std::u16string_view Trimmed(std::u16string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
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

double ToDouble(std::u16string_view text) {
    std::string ascii;
    for (const char16_t c : text) ascii += c == u',' ? '.' : static_cast<char>(c);
    const char* begin = ascii.c_str();
    const bool negative = *begin == '-';
    if (*begin == '+' || negative) ++begin;
    double number = 0;
    const auto result = std::from_chars(begin, ascii.c_str() + ascii.size(), number);
    if (result.ec == std::errc::result_out_of_range) {
        // from_chars tells too large and too small alike; the exponent's sign tells them apart.
        const bool tiny = ascii.find("e-") != ascii.npos || ascii.find("E-") != ascii.npos;
        number = tiny ? 0 : std::numeric_limits<double>::max();
    }
    return negative ? -number : number;
}

template <typename Number>
NumberRange Range(bool integral) {
    using Limits = std::numeric_limits<Number>;
    return {integral, static_cast<double>(Limits::lowest()), static_cast<double>(Limits::max())};
}

Problem ProblemOf(double number, const NumberRange& range) {
    if (number < range.smallest || number > range.largest) return Problem::OutOfRange;
    if (range.integral && number != std::trunc(number)) return Problem::NotWhole;
    return Problem::None;
}

Reading ReadWholeNumber(std::u16string_view text, const NumberRange& range) {
    const NumberText read = ReadNumber(text);
    if (!read.whole) return {{}, Problem::NoNumber};
    const Problem problem = ProblemOf(read.number, range);
    if (problem == Problem::None && range.integral) {
        return {static_cast<std::int32_t>(read.number), problem};
    }
    return {read.number, problem};
}

bool FitsText(std::u16string_view text, const ado::Field& field) {
    return field.type == ado::DataType::LongVarWChar ||
           text.size() <= static_cast<std::size_t>(field.definedSize);
}

Reading ReadCode(std::u16string_view text, const NumberRange& range, const CellRules& rules) {
    if (rules.codeOf) {
        if (const auto code = rules.codeOf(text)) return {*code, Problem::None};
    }
    const Reading number = ReadWholeNumber(text, range);
    if (number.problem != Problem::None) return {{}, Problem::NotListed};
    const auto& codes = rules.column->codes;
    const bool listed = std::any_of(codes.begin(), codes.end(), [&](const Code& each) {
        return number.value == ado::Value(each.code);
    });
    return listed || rules.asStored ? number : Reading{{}, Problem::NotListed};
}

std::optional<std::uint32_t> Hex(std::u16string_view digits) {
    std::string ascii;
    for (const char16_t c : digits) ascii += c < 0x80 ? static_cast<char>(c) : '?';
    std::uint32_t number = 0;
    const auto [end, error] =
        std::from_chars(ascii.data(), ascii.data() + ascii.size(), number, 16);
    if (error != std::errc() || end != ascii.data() + ascii.size()) return std::nullopt;
    return number;
}

/// A colour as the grid shows it, #RRGGBB, or &H and the stored bits; or the stored number.
std::optional<std::uint32_t> ColourBits(std::u16string_view text) {
    if (text.starts_with(u'#')) {
        const auto rgb = text.size() == 7 ? Hex(text.substr(1)) : std::nullopt;
        if (!rgb) return std::nullopt;
        return (*rgb & 0xFF) << 16 | (*rgb & 0xFF00) | *rgb >> 16;
    }
    if (text.starts_with(u"&H") || text.starts_with(u"&h")) return Hex(text.substr(2));
    const Reading number = ReadWholeNumber(text, Range<std::int32_t>(true));
    if (number.problem != Problem::None) return std::nullopt;
    return static_cast<std::uint32_t>(std::get<std::int32_t>(number.value));
}

Reading ReadColour(std::u16string_view text, bool asStored) {
    const auto bits = ColourBits(text);
    const bool known =
        bits && (*bits <= kLargestColour || (*bits & ~kSystemColours) == kSystemColour);
    if (!bits || !(known || asStored)) return {{}, Problem::NoColour};
    return {static_cast<std::int32_t>(*bits), Problem::None};
}

}  // namespace

NumberText ReadNumber(std::u16string_view text, bool comma) {
    text = Trimmed(text);
    const std::size_t end = EndOfNumber(text, comma);
    if (end == 0) return {};
    return {ToDouble(text.substr(0, end)), true, end == text.size()};
}

std::optional<NumberRange> RangeOf(ado::DataType type) {
    switch (type) {
        case ado::DataType::UnsignedTinyInt:
            return Range<std::uint8_t>(true);
        case ado::DataType::SmallInt:
            return Range<std::int16_t>(true);
        case ado::DataType::Integer:
            return Range<std::int32_t>(true);
        case ado::DataType::Single:
            return Range<float>(false);
        case ado::DataType::Double:
        case ado::DataType::Numeric:
            return Range<double>(false);
        case ado::DataType::Currency: {
            constexpr double kTenThousandths = 10000;
            NumberRange range = Range<std::int64_t>(false);
            range.smallest /= kTenThousandths;
            range.largest /= kTenThousandths;
            return range;
        }
        default:
            return std::nullopt;
    }
}

Reading ReadDialogText(std::u16string_view text, const NumberRange& range) {
    // Fields without decimals have never taken "," for the point.
    const NumberText read = ReadNumber(text, !range.integral);
    const Problem problem = ProblemOf(read.number, range);
    const bool told = read.whole || problem == Problem::OutOfRange;
    return {read.number, told ? problem : Problem::NoNumber};
}

Reading ReadDialogText(std::u16string_view text, const ado::Field& field) {
    if (IsText(field.type)) {
        if (text.empty()) return {std::u16string(1, u'\0'), Problem::None};
        return {std::u16string(text), FitsText(text, field) ? Problem::None : Problem::TooLong};
    }
    const auto range = RangeOf(field.type);
    return range ? ReadDialogText(text, *range) : Reading{{}, Problem::NotEditable};
}

Reading ReadCell(std::u16string_view text, const ado::Field& field, const CellRules& rules) {
    const Kind kind = rules.column != nullptr ? rules.column->kind : Kind::Text;
    const auto range = RangeOf(field.type);
    if (kind == Kind::Listed && range) return ReadCode(Trimmed(text), *range, rules);
    if (IsText(field.type)) {
        if (text.empty()) return {ado::Null(), Problem::None};
        return {std::u16string(text), FitsText(text, field) ? Problem::None : Problem::TooLong};
    }
    if (!range) return {{}, Problem::NotEditable};
    text = Trimmed(text);
    if (text.empty()) return {ado::Null(), Problem::None};
    if (kind == Kind::Colour) return ReadColour(text, rules.asStored);
    return ReadWholeNumber(text, *range);
}

}  // namespace project
