#include "csv/Encoding.h"

#include <algorithm>
#include <array>

#include "unicode/Unicode.h"

namespace csv {
namespace {

// Windows-1252 from 0x80 to 0x9F; 0: no character. Every other byte is the character of the same
// number.
constexpr std::array<char16_t, 32> kMoved = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char16_t FromWindows1252(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 && byte < 0xA0 ? kMoved.at(byte - 0x80U) : byte;
}

bool IsAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

}  // namespace

std::optional<Encoding> EncodingOf(std::string_view name) {
    std::string lower(name);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    if (lower == "utf-8") return Encoding::Utf8;
    if (lower == "windows-1252") return Encoding::Windows1252;
    return std::nullopt;
}

std::optional<std::size_t> FirstBadByte(std::string_view text, Encoding encoding) {
    if (encoding == Encoding::Utf8) return unicode::FindInvalidUtf8(text);
    const auto bad = std::find_if(text.begin(), text.end(),
                                  [](char c) { return !IsAscii(c) && FromWindows1252(c) == 0; });
    if (bad == text.end()) return std::nullopt;
    return static_cast<std::size_t>(bad - text.begin());
}

std::size_t CountCharacters(std::string_view text, Encoding encoding) {
    if (encoding == Encoding::Windows1252) return text.size();
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

bool FromUtf8(std::string& text, Encoding encoding) {
    if (encoding == Encoding::Utf8 || std::all_of(text.begin(), text.end(), IsAscii)) return true;
    const std::u16string wide = unicode::ToUtf16(text);
    text.clear();
    for (const char16_t unit : wide) {
        const auto moved = std::find(kMoved.begin(), kMoved.end(), unit);
        const bool isSame = unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF);
        if (!isSame && moved == kMoved.end()) return false;
        text += static_cast<char>(isSame ? unit : 0x80 + (moved - kMoved.begin()));
    }
    return true;
}

void ToUtf8(std::string& text, Encoding encoding) {
    if (encoding == Encoding::Utf8 || std::all_of(text.begin(), text.end(), IsAscii)) return;
    std::u16string wide;
    wide.reserve(text.size());
    for (const char c : text) wide += FromWindows1252(c);
    text = unicode::ToUtf8(wide);
}

}  // namespace csv
