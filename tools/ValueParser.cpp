#include "tools/ValueParser.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>

#include "ado/AdoError.h"
#include "jet/Unicode.h"

namespace tools {
namespace {

[[noreturn]] void Fail(const ado::Field& field, std::string_view text, const char* what) {
    throw ado::AdoError(
        ado::ErrorNumber::kWrongType,
        "Column \"" + field.name + "\": \"" + std::string(text) + "\" is no " + what + ".");
}

std::optional<unsigned> HexDigit(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
    return std::nullopt;
}

std::optional<ado::Binary> ParseHex(std::string_view text) {
    if (text.size() % 2 != 0) return std::nullopt;
    ado::Binary bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const auto high = HexDigit(text[i]);
        const auto low = HexDigit(text[i + 1]);
        if (!high || !low) return std::nullopt;
        bytes.push_back(static_cast<std::byte>(*high << 4 | *low));
    }
    return bytes;
}

/// {8-4-4-4-12 hex digits}
std::optional<ado::Guid> ParseGuid(std::string_view text) {
    std::string digits;
    for (const char c : text) {
        if (c != '{' && c != '}' && c != '-') digits += c;
    }
    const auto bytes = ParseHex(digits);
    if (!bytes || bytes->size() != 16) return std::nullopt;
    ado::Guid guid;
    std::copy(bytes->begin(), bytes->end(), guid.bytes.begin());
    return guid;
}

/// 2026-11-21, with an optional time behind a T or a blank.
std::optional<ado::Date> ParseDate(const std::string& text) {
    using namespace std::chrono;
    int y = 0;
    unsigned m = 0;
    unsigned d = 0;
    int hour = 0;
    int minute = 0;
    double second = 0;
    int end = 0;
    const auto size = static_cast<int>(text.size());
    const bool hasDate = std::sscanf(text.c_str(), "%4d-%2u-%2u%n", &y, &m, &d, &end) == 3;
    if (hasDate && end < size) {
        const std::string rest = text.substr(static_cast<std::size_t>(end));
        int restEnd = 0;
        if (std::sscanf(rest.c_str(), "%*[ T]%2d:%2d:%lf%n", &hour, &minute, &second, &restEnd) !=
                3 ||
            restEnd != static_cast<int>(rest.size())) {
            return std::nullopt;
        }
    }
    const year_month_day date{year{y}, month{m}, day{d}};
    const bool timeOk =
        hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
    if (!hasDate || !date.ok() || !timeOk) return std::nullopt;
    const sys_days zero{year{1899} / December / 30};
    const auto days = static_cast<double>((sys_days{date} - zero).count());
    const double time = (hour * 3600 + minute * 60 + second) / 86400;
    // In front of day 0 the time counts forward all the same.
    return ado::Date{days < 0 ? days - time : days + time};
}

std::optional<double> ParseNumber(std::string_view text) {
    double number = 0;
    const char* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    if (parsed.ec == std::errc() && parsed.ptr == end && std::isfinite(number)) return number;
    return ado::ToNumber(jet::ToUtf16(text));
}

/// A number that has no places behind the point, though it may be written with them.
std::optional<double> ParseWhole(std::string_view text) {
    const auto number = ParseNumber(text);
    return number && std::trunc(*number) == *number ? number : std::nullopt;
}

/// Digits that the column cannot hold would be lost.
bool IsMoney(std::string_view text) {
    constexpr std::size_t kMostPlaces = 4;
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos) return true;
    const std::size_t last = text.find_last_not_of('0');
    return last <= point + kMostPlaces;
}

/// What stands for a date outside the years that are written as such.
std::optional<ado::Date> ParseDays(std::string_view text) {
    const auto number = ParseNumber(text);
    constexpr double kFirstDay = -693593;    // 0001-01-01
    constexpr double kBehindLast = 2958466;  // 10000-01-01
    if (!number || (*number >= kFirstDay && *number < kBehindLast)) return std::nullopt;
    return ado::Date{*number};
}

}  // namespace

ado::Value ParseValue(const ado::Field& field, std::string_view text) {
    switch (field.type) {
        case ado::DataType::UnsignedTinyInt:
        case ado::DataType::SmallInt:
        case ado::DataType::Integer: {
            std::int32_t plain = 0;
            const char* end = text.data() + text.size();
            const auto parsed = std::from_chars(text.data(), end, plain);
            if (parsed.ec == std::errc() && parsed.ptr == end && !text.empty()) return plain;
            if (const auto number = ParseWhole(text)) return *number;
            Fail(field, text, "whole number");
        }
        case ado::DataType::Single:
        case ado::DataType::Double:
            if (const auto number = ParseNumber(text)) return *number;
            Fail(field, text, "number");
        case ado::DataType::Currency:
            if (ParseNumber(text) && IsMoney(text)) return jet::ToUtf16(text);
            Fail(field, text, "amount of money with at most four decimal places");
        case ado::DataType::Boolean:
            if (text == "true") return true;
            if (text == "false") return false;
            Fail(field, text, "true or false");
        case ado::DataType::Date:
            if (const auto date = ParseDate(std::string(text))) return *date;
            if (const auto date = ParseDays(text)) return *date;
            Fail(field, text, "date such as 2026-11-21T10:20:30");
        case ado::DataType::VarBinary:
        case ado::DataType::LongVarBinary:
            if (auto bytes = ParseHex(text)) return std::move(*bytes);
            Fail(field, text, "row of hex digits");
        case ado::DataType::Guid:
            if (const auto guid = ParseGuid(text)) return *guid;
            Fail(field, text, "GUID");
        default:
            // A decimal is read by the assignment itself.
            return jet::ToUtf16(text);
    }
}

}  // namespace tools
