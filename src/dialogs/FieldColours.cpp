#include "dialogs/FieldColours.h"

#include <cstdlib>

namespace {

constexpr int kVisibleDifference = 12;  // of 255 steps of grey

bool ToldApart(const QColor& one, const QColor& other) {
    return std::abs(qGray(one.rgb()) - qGray(other.rgb())) >= kVisibleDifference;
}

QColor Mixed(const QColor& ground, const QColor& ink, double share) {
    const auto mix = [share](int a, int b) { return a + static_cast<int>((b - a) * share); };
    return QColor(mix(ground.red(), ink.red()), mix(ground.green(), ink.green()),
                  mix(ground.blue(), ink.blue()));
}

QColor ButtonFace(const QPalette& dialog) {
    const QColor window = dialog.color(QPalette::Active, QPalette::Base);
    for (const QPalette::ColorRole role : {QPalette::Button, QPalette::Window}) {
        const QColor face = dialog.color(QPalette::Active, role);
        if (ToldApart(window, face)) return face;
    }
    constexpr double kShare = 0.18;
    return Mixed(window, dialog.color(QPalette::Active, QPalette::Text), kShare);
}

}  // namespace

QPalette FieldPalette(const QPalette& dialog, bool usable) {
    QPalette field;
    field.setResolveMask(0);  // everything else is inherited
    const QColor ground =
        usable ? dialog.color(QPalette::Active, QPalette::Base) : ButtonFace(dialog);
    // Button is the ground of a drop-down that cannot be edited.
    for (const QPalette::ColorRole role : {QPalette::Base, QPalette::Button}) {
        field.setColor(role, ground);
    }
    return field;
}
