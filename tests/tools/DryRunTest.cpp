#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "ToolTesting.h"

namespace tools {
namespace {

using testing::AllOf;
using testing::HasSubstr;

/// All that a change of a project could leave behind.
struct Footprint {
    explicit Footprint(const ProjectCopy& copy)
        : modified(std::filesystem::last_write_time(copy.Path())) {
        std::ifstream file(copy.Path(), std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(file), {});
        for (const auto& entry : std::filesystem::directory_iterator(copy.Path(""))) {
            names.insert(entry.path().filename().string());
        }
    }
    bool operator==(const Footprint&) const = default;

    std::filesystem::file_time_type modified;
    std::string bytes;
    std::set<std::string> names;
};

TEST(DryRunTest, SaysWhatWouldChangeAndChangesNotAByte) {
    const ProjectCopy copy(kBrewery);
    std::ofstream(copy.Path("new.csv")) << "ID,LCID\n7,1036\n8,1040\n";
    std::ofstream(copy.Path("again.csv")) << "LCID\n1031\n1036\n";
    std::ofstream(copy.Path("wrong.csv"))
        << "ID,LCID\n7,1036\n1,1040\n8,many\n9,1041\n7,1042\n10\n11,1043\n";
    std::ofstream(copy.Path("open.csv")) << "ID,Font\n7,\"Arial\n";
    const auto load = [&](const char* csv) {
        return std::vector<std::string>{"load", copy.Path(), "TcfgLanguages", copy.Path(csv)};
    };
    struct Case {
        std::vector<std::string> words;
        ExitStatus status;
        std::string out;
        std::vector<const char*> messages;
    };
    const Case cases[] = {
        {{"set", copy.Path(), "TchrArchives", "ID <= 2", "CacheSize=7"},
         kSuccess,
         "2 rows would change\n",
         {}},
        {{"set", copy.Path(), "TcfgLanguages", "", "LCID=1033", "Font=Arial"},
         kSuccess,
         "2 rows would change\n",
         {}},
        {{"set", copy.Path(), "TcfgLanguages", "", "LCID=1033"},
         kSuccess,
         "1 of 2 rows would change; the others hold these values already\n",
         {}},
        {{"set", copy.Path(), "TcfgLanguages", "", "ID=1"}, kFailure, "", {"TcfgLanguages"}},
        {{"delete", copy.Path(), "TchrTrends", "ArchiveID = 3"},
         kSuccess,
         "18 rows would be deleted\n",
         {}},
        {{"delete", copy.Path(), "TchrTrends", "Colour = 3"}, kFailure, "", {"Colour"}},
        {load("new.csv"), kSuccess, "2 rows would be added\n", {}},
        {load("again.csv"),
         kSuccess,
         "2 rows would be added\n",
         {"the table held 1 of 2 rows already", "would be there once more"}},
        {load("wrong.csv"),
         kFailure,
         "4 of 7 rows would be refused, so that nothing would be added\n",
         {"Line 3: ", "Line 4: ", "\"many\" is no whole number",
          "Line 6: ", "Line 7: 1 values instead of 2"}},
        {load("open.csv"), kFailure, "", {"closing quote", "Nothing has been changed."}},
    };
    const Footprint before(copy);
    for (Case c : cases) {
        c.words.emplace_back("--dry-run");
        const Outcome outcome = RunTool(c.words);
        SCOPED_TRACE(outcome.out + outcome.err);
        EXPECT_EQ(outcome.status, c.status);
        EXPECT_EQ(outcome.out, c.out);
        for (const char* message : c.messages) EXPECT_THAT(outcome.err, HasSubstr(message));
        EXPECT_EQ(outcome.err.empty(), c.messages.empty());
        EXPECT_TRUE(Footprint(copy) == before);
    }
}

// A relationship that deletes along names the rows of the other table.
TEST(DryRunTest, TellsOfRowsThatWouldGoAlong) {
    const ProjectCopy copy(std::string(KV_TEST_DATA "/indexTestV2000.mdb"));
    const std::string tables = RunTool({"tables", copy.Path()}).out;
    const Outcome dry = RunTool({"delete", "--dry-run", copy.Path(), "Table2", ""});
    EXPECT_EQ(dry.err, "");
    EXPECT_THAT(dry.out, AllOf(HasSubstr("rows would be deleted, and "),
                               HasSubstr(" of Table1 with them\n")));
    EXPECT_EQ(RunTool({"tables", copy.Path()}).out, tables);
}

// Without a key in the CSV file nothing refuses the second load; it must not go unnoticed.
TEST(DryRunTest, ALoadThatDoublesRowsSaysSo) {
    const ProjectCopy copy(kBrewery);
    std::ofstream(copy.Path("texts.csv")) << "L1031,L1033\nErste,First\nZweite,Second\n,\n";
    const std::vector<std::string> load = {"load", copy.Path(), "TidxTexts",
                                           copy.Path("texts.csv")};
    EXPECT_EQ(RunTool(load).err, "");
    const Outcome again = RunTool(load);
    EXPECT_EQ(again.status, kSuccess);
    EXPECT_EQ(again.out, "3 rows\n");
    EXPECT_THAT(again.err, AllOf(HasSubstr("warning: the table held all 3 rows already"),
                                 HasSubstr("are there once more now")));

    // With one nothing is doubled, and the message says that nothing has happened.
    std::ofstream(copy.Path("keys.csv")) << "ID,L1031\n9001,Erste\n";
    const std::vector<std::string> keys = {"load", copy.Path(), "TidxTexts", copy.Path("keys.csv")};
    EXPECT_EQ(RunTool(keys).err, "");
    const Outcome refused = RunTool(keys);
    EXPECT_EQ(refused.status, kFailure);
    EXPECT_THAT(refused.err, AllOf(HasSubstr("Line 2"), HasSubstr("Nothing has been changed.")));
}

}  // namespace
}  // namespace tools
