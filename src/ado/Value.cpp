#include "ado/Value.h"

#include <array>
#include <charconv>
#include <cmath>

#include "ado/AdoError.h"
#include "ado/detail/Convert.h"
#include "jet/Unicode.h"

namespace ado {
namespace {

template <typename T>
std::u16string Shortest(T number) {
    std::array<char, 40> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), end};
}

struct Texter {
    std::u16string operator()(const Null&) const { return {}; }
    std::u16string operator()(bool value) const { return value ? u"True" : u"False"; }
    std::u16string operator()(std::int32_t value) const { return Shortest(value); }
    std::u16string operator()(float value) const { return Shortest(value); }
    std::u16string operator()(double value) const { return Shortest(value); }
    std::u16string operator()(const std::u16string& value) const { return value; }
    template <typename Other>
    std::u16string operator()(const Other& value) const {
        const std::optional<double> number = AsNumber(Value(value));
        return number ? Shortest(*number) : std::u16string();
    }
};

}  // namespace

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
                       "The value \"" + jet::ToUtf8(ToText(value)) + "\" is no whole number.");
    }
    return static_cast<std::int32_t>(rounded);
}

}  // namespace ado
