#include "project/Counting.h"

#include <algorithm>

namespace project {
namespace {

constexpr std::size_t kMostDigits = 18;  // of an int64_t, with room for a step

bool IsDigit(char16_t letter) {
    return letter >= u'0' && letter <= u'9';
}

struct Parts {
    std::u16string_view before;
    std::u16string_view digits;
    std::u16string_view after;
    std::int64_t number = 0;
};

std::optional<Parts> Split(std::u16string_view text) {
    std::size_t end = text.size();
    while (end > 0 && !IsDigit(text[end - 1])) --end;
    std::size_t begin = end;
    while (begin > 0 && IsDigit(text[begin - 1])) --begin;
    Parts parts{text.substr(0, begin), text.substr(begin, end - begin), text.substr(end)};
    if (parts.digits.empty() || parts.digits.size() > kMostDigits) return std::nullopt;
    for (const char16_t digit : parts.digits) parts.number = parts.number * 10 + (digit - u'0');
    return parts;
}

}  // namespace

std::optional<std::u16string> CountOn(std::u16string_view text, std::int64_t step) {
    const auto parts = Split(text);
    if (!parts || parts->number + step < 0) return std::nullopt;
    std::string digits = std::to_string(parts->number + step);
    digits.insert(0, parts->digits.size() - std::min(parts->digits.size(), digits.size()), '0');
    std::u16string counted(parts->before);
    counted.append(digits.begin(), digits.end());
    return counted.append(parts->after);
}

std::optional<std::int64_t> StepBetween(std::u16string_view from, std::u16string_view to) {
    const auto first = Split(from);
    const auto second = Split(to);
    if (!first || !second || first->before != second->before || first->after != second->after ||
        first->number == second->number) {
        return std::nullopt;
    }
    return second->number - first->number;
}

}  // namespace project
