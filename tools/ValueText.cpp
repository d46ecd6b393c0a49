#include "tools/ValueText.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <string_view>

namespace tools {
namespace {

template <typename T>
void AppendChars(T value, std::string& out) {
    std::array<char, 40> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    out.append(digits.data(), end);
}

void AppendPadded(unsigned value, std::size_t width, std::string& out) {
    const std::string digits = std::to_string(value);
    if (digits.size() < width) out.append(width - digits.size(), '0');
    out += digits;
}

/// `digits` is an unsigned whole number; puts a point `scale` digits from its end and drops zeros
/// behind it.
void AppendScaled(bool negative, std::string digits, std::size_t scale, std::string& out) {
    if (digits.size() <= scale) digits.insert(0, scale + 1 - digits.size(), '0');
    std::string fraction = digits.substr(digits.size() - scale);
    digits.resize(digits.size() - scale);
    while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
    const bool isZero = fraction.empty() && digits == "0";
    if (negative && !isZero) out += '-';
    out += digits;
    if (!fraction.empty()) {
        out += '.';
        out += fraction;
    }
}

/// The digits of a 128-bit number, most significant byte first.
std::string Digits(std::array<std::byte, 16> magnitude) {
    std::string digits;
    bool isZero = false;
    while (!isZero) {
        unsigned rest = 0;
        isZero = true;
        for (std::byte& b : magnitude) {
            const unsigned part = rest << 8 | static_cast<unsigned>(b);
            b = static_cast<std::byte>(part / 10);
            rest = part % 10;
            isZero = isZero && b == std::byte{0};
        }
        digits += static_cast<char>('0' + rest);
    }
    std::reverse(digits.begin(), digits.end());
    return digits;
}

}  // namespace

void AppendNumber(double value, std::string& out) {
    AppendChars(value, out);
}
void AppendNumber(float value, std::string& out) {
    AppendChars(value, out);
}
void AppendNumber(std::int32_t value, std::string& out) {
    AppendChars(value, out);
}

void AppendNumber(const jet::Currency& value, std::string& out) {
    const bool negative = value.tenThousandths < 0;
    const auto bits = static_cast<std::uint64_t>(value.tenThousandths);
    AppendScaled(negative, std::to_string(negative ? 0 - bits : bits), 4, out);
}

void AppendNumber(const jet::Decimal& value, std::string& out) {
    AppendScaled(value.negative, Digits(value.magnitude), value.scale, out);
}

void AppendDate(const jet::Date& value, std::string& out) {
    using namespace std::chrono;
    constexpr double kFirstDay = -693593;      // 0001-01-01
    constexpr double kLastDay = 2958465;       // 9999-12-31
    constexpr std::int64_t kDay = 86'400'000;  // ms
    // Negated, so that a value that is no number is caught too.
    if (!(value.days >= kFirstDay && value.days < kLastDay + 1))
        return AppendNumber(value.days, out);
    double day = 0;
    const double fraction = std::abs(std::modf(value.days, &day));
    auto time = static_cast<std::int64_t>(std::llround(fraction * static_cast<double>(kDay)));
    sys_days date = sys_days{year{1899} / December / 30} + days{static_cast<int>(day)};
    if (time == kDay) {  // rounded up to midnight
        time = 0;
        date += days{1};
    }
    const year_month_day ymd{date};
    const auto part = [&](std::int64_t unit, std::int64_t count) {
        return static_cast<unsigned>(time / unit % count);
    };
    AppendPadded(static_cast<unsigned>(static_cast<int>(ymd.year())), 4, out);
    out += '-';
    AppendPadded(static_cast<unsigned>(ymd.month()), 2, out);
    out += '-';
    AppendPadded(static_cast<unsigned>(ymd.day()), 2, out);
    out += 'T';
    AppendPadded(part(3'600'000, 24), 2, out);
    out += ':';
    AppendPadded(part(60'000, 60), 2, out);
    out += ':';
    AppendPadded(part(1'000, 60), 2, out);
    if (part(1, 1'000) != 0) {
        out += '.';
        AppendPadded(part(1, 1'000), 3, out);
    }
}

void AppendGuid(const jet::Guid& value, std::string& out) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    out += '{';
    for (std::size_t i = 0; i < value.bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) out += '-';
        const auto byte = static_cast<unsigned>(value.bytes[i]);
        out += kDigits[byte >> 4];
        out += kDigits[byte & 15];
    }
    out += '}';
}

void AppendHex(jet::Bytes bytes, std::string& out) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    for (const std::byte b : bytes) {
        out += kDigits[static_cast<unsigned>(b) >> 4];
        out += kDigits[static_cast<unsigned>(b) & 15];
    }
}

}  // namespace tools
