#include "projecttable/RowFilter.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::Literals::StringLiterals;

TEST(RowFilterTest, WhatATextAsksOfAValue) {
    struct Case {
        QString filter;
        QString value;
        std::optional<double> number;
        bool matches;
    };
    const Case cases[] = {
        {u""_s, u"x"_s, {}, true},
        {u"  "_s, u""_s, {}, true},
        {u"PUMP"_s, u"Main pump 3"_s, {}, true},
        {u"pump"_s, u"valve"_s, {}, false},
        {u"="_s, u""_s, {}, true},
        {u"="_s, u"x"_s, {}, false},
        {u"<>"_s, u"x"_s, {}, true},
        {u"<>"_s, u""_s, {}, false},
        {u"=Bar"_s, u"bar"_s, {}, true},
        {u"=bar"_s, u"mbar"_s, {}, false},
        {u"<>bar"_s, u"mbar"_s, {}, true},
        {u"<>bar"_s, u"BAR"_s, {}, false},
        {u">5"_s, u"5"_s, 5.0, false},
        {u">=5"_s, u"5"_s, 5.0, true},
        {u"<5"_s, u"4,9"_s, 4.9, true},
        {u"<=5"_s, u"5,1"_s, 5.1, false},
        {u">5"_s, u"6"_s, {}, false},  // a text, whatever it looks like
        {u">5"_s, u""_s, {}, false},
        {u"1..5"_s, u"5"_s, 5.0, true},
        {u"1..5"_s, u"5,5"_s, 5.5, false},
        {u"..5"_s, u"-7"_s, -7.0, true},
        {u"5.."_s, u"4"_s, 4.0, false},
        {u"1,5 .. 2"_s, u"1,5"_s, 1.5, true},
        {u"1.5..2"_s, u"1,5"_s, 1.5, true},
        {u".."_s, u"a..b"_s, {}, true},  // no range without a number
        {u"a..b"_s, u"xa..bx"_s, {}, true},
        {u">a"_s, u"x>ab"_s, {}, true},
        {u"=a | =b"_s, u"B"_s, {}, true},
        {u"=a | =b"_s, u"c"_s, {}, false},
        {u"a|b"_s, u"xa|bx"_s, {}, true},  // no blanks: a text like others
        {u"= | >5"_s, u""_s, {}, true},
        {u"?"_s, u"x"_s, {}, false},
        {u"\u00E4rger"_s, u"\u00C4RGER"_s, {}, true},
    };
    const QLocale german(QLocale::German);
    for (const Case& each : cases) {
        EXPECT_EQ(RowFilter(each.filter, german).Matches({each.value, each.number}), each.matches)
            << each.filter.toStdString() << " / " << each.value.toStdString();
    }
    EXPECT_TRUE(RowFilter(u"?"_s).Matches({u"x"_s, {}, true}));
    EXPECT_TRUE(RowFilter(u" "_s).AsksNothing());
}

TEST(RowFilterTest, PickedValuesComeBack) {
    for (const QStringList& values :
         {QStringList{u"Max"_s, u""_s, u"No Filter"_s}, QStringList{u"#FF0000"_s}}) {
        EXPECT_EQ(RowFilter::ValuesOf(RowFilter::OneOf(values)), values);
        EXPECT_TRUE(RowFilter(RowFilter::OneOf(values)).Matches({values.front()}));
    }
    EXPECT_EQ(RowFilter::ValuesOf(u"pump"_s), QStringList());
}

}  // namespace
