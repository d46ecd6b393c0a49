#include "project/Counting.h"

#include <gtest/gtest.h>

namespace {

TEST(CountingTest, TheLastNumberOfATextCounts) {
    struct Case {
        const char16_t* text;
        std::int64_t step;
        const char16_t* next;  // null: it does not count
    };
    const Case cases[] = {
        {u"SS0012", 1, u"SS0013"},
        {u"SS0099", 1, u"SS0100"},
        {u"SS99", 2, u"SS101"},
        {u"P2.Tank 9.Druck", 1, u"P2.Tank 10.Druck"},
        {u"7", -7, u"0"},
        {u"007", -1, u"006"},
        {u"7", -8, nullptr},
        {u"Druck", 1, nullptr},
        {u"", 1, nullptr},
        {u"9223372036854775807", 1, nullptr},
        {u"999999999999999999", 1, u"1000000000000000000"},
    };
    for (const Case& c : cases) {
        const auto next = project::CountOn(c.text, c.step);
        EXPECT_EQ(next, c.next == nullptr ? std::nullopt : std::optional<std::u16string>(c.next));
    }
    EXPECT_EQ(project::StepBetween(u"T1.a", u"T11.a"), 10);
    EXPECT_EQ(project::StepBetween(u"T11", u"T09"), -2);
    EXPECT_EQ(project::StepBetween(u"T1.a", u"T2.b"), std::nullopt);
    EXPECT_EQ(project::StepBetween(u"T1", u"U2"), std::nullopt);
    EXPECT_EQ(project::StepBetween(u"T1", u"T01"), std::nullopt);
}

}  // namespace
