#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLocale>
#include <QTemporaryDir>

#include "ado/Value.h"
#include "cells/CellText.h"
#include "cells/TabText.h"
#include "platform/Registry.h"
#include "texts/MResources.h"

namespace {

using namespace Qt::Literals::StringLiterals;

TEST(CellTextTest, ValuesReadAsInTheUsersLocale) {
    const QLocale german(QLocale::German, QLocale::Germany);
    const QTemporaryDir folder;
    platform::Registry registry({folder.filePath(u"r.reg"_s), {}});
    MResources::TextTable texts;
    texts.Initialize(registry);
    struct Case {
        ado::Value value;
        QString text;
    };
    const Case cases[] = {
        {ado::Null(), u""_s},
        {true, u"ja"_s},
        {std::int32_t{-16711680}, u"-16711680"_s},
        {8.25, u"8,25"_s},
        {1000000.0, u"1000000"_s},
        {0.1, u"0,1"_s},
        {0.1 + 0.2, u"0,3"_s},  // the digits behind are the machine's
        {0.1F, u"0,1"_s},
        {0.0, u"0"_s},
        {1e20, u"1e+20"_s},
        {std::u16string(u"1.5 §"), u"1.5 §"_s},
        {ado::Date{36526.75}, u"01.01.00 18:00:00"_s},
        {ado::Date{-1.25}, u"29.12.99 06:00:00"_s},
        {ado::Date{1e9}, u"1E+09"_s},
    };
    for (const Case& c : cases) {
        const QString text = CellText(c.value, german, texts);
        EXPECT_TRUE(text.compare(c.text, Qt::CaseInsensitive) == 0 ||
                    text.startsWith(c.text + u' '))  // a time may name its zone
            << text.toStdString() << " instead of " << c.text.toStdString();
    }
    EXPECT_EQ(WholeText(0.1 + 0.2, texts), u"0.30000000000000004"_s) << "what is copied is whole";
}

// What is copied and pasted again is the same, whatever stands in the cells.
TEST(TabTextTest, CellsComeBackAsTheyWere) {
    const QList<QStringList> blocks[] = {
        {{u"a"_s, u"b"_s}, {u"c"_s, u"d"_s}},
        {{u"\"quoted\" at its beginning"_s, u"5\" pipe"_s, u"\""_s, u"\"\""_s}},
        {{u"two\nlines"_s, u"two\r\nlines"_s, u"lone\rreturn"_s, u"tab\there"_s}},
        {{u""_s, u"behind an empty one"_s, u""_s}, {u" blanks kept "_s, u"'"_s, u"ü€𝄞"_s}},
    };
    for (const QList<QStringList>& block : blocks) {
        EXPECT_EQ(TabText::Parse(TabText::Format(block)), block)
            << TabText::Format(block).toStdString();
    }
}

TEST(TabTextTest, TakesWhatOtherProgramsWrite) {
    const struct {
        QString text;
        QList<QStringList> rows;
    } cases[] = {
        {u""_s, {}},
        {u"a"_s, {{u"a"_s}}},
        {u"a\tb\r\nc"_s, {{u"a"_s, u"b"_s}, {u"c"_s}}},
        {u"a\rb\r"_s, {{u"a"_s}, {u"b"_s}}},
        {u"a\n\nb\n"_s, {{u"a"_s}, {u""_s}, {u"b"_s}}},
        {u"5\" pipe\tx"_s, {{u"5\" pipe"_s, u"x"_s}}},
        {u"\"not closed\tx\ny"_s, {{u"not closed\tx\ny"_s}}},
        {u"\"a\"b\tc"_s, {{u"ab"_s, u"c"_s}}},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(TabText::Parse(each.text), each.rows) << each.text.toStdString();
    }
}

}  // namespace
