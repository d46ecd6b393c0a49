#include "records/FontString.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>

#include "records/CDBLanguages.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// Positions 1 to 31 or more: a name, filled up with blanks.
QString Name(const QString& name) {
    return name.leftJustified(31, u' ');
}

TEST(FontStringTest, FieldsStandAtTheirPositions) {
    const FontString font =
        ParseFontString(Name(u"Times New Roman"_s) + u"  12   1 238   1   0  -1 700and more"_s);
    EXPECT_EQ(font.name, u"Times New Roman"_s);
    EXPECT_EQ(font.size, 12);
    EXPECT_TRUE(font.bold);
    EXPECT_EQ(font.charset, 238);
    EXPECT_TRUE(font.italic);
    EXPECT_FALSE(font.strikethrough);
    EXPECT_TRUE(font.underline);
    EXPECT_EQ(font.weight, 700);
}

TEST(FontStringTest, NameAndSizeShareAPosition) {
    const FontString full = ParseFontString(QString(31, u'x') + u"9  8"_s);
    EXPECT_EQ(full.name, QString(31, u'x') + u'9');
    EXPECT_EQ(full.size, 9) << "reading stops at the blank";
    EXPECT_EQ(ParseFontString(QString(32, u'x') + u" 10"_s).size, 0);
    EXPECT_EQ(ParseFontString(Name(u"Arial"_s) + u"8.25"_s).size, 8.25);
}

TEST(FontStringTest, MissingFieldsAreZero) {
    const QString whole = Name(u"Arial"_s) + u"   8   1   0   1   1   1 700"_s;
    for (qsizetype length = 0; length <= whole.size(); ++length) {
        const FontString font = ParseFontString(whole.left(length));
        EXPECT_EQ(font.name, whole.left(std::min<qsizetype>(length, 5)));
        EXPECT_EQ(font.size, length >= 35 ? 8 : 0) << length;
        EXPECT_EQ(font.underline, length >= 55) << length;
        EXPECT_EQ(font.weight, length >= 59   ? 700
                               : length == 58 ? 70
                               : length == 57 ? 7
                                              : 0)
            << length;
    }
}

TEST(FontStringTest, ItalicStrikethroughAndUnderlineReachTheFont) {
    const QFont font =
        CDBLanguages::StringToFont(Name(u"Arial"_s) + u"   8   0   0   1   1   1 300"_s);
    EXPECT_EQ(font.family(), u"Arial"_s);
    EXPECT_EQ(font.pointSizeF(), 8);
    EXPECT_EQ(font.weight(), 300);
    EXPECT_TRUE(font.italic() && font.strikeOut() && font.underline());
}

TEST(FontStringTest, BoldIsBoldWhateverTheWeight) {
    for (const QString& fields :
         {u"   8   1   0   0   0   0 400"_s, u"   8   0   0   0   0   0 700"_s, u"   8   1"_s,
          u"   8   1   0   0   0   09999"_s}) {
        EXPECT_TRUE(CDBLanguages::StringToFont(Name(u"Arial"_s) + fields).bold())
            << qPrintable(fields);
    }
}

// What no font can be leaves the application's.
TEST(FontStringTest, ImpossibleSizesAndWeightsChangeNothing) {
    const QFont usual;
    for (const char16_t* size : {u"   0", u"  -8", u"9999", u"1E99", u"nan ", u"inf ", u"xxxx"}) {
        for (const char16_t* weight : {u"   0", u"-400", u"1001", u"1E99", u"bold"}) {
            const QFont font =
                CDBLanguages::StringToFont(Name({}) + QString::fromUtf16(size) +
                                           u"   0   0   0   0   0"_s + QString::fromUtf16(weight));
            EXPECT_EQ(font.pointSizeF(), usual.pointSizeF());
            EXPECT_EQ(font.weight(), usual.weight());
        }
    }
}

}  // namespace
