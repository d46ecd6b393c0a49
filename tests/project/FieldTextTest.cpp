#include "project/FieldText.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "project/Colour.h"
#include "project/Moment.h"

namespace project {
namespace {

using ado::DataType;
using enum Problem;

std::string Ascii(std::u16string_view text) {
    return {text.begin(), text.end()};
}

ado::Value Text(std::u16string_view text) {
    return std::u16string(text);
}

TEST(FieldTextTest, ANumberIsWholeOrSaidNotToBe) {
    const struct {
        const char16_t* text;
        double number;
        bool any;
        bool whole;
    } cases[] = {
        {u"12", 12, true, true},
        {u" -0,5 ", -0.5, true, true},
        {u"+1.5e3", 1500, true, true},
        {u".5", 0.5, true, true},
        {u"5.", 5, true, true},
        {u"\u00A012\t", 12, true, true},
        {u"1.000,5", 1, true, false},
        {u"1,5,5", 1.5, true, false},
        {u"12 bar", 12, true, false},
        {u"1e", 1, true, false},
        {u"1e+", 1, true, false},
        {u"0x10", 0, true, false},
        {u"", 0, false, false},
        {u"abc", 0, false, false},
        {u"-", 0, false, false},
        {u".", 0, false, false},
        {u"1e999", std::numeric_limits<double>::max(), true, true},
        {u"-1e999", std::numeric_limits<double>::lowest(), true, true},
        {u"1e-999", 0, true, true},
        {u"\u0661", 0, false, false},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(Ascii(each.text));
        const NumberText read = ReadNumber(each.text);
        EXPECT_EQ(read.number, each.number);
        EXPECT_EQ(read.any, each.any);
        EXPECT_EQ(read.whole, each.whole);
    }
    EXPECT_EQ(ReadNumber(u"1,5", false).number, 1);
}

TEST(FieldTextTest, ANumberBeyondAllIsSaidToBe) {
    EXPECT_TRUE(ReadNumber(u"1e400").tooLarge);
    EXPECT_FALSE(ReadNumber(u"1e-400").tooLarge);
    EXPECT_FALSE(ReadNumber(u"1.7e308").tooLarge);
}

TEST(FieldTextTest, ANumberHasTheDigitsThatItNeeds) {
    const struct {
        double number;
        const char16_t* text;
    } cases[] = {
        {0.1 + 0.2, u"0,3"}, {-1995.024, u"-1995,024"},
        {1031, u"1031"},     {0.0001, u"0,0001"},
        {0.00001, u"1E-05"}, {123456789012345, u"123456789012345"},
        {1e15, u"1E+15"},    {0, u"0"},
    };
    for (const auto& each : cases) EXPECT_EQ(FormatNumber(each.number, u','), each.text);
    EXPECT_EQ(FormatNumber(0.1F), u"0.1");
    EXPECT_EQ(FormatNumber(16777216.0F), u"16777216");
}

TEST(FieldTextTest, AColoursTextIsReadBack) {
    const struct {
        std::int32_t stored;
        const char16_t* text;
    } cases[] = {
        {0x332211, u"#112233"},    {0, u"#000000"},
        {0xFFFFFF, u"#FFFFFF"},    {static_cast<std::int32_t>(0x80000005), u"&H80000005"},
        {0x1000000, u"&H1000000"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(ColourText(each.stored), each.text);
        EXPECT_EQ(ReadColour(each.text), each.stored);
    }
    EXPECT_EQ(ReadColour(u"255"), 255);
    for (const char16_t* text :
         {u"", u"#12345", u"#12345g", u"&H", u"red", u"1.5", u"9999999999"}) {
        EXPECT_EQ(ReadColour(text), std::nullopt) << Ascii(text);
    }
}

TEST(FieldTextTest, AStoredMomentIsOneOfTheCalendar) {
    const struct {
        double days;
        int year, month, day, hour;
    } cases[] = {{0, 1899, 12, 30, 0},
                 {36526.75, 2000, 1, 1, 18},
                 {-1.25, 1899, 12, 29, 6},
                 {-0.5, 1899, 12, 30, 12},
                 {2958465, 9999, 12, 31, 0}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.days);
        const auto moment = MomentOf({each.days});
        ASSERT_TRUE(moment);
        EXPECT_EQ(moment->year, each.year);
        EXPECT_EQ(moment->month, each.month);
        EXPECT_EQ(moment->day, each.day);
        EXPECT_EQ(moment->milliseconds, each.hour * 3'600'000);
        // Half a day before day nothing and half a day behind it are the same moment.
        EXPECT_EQ(DateOf(*moment).days, each.days == -0.5 ? 0.5 : each.days);
    }
    EXPECT_FALSE(MomentOf({1e9}));
    EXPECT_FALSE(MomentOf({-657435}));
}

ado::Field FieldOf(DataType type, int size = 0) {
    ado::Field field;
    field.type = type;
    field.definedSize = size;
    return field;
}

TEST(FieldTextTest, ADialogsTextIsStoredAndItsProblemTold) {
    const struct {
        DataType type;
        const char16_t* text;
        ado::Value value;
        Problem problem;
    } cases[] = {
        {DataType::Integer, u"12", 12.0, None},
        {DataType::Integer, u"12 Stück", 12.0, NoNumber},
        {DataType::Integer, u"1,5", 1.0, NoNumber},
        {DataType::Integer, u"1.5", 1.5, NotWhole},
        {DataType::Integer, u"", 0.0, NoNumber},
        {DataType::Integer, u"99999999999 kg", 99999999999.0, OutOfRange},
        {DataType::SmallInt, u"32768", 32768.0, OutOfRange},
        {DataType::UnsignedTinyInt, u"-1", -1.0, OutOfRange},
        {DataType::Double, u"0,5", 0.5, None},
        {DataType::Double, u"abc", 0.0, NoNumber},
        {DataType::Single, u"1e39", 1e39, OutOfRange},
        {DataType::VarWChar, u"", Text(std::u16string_view(u"\0", 1)), None},
        {DataType::VarWChar, u" a ", Text(u" a "), None},
        {DataType::VarWChar, u"123456", Text(u"123456"), TooLong},
        {DataType::LongVarWChar, u"123456", Text(u"123456"), None},
        {DataType::Boolean, u"1", ado::Null(), NotEditable},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(Ascii(each.text));
        const Reading read = ReadDialogText(each.text, FieldOf(each.type, 5));
        EXPECT_EQ(read.value, each.value);
        EXPECT_EQ(read.problem, each.problem);
    }
}

TEST(FieldTextTest, ACellIsTakenWholeOrNotAtAll) {
    const struct {
        const char* column;  // of a trend; empty: any other
        DataType type;
        const char16_t* text;
        ado::Value value;
        Problem problem;
        bool asStored = false;
    } cases[] = {
        {"Factor", DataType::Double, u"-0,5", -0.5, None},
        {"Factor", DataType::Double, u"1.000,5", {}, NoNumber},
        {"Factor", DataType::Double, u" ", ado::Null(), None},
        {"FilterDepth", DataType::Integer, u"12", 12, None},
        {"FilterDepth", DataType::Integer, u"1,0", 1, None},
        {"FilterDepth", DataType::Integer, u"1,5", 1.5, NotWhole},
        {"FilterDepth", DataType::Integer, u"99999999999", 99999999999.0, OutOfRange},
        {"Unit", DataType::VarWChar, u" bar", Text(u" bar"), None},
        {"Unit", DataType::VarWChar, u"", ado::Null(), None},
        {"Unit", DataType::VarWChar, u"123456", Text(u"123456"), TooLong},
        {"Filter", DataType::SmallInt, u"4", 4, None},
        {"Filter", DataType::SmallInt, u"MITTELUNG", 2, None},
        {"Filter", DataType::SmallInt, u"120", {}, NotListed},
        {"Filter", DataType::SmallInt, u"120", 120, None, true},
        {"Filter", DataType::SmallInt, u"", {}, NotListed},
        {"HysteresisMode", DataType::SmallInt, u"99", {}, NotListed},
        {"VDrawMode", DataType::SmallInt, u"4", 4, None},
        {"VLineStyle", DataType::SmallInt, u"10", {}, NotListed},
        {"VLineColor", DataType::Integer, u"#0000FF", 0xFF0000, None},
        {"VLineColor", DataType::Integer, u"#00F", {}, NoColour},
        {"VLineColor", DataType::Integer, u"16711680", 0xFF0000, None},
        {"VLineColor", DataType::Integer, u"99999999", {}, NoColour},
        {"VLineColor", DataType::Integer, u"99999999", 99999999, None, true},
        {"VLineColor", DataType::Integer, u"&H80000005", static_cast<std::int32_t>(0x80000005),
         None},
        {"VLineColor", DataType::Integer, u"-2147483643", static_cast<std::int32_t>(0x80000005),
         None},
        {"VLineColor", DataType::Integer, u"&H800000FF", {}, NoColour},
        {"VLineColor", DataType::Integer, u"", ado::Null(), None},
        {"", DataType::Integer, u"120", 120, None},
        {"", DataType::VarBinary, u"1", {}, NotEditable},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(std::string(each.column) + " " + Ascii(each.text));
        CellRules rules;
        rules.column = FindTrendColumn(each.column);
        rules.codeOf = [](std::u16string_view text) {
            return text == u"MITTELUNG" ? std::optional(2) : std::nullopt;
        };
        rules.asStored = each.asStored;
        const Reading read = ReadCell(each.text, FieldOf(each.type, 5), rules);
        EXPECT_EQ(read.problem, each.problem);
        EXPECT_EQ(read.value, each.value);
    }
}

}  // namespace
}  // namespace project
