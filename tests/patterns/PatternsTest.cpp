#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "patterns/KeptPatterns.h"
#include "patterns/TrendPlan.h"
#include "project/ProjectTesting.h"

namespace patterns {
namespace {

using Problem = TrendPlan::Problem;

TrendPatterns Tanks() {
    TrendPatterns tanks;
    tanks.name = u"Tank {9..10} {Temperatur|Druck}";
    tanks.variable = u"PLC.T{09..10}.{TI|PI}";
    tanks.texts = {{"L1031", u"{2} in Tank {1}"}, {"L1033", u""}};
    tanks.entries[{1, 0}] = {u"°C", u"-10", u"120,5", u"#FF0000"};
    tanks.entries[{1, 1}] = {u"bar", u"", u"", u""};
    return tanks;
}

/// In the archive "Öfen", which has the trends "A" and "B".
class PlanTest : public testing::Test {
protected:
    PlanTest() {
        project_.AddInOrder();
        archive_ = ReadArchive(project_.connection, 1);
    }
    void Plan(const TrendPatterns& patterns) {
        plan_.Set(patterns);
        plan_.Check(archive_);
    }
    std::vector<std::u16string> Column(std::size_t column) {
        std::vector<std::u16string> cells;
        for (std::size_t row = 0; row < plan_.Rows(); ++row)
            cells.push_back(plan_.Cell(row, column));
        return cells;
    }

    project::TestProject project_;
    Archive archive_;
    TrendPlan plan_;
};

TEST_F(PlanTest, WhatIsShownIsMade) {
    Plan(Tanks());
    EXPECT_EQ(plan_.ProblemCount(), 0U);
    EXPECT_EQ(
        Column(TrendPlan::kVariable),
        (std::vector<std::u16string>{u"PLC.T09.TI", u"PLC.T09.PI", u"PLC.T10.TI", u"PLC.T10.PI"}));
    EXPECT_EQ(Column(plan_.UnitColumn()),
              (std::vector<std::u16string>{u"°C", u"bar", u"°C", u"bar"}));
    plan_.Correct(3, TrendPlan::kName, u"Tank 10 p");
    plan_.LeaveOut(0, true);
    plan_.Check(archive_);
    EXPECT_EQ(plan_.Count(), 3U);

    const Made made = MakeTrends(project_.connection, 1, plan_.Trends());
    EXPECT_TRUE(made.isDone);
    ASSERT_EQ(made.ids.size(), 3U);
    project::Rows rows(project_.connection);
    ASSERT_TRUE(rows.SeekTrend(made.ids[1]));
    const ado::Recordset& trend = rows.Trends();
    EXPECT_EQ(project::NameOf(trend), u"Tank 10 Temperatur");
    EXPECT_EQ(ado::ToText(trend.Get("TrendVar")), u"PLC.T10.TI");
    EXPECT_EQ(trend.Get("VMin"), ado::Value(-10.0));
    EXPECT_EQ(trend.Get("VMax"), ado::Value(120.5));
    EXPECT_EQ(trend.Get("VLineColor"), ado::Value(std::int32_t{0x0000FF}));
    ASSERT_TRUE(rows.SeekTextOf(trend));
    EXPECT_EQ(ado::ToText(rows.Texts().Get("L1031")), u"Temperatur in Tank 10");
    EXPECT_EQ(ado::ToText(rows.Texts().Get("Name")), u"IdxTank 10 Temperatur");
    ASSERT_TRUE(rows.SeekTrend(made.ids[2]));
    EXPECT_EQ(project::NameOf(rows.Trends()), u"Tank 10 p");
    EXPECT_EQ(rows.Trends().Get("VMax"), ado::Value(100.0)) << "as every new trend";

    // Another one has the names by now: nothing is made.
    const Made again = MakeTrends(project_.connection, 1, plan_.Trends());
    EXPECT_FALSE(again.isDone);
    EXPECT_EQ(again.taken, 3U);
    // Given up in the middle.
    TrendPatterns others = Tanks();
    others.name = u"{1..4}";
    others.variable = others.texts[0].second = u"";
    Plan(others);
    const auto stop = [](std::size_t made_) { return made_ < 2; };
    EXPECT_FALSE(MakeTrends(project_.connection, 1, plan_.Trends(), stop).isDone);
    std::ignore = rows.SeekTrendsOf(1);
    EXPECT_EQ(rows.Trends().RecordCount(), 5U);
}

TEST_F(PlanTest, WhatCannotBeMadeIsMarked) {
    TrendPatterns patterns = Tanks();
    patterns.name = u"{a|C|c |B}";
    patterns.variable = patterns.texts[0].second = u"";
    patterns.entries = {{{0, 1}, {std::u16string(33, u'x'), u"1e", u"", u"red"}}};
    Plan(patterns);
    const std::vector<Problem> expected{Problem::NameDouble, Problem::NameDouble,
                                        Problem::NameDouble, Problem::NameDouble};
    for (std::size_t row = 0; row < expected.size(); ++row) {
        EXPECT_EQ(plan_.ProblemOf(row, TrendPlan::kName), expected[row]) << row;
    }
    EXPECT_EQ(plan_.ProblemOf(1, plan_.UnitColumn()), Problem::TooLong);
    EXPECT_EQ(plan_.ProblemOf(1, plan_.SmallestColumn()), Problem::NoNumber);
    EXPECT_EQ(plan_.ProblemOf(1, plan_.ColourColumn()), Problem::NoColour);
    EXPECT_EQ(plan_.ProblemCount(), 7U);
    // Left out, corrected.
    plan_.LeaveOut(0, true);
    plan_.LeaveOut(1, true);
    plan_.Correct(3, TrendPlan::kName, u" ");
    plan_.Check(archive_);
    EXPECT_EQ(plan_.ProblemCount(), 1U);
    EXPECT_EQ(plan_.ProblemOf(3, TrendPlan::kName), Problem::NameEmpty);

    // A correction lives as long as the name that it belongs to.
    patterns.variable = u"x";
    Plan(patterns);
    EXPECT_TRUE(plan_.IsCorrected(3, TrendPlan::kName));
    patterns.texts[1].second = u"{1..2";
    Plan(patterns);
    ASSERT_TRUE(plan_.Wrong());
    EXPECT_EQ(plan_.Wrong()->column, 3U);
    EXPECT_EQ(plan_.Rows(), 0U);
    patterns.name = u"{1..4}";
    patterns.texts[1].second = u"";
    Plan(patterns);
    EXPECT_FALSE(plan_.IsCorrected(3, TrendPlan::kName));
}

TEST_F(PlanTest, PatternsAreKeptBesideTheProject) {
    const QString file = kept::FileOf(QString::fromStdString(project_.path));
    EXPECT_TRUE(kept::Load(file).isEmpty());
    TrendPatterns other;
    other.name = u"{1..2}";
    for (const TrendPatterns& each : {Tanks(), other, Tanks()}) EXPECT_TRUE(kept::Keep(file, each));
    const QList<TrendPatterns> found = kept::Load(file);
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0].name, Tanks().name);
    EXPECT_EQ(found[0].texts, Tanks().texts);
    EXPECT_EQ(found[0].entries, Tanks().entries);
    EXPECT_EQ(found[1].name, other.name);
    EXPECT_FALSE(kept::Keep(QStringLiteral("/nowhere/at/all"), other));
}

}  // namespace
}  // namespace patterns
