#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "ToolTesting.h"

namespace tools {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class MergeCommandTest : public testing::Test {
protected:
    void SetUp() override {
        for (const std::string& path : {base_, mine_, theirs_}) fs::copy_file(kBrewery, path);
    }
    static void Do(const std::vector<std::string>& words) {
        const Outcome outcome = RunTool(words);
        ASSERT_EQ(outcome.status, kSuccess) << outcome.err;
    }
    Outcome MergeTo(const std::string& result, const std::vector<std::string>& options = {}) {
        std::vector<std::string> words = {"merge", base_, mine_, theirs_, "-o", result};
        words.insert(words.end(), options.begin(), options.end());
        return RunTool(words);
    }
    std::set<std::string> Names() {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(fs::path(base_).parent_path())) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    ProjectCopy copy_{kBrewery};
    std::string base_ = copy_.Path("base.kvs");
    std::string mine_ = copy_.Path("mine.kvs");
    std::string theirs_ = copy_.Path("theirs.kvs");
    std::string result_ = copy_.Path("result.kvs");
};

TEST_F(MergeCommandTest, ListsTheConflictsOfAResultThatIsThere) {
    Do({"set", mine_, "TchrTrends", "ID = 5", "Unit=a", "Comment=mine"});
    Do({"set", theirs_, "TchrTrends", "ID = 5", "Unit=b", "Maximum=12"});
    Do({"delete", theirs_, "TchrTrends", "ID = 7"});
    Do({"set", mine_, "TchrTrends", "ID = 7", "Comment=x"});
    Do({"set", mine_, "TchrTrends", "ID = 8", "Name=x"});
    Do({"set", theirs_, "TchrTrends", "ID = 9", "Name=X"});
    const Outcome outcome = MergeTo(result_);
    EXPECT_EQ(outcome.status, kDiffers) << outcome.err;
    EXPECT_EQ(outcome.out,
              R"(conflict: trend 5 "Maischbottich pH", Unit: changed in both; mine is kept
  base:   "pH"
  mine:   "a"
  theirs: "b"
conflict: trend 7 "Würzepfanne Temperatur": deleted in theirs, changed or used in mine; it is kept
conflict: trend 9 "X": has the same name as trend 8 "x"
)");
    EXPECT_EQ(RunTool({"check", result_}).out, "");
    EXPECT_EQ(RunTool({"diff", mine_, result_}).out,
              R"(trend 5 "Maischbottich pH" in archive 1 "Sudhaus": changed
  Maximum: "14" -> "12"
trend 9 "X" in archive 1 "Sudhaus": renamed from "Würzepfanne Füllstand"
)");
    EXPECT_THAT(Names(),
                ElementsAre("base.kvs", "mine.kvs", "project.kvs", "result.kvs", "theirs.kvs"));

    fs::remove(result_);
    EXPECT_EQ(MergeTo(result_, {"--format", "json"}).out, R"([
{"table":"TchrTrends","kind":"field","id":5,"name":"Maischbottich pH","column":"Unit","base":"pH","mine":"a","theirs":"b"},
{"table":"TchrTrends","kind":"deleted-theirs","id":7,"name":"Würzepfanne Temperatur"},
{"table":"TchrTrends","kind":"name-doubled","id":9,"name":"X","other":8}
]
)");
}

TEST_F(MergeCommandTest, TakesThePlaceOfMineAndOfNothingElse) {
    Do({"set", mine_, "TchrTrends", "ID = 5", "Comment=mine"});
    Do({"set", theirs_, "TchrTrends", "ID = 5", "Maximum=12"});
    Do({"delete", theirs_, "TchrTrends", "ID = 9"});
    const Outcome onto = MergeTo(theirs_);
    EXPECT_EQ(onto.status, kTrouble);
    EXPECT_THAT(onto.err, HasSubstr("already; nothing has been written"));

    fs::permissions(mine_, fs::perms::owner_read | fs::perms::owner_write);
    const fs::perms before = fs::status(mine_).permissions();  // as the system has them
    const Outcome outcome = MergeTo(mine_);
    EXPECT_EQ(outcome.status, kSuccess) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(RunTool({"diff", theirs_, mine_}).out,
              "trend 5 \"Maischbottich pH\" in archive 1 \"Sudhaus\": changed\n"
              "  Comment: nothing -> \"mine\"\n");
    EXPECT_EQ(fs::status(mine_).permissions(), before);
    EXPECT_THAT(Names(), ElementsAre("base.kvs", "mine.kvs", "project.kvs", "theirs.kvs"));
}

TEST_F(MergeCommandTest, LeavesNothingWhereItFails) {
    const std::set<std::string> before = Names();
    EXPECT_EQ(RunTool({"merge", base_, mine_, theirs_}).status, kUsage);
    fs::resize_file(theirs_, 100'000);
    EXPECT_EQ(MergeTo(result_).status, kTrouble);
    fs::remove(theirs_);
    Do({"new", theirs_, "--lcid", "1036"});
    const Outcome outcome = MergeTo(result_);
    EXPECT_EQ(outcome.status, kTrouble);
    EXPECT_THAT(outcome.err, HasSubstr("it has the column L1036 of the table TidxTexts"));
    EXPECT_EQ(Names(), before);
}

}  // namespace
}  // namespace tools
