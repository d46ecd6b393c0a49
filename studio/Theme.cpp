#include "studio/Theme.h"

#include <algorithm>
#include <QApplication>
#include <QFont>

#include "colours/Contrast.h"
#include "studio/FieldFrames.h"

namespace studio {
namespace {

struct Colours {
    QRgb window;
    QRgb base;
    QRgb alternate;
    QRgb button;
    QRgb text;
    QRgb faint;  // what is disabled
    QRgb highlight;
    QRgb highlightedText;
    QRgb link;
    QRgb tip;
};

// In the order of Theme, without System.
constexpr std::array<Colours, 3> kColours = {{
    {0xf0f0f0, 0xffffff, 0xf6f8fa, 0xe8e8e8, 0x1c1c1c, 0x8a8a8a, 0x1a66ad, 0xffffff, 0x0a58a6,
     0xfff8dc},
    {0x222528, 0x1a1c1e, 0x1e2123, 0x33373b, 0xe4e4e4, 0x7e8387, 0x3077bd, 0xffffff, 0x7db7f0,
     0x3a3f44},
    // Styles draw frames a shade darker than the window: on a black one there would be none.
    {0xc8c8c8, 0xffffff, 0xf0f0f0, 0xe0e0e0, 0x000000, 0x505050, 0x000080, 0xffffff, 0x0000a0,
     0xffffff},
}};

QFont DesktopFont() {
    static const QFont font = QApplication::font();
    return font;
}

/// The roles alone in which a palette differs from another: the others go on following the desktop.
QPalette Difference(const QPalette& from, const QPalette& to) {
    QPalette difference;
    for (int group = 0; group < QPalette::NColorGroups; ++group) {
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            const auto g = static_cast<QPalette::ColorGroup>(group);
            const auto r = static_cast<QPalette::ColorRole>(role);
            if (from.color(g, r) != to.color(g, r)) difference.setColor(g, r, to.color(g, r));
        }
    }
    return difference;
}

}  // namespace

Theme ThemeOf(QStringView name) {
    const auto found = std::find(kThemeNames.begin(), kThemeNames.end(), name);
    return found == kThemeNames.end() ? Theme::System
                                      : static_cast<Theme>(found - kThemeNames.begin());
}

QPalette PaletteOf(Theme theme) {
    const Colours& own = kColours.at(static_cast<std::size_t>(theme) - 1);
    QPalette palette{QColor(own.button), QColor(own.window)};
    const std::initializer_list<std::pair<QPalette::ColorRole, QRgb>> roles = {
        {QPalette::Base, own.base},
        {QPalette::AlternateBase, own.alternate},
        {QPalette::WindowText, own.text},
        {QPalette::Text, own.text},
        {QPalette::ButtonText, own.text},
        {QPalette::PlaceholderText, own.faint},
        {QPalette::Highlight, own.highlight},
        {QPalette::HighlightedText, own.highlightedText},
        {QPalette::Link, own.link},
        {QPalette::LinkVisited, own.link},
        {QPalette::ToolTipBase, own.tip},
        {QPalette::ToolTipText, own.text},
        {QPalette::BrightText, own.highlight},
    };
    for (const auto& [role, colour] : roles) palette.setColor(role, QColor(colour));
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor(own.faint));
    }
    return colours::Readable(palette);
}

void ApplyTheme(Theme theme, double textSize) {
    FieldFrames::Install();
    QFont font = DesktopFont();
    if (textSize > 0) font.setPointSizeF(textSize);
    if (font != QApplication::font()) QApplication::setFont(font);
    if (theme != Theme::System) return QApplication::setPalette(PaletteOf(theme));
    QApplication::setPalette(QPalette());
    const QPalette desktop = QApplication::palette();
    QApplication::setPalette(Difference(desktop, colours::Readable(desktop)));
}

}  // namespace studio
