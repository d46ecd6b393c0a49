#include "platform/Locale.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace Qt::Literals::StringLiterals;
using namespace platform;

TEST(LocaleTest, LanguagesByNumber) {
    struct Case {
        Lcid lcid;
        const char* locale;
        const char* german;
        const char* english;
    };
    const Case cases[] = {
        {1031, "de_DE", "Deutsch (Deutschland)", "German (Germany)"},
        {1033, "en_US", "Englisch (Vereinigte Staaten)", "English (United States)"},
        {2057, "en_GB", "Englisch (Vereinigtes Königreich)", "English (United Kingdom)"},
        {1036, "fr_FR", "Französisch (Frankreich)", "French (France)"},
        {2055, "de_CH", "Deutsch (Schweiz)", "German (Switzerland)"},
        {1045, "pl_PL", "Polnisch (Polen)", "Polish (Poland)"},
        {0x10407, "de_DE@collation=phonebook",
         "Deutsch (Deutschland, Sortierung=Telefonbuch-Sortierung)",
         "German (Germany, Sort Order=Phonebook Sort Order)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.lcid);
        EXPECT_EQ(LocaleName(c.lcid), QString::fromUtf8(c.locale));
        EXPECT_EQ(LanguageName(c.lcid, kLcidGerman), QString::fromUtf8(c.german));
        EXPECT_EQ(LanguageName(c.lcid, kLcidEnglish), QString::fromUtf8(c.english));
    }
    for (const Lcid unknown : {0U, 0xFFFFU, 0xFFFFFFFFU}) {
        EXPECT_EQ(LocaleName(unknown), QString()) << unknown;
        EXPECT_EQ(LanguageName(unknown, kLcidGerman), QString()) << unknown;
        EXPECT_EQ(LanguageName(kLcidGerman, unknown), u"German (Germany)"_s)
            << "the user's locale in these tests is English";
    }
    EXPECT_EQ(LocaleName(0x0400), QLocale().name());
}

TEST(LocaleTest, GeneralNumberFormat) {
    struct Case {
        double number;
        const char* german;
    };
    const Case cases[] = {
        {8.25, "8,25"},     {-1995.024, "-1995,024"}, {1031, "1031"},
        {0.1 + 0.2, "0,3"}, {1234567, "1234567"},     {0.0001, "0,0001"},
        {0.00001, "1E-05"}, {1e15, "1E+15"},          {123456789012345, "123456789012345"},
    };
    const QLocale german(QLocale::German, QLocale::Germany);
    for (const Case& c : cases) {
        EXPECT_EQ(NumberToText(c.number, german), QString::fromLatin1(c.german));
        EXPECT_EQ(NumberToText(c.number), QString::fromLatin1(c.german).replace(u',', u'.'));
    }
    // A locale whose own minus and digits no reader of such a file would know.
    EXPECT_EQ(NumberToText(-1.5, QLocale(QLocale::Swedish)), u"-1,5"_s);
    EXPECT_EQ(DecimalSeparator(german), u',');
    EXPECT_EQ(DecimalSeparator(), u'.');
}

TEST(LocaleTest, LeadingNumber) {
    struct Case {
        QString text;
        double number;
        qsizetype end;
    };
    const Case cases[] = {
        {u""_s, 0, 0},
        {u"   "_s, 0, 0},
        {u"12"_s, 12, 2},
        {u" \t12 34"_s, 12, 4},
        {u"1.5em"_s, 1.5, 3},
        {u"-5"_s, -5, 2},
        {u"+.5x"_s, 0.5, 3},
        {u"- 5"_s, 0, 0},
        {u"1.2.3"_s, 1.2, 3},
        {u"1,5"_s, 1, 1},
        {u"7."_s, 7, 2},
        {u"."_s, 0, 0},
        {u"abc12"_s, 0, 0},
        {u"2e3"_s, 2000, 3},
        {u"2E-1 "_s, 0.2, 4},
        {u"2e"_s, 2, 1},
        {u"2e+"_s, 2, 1},
        {u"&HFF"_s, 0, 0},
        {u"inf"_s, 0, 0},
        {u"nan"_s, 0, 0},
        {u"0x10"_s, 0, 1},
        {u"٣"_s, 0, 0},
        {u"1e-999"_s, 0, 6},
        {u"-1e999"_s, -std::numeric_limits<double>::max(), 6},
        {QString(500, u'9'), std::numeric_limits<double>::max(), 500},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        qsizetype end = -1;
        EXPECT_DOUBLE_EQ(LeadingNumber(c.text, &end), c.number);
        EXPECT_EQ(end, c.end);
    }
}

}  // namespace
