#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ToolTesting.h"

namespace tools {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

TEST(DiffTest, SaysInWordsHowProjectsDiffer) {
    const ProjectCopy copy(kBrewery);
    const std::string path = copy.Path();
    EXPECT_EQ(RunTool({"diff", kBrewery, path}).status, kSuccess);
    EXPECT_EQ(RunTool({"diff", kBrewery, path}).out, "");
    const std::vector<std::vector<std::string>> changes = {
        {"set", path, "TchrTrends", "ID = 5", "Name=pH \"neu\"", "ArchiveID=2", "Maximum=12.5"},
        {"set", path, "TchrArchives", "ID = 4", "Name=Lager", "XVar=", "ScanTime=5"},
        {"set", path, "TidxTexts", "ID = 7", "L1031=A\nB", "ParentID=3"},
        {"delete", path, "TchrTrends", "ID = 200"},
        {"set", path, "TalmClasses", "ID = 1", "Name=x"},
        {"delete", path, "TalmClasses", "ID = 2"},
    };
    for (const auto& change : changes) ASSERT_EQ(RunTool(change).status, kSuccess) << change[2];
    const Outcome outcome = RunTool({"diff", kBrewery, path});
    EXPECT_EQ(outcome.status, kDiffers);
    EXPECT_EQ(outcome.out,
              R"(archive 4 "Lager": renamed from "Filtration"
  Scan Time: 0 -> 5
trend 5 "pH \"neu\"" in archive 2 "Gärkeller": renamed from "Maischbottich pH", moved from archive 1 "Sudhaus"
  Maximum: "14" -> "12.5"
trend 200 "Kompressor 2 Druck" in archive 12 "Druckluft": gone
text 7 "IdxMaischbottich Leitwert": changed
  Display Text L1031: "Leitwert Maischbottich" -> "A\nB"
table TalmClasses: 1 row gone, 1 row changed
)");
    EXPECT_EQ(outcome.err, "");
    const Outcome json = RunTool({"diff", "--format", "json", kBrewery, path});
    EXPECT_EQ(json.status, kDiffers);
    EXPECT_THAT(json.out,
                AllOf(StartsWith("[\n{\"table\":\"TchrArchives\",\"change\":\"changed\",\"id\":4,"
                                 "\"name\":\"Lager\",\"renamed\":true,\"fields\":{"
                                 "\"Name\":{\"from\":\"Filtration\",\"to\":\"Lager\"},"
                                 "\"ScanTime\":{\"from\":0,\"to\":5}}},\n"),
                      HasSubstr("\"renamed\":true,\"moved\":true,"),
                      HasSubstr("\"change\":\"gone\",\"id\":200,\"name\":\"Kompressor 2 Druck\","
                                "\"fields\":{\"ID\":{\"from\":200},"),
                      EndsWith(",\n{\"table\":\"TalmClasses\",\"change\":\"changed\","
                               "\"rows\":{\"new\":0,\"gone\":1,\"changed\":1}}\n]\n")));
    EXPECT_EQ(RunTool({"diff", path, path, "--format", "json"}).out, "[]\n");
}

TEST(DiffTest, TellsTroubleFromDifferences) {
    const Outcome missing = RunTool({"diff", kBrewery, "/nowhere.kvs"});
    EXPECT_EQ(missing.status, kTrouble);
    EXPECT_THAT(missing.err, HasSubstr("kvs: /nowhere.kvs: "));
    EXPECT_EQ(RunTool({"diff", kBrewery}).status, kTrouble);
    EXPECT_EQ(RunTool({"diff", kBrewery, kBrewery, "--format", "csv"}).status, kTrouble);
}

}  // namespace
}  // namespace tools
