#include "project/Schema.h"

#include <gtest/gtest.h>

#include <set>

#include "ado/TrendQuery.h"
#include "project/Names.h"

namespace project {
namespace {

TEST(SchemaTest, EachCodeHasOneMeaningAndEachColumnOnePlace) {
    int lastCaption = 0;
    for (const Column& column : TrendColumns()) {
        if (column.caption != 0) {
            EXPECT_GT(column.caption, lastCaption) << column.name;
            lastCaption = column.caption;
        }
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

// Other programs know the statement to the last blank.
TEST(SchemaTest, TheQueryOfTheTrendsIsTheOneThatIsKnown) {
    EXPECT_EQ(TrendQuery(), kTrendQuery);
}

TEST(SchemaTest, NewRowsAreSoundAndOthersAreToldFromThem) {
    for (const Table& table : Tables()) {
        for (const Column& column : table.columns) {
            const auto* initial = std::get_if<std::int32_t>(&column.initial);
            EXPECT_TRUE(initial == nullptr || IsSound(column, *initial)) << column.name;
            EXPECT_EQ(column.type == ado::DataType::VarWChar, column.length > 0) << column.name;
        }
    }
    const struct {
        const char* column;
        ado::Value value;
        bool sound;
    } cases[] = {
        {"Name", std::u16string(u"P1"), true},
        {"Name", std::u16string(u"  "), false},
        {"Name", ado::Null(), false},
        {"Comment", ado::Null(), true},
        {"Filter", 4, true},
        {"Filter", 5, false},
        {"Filter", 1.0, false},
        {"Filter", ado::Null(), true},
        {"VMaxSamples", -1, false},
        {"VLineColor", 0xFFFFFF, true},
        {"VLineColor", 0x1000000, false},
        {"VLineColor", static_cast<std::int32_t>(0x80000005), true},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(IsSound(*FindTrendColumn(each.column), each.value), each.sound) << each.column;
    }
}

TEST(SchemaTest, ColumnsOfLanguagesAreKnownByTheirForm) {
    EXPECT_EQ(LanguageColumn(1031), "L1031");
    for (const char* name : {"L", "LCID", "1031", "L10a", "l1031"}) {
        EXPECT_FALSE(IsLanguageColumn(name)) << name;
    }
    EXPECT_TRUE(IsLanguageColumn("L1031"));
}

TEST(SchemaTest, EventsOfTheClockAreReadInBothLanguages) {
    EXPECT_EQ(FindClockEvent(u"$Year"), 0U);
    EXPECT_EQ(FindClockEvent(u"$Woche"), 2U);
    EXPECT_EQ(FindClockEvent(u"$Second"), 6U);
    EXPECT_EQ(FindClockEvent(u"$week"), std::nullopt);
    EXPECT_EQ(FindClockEvent(u""), std::nullopt);
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
