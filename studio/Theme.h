#pragma once

#include <array>
#include <QPalette>
#include <QStringView>

namespace studio {

enum class Theme { System, Light, Dark, Contrast };

/// Under which the settings keep a theme, in the order of Theme.
inline constexpr std::array<QStringView, 4> kThemeNames = {u"system", u"light", u"dark",
                                                           u"contrast"};
/// System for a name that is none.
[[nodiscard]] Theme ThemeOf(QStringView name);

/// REQUIRES: not System, whose palette is the desktop's.
[[nodiscard]] QPalette PaletteOf(Theme theme);

/// Gives the whole program its colours and the size of its letters in points; 0: the desktop's.
/// With System, what could not be read well in the desktop's own colours gets other shades; to be
/// called again when the desktop has changed them.
void ApplyTheme(Theme theme, double textSize);

}  // namespace studio
