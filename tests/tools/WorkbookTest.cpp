#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "support/SmallDisk.h"
#include "ToolTesting.h"

namespace tools {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

std::string ContentOf(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

// Which of the forms a file has shows in its name when it is made, in its content when it is read.
TEST(WorkbookTest, ItGoesOutAndComesBack) {
    const ProjectCopy project(kBrewery);
    const std::string before = ContentOf(project.Path());
    const std::string book = project.Path("out.xlsx");
    ASSERT_EQ(RunTool({"export", project.Path(), "-o", book}).status, kSuccess);
    EXPECT_THAT(ContentOf(book), StartsWith("PK"));
    const Outcome same = RunTool({"import", project.Path(), book});
    EXPECT_EQ(same.status, kSuccess) << same.err;
    EXPECT_EQ(same.out,
              "Archives: 0 new, 0 changed, 14 as they are; "
              "Trends: 0 new, 0 changed, 228 as they are\n");
    EXPECT_TRUE(ContentOf(project.Path()) == before);

    const Outcome trends =
        RunTool({"import", "--dry-run", "--sheet", "trends", project.Path(), book});
    EXPECT_EQ(trends.out, "0 new, 0 changed, 228 as they are (nothing has been changed)\n");
    EXPECT_EQ(trends.err, "");

    // Out of another state of the project come changes of both sheets.
    for (const auto& [table, what] :
         {std::pair("TchrArchives", "Name=Sud"), std::pair("TchrTrends", "Unit=1,5")}) {
        EXPECT_EQ(RunTool({"set", project.Path(), table, "ID = 1", what}).status, kSuccess);
    }
    const Outcome dry = RunTool({"import", "--dry-run", project.Path(), book});
    EXPECT_THAT(dry.out, HasSubstr("sheet \"Archives\", row 2: archive \"Sud\" (ID 1)\n"
                                   "    Runtime Name (cell B2): \"Sud\" -> \"Sudhaus\"\n"));
    EXPECT_THAT(dry.out, HasSubstr("sheet \"Trends\", row 2: trend \"Maischbottich Temperatur\" of "
                                   "archive \"Sudhaus\" (ID 1)\n    Unit (cell "));
    EXPECT_EQ(RunTool({"import", project.Path(), book}).status, kSuccess);
    EXPECT_THAT(RunTool({"import", project.Path(), book}).out, StartsWith("Archives: 0 new, 0 ch"));

    const std::string half = ContentOf(book).substr(0, 4000);
    std::ofstream(book, std::ios::binary) << half;
    const Outcome damaged = RunTool({"import", project.Path(), book});
    EXPECT_EQ(damaged.status, kFailure);
    EXPECT_THAT(damaged.err, HasSubstr("This is no workbook of the format .xlsx"));
    EXPECT_THAT(damaged.err, EndsWith("Nothing has been changed.\n"));
}

// Under the name there is the whole or what was there before, beside it there is nothing.
TEST(WorkbookTest, WhatFindsNoRoomLeavesTheOldFile) {
    const ProjectCopy project(kBrewery);
    constexpr std::size_t kLittle = 4096;  // enough for the messages and the lock file
    for (const std::string format : {"csv", "json", "xlsx"}) {
        const std::string file = project.Path("out." + format);
        const auto run = [&](const std::string& to) {
            return RunTool({"export", project.Path(), "--format", format, "-o", to});
        };
        ASSERT_EQ(run(file).status, kSuccess);
        const auto size = ContentOf(file).size();
        std::ofstream(file, std::ios::binary) << "old";
        for (const std::size_t room : {kLittle, size / 2, size - 1}) {
            SCOPED_TRACE(format + " " + std::to_string(room));
            Outcome outcome;
            {
                const SmallDisk disk(room);
                outcome = run(file);
            }
            EXPECT_EQ(outcome.status, kFailure);
            // Those of a workbook lie elsewhere, and are larger.
            const std::string what = format == "xlsx"
                                         ? "The workbook cannot be made with temporary files in "
                                         : '"' + file + "\" cannot be written: File too large";
            EXPECT_THAT(outcome.err, HasSubstr(what));
            EXPECT_EQ(ContentOf(file), "old");
        }
        const Outcome nowhere = run(file + "/out");
        EXPECT_EQ(nowhere.status, kFailure);
        EXPECT_THAT(nowhere.err, HasSubstr("\"" + file + "/out\" cannot be written: "));
        EXPECT_EQ(ContentOf(file), "old");
        std::filesystem::remove(file);
    }
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(project.Path()).parent_path())) {
        EXPECT_EQ(entry.path().filename(), "project.kvs");
    }
}

}  // namespace
}  // namespace tools
