#include "project/FieldText.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "project/Colour.h"

namespace project {
namespace {

template <typename Number>
NumberRange Range(bool integral) {
    using Limits = std::numeric_limits<Number>;
    return {integral, static_cast<double>(Limits::lowest()), static_cast<double>(Limits::max())};
}

Problem ProblemOf(const NumberText& read, const NumberRange& range) {
    const double number = read.number;
    if (read.tooLarge || number < range.smallest || number > range.largest)
        return Problem::OutOfRange;
    if (range.integral && number != std::trunc(number)) return Problem::NotWhole;
    return Problem::None;
}

Reading ReadWholeNumber(std::u16string_view text, const NumberRange& range) {
    const NumberText read = ReadNumber(text);
    if (!read.whole) return {{}, Problem::NoNumber};
    const Problem problem = ProblemOf(read, range);
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
    const bool taken = rules.asStored || IsSound(*rules.column, number.value);
    return taken ? number : Reading{{}, Problem::NotListed};
}

Reading ReadColourCell(std::u16string_view text, const CellRules& rules) {
    const auto colour = ReadColour(text);
    if (!colour || !(rules.asStored || IsSound(*rules.column, *colour))) {
        return {{}, Problem::NoColour};
    }
    return {*colour, Problem::None};
}

}  // namespace

std::u16string ValueText(const ado::Value& value, char16_t point) {
    if (const auto* number = std::get_if<double>(&value)) return FormatNumber(*number, point);
    if (const auto* number = std::get_if<float>(&value)) return FormatNumber(*number, point);
    std::u16string text = ado::ToText(value);
    if (std::holds_alternative<std::u16string>(value)) {
        return text == kEmptyText ? std::u16string() : text;
    }
    const bool isNumber =
        std::holds_alternative<ado::Currency>(value) || std::holds_alternative<ado::Decimal>(value);
    if (isNumber) std::replace(text.begin(), text.end(), u'.', point);
    return text;
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
    const Problem problem = ProblemOf(read, range);
    const bool told = read.whole || problem == Problem::OutOfRange;
    return {read.number, told ? problem : Problem::NoNumber};
}

Reading ReadDialogText(std::u16string_view text, const ado::Field& field) {
    if (IsText(field.type)) {
        if (text.empty()) return {std::u16string(kEmptyText), Problem::None};
        return {std::u16string(text), FitsText(text, field) ? Problem::None : Problem::TooLong};
    }
    const auto range = RangeOf(field.type);
    return range ? ReadDialogText(text, *range) : Reading{{}, Problem::NotEditable};
}

Reading ReadCell(std::u16string_view text, const ado::Field& field, const CellRules& rules) {
    const Kind kind = rules.column != nullptr ? rules.column->kind : Kind::Text;
    const auto range = RangeOf(field.type);
    if (kind == Kind::Listed && range) return ReadCode(WithoutBlanks(text), *range, rules);
    if (IsText(field.type)) {
        if (text.empty()) return {ado::Null(), Problem::None};
        return {std::u16string(text), FitsText(text, field) ? Problem::None : Problem::TooLong};
    }
    if (!range) return {{}, Problem::NotEditable};
    text = WithoutBlanks(text);
    if (text.empty()) return {ado::Null(), Problem::None};
    if (kind == Kind::Colour) return ReadColourCell(text, rules);
    return ReadWholeNumber(text, *range);
}

}  // namespace project
