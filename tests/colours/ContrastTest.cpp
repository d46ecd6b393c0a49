#include "colours/Contrast.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QStyle>

namespace {

using colours::Contrast;

TEST(ContrastTest, IsThatOfTheGuidelines) {
    struct Case {
        QRgb one;
        QRgb other;
        double contrast;
    };
    const Case cases[] = {
        {0x000000, 0xffffff, 21.0},  {0x777777, 0xffffff, 4.478}, {0x0000ff, 0x000000, 2.444},
        {0xffff00, 0xffffff, 1.074}, {0x123456, 0x123456, 1.0},
    };
    for (const Case& each : cases) {
        EXPECT_NEAR(Contrast(QColor(each.one), QColor(each.other)), each.contrast, 0.005);
        EXPECT_NEAR(Contrast(QColor(each.other), QColor(each.one)), each.contrast, 0.005);
    }
}

TEST(ContrastTest, AColourIsShiftedNoFurtherThanIsNeeded) {
    for (const QRgb ground : {0xffffffU, 0xf4f4f4U, 0x1e2022U, 0x308cc6U, 0x808080U, 0x000000U}) {
        for (int hue = 0; hue < 360; hue += 30) {
            for (const int value : {60, 160, 255}) {
                const QColor colour = QColor::fromHsv(hue, 200, value);
                const QColor shown = colours::VisibleOn(colour, QColor(ground), 4.5);
                EXPECT_GE(Contrast(shown, QColor(ground)), 4.5);
                EXPECT_EQ(shown.rgb() == colour.rgb(), Contrast(colour, QColor(ground)) >= 4.5);
            }
        }
    }
}

TEST(ContrastTest, EveryPaletteBecomesReadable) {
    QPalette dark(QColor(0x35, 0x35, 0x35), QColor(0x2a, 0x2a, 0x2a));
    dark.setColor(QPalette::Highlight, QColor(0x2a, 0x82, 0xda));
    QPalette pale(Qt::lightGray, Qt::white);
    pale.setColor(QPalette::Text, QColor(0xb0b0b0));
    for (const QPalette& given : {QApplication::style()->standardPalette(), dark, pale}) {
        const QPalette palette = colours::Readable(given);
        const auto contrast = [&](QPalette::ColorRole role, QPalette::ColorRole ground) {
            return Contrast(palette.color(role), palette.color(ground));
        };
        EXPECT_GE(contrast(QPalette::Text, QPalette::Base), 4.5);
        EXPECT_GE(contrast(QPalette::WindowText, QPalette::Window), 4.5);
        EXPECT_GE(contrast(QPalette::ButtonText, QPalette::Button), 4.5);
        EXPECT_GE(contrast(QPalette::PlaceholderText, QPalette::Base), 4.5);
        EXPECT_GE(contrast(QPalette::HighlightedText, QPalette::Highlight), 4.5);
        EXPECT_GE(contrast(QPalette::Link, QPalette::Base), 4.5);
        EXPECT_GE(contrast(QPalette::Link, QPalette::Window), 4.5);
    }
}

}  // namespace
