#include "tools/ValueText.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <string_view>

namespace tools {
namespace {

/// Whole numbers without an exponent as long as every digit counts.
template <typename T>
void AppendReal(T value, TextBuffer& out) {
    constexpr T kExact = T{1} / std::numeric_limits<T>::epsilon();
    const bool isWhole = value > -kExact && value < kExact && std::trunc(value) == value;
    if (isWhole && (value != 0 || !std::signbit(value))) {
        out.AppendNumber(static_cast<std::int64_t>(value));
    } else {
        out.AppendNumber(value);
    }
}

void AppendPadded(unsigned value, std::size_t width, TextBuffer& out) {
    const std::string digits = std::to_string(value);
    for (std::size_t i = digits.size(); i < width; ++i) out.Append('0');
    out.Append(digits);
}

/// `digits` is an unsigned whole number; puts a point `scale` digits from its end and drops zeros
/// behind it.
void AppendScaled(bool negative, std::string digits, std::size_t scale, TextBuffer& out) {
    if (digits.size() <= scale) digits.insert(0, scale + 1 - digits.size(), '0');
    std::string fraction = digits.substr(digits.size() - scale);
    digits.erase(digits.size() - scale);
    while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
    const bool isZero = fraction.empty() && digits == "0";
    if (negative && !isZero) out.Append('-');
    out.Append(digits);
    if (!fraction.empty()) {
        out.Append('.');
        out.Append(fraction);
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

void AppendNumber(double value, TextBuffer& out) {
    AppendReal(value, out);
}
void AppendNumber(float value, TextBuffer& out) {
    AppendReal(value, out);
}
void AppendNumber(std::int32_t value, TextBuffer& out) {
    out.AppendNumber(value);
}

void AppendNumber(const jet::Currency& value, TextBuffer& out) {
    const bool negative = value.tenThousandths < 0;
    const auto bits = static_cast<std::uint64_t>(value.tenThousandths);
    AppendScaled(negative, std::to_string(negative ? 0 - bits : bits), 4, out);
}

void AppendNumber(const jet::Decimal& value, TextBuffer& out) {
    AppendScaled(value.negative, Digits(value.magnitude), value.scale, out);
}

void AppendDate(const jet::Date& value, TextBuffer& out) {
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
    out.Append('-');
    AppendPadded(static_cast<unsigned>(ymd.month()), 2, out);
    out.Append('-');
    AppendPadded(static_cast<unsigned>(ymd.day()), 2, out);
    out.Append('T');
    AppendPadded(part(3'600'000, 24), 2, out);
    out.Append(':');
    AppendPadded(part(60'000, 60), 2, out);
    out.Append(':');
    AppendPadded(part(1'000, 60), 2, out);
    if (part(1, 1'000) != 0) {
        out.Append('.');
        AppendPadded(part(1, 1'000), 3, out);
    }
}

void AppendGuid(const jet::Guid& value, TextBuffer& out) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    out.Append('{');
    for (std::size_t i = 0; i < value.bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) out.Append('-');
        const auto byte = static_cast<unsigned>(value.bytes[i]);
        out.Append(kDigits[byte >> 4]);
        out.Append(kDigits[byte & 15]);
    }
    out.Append('}');
}

void AppendHex(jet::Bytes bytes, TextBuffer& out) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    for (const std::byte b : bytes) {
        out.Append(kDigits[static_cast<unsigned>(b) >> 4]);
        out.Append(kDigits[static_cast<unsigned>(b) & 15]);
    }
}

}  // namespace tools
