#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "patterns/ArchivePlan.h"
#include "patterns/KeptPatterns.h"
#include "patterns/TrendPlan.h"
#include "project/Names.h"
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

TEST_F(PlanTest, AnArchiveIsCopiedWithWhatStandsInIt) {
    project_.Set({{project::kTrendTable, 1, "Name", u"T01 Druck"},
                  {project::kTrendTable, 1, "TrendVar", u"PLC.T01.P/T01"},
                  {project::kTextTable, 3, "L1031", u"Druck in T01"},
                  {project::kArchiveTable, 1, "Trigger", u"PLC.T01.Go"},
                  {project::kArchiveTable, 1, "FileName", u"ofen"}});
    const auto original = ReadOriginal(project_.connection, 1);
    ASSERT_TRUE(original);
    ArchivePlan plan;
    plan.Set({u"Tank {02..03}", u"T01", u"T{02..03}"}, *original);
    ASSERT_FALSE(plan.Wrong());
    EXPECT_EQ(plan.ProblemCount(), 0U);
    const auto made = CopyArchives(project_.connection, 1, plan);
    ASSERT_EQ(made.size(), 2U);
    project::Rows rows(project_.connection);
    ASSERT_TRUE(rows.SeekArchive(made[1]));
    EXPECT_EQ(project::NameOf(rows.Archives()), u"Tank 03");
    EXPECT_EQ(ado::ToText(rows.Archives().Get("Trigger")), u"PLC.T03.Go");
    EXPECT_EQ(ado::ToText(rows.Archives().Get("FileName")), project::FileNameOf(u"Tank 03"));
    ASSERT_TRUE(rows.SeekTextOf(rows.Archives()));
    EXPECT_EQ(project::NameOf(rows.Texts()), u"archTank 03");
    ASSERT_TRUE(rows.SeekTrendsOf(made[1]));
    EXPECT_EQ(rows.Trends().RecordCount(), 2U);
    EXPECT_EQ(project::NameOf(rows.Trends()), u"T03 Druck");
    EXPECT_EQ(ado::ToText(rows.Trends().Get("TrendVar")), u"PLC.T03.P/T03");
    ASSERT_TRUE(rows.SeekTextOf(rows.Trends()));
    EXPECT_EQ(project::NameOf(rows.Texts()), u"IdxT03 Druck");
    EXPECT_EQ(ado::ToText(rows.Texts().Get("L1031")), u"Druck in T03");

    // What cannot be made.
    using Trouble = ArchivePlan::Problem;
    plan.Set({u"{Öfen|Halle|x|x| }", u"", u""}, *original);
    const Trouble expected[] = {Trouble::NameDouble, Trouble::None, Trouble::NameDouble,
                                Trouble::NameDouble, Trouble::NameEmpty};
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(plan.ProblemOf(i), expected[i]) << i;
    }
    plan.Set({u"Halle", u"T01 Druck", u"b"}, *original);
    EXPECT_EQ(plan.ProblemOf(0), Trouble::TrendsDouble);
    plan.Set({u"Halle {1..2}", u"x", u"{1..3}"}, *original);
    ASSERT_TRUE(plan.Wrong());
    EXPECT_FALSE(plan.Wrong()->isName);
    plan.Set({u"Halle {1..2}", u"", u""}, *original);
    const auto stop = [](std::size_t archives) { return archives < 1; };
    EXPECT_TRUE(CopyArchives(project_.connection, 1, plan, stop).empty());
    rows.Archives().SetFilter("");
    EXPECT_EQ(rows.Archives().RecordCount(), 4U);
}

}  // namespace
}  // namespace patterns
