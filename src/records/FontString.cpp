#include "records/FontString.h"

#include "platform/Locale.h"

namespace {

constexpr qsizetype kNameWidth = 32;
constexpr qsizetype kNumberWidth = 4;

/// The number in the field that begins at a position, counted from 1.
double NumberAt(QStringView text, qsizetype position) {
    if (position > text.size()) return 0;
    return platform::LeadingNumber(text.mid(position - 1, kNumberWidth));
}

}  // namespace

FontString ParseFontString(QStringView text) {
    QStringView name = text.left(kNameWidth);
    while (name.endsWith(u' ')) name.chop(1);

    FontString font;
    font.name = name.toString();
    font.size = NumberAt(text, 32);
    font.bold = NumberAt(text, 36) != 0;
    font.charset = NumberAt(text, 40);
    font.italic = NumberAt(text, 44) != 0;
    font.strikethrough = NumberAt(text, 48) != 0;
    font.underline = NumberAt(text, 52) != 0;
    font.weight = NumberAt(text, 56);
    return font;
}
