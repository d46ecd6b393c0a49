#include "project/Cure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "project/Changes.h"
#include "project/Schema.h"
#include "ProjectFiles.h"
#include "ProjectTesting.h"

namespace project {
namespace {

std::string NameOf(const Finding& finding) {
    return std::string(InfoOf(finding.rule).id) + ' ' + PlaceOf(finding);
}

std::multiset<std::string> NamesOf(const std::vector<Finding>& findings) {
    std::multiset<std::string> names;
    for (const Finding& finding : findings) names.insert(NameOf(finding));
    return names;
}

/// Findings that a cure is known for.
std::vector<Finding> Curable(const std::vector<Finding>& findings, bool onlySafe) {
    std::vector<Finding> curable;
    std::copy_if(findings.begin(), findings.end(), std::back_inserter(curable),
                 [&](const Finding& each) {
                     return CureOf(each) == CureKind::Safe ||
                            (!onlySafe && CureOf(each) == CureKind::ToBeLookedAt);
                 });
    return curable;
}

std::vector<Finding> FindingsOf(ado::Connection& connection) {
    return CheckProject(connection).findings;
}

bool Cure(ado::Connection& connection, const std::vector<Finding>& findings) {
    return ApplyCures(connection, PlanCures(connection, findings));
}

// One fault in a project that is in order, its cure, and the cells that the cure has written.
TEST(CureTest, EachCureDoesWhatItSays) {
    const struct {
        std::vector<Cell> faults;
        CureKind kind;
        std::vector<Cell> cured;
    } cases[] = {
        {{{kArchiveTable, 1, "Name", u" "}}, CureKind::Safe, {{kArchiveTable, 1, "Name", u"Arc1"}}},
        {{{kTrendTable, 2, "Name", u""}}, CureKind::Safe, {{kTrendTable, 2, "Name", u"Trd2"}}},
        {{{kArchiveTable, 1, "FileName", ado::Null()}},
         CureKind::Safe,
         {{kArchiveTable, 1, "FileName", u"Öfen"}}},
        {{{kTrendTable, 1, "HysteresisMode", 1}},
         CureKind::Safe,
         {{kTrendTable, 1, "HysteresisMode", 3}}},
        {{{kTrendTable, 1, "Hysteresis", u"2"}},
         CureKind::ToBeLookedAt,
         {{kTrendTable, 1, "Hysteresis", ado::Null()}}},
        {{{kTrendTable, 2, "Name", u"a"}},
         CureKind::ToBeLookedAt,
         {{kTrendTable, 1, "Name", u"A"}, {kTrendTable, 2, "Name", u"a(1)"}}},
        {{{kArchiveTable, 1, "Type", 6 + 16}},
         CureKind::ToBeLookedAt,
         {{kArchiveTable, 1, "Type", 16}}},
        {{{kArchiveTable, 1, "SampleMode", 9}, {kArchiveTable, 1, "ScanTime", 0}},
         CureKind::ToBeLookedAt,
         {{kArchiveTable, 1, "SampleMode", 1}, {kArchiveTable, 1, "ScanTime", 1000}}},
        {{{kTrendTable, 1, "HysteresisMode", 9}, {kTrendTable, 1, "Hysteresis", u"2"}},
         CureKind::ToBeLookedAt,
         {{kTrendTable, 1, "HysteresisMode", 0}, {kTrendTable, 1, "Hysteresis", u"2"}}},
        {{{kArchiveTable, 1, "ScanTime", 0}},
         CureKind::ToBeLookedAt,
         {{kArchiveTable, 1, "ScanTime", 1000}}},
        {{{kArchiveTable, 1, "FileName", u"WALZE"}},
         CureKind::ToBeLookedAt,
         {{kArchiveTable, 1, "FileName", u"WALZE"}, {kArchiveTable, 2, "FileName", u"Walze(1)"}}},
        {{{kArchiveTable, 1, "FileName", u"a?b"}, {kArchiveTable, 1, "FilePath", u"here"}},
         CureKind::ToBeLookedAt,
         {{kArchiveTable, 1, "FileName", u"a_b"}, {kArchiveTable, 1, "FilePath", u"<ProjectDir>"}}},
        {{{kArchiveTable, 1, "FileName", u"a?"}, {kArchiveTable, 2, "FileName", u"a*"}},
         CureKind::ToBeLookedAt,
         {{kArchiveTable, 1, "FileName", u"a_"}, {kArchiveTable, 2, "FileName", u"a_(1)"}}},
        {{{kTrendTable, 1, "Minimum", u"5"}, {kTrendTable, 1, "Maximum", u"0,5"}},
         CureKind::ToBeLookedAt,
         {{kTrendTable, 1, "Minimum", u"0,5"}, {kTrendTable, 1, "Maximum", u"5"}}},
        {{{kTrendTable, 1, "Factor", 0}}, CureKind::ToBeLookedAt, {{kTrendTable, 1, "Factor", 1}}},
        {{{kTextTable, 3, "L1033", ado::Null()}},
         CureKind::ToBeLookedAt,
         {{kTextTable, 3, "L1033", u"A"}}},
        {{{kGroupTable, 1, "ParentID", 5}}, CureKind::Safe, {{kGroupTable, 4, "Name", u"Archive"}}},
        {{{kGroupTable, 2, "Type", -3}}, CureKind::Safe, {{kGroupTable, 4, "Name", u"Öfen"}}},
        {{{kTrendTable, 1, "TextID", 99}},
         CureKind::Safe,
         {{kTrendTable, 1, "TextID", 5},
          {kTextTable, 5, "Name", u"IdxA"},
          {kTextTable, 5, "L1033", u"A"},
          {kTextTable, 5, "ParentID", 2}}},
        {{{kTrendTable, 2, "TextID", 3}},
         CureKind::Safe,
         {{kTrendTable, 1, "TextID", 3},
          {kTrendTable, 2, "TextID", 5},
          {kTextTable, 5, "L1031", u"A"}}},
    };
    for (const auto& each : cases) {
        TestProject project;
        project.AddInOrder();
        project.Set(each.faults);
        std::vector<Finding> findings = FindingsOf(project.connection);
        std::erase_if(findings, [](const Finding& finding) {
            return finding.rule == Rule::TextWithoutOwner;  // of a text that has been let go of
        });
        ASSERT_FALSE(findings.empty()) << each.faults.front();
        for (const Finding& finding : findings) EXPECT_EQ(CureOf(finding), each.kind);
        EXPECT_TRUE(Cure(project.connection, findings)) << each.faults.front();
        for (const Cell& cell : each.cured) {
            ado::Recordset rows;
            rows.Open(cell.table, project.connection, ado::CommandType::Table);
            rows.SetFilter("ID = " + std::to_string(cell.id));
            ASSERT_FALSE(rows.IsEOF()) << cell;
            EXPECT_EQ(ado::ToText(rows.Get(cell.column)), ado::ToText(cell.value)) << cell;
        }
        std::vector<Finding> left = FindingsOf(project.connection);
        std::erase_if(
            left, [](const Finding& finding) { return finding.rule == Rule::TextWithoutOwner; });
        EXPECT_EQ(NamesOf(left), std::multiset<std::string>()) << each.faults.front();
    }
}

/// The planted faults in a copy.
class CureFileTest : public testing::Test {
protected:
    CureFileTest() {
        OpenProject(connection_, folder_.Copy(KV_TEST_DATA "/Stadtwerke.kvs", "faulty.kvs"));
    }

    TestFolder folder_;
    ado::Connection connection_;
};

TEST_F(CureFileTest, ThePlantedFaultsOfEachRuleGoAndNoneComes) {
    const std::vector<Finding> all = FindingsOf(connection_);
    const std::multiset<std::string> before = NamesOf(all);
    std::size_t rules = 0;
    for (const RuleInfo& rule : Rules()) {
        std::vector<Finding> findings = Curable(all, false);
        std::erase_if(findings, [&](const Finding& each) { return each.rule != rule.rule; });
        if (findings.empty()) continue;
        connection_.BeginTrans();
        EXPECT_TRUE(Cure(connection_, findings)) << rule.id;
        const std::multiset<std::string> after = NamesOf(FindingsOf(connection_));
        for (const Finding& finding : findings) {
            EXPECT_FALSE(after.contains(NameOf(finding))) << NameOf(finding);
        }
        EXPECT_TRUE(std::includes(before.begin(), before.end(), after.begin(), after.end()))
            << rule.id;
        connection_.RollbackTrans();
        ++rules;
    }
    EXPECT_GT(rules, 15U);
}

TEST_F(CureFileTest, AllAtOnceLeaveWhatHasNoCure) {
    const std::vector<Finding> all = FindingsOf(connection_);
    ChangeRecorder recorder(connection_);
    ASSERT_TRUE(Cure(connection_, Curable(all, true)));
    const std::vector<Finding> left = FindingsOf(connection_);
    EXPECT_EQ(Curable(left, true).size(), 0U);
    const auto before = NamesOf(all);
    const auto after = NamesOf(left);
    EXPECT_TRUE(std::includes(before.begin(), before.end(), after.begin(), after.end()));
    ASSERT_TRUE(Cure(connection_, Curable(left, false)));
    for (const Finding& finding : FindingsOf(connection_)) {
        EXPECT_EQ(CureOf(finding), CureKind::None) << NameOf(finding);
    }
    EXPECT_TRUE(recorder.Take().IsWhole()) << "it cannot be taken back";
}

std::vector<Finding> FindingsOf(ado::Connection& connection, Rule rule) {
    std::vector<Finding> findings = FindingsOf(connection);
    std::erase_if(findings, [&](const Finding& each) { return each.rule != rule; });
    return findings;
}

TEST(CureTest, OfSeveralGroupsTheOneWithTheNameTakesTheTexts) {
    TestProject project;
    project.AddInOrder();
    project.Set({{kGroupTable, 2, "Name", u"older"}});
    const std::int32_t named = Rows(project.connection).AddGroup(1, u"öfen");
    const auto findings = FindingsOf(project.connection, Rule::ArchiveWithSeveralGroups);
    ASSERT_EQ(findings.size(), 1U);
    ASSERT_TRUE(Cure(project.connection, findings));
    EXPECT_EQ(NamesOf(FindingsOf(project.connection)), std::multiset<std::string>());
    Rows rows(project.connection);
    ASSERT_TRUE(rows.SeekGroup(1));
    EXPECT_EQ(NumberOf(rows.Groups(), "ID"), named);
    for (const std::int32_t text : {1, 3, 4}) {
        ASSERT_TRUE(rows.SeekText(text));
        EXPECT_EQ(NumberOf(rows.Texts(), "ParentID"), named) << text;
    }
}

TEST(CureTest, ATextThatAnotherTrendNamesStaysWhenOneGoes) {
    TestProject project;
    project.AddInOrder();
    project.Set({{kTrendTable, 2, "ArchiveID", 99}, {kTrendTable, 2, "TextID", 3}});
    ASSERT_TRUE(
        Cure(project.connection, FindingsOf(project.connection, Rule::TrendWithoutArchive)));
    Rows rows(project.connection);
    EXPECT_FALSE(rows.SeekTrend(2));
    EXPECT_TRUE(rows.SeekText(3));
}

TEST(CureTest, WhatHasBecomeAnotherRowIsLeftAlone) {
    TestProject project;
    project.AddInOrder();
    project.Set({{kTrendTable, 1, "VMin", 101}, {kTrendTable, 2, "Factor", 0}});
    const std::vector<Finding> findings = FindingsOf(project.connection);
    ASSERT_EQ(findings.size(), 2U);
    const std::vector<PlannedCure> cures = PlanCures(project.connection, findings);
    ASSERT_EQ(cures.size(), 2U);
    // Between plan and cure somebody has set another value: nothing of all is written.
    project.Set({{kTrendTable, 1, "VMin", 102}});
    EXPECT_FALSE(ApplyCures(project.connection, cures));
    EXPECT_EQ(NamesOf(FindingsOf(project.connection)), NamesOf(findings));
    // A text that has been found again meanwhile needs no other.
    project.Set({{kTrendTable, 1, "TextID", 99}});
    const std::vector<PlannedCure> texts =
        PlanCures(project.connection, FindingsOf(project.connection, Rule::TrendWithoutText));
    ASSERT_EQ(texts.size(), 1U);
    project.Set({{kTrendTable, 1, "TextID", 3}});
    EXPECT_FALSE(ApplyCures(project.connection, texts));
    // Neither has a limit a cure that is another one by now, nor a row that is gone.
    project.Set({{kTrendTable, 2, "Minimum", u"5"}, {kTrendTable, 2, "Maximum", u"4"}});
    const auto inverted = FindingsOf(project.connection, Rule::RangeInverted);
    project.Set({{kTrendTable, 2, "Minimum", u"3"}});
    EXPECT_EQ(PlanCures(project.connection, inverted).size(), 1U) << "VMin alone";
    Rows rows(project.connection);
    rows.BeginRemoving();
    ASSERT_TRUE(rows.RemoveTrend(2));
    EXPECT_EQ(PlanCures(project.connection, findings).size(), 1U);
}

}  // namespace
}  // namespace project
