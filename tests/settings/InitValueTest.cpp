#include "settings/InitValue.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::Literals::StringLiterals;

TEST(InitValueTest, Grammar) {
    struct Case {
        QString text;
        InitValue value;
    };
    const Case cases[] = {
        {u"True"_s, true},
        {u"TRUE"_s, true},
        {u"true"_s, true},
        {u"False"_s, false},
        {u"FALSE"_s, false},
        {u"  false"_s, false},
        {u"tRUE"_s, u"tRUE"_s},
        {u"False "_s, u"False "_s},
        {u"Trueness"_s, u"Trueness"_s},
        {u"1"_s, 1},
        {u"  8,25"_s, 8.25},
        {u"8.25"_s, 8.25},
        {u"1,5em"_s, 1.5},
        {u"1995,024"_s, 1995.024},
        {u"1.234,5"_s, 1.234},
        {u"1 234"_s, 1},
        {u"1E+20"_s, 1e20},
        {u"0x10"_s, 0},
        {u"-5"_s, u"-5"_s},
        {u"+5"_s, u"+5"_s},
        {u",5"_s, u",5"_s},
        {u",8,10,36"_s, u",8,10,36"_s},
        {u"Arial"_s, u"Arial"_s},
        {u"  Arial "_s, u"Arial "_s},
        {u""_s, u""_s},
        {u"   "_s, u""_s},
        {u"\u0663"_s, u"\u0663"_s},  // a digit, but none of ours
    };
    for (const Case& c : cases)
        EXPECT_TRUE(InitValue::Parse(c.text) == c.value) << c.text.toStdString();
}

TEST(InitValueTest, WhatIsWrittenIsReadBack) {
    const QLocale german(QLocale::German, QLocale::Germany);
    EXPECT_EQ(InitValue(8.25).Format(german), u"8,25"_s);
    EXPECT_EQ(InitValue(1995.024).Format(german), u"1995,024"_s);
    EXPECT_EQ(InitValue(true).Format(german), u"True"_s);
    const InitValue values[] = {true,     false, 0,    6000,       8.25,
                                1995.024, 1e-7,  1e20, u"Arial"_s, u",8"_s};
    for (const QLocale& locale : {german, QLocale(QLocale::English), QLocale(QLocale::Swedish),
                                  QLocale(QLocale::Arabic), QLocale(QLocale::Persian)}) {
        for (const InitValue& value : values) {
            EXPECT_TRUE(InitValue::Parse(value.Format(locale)) == value)
                << value.Format(locale).toStdString();
        }
    }
    EXPECT_TRUE(InitValue::Parse(InitValue(-5).Format()) == InitValue(u"-5"_s))
        << "a number with a sign comes back as text, deliberately";
}

TEST(InitValueTest, AsAnotherKind) {
    struct Case {
        InitValue value;
        bool boolean;   // with the fallback true
        double number;  // with the fallback 7
    };
    const Case cases[] = {
        {true, true, -1},    {false, false, 0},        {0, false, 0},
        {2.5, true, 2.5},    {u"tRue"_s, true, 7},     {u" FALSE"_s, false, 7},
        {u"-5"_s, true, -5}, {u"0"_s, false, 0},       {u" 1,5 "_s, true, 1.5},
        {u"abc"_s, true, 7}, {u"5 apples"_s, true, 7}, {u""_s, true, 7},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value.AsText().toStdString());
        EXPECT_EQ(c.value.AsBoolean(true), c.boolean);
        EXPECT_EQ(c.value.AsNumber(7), c.number);
    }
}

}  // namespace
