#include "icons/Icons.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <QApplication>
#include <QDir>
#include <QImage>
#include <QPalette>
#include <QScopeGuard>
#include <sstream>

namespace {

using namespace Qt::Literals::StringLiterals;

/// All files of some folders of the project with one ending, in one piece.
std::string Sources(const char* ending) {
    namespace fs = std::filesystem;
    std::ostringstream all;
    for (const char* folder : {"src", "studio", "report"}) {
        for (const fs::path& path : fs::recursive_directory_iterator(fs::path(folder))) {
            if (path.extension() == ending) all << std::ifstream(path).rdbuf();
        }
    }
    return all.str();
}

QStringList Names() {
    QStringList names;
    for (const QString& file : QDir(QStringLiteral("src/icons/svg")).entryList({u"*.svg"_s})) {
        names += file.chopped(4);
    }
    return names;
}

/// How much of a picture is seen: the sum of its opacity, 1 for a full square.
double Ink(const QImage& picture) {
    double sum = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) sum += qAlpha(picture.pixel(x, y)) / 255.0;
    }
    return sum / (picture.width() * picture.height());
}

QImage Drawn(QStringView name, int size, QIcon::Mode mode = QIcon::Normal) {
    return icons::Icon(name)
        .pixmap(QSize(size, size), 1.0, mode)
        .toImage()
        .convertToFormat(QImage::Format_ARGB32);
}

TEST(IconsTest, EveryPictureIsDrawnAtEverySizeAndFainterWhereDisabled) {
    ASSERT_GT(Names().size(), 15);
    const std::string sources = Sources(".cpp");
    const QString target = qEnvironmentVariable("KV_SCREENSHOTS");
    for (const QString& name : Names()) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_NE(sources.find("u\"" + name.toStdString() + '"'), std::string::npos)
            << "nobody shows it";
        for (const int size : {16, 24, 64}) {
            const QImage picture = Drawn(name, size);
            ASSERT_EQ(picture.size(), QSize(size, size));
            EXPECT_GT(Ink(picture), 0.1);
            EXPECT_LT(Ink(picture), 0.95);
            EXPECT_LT(Ink(Drawn(name, size, QIcon::Disabled)), Ink(picture) * 0.5);
            if (!target.isEmpty()) {
                picture.save(target + u"/icon-%1-%2.png"_s.arg(name).arg(size));
            }
        }
    }
    EXPECT_EQ(Ink(Drawn(u"no-such-picture", 16)), 0);
}

// On a dark desktop black lines would not be seen.
TEST(IconsTest, InkAndPaperAreThePalettes) {
    const QPalette before = QApplication::palette();
    const auto back = qScopeGuard([&] { QApplication::setPalette(before); });
    for (const QColor& ink : {QColor(0x102030), QColor(0xE0F0D0)}) {
        QPalette palette = before;
        palette.setColor(QPalette::WindowText, ink);
        palette.setColor(QPalette::Base, QColor(0x405060));
        QApplication::setPalette(palette);
        const QImage find = Drawn(u"find", 64);
        EXPECT_EQ(find.pixelColor(49, 49), ink);  // in the handle
        EXPECT_EQ(Drawn(u"copy", 64).pixelColor(25, 24), QColor(0x405060)) << "the sheet";
        EXPECT_EQ(Drawn(u"archive", 64).pixelColor(32, 16), QColor(0xE8A33D)) << "as it is";
    }
}

TEST(IconsTest, AFixedIconIsNotTintedInASelectedRow) {
    const QIcon icon = icons::FixedIcon(u"archive");
    for (const int size : {16, 24, 32, 64}) {
        const QImage image = icon.pixmap(size).toImage();
        EXPECT_EQ(image.width(), size);
        EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
        EXPECT_EQ(qAlpha(image.pixel(size / 2, size / 2)), 255);
        EXPECT_EQ(icon.pixmap(QSize(size, size), QIcon::Selected).toImage(), image);
    }
}

}  // namespace
