#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <vector>

#include "tools/Commands.h"
#include "tools/CsvWriter.h"
#include "tools/JsonWriter.h"
#include "ToolTesting.h"

namespace tools {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(CommandTest, ListsTheTablesWithTheirRows) {
    const Outcome outcome = RunTool({"tables", kBrewery});
    EXPECT_EQ(outcome.status, kSuccess);
    EXPECT_EQ(outcome.out,
              "TchrArchives\t14\nTchrTrends\t228\nTidxTexts\t242\nTidxGroups\t16\nTpdbStructs\t14\n"
              "TpdbVars\t398\nTcfgLanguages\t2\nTalmClasses\t2\n");
}

TEST(CommandTest, CompactsAFileAndTellsItsSizes) {
    const ProjectCopy copy(kBrewery);
    const std::string project = copy.Path();
    const std::string dump = RunTool({"dump", project, "TchrTrends"}).out;
    const Outcome outcome = RunTool({"compact", project});
    EXPECT_EQ(outcome.status, kSuccess) << outcome.err;
    EXPECT_EQ(outcome.out, "404 KB before, 372 KB after\n");
    EXPECT_EQ(RunTool({"dump", project, "TchrTrends"}).out, dump);
    std::filesystem::remove(project);
    EXPECT_EQ(RunTool({"compact", project}).status, kFailure);
    EXPECT_EQ(RunTool({"compact"}).status, kUsage);
}

TEST(CommandTest, MakesANewProject) {
    const ProjectCopy beside(kBrewery);
    const std::string project = beside.Path("new.kvs");
    for (const char* lcid : {"x", "", "-1", "0", "1031x", "1048576", "99999999999"}) {
        const Outcome outcome = RunTool({"new", project, "--lcid", "1033", "--lcid", lcid});
        EXPECT_EQ(outcome.status, kUsage) << lcid;
        EXPECT_THAT(outcome.err, StartsWith("kvs: new: ")) << lcid;
    }
    EXPECT_FALSE(std::filesystem::exists(project));

    EXPECT_EQ(RunTool({"new", "--lcid", "1036", project, "--lcid", "2057"}).status, kSuccess);
    EXPECT_THAT(RunTool({"dump", project, "TcfgLanguages"}).out, HasSubstr("2,2057,00000809,"));
    EXPECT_EQ(RunTool({"dump", project, "TidxTexts"}).out,
              "ID,ParentID,Name,ParamNames,L1036,L2057\r\n");
    EXPECT_EQ(RunTool({"check", project}).out, "");
    const Outcome again = RunTool({"new", project});
    EXPECT_EQ(again.status, kFailure);
    EXPECT_THAT(again.err, StartsWith("kvs: " + project + ": "));
    EXPECT_THAT(RunTool({"dump", project, "TidxTexts"}).out, HasSubstr("L1036"));
    std::filesystem::remove(project);

    EXPECT_EQ(RunTool({"new", project}).status, kSuccess);
    EXPECT_THAT(RunTool({"dump", project, "TidxTexts"}).out, HasSubstr("L1031,L1033"));
    std::filesystem::remove(project);
}

TEST(CommandTest, DumpsATable) {
    const Outcome csv = RunTool({"dump", kBrewery, "TcfgLanguages"});
    EXPECT_EQ(csv.out,
              "ID,LCID,kbLayout,Font\r\n"
              "1,1031,00000407,Arial                             8   0   0   0   0   0 400\r\n"
              "2,1033,00000409,Arial                             8   0   0   0   0   0 400\r\n");
    const Outcome json = RunTool({"dump", "--format", "json", kBrewery, "TalmClasses"});
    EXPECT_THAT(json.out, StartsWith("[\n{\"ID\":1,\"Name\":\"Störung\",\"Description\":\"kurz\","
                                     "\"Icon\":\"010203\",\"Since\":\"2001-09-09T01:46:40\"},\n{"));
    EXPECT_THAT(json.out, testing::EndsWith("}\n]\n"));
    EXPECT_EQ(
        RunTool({"dump", std::string(KV_TEST_DATA "/Leer.kvs"), "TchrTrends", "--format", "json"})
            .out,
        "[]\n");
}

TEST(CommandTest, TellsSuccessFailureAndWrongUsageApart) {
    struct Case {
        std::vector<std::string> words;
        ExitStatus status;
        const char* message;
    };
    const Case cases[] = {
        {{"--help"}, kSuccess, ""},
        {{"--version"}, kSuccess, ""},
        {{}, kUsage, "command is missing"},
        {{"nonsense"}, kUsage, "'nonsense'"},
        {{"tables"}, kUsage, "FILE"},
        {{"tables", "a", "b"}, kUsage, "FILE"},
        {{"dump", "a"}, kUsage, "TABLE"},
        {{"dump", "a", "b", "--format=xml"}, kUsage, "'xml'"},
        {{"dump", "a", "b", "--format"}, kUsage, "--format"},
        {{"tables", "--nonsense"}, kUsage, "--nonsense"},
        {{"delete", "a", "b"}, kUsage, "CRITERIA"},
        {{"set", "a", "b", "ID=1"}, kUsage, "COLUMN=VALUE"},
        {{"check"}, kUsage, "FILE"},
        {{"check", "a", "--format=csv"}, kUsage, "--format"},
        {{"dump", "a", "b", "--encoding=utf-8"}, kUsage, "--encoding"},
        {{"load", "a", "b", "c", "--encoding=latin-9"}, kUsage, "'latin-9'"},
        {{"check", "a", "--to=b"}, kUsage, "--to"},
        {{"compact", "a", "--dry-run"}, kUsage, "--dry-run"},
        {{"repair"}, kUsage, "FILE"},
        {{"repair", std::string(KV_TEST_DATA "/test2V1997.mdb"), "--to=/tmp"}, kFailure, "Jet 4"},
        {{"check", std::string(KV_TEST_DATA "/test2V1997.mdb")}, kFailure, "only Jet 4"},
        {{"tables", "/nonexistent/x.kvs"}, kFailure, "/nonexistent/x.kvs"},
        {{"tables", KV_EXAMPLES}, kFailure, "folder"},
        {{"dump", kBrewery, "Nothing"}, kFailure, "\"Nothing\""},
    };
    for (const Case& c : cases) {
        const Outcome outcome = RunTool(c.words);
        SCOPED_TRACE(outcome.out + outcome.err);
        EXPECT_EQ(outcome.status, c.status);
        EXPECT_THAT(outcome.err, HasSubstr(c.message));
        EXPECT_EQ(outcome.out.empty(), c.status != kSuccess);
        EXPECT_EQ(outcome.err.empty(), c.status == kSuccess);
    }
}

TEST(CommandTest, WritesWhatADamagedFileStillHolds) {
    const ProjectCopy project(kBrewery);
    const std::string name = project.Path();
    const Outcome whole = RunTool({"dump", name, "TpdbVars"});
    // One of the table's pages loses its type.
    std::fstream file(name, std::ios::binary | std::ios::in | std::ios::out);
    constexpr std::streamoff kPage = 4096;
    file.seekg(0, std::ios::end);
    const std::streamoff pages = file.tellg() / kPage;
    Outcome damaged;
    std::streamoff broken = 0;
    for (std::streamoff page = pages - 1; page > 0 && damaged.status != kFailure; --page) {
        file.seekg(page * kPage);
        const char type = static_cast<char>(file.get());
        file.seekp(page * kPage);
        file.put('\x77').flush();
        damaged = RunTool({"dump", name, "TpdbVars"});
        broken = page;
        file.seekp(page * kPage);
        file.put(type).flush();
    }
    EXPECT_EQ(damaged.status, kFailure);
    EXPECT_THAT(damaged.err, testing::AllOf(StartsWith("kvs: " + name), HasSubstr("TpdbVars"),
                                            HasSubstr("page")));
    EXPECT_LT(damaged.out.size(), whole.out.size());
    EXPECT_GT(damaged.out.size(), whole.out.size() / 2);

    // Others that go on without what cannot be read say so as well, and are no success.
    file.seekp(broken * kPage);
    file << std::string(kPage, '\x77') << std::flush;
    const Outcome lint = RunTool({"lint", "--rules", "name-empty", name});
    EXPECT_EQ(lint.status, kFailure);
    EXPECT_THAT(lint.err, HasSubstr("of TpdbVars cannot be read"));
    const Outcome repair = RunTool({"repair", name});
    EXPECT_EQ(repair.status, kFailure);
    EXPECT_THAT(repair.err, HasSubstr("not saved: "));
}

TEST(CommandTest, ChecksAFile) {
    const Outcome whole = RunTool({"check", kBrewery});
    EXPECT_EQ(whole.status, kSuccess);
    EXPECT_EQ(whole.out + whole.err, "");
    const Outcome untidy = RunTool({"check", std::string(KV_TEST_DATA "/bigIndexTestV2000.mdb")});
    EXPECT_EQ(untidy.status, kSuccess);
    EXPECT_THAT(untidy.out, StartsWith("warning: page 26: "));

    const ProjectCopy project(kBrewery);
    const std::string name = project.Path();
    std::filesystem::resize_file(name, std::filesystem::file_size(name) + 1);
    const Outcome damaged = RunTool({"check", name});
    EXPECT_EQ(damaged.status, kFailure);
    EXPECT_THAT(damaged.out, StartsWith("error: the file's size of "));
    EXPECT_THAT(damaged.err, testing::AllOf(StartsWith("kvs: " + name), HasSubstr("kvs repair"),
                                            testing::Not(HasSubstr("cannot be written"))));
}

TEST(CommandTest, RepairsAFileIntoANewOne) {
    const ProjectCopy project(kBrewery);
    const std::string rows = RunTool({"dump", kBrewery, "TchrTrends"}).out;
    {
        // The global map and the usage maps of the system's tables are gone.
        std::fstream file(project.Path(), std::ios::binary | std::ios::in | std::ios::out);
        for (const int page : {1, 6}) {
            file.seekp(page * 4096);
            file << std::string(4096, '\0');
        }
    }
    EXPECT_THAT(RunTool({"check", project.Path()}).err,
                testing::AllOf(HasSubstr("cannot be written"), HasSubstr("kvs repair")));
    EXPECT_EQ(RunTool({"delete", project.Path(), "TchrTrends", ""}).status, kFailure);
    const Outcome outcome = RunTool({"repair", project.Path()});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, kSuccess);
    const std::string repaired = project.Path("project-repaired.kvs");
    EXPECT_THAT(outcome.out, testing::AllOf(StartsWith(repaired + ": "), HasSubstr(" tables, ")));
    EXPECT_EQ(RunTool({"dump", repaired, "TchrTrends"}).out, rows);
    EXPECT_EQ(RunTool({"check", repaired}).out, "");
    EXPECT_THAT(RunTool({"repair", project.Path()}).err, HasSubstr("project-repaired.kvs"));
    EXPECT_EQ(RunTool({"repair", project.Path(), "--to", project.Path("b.kvs")}).out,
              project.Path("b.kvs") + outcome.out.substr(repaired.size()));
}

// What dump writes, load reads: the same rows in another file. A spreadsheet marks it as UTF-8.
TEST(CommandTest, LoadedRowsDumpTheSame) {
    const ProjectCopy target(std::string(KV_TEST_DATA "/Leer.kvs"));
    for (const char* table :
         {"TchrArchives", "TchrTrends", "TidxTexts", "TidxGroups", "TpdbVars", "TalmClasses"}) {
        SCOPED_TRACE(table);
        const std::string dump = RunTool({"dump", kBrewery, table}).out;
        std::ofstream(target.Path("rows.csv"), std::ios::binary) << "\xEF\xBB\xBF" << dump;
        EXPECT_EQ(RunTool({"delete", target.Path(), table, ""}).status, kSuccess);
        const Outcome loaded = RunTool({"load", target.Path(), table, target.Path("rows.csv")});
        EXPECT_EQ(loaded.status, kSuccess) << loaded.err;
        EXPECT_EQ(RunTool({"dump", target.Path(), table}).out, dump);
    }
    EXPECT_EQ(RunTool({"check", target.Path()}).status, kSuccess);
}

TEST(CommandTest, SetsAndDeletesTheRowsThatMeetTheCriteria) {
    const ProjectCopy copy(kBrewery);
    const auto dump = [&](const char* table) { return RunTool({"dump", copy.Path(), table}).out; };
    EXPECT_EQ(RunTool({"set", copy.Path(), "TchrArchives", "ID <= 2", "Comment=", "CacheSize=7",
                       "FileName=\"\""})
                  .out,
              "2 rows\n");
    EXPECT_THAT(dump("TchrArchives"),
                HasSubstr("\r\n1,Sudhaus,1,1,\"\",<ProjectDir>,,1,,500,0,$Day,,,,7,0,,60,102400,"));
    EXPECT_EQ(RunTool({"delete", copy.Path(), "TchrTrends", "ArchiveID = 3"}).out, "18 rows\n");
    EXPECT_EQ(
        RunTool({"set", copy.Path(), "TalmClasses", "ID = 1", "Since=2026-11-21", "Icon=00ff"}).out,
        "1 row\n");
    EXPECT_THAT(dump("TalmClasses"), HasSubstr("00ff,2026-11-21T00:00:00"));
    EXPECT_EQ(RunTool({"check", copy.Path()}).status, kSuccess);
}

TEST(CommandTest, AChangeThatFailsChangesNothing) {
    const ProjectCopy copy(kBrewery);
    const std::string before = RunTool({"dump", copy.Path(), "TcfgLanguages"}).out;
    struct Case {
        std::vector<std::string> words;
        const char* message;
    };
    std::ofstream(copy.Path("double.csv")) << "ID,LCID\n7,1036\n8,1040\n1,1034\n";
    std::ofstream(copy.Path("short.csv")) << "ID,LCID\n7,1036\n8\n";
    std::ofstream(copy.Path("long.csv")) << "ID,LCID\n7,1036\n8,1040,1\n";
    std::ofstream(copy.Path("open.csv")) << "ID,Font\n7,\"Arial\n";
    std::ofstream(copy.Path("column.csv")) << "ID,Colour\n7,1\n";
    std::ofstream(copy.Path("twice.csv")) << "ID,LCID,id\n7,1036,8\n";
    std::ofstream(copy.Path("behind.csv")) << "ID,Font\n7,\"Arial\"8\n";
    std::ofstream(copy.Path("part.csv")) << "ID,LCID\n7,1036\n8,1.5\n";
    // As a spreadsheet with the station's code page writes it.
    std::ofstream(copy.Path("bytes.csv"), std::ios::binary)
        << "ID,Font,kbLayout\n7,\"a\nM\xFCller\",1\n";
    std::ofstream(copy.Path("half.csv")) << "ID,Font\n7,M\xC3\n";
    std::ofstream(copy.Path("free.csv")) << "ID,Font\n7,\xE4\x81\n";
    std::ofstream(copy.Path("marked.csv")) << "\xEF\xBB\xBFID,Font\n7,a\n";
    const auto load = [&](const char* csv, const char* encoding = "utf-8") {
        return std::vector<std::string>{"load",         copy.Path(),  "TcfgLanguages",
                                        copy.Path(csv), "--encoding", encoding};
    };
    const Case cases[] = {
        {load("twice.csv"), "the column \"id\" twice"},
        {load("behind.csv"), "Line 2: something stands between a closing quote"},
        {load("part.csv"), "Line 3: Column \"LCID\": \"1.5\" is no whole number"},
        {load("bytes.csv"), "Line 3: column 2 (\"Font\"), character 4: the byte FC is no UTF-8"},
        {load("half.csv"), "Line 2: column 2 (\"Font\"), character 2: the byte C3"},
        {load("free.csv", "windows-1252"), "character 2: the byte 81"},
        {load("marked.csv", "windows-1252"), "mark of UTF-8"},
        {{"set", copy.Path(), "TcfgLanguages", "", "LCID=1.5"}, "\"1.5\" is no whole number"},
        {{"set", copy.Path(), "TcfgLanguages", "", "LCID=1", "lcid=2"}, "a second time"},
        {{"set", copy.Path(), "TcfgLanguages", "", "LCID=\"\""}, "\"\" is no whole number"},
        {{"load", copy.Path(), "TcfgLanguages", copy.Path("double.csv")}, "Line 4"},
        {{"load", copy.Path(), "TcfgLanguages", copy.Path("short.csv")}, "1 values instead of 2"},
        {load("long.csv"), "3 values instead of 2"},
        {{"load", copy.Path(), "TcfgLanguages", copy.Path("open.csv")}, "closing quote"},
        {{"load", copy.Path(), "TcfgLanguages", copy.Path("column.csv")}, "Colour"},
        {{"load", copy.Path(), "TcfgLanguages", copy.Path("none.csv")}, "none.csv"},
        {{"load", copy.Path(), "TcfgLanguages", "/dev/null"}, "no heading row"},
        {{"set", copy.Path(), "TcfgLanguages", "", "LCID=many"}, "LCID"},
        {{"set", copy.Path(), "TcfgLanguages", "", "LCID"}, "\"LCID\" is not COLUMN=VALUE"},
        {{"set", copy.Path(), "TcfgLanguages", "ID >", "LCID=1"}, "ID >"},
        {{"delete", copy.Path(), "TcfgLanguages", "Colour = 1"}, "Colour"},
    };
    for (const Case& c : cases) {
        const Outcome outcome = RunTool(c.words);
        SCOPED_TRACE(outcome.err);
        EXPECT_EQ(outcome.status, kFailure);
        EXPECT_THAT(outcome.err, HasSubstr(c.message));
        EXPECT_EQ(RunTool({"dump", copy.Path(), "TcfgLanguages"}).out, before);
    }
}

TEST(CommandTest, LeavesTheTablesOfTheSystemAlone) {
    const ProjectCopy copy(kBrewery);
    std::ofstream(copy.Path("rows.csv")) << "Id,Name\n7,New\n";
    const std::string before = RunTool({"dump", copy.Path(), "MSysObjects"}).out;
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"delete", copy.Path(), "MSysObjects", "Name='TchrTrends'"},
             {"set", copy.Path(), "MSysObjects", "Name='TchrTrends'", "Name=Other"},
             {"load", copy.Path(), "MSysObjects", copy.Path("rows.csv")}}) {
        const Outcome outcome = RunTool(words);
        EXPECT_EQ(outcome.status, kFailure) << words[0];
        EXPECT_THAT(outcome.err, HasSubstr("MSysObjects"));
        EXPECT_EQ(RunTool({"dump", copy.Path(), "MSysObjects"}).out, before);
    }
    EXPECT_EQ(RunTool({"tables", copy.Path()}).out, RunTool({"tables", kBrewery}).out);
}

TEST(CommandTest, ReportsAnOutputThatTakesNoMore) {
    std::FILE* full = std::fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    const std::string err = Written([&](std::FILE* stream) {
        EXPECT_EQ(Dump(kBrewery, "TchrTrends", {}, full, stream), kFailure);
    });
    std::fclose(full);
    EXPECT_THAT(err, HasSubstr("writing failed"));
}

template <typename Writer>
std::string Row(const std::vector<jet::Value>& values) {
    return Written([&](std::FILE* stream) {
        TextBuffer out(stream);
        Writer writer(out);
        writer.Begin(std::vector<std::string>(values.size(), "c\""));
        writer.BeginRow();
        for (std::size_t i = 0; i < values.size(); ++i) writer.Put(i, values[i]);
        writer.EndRow();
        out.Flush();
    });
}

TEST(CommandTest, QuotesAndEscapesOnlyWhereNeeded) {
    struct Case {
        jet::Value value;
        std::string csv;
        std::string json;
    };
    const Case cases[] = {
        {jet::Null{}, "", "null"},
        {std::u16string(), "\"\"", "\"\""},
        {std::u16string(u" plain 'x' "), " plain 'x' ", "\" plain 'x' \""},
        {std::u16string(u"a,b"), "\"a,b\"", "\"a,b\""},
        {std::u16string(u"say \"hi\""), "\"say \"\"hi\"\"\"", "\"say \\\"hi\\\"\""},
        {std::u16string(u"l1\r\nl2"), "\"l1\r\nl2\"", "\"l1\\u000d\\nl2\""},
        {std::u16string(u"l1\rl2"), "\"l1\rl2\"", "\"l1\\u000dl2\""},
        {std::u16string(u"ä\u20AC\xD83D\xDE00"), "ä€😀", "\"ä€😀\""},
        {std::u16string(u"ä,\\"), "\"ä,\\\"", "\"ä,\\\\\""},
        {true, "true", "true"},
        {2.5, "2.5", "2.5"},
        {std::numeric_limits<double>::quiet_NaN(), "nan", "\"nan\""},
        {jet::Binary{}, "\"\"", "\"\""},
        {jet::Binary{std::byte{0}, std::byte{0xAB}}, "00ab", "\"00ab\""},
        {jet::Guid{}, "{00000000-0000-0000-0000-000000000000}",
         "\"{00000000-0000-0000-0000-000000000000}\""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Row<CsvWriter>({c.value}), "\"c\"\"\"\r\n" + c.csv + "\r\n");
        EXPECT_EQ(Row<JsonWriter>({c.value}), "[\n{\"c\\\"\":" + c.json + "}");
    }
}

}  // namespace
}  // namespace tools
