#include "project/Pattern.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace project {
namespace {

using Cause = PatternFault::Cause;
using testing::ElementsAre;

std::vector<std::u16string> All(const Pattern& leading, const Pattern& pattern) {
    std::vector<std::u16string> texts;
    for (std::size_t i = 0; i < leading.Count(); ++i) {
        texts.push_back(pattern.Text(leading, leading.Combination(i)));
    }
    return texts;
}

std::vector<std::u16string> All(const char16_t* pattern) {
    const Pattern leading{pattern};
    EXPECT_FALSE(leading.Wrong());
    return All(leading, leading);
}

TEST(PatternTest, EveryCombinationIsATextTheLastBraceFirst) {
    EXPECT_THAT(All(u"P{09..10}_V{1..2}"), ElementsAre(u"P09_V1", u"P09_V2", u"P10_V1", u"P10_V2"));
    EXPECT_THAT(
        All(u"{T|Druck} {100..0/50}"),
        ElementsAre(u"T 100", u"T 050", u"T 000", u"Druck 100", u"Druck 050", u"Druck 000"));
    EXPECT_THAT(All(u"{1..2} von {2} {A}"), ElementsAre(u"1 von A A", u"2 von A A"));
    EXPECT_THAT(All(u"{{1..2}} {a|}"), ElementsAre(u"{1..2}} a", u"{1..2}} "));
    EXPECT_THAT(All(u"{1..}"), ElementsAre(u"1..")) << "no counter";
    EXPECT_THAT(All(u"ohne"), ElementsAre(u"ohne"));
    EXPECT_EQ(All(u"{1..100} {1..100}").size(), kMostPatternTexts);
}

TEST(PatternTest, AFurtherPatternGoesAlong) {
    const Pattern name(u"Tank {1..2} {Temperatur|Druck}");
    EXPECT_THAT(All(name, Pattern(u"PLC.T{01..02}.{TI|PI}")),
                ElementsAre(u"PLC.T01.TI", u"PLC.T01.PI", u"PLC.T02.TI", u"PLC.T02.PI"));
    EXPECT_THAT(All(name, Pattern(u"{2:temperature|pressure}, tank {1}")),
                ElementsAre(u"temperature, tank 1", u"pressure, tank 1", u"temperature, tank 2",
                            u"pressure, tank 2"));
    EXPECT_THAT(All(name, Pattern(u"")), ElementsAre(u"", u"", u"", u""));
}

TEST(PatternTest, WhatCannotBeUnderstoodIsToldAtItsPlace) {
    struct Case {
        const char16_t* text;
        Cause cause;
        std::size_t at;
    };
    for (const Case& c :
         {Case{u"a{1..2", Cause::NotClosed, 1}, Case{u"a{}b", Cause::Empty, 1},
          Case{u"{1..2} {3}", Cause::NoSuchBrace, 7}, Case{u"{0}", Cause::NoSuchBrace, 0},
          Case{u"{1..101}_{1..100}", Cause::TooMany, 9},
          Case{u"{0..999999999}", Cause::TooMany, 0}}) {
        const Pattern pattern(c.text);
        ASSERT_TRUE(pattern.Wrong());
        EXPECT_EQ(pattern.Wrong()->cause, c.cause);
        EXPECT_EQ(pattern.Wrong()->at, c.at);
    }
    const Pattern name(u"{1..3} {A|B}");
    for (const Case& c :
         {Case{u"x{1..2}", Cause::EntriesDiffer, 1}, Case{u"{3}", Cause::NoSuchBrace, 0},
          Case{u"{3:A|B}", Cause::NoSuchBrace, 0}, Case{u"{1}{", Cause::NotClosed, 3}}) {
        const auto wrong = Pattern(c.text).WrongBeside(name);
        ASSERT_TRUE(wrong);
        EXPECT_EQ(wrong->cause, c.cause);
        EXPECT_EQ(wrong->at, c.at);
    }
}

}  // namespace
}  // namespace project
