#include "platform/Windows1252.h"

#include <algorithm>
#include <array>

namespace platform {
namespace {

// Bytes 0x80 to 0x9F; every other byte is the character of the same number.
constexpr std::array<char16_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

QString FromWindows1252(QByteArrayView bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* to = text.data();
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        const bool moved = byte >= 0x80 && byte < 0xA0;
        *to++ = QChar(moved ? kUpperControls[byte - 0x80U] : static_cast<char16_t>(byte));
    }
    return text;
}

std::optional<QByteArray> ToWindows1252(QStringView text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar c : text) {
        const char16_t code = c.unicode();
        if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) {
            bytes += static_cast<char>(code);
            continue;
        }
        const auto* moved = std::find(kUpperControls.begin(), kUpperControls.end(), code);
        if (moved == kUpperControls.end()) return std::nullopt;
        bytes += static_cast<char>(0x80 + (moved - kUpperControls.begin()));
    }
    return bytes;
}

}  // namespace platform
