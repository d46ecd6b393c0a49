#include "ado/Value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "ado/AdoError.h"
#include "ado/detail/Convert.h"
#include "jet/TextKey.h"
#include "jet/Unicode.h"

namespace ado {
namespace {

template <typename T>
std::u16string Shortest(T number) {
    std::array<char, 40> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), end};
}

constexpr std::uint64_t kUnit = 10'000;  // parts of an amount
constexpr std::size_t kPlaces = 4;

std::u16string AmountText(const Currency& value) {
    const bool isNegative = value.tenThousandths < 0;
    const auto bits = static_cast<std::uint64_t>(value.tenThousandths);
    const std::uint64_t parts = isNegative ? 0 - bits : bits;
    std::string text = (isNegative ? "-" : "") + std::to_string(parts / kUnit);
    if (parts % kUnit != 0) {
        const std::string places = std::to_string(kUnit + parts % kUnit).substr(1);
        text += "." + places.substr(0, places.find_last_not_of('0') + 1);
    }
    return {text.begin(), text.end()};
}

std::u16string_view Trim(std::u16string_view text) {
    const auto blank = [](char16_t c) { return c == u' ' || c == u'\t'; };
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    return text;
}

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

struct Texter {
    std::u16string operator()(const Null&) const { return {}; }
    std::u16string operator()(bool value) const { return value ? u"True" : u"False"; }
    std::u16string operator()(std::int32_t value) const { return Shortest(value); }
    std::u16string operator()(float value) const { return Shortest(value); }
    std::u16string operator()(double value) const { return Shortest(value); }
    std::u16string operator()(const std::u16string& value) const { return value; }
    std::u16string operator()(const Currency& value) const { return AmountText(value); }
    template <typename Other>
    std::u16string operator()(const Other& value) const {
        const std::optional<double> number = AsNumber(Value(value));
        return number ? Shortest(*number) : std::u16string();
    }
};

}  // namespace

std::u16string FoldName(std::u16string_view name) {
    std::u16string folded(name);
    for (char16_t& unit : folded) unit = jet::FoldUnit(unit);
    return folded;
}

std::optional<double> ToNumber(std::u16string_view text) {
    text = Trim(text);
    if (!text.empty() && text.front() == u'+') text.remove_prefix(1);
    std::string digits;
    for (const char16_t c : text) digits += c < 0x80 ? static_cast<char>(c) : '?';
    double number = 0;
    const char* end = digits.data() + digits.size();
    const auto parsed = std::from_chars(digits.data(), end, number);
    // "nan" and "inf" are texts, not numbers.
    if (parsed.ec != std::errc() || parsed.ptr != end || !std::isfinite(number)) {
        return std::nullopt;
    }
    return number;
}

std::optional<Currency> ToCurrency(std::u16string_view text) {
    text = Trim(text);
    const bool isNegative = !text.empty() && text.front() == u'-';
    if (isNegative || (!text.empty() && text.front() == u'+')) text.remove_prefix(1);
    std::uint64_t parts = 0;
    bool fits = true;
    const auto append = [&](unsigned digit) {
        fits = fits && !__builtin_mul_overflow(parts, std::uint64_t{10}, &parts) &&
               !__builtin_add_overflow(parts, std::uint64_t{digit}, &parts);
    };
    const std::size_t point = std::min(text.find(u'.'), text.size());
    const std::u16string_view whole = text.substr(0, point);
    std::u16string_view places = text.substr(std::min(point + 1, text.size()));
    if (whole.empty() && places.empty()) return std::nullopt;
    if (!std::all_of(whole.begin(), whole.end(), IsDigit)) return std::nullopt;
    if (!std::all_of(places.begin(), places.end(), IsDigit)) return std::nullopt;
    for (const char16_t c : whole) append(static_cast<unsigned>(c - u'0'));
    for (std::size_t i = 0; i < kPlaces; ++i) {
        append(i < places.size() ? static_cast<unsigned>(places[i] - u'0') : 0U);
    }
    places.remove_prefix(std::min(kPlaces, places.size()));
    const std::u16string_view half = u"5";
    const bool isHalf =
        !places.empty() && places.substr(0, places.find_last_not_of(u'0') + 1) == half;
    const bool roundsUp = isHalf ? parts % 2 == 1 : !places.empty() && places.front() >= u'5';
    if (roundsUp) fits = fits && !__builtin_add_overflow(parts, std::uint64_t{1}, &parts);
    const std::uint64_t most = std::uint64_t{INT64_MAX} + (isNegative ? 1 : 0);
    if (!fits || parts > most) return std::nullopt;
    return Currency{static_cast<std::int64_t>(isNegative ? 0 - parts : parts)};
}

std::u16string ToText(const Value& value) {
    return std::visit(Texter{}, value);
}

std::int32_t ToLong(const Value& value, std::int32_t ifNull) {
    if (IsNull(value)) return ifNull;
    const std::optional<double> number = AsNumber(value);
    const double rounded = number ? std::nearbyint(*number) : 0;
    // Negated, so that what is no number is refused too.
    if (!number || !(rounded >= -2147483648.0 && rounded <= 2147483647.0)) {
        throw AdoError(ErrorNumber::kTypeMismatch,
                       "The value \"" + jet::ToUtf8(ToText(value)) + "\" is no whole number.",
                       {reasons::Cause::WrongType});
    }
    return static_cast<std::int32_t>(rounded);
}

}  // namespace ado
