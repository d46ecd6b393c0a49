#include "project/Check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <tuple>

#include "project/FindingText.h"
#include "project/Schema.h"
#include "ProjectTesting.h"
#include "unicode/Unicode.h"
#include "words/Words.h"

namespace project {
namespace {

/// "rule place", in the order in which they are found.
std::vector<std::string> Found(const CheckResult& result) {
    std::vector<std::string> found;
    for (const Finding& finding : result.findings) {
        found.push_back(std::string(InfoOf(finding.rule).id) + ' ' + PlaceOf(finding));
    }
    return found;
}

TEST(CheckTest, ANewProjectAndOneInOrderHaveNoFinding) {
    TestProject project;
    EXPECT_EQ(Found(CheckProject(project.connection)), std::vector<std::string>());
    project.AddInOrder();
    const CheckResult result = CheckProject(project.connection);
    EXPECT_EQ(Found(result), std::vector<std::string>());
    EXPECT_TRUE(result.notChecked.empty());
}

// Each fault on its own in a project that is in order.
TEST(CheckTest, EachFaultIsFoundWhereItIs) {
    const std::u16string full(80, u'x');
    const struct {
        std::vector<Cell> cells;
        std::vector<std::string> found;
    } cases[] = {
        {{{kArchiveTable, 1, "Name", u"  "}}, {"name-empty TchrArchives/1/Name"}},
        {{{kArchiveTable, 1, "Name", std::u16string(1, u'\0')}},
         {"name-empty TchrArchives/1/Name"}},
        {{{kArchiveTable, 2, "Name", u"ÖFEN"}},
         {"name-double TchrArchives/1/Name", "name-double TchrArchives/2/Name"}},
        {{{kArchiveTable, 1, "Name", full}}, {"length-limit TchrArchives/1/Name"}},
        {{{kArchiveTable, 1, "TextID", ado::Null()}},
         {"archive-without-text TchrArchives/1/TextID", "text-without-owner TidxTexts/1"}},
        {{{kArchiveTable, 1, "SampleMode", 9}}, {"code-unknown TchrArchives/1/SampleMode"}},
        {{{kArchiveTable, 1, "Type", 6}}, {"code-unknown TchrArchives/1/Type"}},
        {{{kArchiveTable, 1, "Type", 128}}, {}},
        {{{kArchiveTable, 1, "SampleMode", 3}}, {"variable-missing TchrArchives/1/Trigger"}},
        {{{kArchiveTable, 1, "SampleMode", 2}}, {"variable-missing TchrArchives/1/XVar"}},
        {{{kArchiveTable, 1, "SampleMode", 0}, {kArchiveTable, 1, "ScanTime", 0}},
         {"scan-time-missing TchrArchives/1/ScanTime"}},
        {{{kArchiveTable, 1, "SampleMode", 4}, {kArchiveTable, 1, "ScanTime", 0}}, {}},
        {{{kArchiveTable, 1, "Reset", u"Nowhere"}}, {"variable-unknown TchrArchives/1/Reset"}},
        {{{kArchiveTable, 1, "NewFile", u"$day"}}, {"variable-unknown TchrArchives/1/NewFile"}},
        {{{kArchiveTable, 1, "NewFile", u"$Tag"}}, {}},
        {{{kArchiveTable, 1, "Type", 1}}, {"unlimited TchrArchives/1/MaxFiles"}},
        {{{kArchiveTable, 1, "Type", 1}, {kArchiveTable, 1, "MaxSizeKb", 9}}, {}},
        {{{kArchiveTable, 1, "Type", 1},
          {kArchiveTable, 1, "MaxFiles", 9},
          {kArchiveTable, 1, "NewFile", u" "}},
         {"variable-missing TchrArchives/1/NewFile"}},
        {{{kArchiveTable, 1, "FileName", ado::Null()}}, {"file-missing TchrArchives/1/FileName"}},
        {{{kArchiveTable, 1, "FileName", ado::Null()}, {kArchiveTable, 1, "Type", 8}}, {}},
        {{{kArchiveTable, 1, "FileName", u"a?"}}, {"path-invalid TchrArchives/1/FileName"}},
        {{{kArchiveTable, 1, "FilePath", u"<ProjectDir"}},
         {"path-invalid TchrArchives/1/FilePath"}},
        {{{kArchiveTable, 1, "FilePath", u"C:data"}}, {"path-invalid TchrArchives/1/FilePath"}},
        {{{kArchiveTable, 1, "FilePath", u"\\\\server\\data"}}, {}},
        {{{kArchiveTable, 1, "FilePath", u"<projectdir>/data"}}, {}},
        {{{kArchiveTable, 1, "RedundancyFilePath", u""}, {kArchiveTable, 1, "Type", 64}},
         {"path-invalid TchrArchives/1/RedundancyFilePath"}},
        {{{kArchiveTable, 1, "FileName", u"WALZE"},
          {kArchiveTable, 1, "FilePath", u"<ProjectDir>\\"}},
         {"file-shared TchrArchives/1/FileName", "file-shared TchrArchives/2/FileName"}},
        {{{kTrendTable, 1, "ArchiveID", 77}}, {"trend-without-archive TchrTrends/1/ArchiveID"}},
        {{{kTrendTable, 1, "TextID", 77}},
         {"trend-without-text TchrTrends/1/TextID", "text-without-owner TidxTexts/3"}},
        {{{kTrendTable, 2, "TextID", 3}},
         {"text-shared TidxTexts/3", "text-without-owner TidxTexts/4"}},
        {{{kTrendTable, 2, "Name", u"a"}},
         {"name-double TchrTrends/1/Name", "name-double TchrTrends/2/Name"}},
        // The same name in another archive is no fault.
        {{{kTrendTable, 2, "Name", u"a"}, {kTrendTable, 2, "ArchiveID", 2}}, {}},
        {{{kTrendTable, 1, "TrendVar", u" "}}, {"variable-missing TchrTrends/1/TrendVar"}},
        {{{kTrendTable, 1, "TrendVar", u"pump.speed"}}, {}},
        {{{kTrendTable, 1, "ErrorValue", u"1 bar"}}, {"variable-unknown TchrTrends/1/ErrorValue"}},
        {{{kTrendTable, 1, "ErrorValue", u"-1,5e3"}}, {}},
        {{{kTrendTable, 1, "Minimum", u"9"}, {kTrendTable, 1, "Maximum", u"10"}}, {}},
        {{{kTrendTable, 1, "Minimum", u"0,5"}, {kTrendTable, 1, "Maximum", u"0.25"}},
         {"range-inverted TchrTrends/1/Minimum"}},
        {{{kTrendTable, 1, "Minimum", u"5"}, {kTrendTable, 1, "Maximum", u"Pump.Speed"}}, {}},
        {{{kTrendTable, 1, "VMin", 101}}, {"range-inverted TchrTrends/1/VMin"}},
        {{{kTrendTable, 1, "VUpper", 9}}, {"range-inverted TchrTrends/1/VLower"}},
        {{{kTrendTable, 1, "Factor", 0}}, {"factor-zero TchrTrends/1/Factor"}},
        {{{kTrendTable, 1, "Hysteresis", u"2"}},
         {"hysteresis-incomplete TchrTrends/1/HysteresisMode"}},
        {{{kTrendTable, 1, "HysteresisMode", 0}},
         {"hysteresis-incomplete TchrTrends/1/Hysteresis"}},
        {{{kTrendTable, 1, "HysteresisMode", 7}}, {"code-unknown TchrTrends/1/HysteresisMode"}},
        {{{kTextTable, 3, "L1033", ado::Null()}}, {"text-missing TidxTexts/3/L1033"}},
        // Texts in groups of other editors are theirs.
        {{{kTextTable, 3, "ParentID", 99}, {kTrendTable, 1, "TextID", 4}},
         {"text-shared TidxTexts/4"}},
        {{{kGroupTable, 2, "Type", -3}}, {"archive-without-group TchrArchives/1"}},
        {{{kGroupTable, 3, "Parameter", 1}},
         {"archive-with-several-groups TchrArchives/1", "archive-without-group TchrArchives/2"}},
        {{{kGroupTable, 3, "Parameter", 77}},
         {"archive-without-group TchrArchives/2", "group-without-archive TidxGroups/3/Parameter"}},
        {{{kGroupTable, 1, "ParentID", 5}}, {"root-group-missing TidxGroups"}},
    };
    TestProject project;
    project.AddInOrder();
    for (const auto& each : cases) {
        project.connection.BeginTrans();
        project.Set(each.cells);
        EXPECT_EQ(Found(CheckProject(project.connection)), each.found) << each.cells.front();
        project.connection.RollbackTrans();
    }
}

// The list names the row, and for some rules the column or the rows that share what is found.
TEST(CheckTest, AllPlantedFaultsAreFoundAndNothingElse) {
    ado::Connection connection;
    connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" KV_TEST_DATA
                    "/Stadtwerke.kvs;Mode=Read|Share Deny None;");
    std::vector<std::string> found;
    for (const Finding& finding : CheckProject(connection).findings) {
        const std::string rule(InfoOf(finding.rule).id);
        const bool hasColumn =
            std::set<Rule>{Rule::CodeUnknown, Rule::VariableMissing, Rule::VariableUnknown,
                           Rule::RangeInverted, Rule::TextMissing}
                .contains(finding.rule);
        found.push_back(rule + ' ' + std::string(finding.table) + ' ' + std::to_string(finding.id) +
                        (hasColumn ? ' ' + finding.column : ""));
    }
    // Of two rows that are alike each is found, and one was planted.
    std::vector<std::string> planted = {
        "name-double TchrTrends 1321", "name-double TchrTrends 1465", "name-double TchrTrends 3049",
        "file-shared TchrArchives 142"};
    std::ifstream list(KV_TEST_DATA "/Stadtwerke.problems.tsv");
    for (std::string line; std::getline(list, line);) {
        std::istringstream words(line);
        std::string rule;
        std::string table;
        std::string id;
        std::string column;
        words >> rule >> table >> id >> column;
        const bool isColumn = !column.empty() && rule != "name-double" && rule != "file-shared" &&
                              rule != "text-shared" && !rule.ends_with("-archive") &&
                              !rule.starts_with("archive-") && !rule.ends_with("-without-text");
        planted.push_back(rule + ' ' + table + ' ' + id + (isColumn ? ' ' + column : ""));
    }
    ASSERT_GT(planted.size(), 60U);
    std::sort(found.begin(), found.end());
    std::sort(planted.begin(), planted.end());
    EXPECT_EQ(found, planted);
}

TEST(CheckTest, WithoutAListOfVariablesNoneIsUnknown) {
    TestProject project;
    project.AddInOrder();
    project.DeleteAll(kVariableTable);
    const CheckResult result = CheckProject(project.connection);
    EXPECT_EQ(Found(result), std::vector<std::string>());
    EXPECT_EQ(result.notChecked, std::vector{Rule::VariableUnknown});
}

TEST(CheckTest, ARuleThatIsOffIsNotLookedForAndAnotherSeverityIsTold) {
    TestProject project;
    project.AddInOrder();
    project.Set({{kTrendTable, 1, "Factor", 0}, {kTrendTable, 1, "VMin", 101}});
    Severities severities;
    severities.Set(Rule::FactorZero, Severity::Off);
    severities.Set(Rule::RangeInverted, Severity::Note);
    const CheckResult result = CheckProject(project.connection, severities);
    ASSERT_EQ(Found(result), std::vector<std::string>{"range-inverted TchrTrends/1/VMin"});
    EXPECT_EQ(result.findings[0].severity, Severity::Note);
}

TEST(CheckTest, AFingerprintIsThatOfTheFaultAndNotOfTheName) {
    const auto fingerprint = [](const std::vector<Cell>& cells) {
        TestProject project;
        project.AddInOrder();
        project.Set({{kTrendTable, 1, "VMin", 101}});
        project.Set(cells);
        const CheckResult result = CheckProject(project.connection);
        return result.findings.empty() ? "" : FingerprintOf(result.findings[0]);
    };
    const std::string before = fingerprint({});
    EXPECT_EQ(before.size(), 16U);
    EXPECT_EQ(fingerprint({{kTrendTable, 1, "Name", u"other"}}), before);
    EXPECT_NE(fingerprint({{kTrendTable, 1, "VMin", 102}}), before);
    EXPECT_NE(fingerprint({{kTrendTable, 1, "VMax", 1}}), before);
}

TEST(CheckTest, AMessageNamesTheRowAndWhatIsWrong) {
    TestProject project;
    project.AddInOrder();
    project.Set({{kTrendTable, 1, "Minimum", u"0,5"},
                 {kTrendTable, 1, "Maximum", u"0"},
                 {kTrendTable, 2, "ArchiveID", ado::Null()}});
    const CheckResult result = CheckProject(project.connection);
    ASSERT_EQ(result.findings.size(), 2U);
    const FindingWords english{
        [](std::string_view key) { return words::FindLanguage("en")->Text(key); }};
    EXPECT_EQ(
        MessageOf(result.findings[0], english),
        u"trend \"A\" of archive \"Öfen\" has the Minimum 0,5, which lies above the Maximum 0");
    EXPECT_EQ(MessageOf(result.findings[1], english), u"trend \"B\" belongs to no archive");
    const FindingWords german{
        [](std::string_view key) { return words::FindLanguage("de")->Text(key); },
        [](std::string_view, std::string_view column) {
            return column == "Minimum" ? std::u16string(u"Kleinstwert") : std::u16string();
        }};
    EXPECT_EQ(MessageOf(result.findings[0], german, Subject::This),
              u"Der Trend hat als „Kleinstwert“ 0,5, mehr als 0 („Maximum“)");
}

TEST(CheckTest, WhatIsSharedIsToldByIdsOrByNames) {
    TestProject project;
    project.AddInOrder();
    project.Set({{kTrendTable, 2, "TextID", 3}});
    const Finding shared = CheckProject(project.connection).findings.at(0);
    FindingWords words{[](std::string_view key) { return words::FindLanguage("en")->Text(key); }};
    EXPECT_EQ(MessageOf(shared, words, Subject::This),
              u"The text belongs to several: trend \"A\" of archive \"Öfen\", trend \"B\" of "
              u"archive \"Öfen\"");
    words.tellsIds = true;
    EXPECT_EQ(MessageOf(shared, words, Subject::This),
              u"The text belongs to several: trend 1, trend 2");
}

// The rules of the table of texts and of the page, none of them forgotten.
TEST(CheckTest, EachRuleHasItsTextsInEachLanguage) {
    for (const words::Language& language : words::Languages()) {
        for (const RuleInfo& rule : Rules()) {
            for (const char* list : {"Finding.", "RuleMeaning.", "RuleAdvice."}) {
                EXPECT_FALSE(language.Text(list + TextKeyOf(rule.rule)).empty())
                    << language.Name() << ' ' << list << TextKeyOf(rule.rule);
            }
        }
    }
}

TEST(CheckTest, ACheckStopsWhenItIsToldTo) {
    ado::Connection connection;
    connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" KV_TEST_DATA
                    "/Stadtwerke.kvs;Mode=Read|Share Deny None;");
    int left = 3;
    EXPECT_THROW(std::ignore = CheckProject(connection, {}, [&] { return --left > 0; }),
                 CheckStopped);
    EXPECT_EQ(left, 0);
}

TEST(CheckTest, EachRuleHasAnIdOfItsOwnAndStandsAmongTheDocuments) {
    std::ifstream file("docs/rules.md");
    const std::string page(std::istreambuf_iterator<char>(file), {});
    std::set<std::string_view> ids;
    for (const RuleInfo& rule : Rules()) {
        EXPECT_EQ(&InfoOf(rule.rule), &rule) << rule.id;
        EXPECT_TRUE(ids.insert(rule.id).second) << rule.id;
        std::string row =
            "| `" + std::string(rule.id) + "` | " + std::string(SeverityName(rule.severity)) + " |";
        for (const char* list : {"RuleMeaning.", "RuleAdvice."}) {
            std::string text =
                unicode::ToUtf8(words::FindLanguage("en")->Text(list + TextKeyOf(rule.rule)));
            // No tag to those who read the page.
            if (const auto at = text.find('<'); at != text.npos) text.insert(at, "\\");
            row += ' ' + text + " |";
        }
        EXPECT_NE(page.find(row), page.npos) << row;
    }
}

}  // namespace
}  // namespace project
