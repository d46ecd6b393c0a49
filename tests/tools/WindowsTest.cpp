#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "paths/NativePath.h"
#include "ToolTesting.h"

namespace tools {
namespace {

using testing::HasSubstr;

// A name that no code page of the station has, in every place where a file is named.
TEST(WindowsTest, PathsHaveAllCharacters) {
    const ProjectCopy project(kBrewery);
    const std::string file = project.Path("Anlage Süd 水.kvs");
    const std::string csv = project.Path("Zeilen ä水.csv");
    ASSERT_EQ(RunTool({"new", file}).status, kSuccess);
    const std::string rows = RunTool({"dump", kBrewery, "TpdbStructs"}).out;
    std::ofstream(paths::FileOf(csv), std::ios::binary) << rows;
    EXPECT_EQ(RunTool({"load", file, "TpdbStructs", csv}).status, kSuccess);
    EXPECT_EQ(RunTool({"dump", file, "TpdbStructs"}).out, rows);
    EXPECT_EQ(RunTool({"compact", file}).status, kSuccess);
    EXPECT_EQ(RunTool({"export", file, "-o", csv}).status, kSuccess);
    EXPECT_EQ(RunTool({"check", file}).out, "");
    const Outcome none = RunTool({"tables", project.Path("水.kvs")});
    EXPECT_EQ(none.status, kFailure);
    EXPECT_THAT(none.err, HasSubstr("水.kvs"));
    // Nothing of the engine's own is left.
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(project.Path(""))) {
        count += entry.is_regular_file() ? 1U : 0U;
    }
    EXPECT_EQ(count, 3U);
}

TEST(WindowsTest, WhatIsNotThereSaysSo) {
    const ProjectCopy project(kBrewery);
    const std::string book = project.Path("out.xlsx");
    const Outcome out = RunTool({"export", project.Path(), "-o", book});
    EXPECT_EQ(out.status, kFailure);
    EXPECT_THAT(out.err, HasSubstr("without workbooks"));
    EXPECT_FALSE(std::filesystem::exists(book));
    std::ofstream(book, std::ios::binary) << "PK\3\4...";
    const Outcome in = RunTool({"import", project.Path(), book});
    EXPECT_EQ(in.status, kFailure);
    EXPECT_THAT(in.err, HasSubstr("without workbooks"));
    const Outcome git = RunTool({"git-setup"});
    EXPECT_EQ(git.status, kFailure);
    EXPECT_THAT(git.err, HasSubstr("Windows"));
}

}  // namespace
}  // namespace tools
