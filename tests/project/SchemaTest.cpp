#include "project/Schema.h"

#include <gtest/gtest.h>

#include <set>

#include "project/Names.h"

namespace project {
namespace {

TEST(SchemaTest, EachCodeHasOneMeaningAndEachColumnOnePlace) {
    std::set<int> captions;
    for (const Column& column : TrendColumns()) {
        EXPECT_TRUE(captions.insert(column.caption).second) << column.name;
        std::set<int> codes;
        std::set<int> texts;
        for (const Code& code : column.codes) {
            EXPECT_TRUE(codes.insert(code.code).second) << column.name;
            EXPECT_TRUE(texts.insert(code.text).second) << column.name;
        }
        EXPECT_EQ(column.kind == Kind::Listed, !codes.empty()) << column.name;
        // Dialogs find a code by its place in their list.
        for (const int code : codes) EXPECT_LT(code, static_cast<int>(codes.size()));
    }
    // The grid's list begins with no hysteresis, whose code is the last.
    EXPECT_EQ(FindTrendColumn("HysteresisMode")->codes.front().code, kNoHysteresis);
    EXPECT_EQ(FindTrendColumn("HysteresisMode")->codes[1].code, 0);
}

TEST(SchemaTest, WithoutAnAmountThereIsNoHysteresis) {
    for (const int stored : {-1, 0, 2, 3, 7}) {
        EXPECT_EQ(HysteresisMode(false, stored), kNoHysteresis);
    }
    EXPECT_EQ(HysteresisMode(true, -1), 0);
    EXPECT_EQ(HysteresisMode(true, 2), 2);
    EXPECT_EQ(HysteresisMode(true, 7), kNoHysteresis);
}

TEST(NamesTest, FileNamesHoldWhatFileNamesMay) {
    EXPECT_EQ(FileNameOf(u"Kühlung 1: a/b\\c*?\"<>|\n"), u"Kühlung_1__a_b_c_______");
    EXPECT_EQ(FileNameOf(u"Neues_Archiv(1)"), u"Neues_Archiv(1)");
}

}  // namespace
}  // namespace project
