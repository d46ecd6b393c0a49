// Reads a font with any text. Its fields must be read inside the text, and each number be one.

#include <cmath>
#include <cstdlib>
#include <QString>

#include "records/FontString.h"

// The fuzzer's own name for its entry point.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto length = static_cast<qsizetype>(size);
    const QString texts[] = {
        QString::fromLatin1(reinterpret_cast<const char*>(data), length),
        QString(reinterpret_cast<const QChar*>(data), length / 2),  // any UTF-16, even half pairs
    };
    for (const QString& text : texts) {
        const FontString font = ParseFontString(text);
        if (font.name.size() > 32) std::abort();
        for (const double number : {font.size, font.charset, font.weight}) {
            if (!std::isfinite(number)) std::abort();
        }
    }
    return 0;
}
