#pragma once

#include <QColor>
#include <QPalette>

/// How well colours can be told apart, for those who see little too.
namespace colours {

constexpr double kForText = 4.5;   // least contrast of letters to their ground
constexpr double kForMarks = 3.0;  // and of lines, frames and the ring of the keyboard

/// From 1, the same, to 21, black on white; opaque colours.
[[nodiscard]] double Contrast(const QColor& one, const QColor& other);

/// The colour, or where it has too little contrast to `ground`, the next lighter or darker shade of
/// it that has enough.
[[nodiscard]] QColor VisibleOn(const QColor& colour, const QColor& ground, double least);

/// A colour between two: 0 is `below`, 1 is `above`.
[[nodiscard]] QColor Blend(const QColor& below, const QColor& above, double part);

/// The palette with shades in which every text can be read and every mark be seen.
[[nodiscard]] QPalette Readable(QPalette palette);

}  // namespace colours
