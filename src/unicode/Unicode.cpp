#include "unicode/Unicode.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace unicode {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kMalformed = 0xFFFFFFFF;  // no code point

void AppendCodePoint(char32_t c, std::string& out) {
    const auto tail = [&](int shift) { out += static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        tail(0);
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        tail(6);
        tail(0);
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

bool IsHigh(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}
bool IsLow(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

/// Reads one code point at `at` and moves behind it; a malformed byte gives kMalformed.
char32_t NextCodePoint(std::string_view text, std::size_t& at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at++);
    if (lead < 0x80) return lead;
    const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    if (lead < 0xC2 || lead > 0xF4) return kMalformed;
    char32_t c = lead & (0x3F >> more);
    for (int i = 0; i < more; ++i) {
        if (at >= text.size() || (byte(at) & 0xC0) != 0x80) return kMalformed;
        c = c << 6 | (byte(at++) & 0x3F);
    }
    constexpr std::array<char32_t, 4> kSmallest = {0, 0x80, 0x800, 0x10000};
    const bool valid = c >= kSmallest.at(static_cast<std::size_t>(more)) && c <= 0x10FFFF &&
                       (c < 0xD800 || c > 0xDFFF);
    return valid ? c : kMalformed;
}

}  // namespace

void AppendUtf8(std::u16string_view text, std::string& out) {
    // Most texts begin with ASCII or are nothing else.
    const auto isAscii = [](char16_t unit) { return unit < 0x80; };
    const auto ascii = static_cast<std::size_t>(
        std::find_if_not(text.begin(), text.end(), isAscii) - text.begin());
    const std::size_t before = out.size();
    out.resize(before + ascii);
    std::transform(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(ascii),
                   out.begin() + static_cast<std::ptrdiff_t>(before),
                   [](char16_t unit) { return static_cast<char>(unit); });
    for (std::size_t i = ascii; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (unit < 0x80) {
            out += static_cast<char>(unit);
        } else if (IsHigh(unit) && i + 1 < text.size() && IsLow(text[i + 1])) {
            AppendCodePoint(0x10000U + ((unit & 0x3FFU) << 10) + (text[i + 1] & 0x3FFU), out);
            ++i;
        } else {
            AppendCodePoint(IsHigh(unit) || IsLow(unit) ? kReplacement : unit, out);
        }
    }
}

std::string ToUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    AppendUtf8(text, out);
    return out;
}

std::optional<std::size_t> FindInvalidUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = at;
        if (NextCodePoint(text, at) == kMalformed) return begin;
    }
    return std::nullopt;
}

std::u16string ToUtf16(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        char32_t c = NextCodePoint(text, at);
        if (c == kMalformed) c = kReplacement;
        if (c < 0x10000) {
            out += static_cast<char16_t>(c);
        } else {
            out += static_cast<char16_t>(0xD7C0 + (c >> 10));
            out += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        }
    }
    return out;
}

}  // namespace unicode
