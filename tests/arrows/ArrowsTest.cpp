#include "arrows/Arrows.h"

#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class ArrowsTest : public testing::Test {
protected:
    void SetUp() override { fs::create_directories(root_); }
    void TearDown() override { fs::remove_all(root_); }

    fs::path Write(const std::string& name, const std::string& text) {
        const fs::path file = root_ / name;
        fs::create_directories(file.parent_path());
        std::ofstream(file) << text;
        return file;
    }

    fs::path root_ = fs::path(testing::TempDir()) / ("arrows" + std::to_string(getpid()));
};

TEST_F(ArrowsTest, EachIncludeOfTheProductFollowsAnArrow) {
    const arrows::Targets targets = arrows::Read(KV_ARROWS);
    ASSERT_TRUE(targets.contains("kv_ado"));
    EXPECT_THAT(arrows::Wrong(targets, std::filesystem::current_path(),
                              {"src", "include", "studio", "report", "tools"}),
                IsEmpty());
}

TEST_F(ArrowsTest, WhatIsWrongIsSaid) {
    const fs::path low = Write("src/low/Low.h", "#include \"low/detail/Inside.h\"\n");
    const fs::path own = Write("src/low/Low.cpp", "#include \"low/detail/Inside.h\"\n");
    const fs::path inside = Write("src/low/detail/Inside.h", "#include \"low/Low.h\"\n");
    const fs::path middle = Write("src/middle/Middle.h", "#include \"low/Low.h\"\n");
    const fs::path high = Write("src/high/High.cpp",
                                "#include \"middle/Middle.h\"\n"
                                "#include \"low/Low.h\"\n"
                                "#include \"low/detail/Inside.h\"\n"
                                "#include \"other/Nobody.h\"\n"
                                "#include \"ui_Form.h\"\n");
    arrows::Targets targets{{"low", {{low, own, inside}, {}, {}}},
                            {"middle", {{middle}, {"low"}, {"low"}}},
                            {"other", {{Write("src/other/Other.h", "")}, {}, {}}},
                            {"high", {{high}, {"middle", "other"}, {}}}};
    EXPECT_THAT(arrows::Wrong(targets, root_, {"src"}),
                ElementsAre("src/high/High.cpp: \"low/detail/Inside.h\" is for its own folder only",
                            "src/high/High.cpp: \"other/Nobody.h\" belongs to no target",
                            "high is joined to other and includes nothing of it",
                            "src/low/Low.h: \"low/detail/Inside.h\" is no part of what others may "
                            "include"));

    // What a target joins for itself alone is not handed on.
    targets["middle"].handedOn.clear();
    EXPECT_THAT(arrows::Wrong(targets, root_, {"src/high"}), SizeIs(5));
}

}  // namespace
