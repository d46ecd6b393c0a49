#include "controls/FontProperties.h"

#include <algorithm>

FontProperties::FontProperties(const QFont& font, QObject* parent) : QObject(parent), font_(font) {}

void FontProperties::SetFont(const QFont& font) {
    if (font == font_) return;
    font_ = font;
    emit Changed(font_);
}

void FontProperties::SetName(const QString& name) {
    if (name.isEmpty()) return;
    QFont font = font_;
    font.setFamily(name);
    SetFont(font);
}

void FontProperties::SetSize(double points) {
    if (!(points > 0 && points <= kLargestSize)) return;
    QFont font = font_;
    font.setPointSizeF(points);
    SetFont(font);
}

void FontProperties::SetBold(bool bold) {
    QFont font = font_;
    font.setBold(bold);
    SetFont(font);
}

void FontProperties::SetItalic(bool italic) {
    QFont font = font_;
    font.setItalic(italic);
    SetFont(font);
}

void FontProperties::SetUnderline(bool underline) {
    QFont font = font_;
    font.setUnderline(underline);
    SetFont(font);
}

void FontProperties::SetStrikethrough(bool strikethrough) {
    QFont font = font_;
    font.setStrikeOut(strikethrough);
    SetFont(font);
}

void FontProperties::SetWeight(int weight) {
    QFont font = font_;
    font.setWeight(static_cast<QFont::Weight>(std::clamp(weight, 1, 1000)));
    SetFont(font);
}
