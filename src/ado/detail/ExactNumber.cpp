#include "ado/detail/ExactNumber.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

namespace ado {
namespace {

/// A number as it is written, without the zeros at both ends.
struct Digits {
    bool isNegative = false;
    std::string whole;
    std::string places;
};

Digits Trimmed(bool isNegative, std::string whole, std::string places) {
    whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size()));
    places.erase(places.find_last_not_of('0') + 1);
    const bool isZero = whole.empty() && places.empty();
    return {isNegative && !isZero, std::move(whole), std::move(places)};
}

std::optional<Digits> Parse(std::string text) {
    text.erase(0, std::min(text.find_first_not_of(" \t"), text.size()));
    text.erase(text.find_last_not_of(" \t") + 1);
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) text.erase(0, 1);
    const std::size_t point = std::min(text.find('.'), text.size());
    std::string whole = text.substr(0, point);
    std::string places = text.substr(std::min(point + 1, text.size()));
    const auto isDigits = [](const std::string& part) {
        return part.find_first_not_of("0123456789") == std::string::npos;
    };
    if ((whole.empty() && places.empty()) || !isDigits(whole) || !isDigits(places)) {
        return std::nullopt;
    }
    return Trimmed(isNegative, std::move(whole), std::move(places));
}

Digits DigitsOf(const Decimal& value) {
    std::string digits;  // the last one in front
    auto rest = value.magnitude;
    while (std::any_of(rest.begin(), rest.end(), [](std::byte b) { return b != std::byte{0}; })) {
        unsigned remainder = 0;
        for (std::byte& b : rest) {
            const unsigned part = remainder << 8 | static_cast<unsigned>(b);
            b = static_cast<std::byte>(part / 10);
            remainder = part % 10;
        }
        digits += static_cast<char>('0' + remainder);
    }
    digits.resize(std::max<std::size_t>(digits.size(), value.scale), '0');
    std::reverse(digits.begin(), digits.end());
    const std::size_t point = digits.size() - value.scale;
    return Trimmed(value.negative, digits.substr(0, point), digits.substr(point));
}

std::optional<Digits> DigitsOf(const Value& value) {
    if (const auto* decimal = std::get_if<Decimal>(&value)) return DigitsOf(*decimal);
    if (const auto* number = std::get_if<double>(&value)) {
        std::array<char, 64> text{};
        char* const end = text.data() + text.size();
        const auto done = std::to_chars(text.data(), end, *number, std::chars_format::fixed);
        if (done.ec != std::errc()) return std::nullopt;
        return Parse({text.data(), done.ptr});
    }
    std::string text;
    for (const char16_t c : ToText(value)) text += c < 0x80 ? static_cast<char>(c) : '?';
    return Parse(std::move(text));
}

int OrderOfSizes(const Digits& a, const Digits& b) {
    const auto sign = [](int order) { return order < 0 ? -1 : order > 0 ? 1 : 0; };
    if (a.whole.size() != b.whole.size()) return a.whole.size() < b.whole.size() ? -1 : 1;
    const int whole = a.whole.compare(b.whole);
    return sign(whole != 0 ? whole : a.places.compare(b.places));
}

}  // namespace

std::optional<int> OrderOfDigits(const Value& a, const Value& b) {
    const std::optional<Digits> left = DigitsOf(a);
    const std::optional<Digits> right = DigitsOf(b);
    if (!left || !right) return std::nullopt;
    if (left->isNegative != right->isNegative) return left->isNegative ? -1 : 1;
    return left->isNegative ? OrderOfSizes(*right, *left) : OrderOfSizes(*left, *right);
}

}  // namespace ado
