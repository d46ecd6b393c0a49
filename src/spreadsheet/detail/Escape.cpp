#include "spreadsheet/detail/Escape.h"

#include <charconv>
#include <cstdint>
#include <optional>

namespace spreadsheet {
namespace {

constexpr std::size_t kLength = 7;  // of _xHHHH_

/// The unit that is escaped at the beginning of a text.
std::optional<std::uint32_t> UnitAt(std::string_view text) {
    if (text.size() < kLength || !text.starts_with("_x") || text[kLength - 1] != '_') return {};
    std::uint32_t unit = 0;
    const char* begin = text.data() + 2;
    const auto read = std::from_chars(begin, begin + 4, unit, 16);
    if (read.ec != std::errc() || read.ptr != begin + 4) return {};
    return unit;
}

void AppendCharacter(std::uint32_t c, std::string& out) {
    const auto append = [&](std::uint32_t byte) { out += static_cast<char>(byte); };
    const auto follow = [&](unsigned shift) { append(0x80U | ((c >> shift) & 0x3FU)); };
    if (c < 0x80) return append(c);
    if (c < 0x800) {
        append(0xC0U | (c >> 6U));
    } else {
        if (c < 0x10000) {
            append(0xE0U | (c >> 12U));
        } else {
            append(0xF0U | (c >> 18U));
            follow(12);
        }
        follow(6);
    }
    follow(0);
}

bool IsHigh(std::uint32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLow(std::uint32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

}  // namespace

std::string Escaped(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view rest = text.substr(i);
        if (rest.front() == '\0') {
            out += "_x0000_";
        } else if (rest.starts_with("\xEF\xBF\xBE") || rest.starts_with("\xEF\xBF\xBF")) {
            out += rest[2] == '\xBE' ? "_xFFFE_" : "_xFFFF_";
            i += 2;
        } else {
            if (rest.front() == '_' && UnitAt(rest)) out += "_x005F";
            out += rest.front();
        }
    }
    return out;
}

void Unescape(std::string& text) {
    std::size_t at = text.find("_x");
    if (at == std::string::npos) return;
    std::string out;
    const std::string_view from = text;
    std::size_t begin = 0;
    while (at != std::string_view::npos) {
        auto unit = UnitAt(from.substr(at));
        if (!unit) {
            at = from.find("_x", at + 1);
            continue;
        }
        out += from.substr(begin, at - begin);
        begin = at + kLength;
        const auto low = IsHigh(*unit) ? UnitAt(from.substr(begin)) : std::nullopt;
        if (low && IsLow(*low)) {
            unit = 0x10000 + ((*unit - 0xD800) << 10U) + (*low - 0xDC00);
            begin += kLength;
        } else if (IsHigh(*unit) || IsLow(*unit)) {
            unit = 0xFFFD;  // half of a character
        }
        AppendCharacter(*unit, out);
        at = from.find("_x", begin);
    }
    out += from.substr(begin);
    text = std::move(out);
}

}  // namespace spreadsheet
