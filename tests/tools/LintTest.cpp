#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <regex>
#include <set>

#include "ToolTesting.h"

namespace tools {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

const std::string kFaulty = std::string(KV_TEST_DATA "/Stadtwerke.kvs");

std::size_t Count(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++count;
    return count;
}

TEST(LintTest, TheExitStatusTellsWhetherThereAreFindings) {
    const ProjectCopy empty(kBrewery);
    const std::string clean = empty.Path("new.kvs");
    ASSERT_EQ(RunTool({"new", clean}).status, kSuccess);
    const struct {
        std::vector<std::string> words;
        ExitStatus status;
        const char* out;
        const char* err;
    } cases[] = {
        {{clean}, kSuccess, "", ""},
        {{"--format", "json", clean}, kSuccess, "[]\n", ""},
        {{kFaulty}, kFailure, "error: TchrTrends/924/Maximum: trend \"Drehzahl Pumpe 2\"", ""},
        {{"--rules", "text-without-owner", kFaulty}, kFailure, "note: TidxTexts/3803: ", ""},
        {{"--rules", "text-without-owner", "--fail-on", "warning", kFaulty},
         kSuccess,
         "note: TidxTexts/3803: ",
         ""},
        {{"--rules", "nonsense", kFaulty}, kUsage, "", "there is no rule 'nonsense'"},
        {{"--fail-on", "off", kFaulty}, kUsage, "", "unknown fail-on 'off'"},
        {{"--format", "csv", kFaulty}, kUsage, "", "unknown format 'csv'"},
        {{empty.Path("none.kvs")}, kFailure, "", "none.kvs: "},
        {{KV_TEST_DATA "/indexTestV2000.mdb"}, kFailure, "", "TchrArchives"},
    };
    for (const auto& each : cases) {
        std::vector<std::string> words = {"lint"};
        words.insert(words.end(), each.words.begin(), each.words.end());
        const Outcome done = RunTool(words);
        EXPECT_EQ(done.status, each.status) << each.words.front();
        EXPECT_THAT(done.out, HasSubstr(each.out));
        EXPECT_THAT(done.err, HasSubstr(each.err));
        EXPECT_EQ(done.err.empty(), std::string(each.err).empty()) << done.err;
    }
}

TEST(LintTest, RulesCanBeChosenAndLeftOut) {
    const auto lines = [](const std::string& rules) {
        return Count(RunTool({"lint", "--rules", rules, kFaulty}).out, "\n");
    };
    const std::size_t all = Count(RunTool({"lint", kFaulty}).out, "\n");
    EXPECT_EQ(lines("factor-zero,unlimited"), 3U);
    EXPECT_EQ(lines("-factor-zero,-unlimited"), all - 3);
}

TEST(LintTest, JsonIsAListOfObjectsWithWhatFindsTheRow) {
    const Outcome done = RunTool({"lint", "--format", "json", "--rules", "code-unknown", kFaulty});
    EXPECT_THAT(
        done.out,
        AllOf(StartsWith("[\n{\"rule\":\"code-unknown\",\"severity\":\"error\",\"table\":"
                         "\"TchrArchives\",\"id\":52,\"column\":\"Type\",\"message\":"
                         "\"archive \\\"Fernwärme Übergabe 9\\\" holds the code 6 in Type, which "
                         "has no meaning\"},\n{"),
              testing::EndsWith("}\n]\n")));
    EXPECT_EQ(Count(done.out, "\"rule\":"), 5U);
}

// What readers of the format need: version, driver, rules, and for each result its rule by id and
// index, message, both places and a fingerprint.
TEST(LintTest, SarifHasAllThatItsReadersNeed) {
    const Outcome done = RunTool({"lint", "--format", "sarif", kFaulty});
    EXPECT_THAT(done.out, AllOf(HasSubstr("\"version\":\"2.1.0\""),
                                HasSubstr("\"driver\":{\"name\":\"kvs lint\""),
                                HasSubstr("\"fullyQualifiedName\":\"TchrTrends/924/Maximum\""),
                                HasSubstr("Stadtwerke.kvs\"},\"region\":{\"startLine\":1}}")));
    const std::size_t results = Count(RunTool({"lint", kFaulty}).out, "\n");
    for (const char* member : {"\"ruleId\":", "\"ruleIndex\":", "\"message\":",
                               "\"physicalLocation\":", "\"logicalLocations\":"}) {
        EXPECT_EQ(Count(done.out, member), results) << member;
    }
    std::set<std::string> fingerprints;
    const std::regex form("\"finding/v1\":\"([0-9a-f]{16})\"");
    for (std::sregex_iterator at(done.out.begin(), done.out.end(), form), end; at != end; ++at) {
        fingerprints.insert((*at)[1]);
    }
    EXPECT_EQ(fingerprints.size(), results);
}

TEST(LintTest, WhatIsAcceptedIsLeftOutAndMarked) {
    const ProjectCopy copy(kFaulty);
    const auto lint = [&](std::vector<std::string> words) {
        words.insert(words.begin(), "lint");
        words.push_back(copy.Path());
        return RunTool(words);
    };
    const struct {
        std::vector<std::string> words;
        ExitStatus status;
        const char* err;
    } wrong[] = {
        {{"--accept", "TchrTrends/269"}, kUsage, "needs a --reason"},
        {{"--reason", "so"}, kUsage, "are for --accept"},
        {{"--accept", "TchrTrends/26", "--reason", "so"}, kFailure, "neither a rule nor"},
        {{"--accept", "unlimited", "--reason", "so", "--until", "now"}, kUsage, "no day"},
    };
    for (const auto& each : wrong) {
        const Outcome done = lint(each.words);
        EXPECT_EQ(done.status, each.status) << each.words.back();
        EXPECT_THAT(done.err, HasSubstr(each.err));
    }
    const std::size_t all = Count(lint({}).out, "\n");
    EXPECT_EQ(lint({"--accept", "TchrTrends/269", "--reason", "inlet"}).status, kSuccess);
    EXPECT_EQ(lint({"--accept", "text-missing", "--reason", "to do", "--by", "mk"}).status,
              kSuccess);
    EXPECT_EQ(Count(lint({}).out, "\n"), all - 13);
    const std::string sarif = lint({"--format", "sarif"}).out;
    EXPECT_EQ(Count(sarif, "\"suppressions\":[]"), all - 13);
    EXPECT_EQ(Count(sarif, "\"status\":\"accepted\",\"justification\":\"to do\""), 12U);

    // Rules that are not looked for say nothing of what was accepted of them.
    ASSERT_EQ(RunTool({"set", copy.Path(), "TchrTrends", "ID = 269", "VMin=0"}).status, kSuccess);
    EXPECT_THAT(lint({}).err, HasSubstr("found no longer with these values: range-inverted at "
                                        "TchrTrends/269/VMin (inlet)"));
    EXPECT_EQ(lint({"--rules", "unlimited"}).err, "");
}

TEST(LintTest, CuresDoAwayWithFindingsAndLeaveTheFileSound) {
    const ProjectCopy copy(kFaulty);
    const auto lint = [&](std::vector<std::string> words) {
        words.insert(words.begin(), "lint");
        words.push_back(copy.Path());
        return RunTool(words);
    };
    EXPECT_EQ(lint({"--cure", "some"}).status, kUsage);
    EXPECT_EQ(lint({"--dry-run"}).status, kUsage);
    EXPECT_EQ(lint({"--cure", "safe", "--format", "json"}).status, kUsage);
    EXPECT_EQ(lint({"--cure", "safe", "--accept", "unlimited", "--reason", "x"}).status, kUsage);

    ASSERT_EQ(lint({"--accept", "factor-zero", "--reason", "spare"}).status, kSuccess);
    const Outcome shown = lint({"--cure", "all", "--dry-run"});
    EXPECT_EQ(shown.status, kSuccess);
    EXPECT_THAT(shown.out, AllOf(HasSubstr("TchrTrends/269/VMin: 500 -> 10 [range-inverted]\n"),
                                 HasSubstr("TchrTrends/1416: gets a text [trend-without-text]\n"),
                                 testing::Not(HasSubstr("factor-zero"))));
    ASSERT_EQ(RunTool({"lint", "--rules", "-factor-zero", copy.Path()}).out,
              RunTool({"lint", "--rules", "-factor-zero", kFaulty}).out)
        << "a dry run has written";

    const Outcome safe = lint({"--cure", "safe"});
    EXPECT_EQ(safe.status, kSuccess) << safe.err;
    EXPECT_THAT(safe.out, AllOf(HasSubstr("[text-shared]"), HasSubstr("[file-missing]"),
                                testing::Not(HasSubstr("[range-inverted]"))));
    EXPECT_EQ(lint({"--cure", "safe"}).out, "") << "nothing is left for it";
    EXPECT_EQ(lint({"--cure", "all"}).status, kSuccess);
    const Outcome left = lint({});
    EXPECT_THAT(left.out, HasSubstr("[variable-unknown]"));
    EXPECT_EQ(Count(left.out, "\n"),
              Count(left.out, "[variable-") + Count(left.out, "[unlimited]"));
    EXPECT_THAT(lint({"--rules", "factor-zero"}).out, "") << "accepted";
    const Outcome check = RunTool({"check", copy.Path()});
    EXPECT_EQ(check.status, kSuccess);
    EXPECT_EQ(Count(check.out, "\n"), Count(RunTool({"check", kFaulty}).out, "\n")) << check.out;
}

// Compacting puts rows elsewhere; a row that is stored anew is the last one of its table.
TEST(LintTest, FindingsAreTheSameInAnyOrderOfRows) {
    const ProjectCopy copy(kFaulty);
    const auto lint = [&] { return RunTool({"lint", "--format", "sarif", copy.Path()}).out; };
    const std::string before = lint();
    ASSERT_EQ(
        RunTool({"set", copy.Path(), "TchrTrends", "ID < 1000", "Comment=" + std::string(200, 'x')})
            .status,
        kSuccess);
    ASSERT_EQ(RunTool({"compact", copy.Path()}).status, kSuccess);
    EXPECT_EQ(lint(), before);
}

}  // namespace
}  // namespace tools
