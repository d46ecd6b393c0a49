#include "colours/Contrast.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace colours {
namespace {

constexpr double kStep = 0.05;  // from a colour to black or white

double Luminance(const QColor& colour) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

/// As it is seen on its ground.
QColor Opaque(const QColor& colour, const QColor& ground) {
    QColor opaque = colour;
    opaque.setAlpha(255);
    return Blend(ground, opaque, colour.alphaF());
}

struct Pair {
    QPalette::ColorRole role;
    QPalette::ColorRole ground;
};

constexpr std::array<Pair, 8> kTexts = {{{QPalette::WindowText, QPalette::Window},
                                         {QPalette::Text, QPalette::Base},
                                         {QPalette::Text, QPalette::AlternateBase},
                                         {QPalette::ButtonText, QPalette::Button},
                                         {QPalette::ToolTipText, QPalette::ToolTipBase},
                                         {QPalette::PlaceholderText, QPalette::Base},
                                         {QPalette::Link, QPalette::Base},
                                         {QPalette::LinkVisited, QPalette::Base}}};

}  // namespace

double Contrast(const QColor& one, const QColor& other) {
    const double a = Luminance(one);
    const double b = Luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QColor Blend(const QColor& below, const QColor& above, double part) {
    const auto mix = [part](int a, int b) {
        return static_cast<int>(std::lround(a + (b - a) * part));
    };
    return {mix(below.red(), above.red()), mix(below.green(), above.green()),
            mix(below.blue(), above.blue())};
}

QColor VisibleOn(const QColor& colour, const QColor& ground, double least) {
    const QColor own = Opaque(colour, ground);
    if (Contrast(own, ground) >= least) return own;
    const QColor end =
        Contrast(Qt::white, ground) > Contrast(Qt::black, ground) ? Qt::white : Qt::black;
    for (double part = kStep; part < 1; part += kStep) {
        const QColor shade = Blend(own, end, part);
        if (Contrast(shade, ground) >= least) return shade;
    }
    return end;
}

QPalette Readable(QPalette palette) {
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        for (const Pair& pair : kTexts) {
            palette.setColor(group, pair.role,
                             VisibleOn(palette.color(group, pair.role),
                                       palette.color(group, pair.ground), kForText));
        }
        // Links stand on windows too, which are a shade darker or lighter than what is typed on.
        palette.setColor(group, QPalette::Link,
                         VisibleOn(palette.color(group, QPalette::Link),
                                   palette.color(group, QPalette::Window), kForText));
        // What is selected gives way to its letters.
        palette.setColor(group, QPalette::Highlight,
                         VisibleOn(palette.color(group, QPalette::Highlight),
                                   palette.color(group, QPalette::HighlightedText), kForText));
    }
    return palette;
}

}  // namespace colours
