#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <tuple>

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

void Write(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

void SetLocale(const char* locale) {
    static std::string variable;  // the environment keeps it
    variable = std::string("LC_ALL=") + locale;
    ::putenv(variable.data());
}

TEST(ExchangeTest, TheLocaleDecidesUnlessItIsSaidOtherwise) {
    const std::string german = "\xEF\xBB\xBFID;Archiv;Laufzeitname;";
    const std::string english = "\xEF\xBB\xBFID,Archive,Runtime Name,";
    SetLocale("de_DE.UTF-8");
    EXPECT_THAT(RunTool({"export", kBrewery}).out, StartsWith(german));
    EXPECT_THAT(RunTool({"export", kBrewery}).out, HasSubstr(";12,6;"));
    SetLocale("C");
    EXPECT_THAT(RunTool({"export", kBrewery}).out, StartsWith(english));
    EXPECT_THAT(RunTool({"export", kBrewery, "--language", "de", "--bom", "no", "--separator",
                         "tab", "--sheet", "archives"})
                    .out,
                StartsWith("ID\tLaufzeitname\t"));
    SetLocale("C.UTF-8");
}

TEST(ExchangeTest, AnImportSaysWhatItDoesAndDoesAllOrNothing) {
    const ProjectCopy project(kBrewery);
    const std::string before = ContentOf(project.Path());
    const std::string csv = project.Path("in.csv");
    Write(csv,
          "ID,Archive,Runtime Name,Filter,Comment\n"
          "1,Sudhaus,Maischbottich Temperatur,Min,\"a \"\"b\"\"\"\n"
          ",Sudhaus,Neu,,x\n"
          "3,Sudhaus,Maischbottich Füllstand,sieve,\n");
    const Outcome refused = RunTool({"import", project.Path(), csv});
    EXPECT_EQ(refused.status, kFailure);
    EXPECT_EQ(refused.out, "");
    EXPECT_THAT(refused.err, HasSubstr("line 4: trend \"Maischbottich Füllstand\" of archive "
                                       "\"Sudhaus\" (ID 3): refused: \"Filter\": \"sieve\": it is "
                                       "none of the column's words"));
    EXPECT_THAT(refused.err, EndsWith("Nothing has been changed.\n"));
    EXPECT_TRUE(ContentOf(project.Path()) == before);

    const Outcome dry = RunTool({"import", "--dry-run", "--leave-out", project.Path(), csv});
    EXPECT_THAT(dry.out, HasSubstr("line 2: trend \"Maischbottich Temperatur\" of archive "
                                   "\"Sudhaus\" (ID 1)\n"
                                   "    Filter: \"No Filter\" -> \"Min\"\n"
                                   "    Comment: nothing -> \"a \"b\"\"\n"
                                   "line 3: new trend \"Neu\" of archive \"Sudhaus\"\n"));
    EXPECT_THAT(dry.out, HasSubstr("\n1 new, 1 changed, 0 as they are, 22 missing here, 1 refused "
                                   "(nothing has been changed)\n"));
    EXPECT_TRUE(ContentOf(project.Path()) == before);

    EXPECT_EQ(RunTool({"import", "--leave-out", project.Path(), csv}).status, kFailure);
    const std::string after = RunTool({"dump", project.Path(), "TchrTrends"}).out;
    EXPECT_THAT(after, HasSubstr("\"a \"\"b\"\"\""));
    EXPECT_THAT(after, HasSubstr("229,Neu,1,"));
    EXPECT_EQ(RunTool({"check", project.Path()}).out, "");
}

TEST(ExchangeTest, WhatCannotBeExportedLeavesTheOldFile) {
    const ProjectCopy project(kBrewery);
    const std::string csv = project.Path("out.csv");
    Write(csv, "old");
    EXPECT_EQ(RunTool({"set", project.Path(), "TidxTexts", "ID = 2", "L1033=水"}).status, kSuccess);
    const Outcome outcome =
        RunTool({"export", project.Path(), "--encoding", "windows-1252", "-o", csv});
    EXPECT_EQ(outcome.status, kFailure);
    EXPECT_THAT(outcome.err, HasSubstr("Line 2 has characters that windows-1252 does not have"));
    EXPECT_EQ(ContentOf(csv), "old");
    EXPECT_EQ(RunTool({"export", project.Path(), "--archives", "Keller", "-o", csv}).status,
              kFailure);
    EXPECT_EQ(ContentOf(csv), "old");
    EXPECT_EQ(RunTool({"export", project.Path(), "--archives", "Sudhaus", "-o", csv}).status,
              kSuccess);
    EXPECT_THAT(ContentOf(csv), HasSubstr("水"));
    EXPECT_EQ(RunTool({"export", project.Path(), "-o", project.Path("no/out.csv")}).status,
              kFailure);
}

TEST(ExchangeTest, HeadingsAreTakenAsItIsSaid) {
    const ProjectCopy project(kBrewery);
    const std::string csv = project.Path("in.csv");
    Write(csv, "Nr.,Einheit,Seen by\n1,K,Meyer\n");
    EXPECT_THAT(RunTool({"import", project.Path(), csv, "--sheet", "trends"}).err,
                HasSubstr("no column is called \"Nr.\""));
    const std::vector<std::string> import = {"import",   project.Path(), csv,
                                             "--column", "nr.=ID",       "--column"};
    const auto with = [&](std::initializer_list<std::string> words) {
        std::vector<std::string> all = import;
        all.insert(all.end(), words);
        return RunTool(all);
    };
    EXPECT_EQ(with({"Seen by"}).status, kUsage);
    EXPECT_THAT(with({"Seen by=Nobody"}).err, HasSubstr("no column is called \"Seen by\""));
    EXPECT_THAT(with({"Seen by=", "--column", "Nobody=ID"}).err,
                HasSubstr("There is no heading \"Nobody\""));
    const Outcome done = with({"Seen by=Comment"});
    EXPECT_EQ(done.status, kSuccess) << done.err;
    EXPECT_THAT(done.out, StartsWith("0 new, 1 changed"));
    EXPECT_THAT(RunTool({"dump", project.Path(), "TchrTrends"}).out, HasSubstr("Meyer"));
}

// The text of a project depends on what it holds and on nothing else.
TEST(ExchangeTest, JsonIsTheSameForTheSameContent) {
    const ProjectCopy project(kBrewery);
    const Outcome outcome = RunTool({"export", project.Path(), "--format", "json"});
    EXPECT_THAT(outcome.out, StartsWith("{\n  \"TchrArchives\": [\n    {\n      \"ID\": 1,\n"
                                        "      \"Name\": \"Sudhaus\",\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\n      \"L1031\": \"Sudhaus\",\n"));
    EXPECT_EQ(RunTool({"compact", project.Path()}).status, kSuccess);
    EXPECT_TRUE(RunTool({"export", project.Path(), "--format", "json"}).out == outcome.out);
    // Rows that are loaded in another order.
    const std::string rows = RunTool({"dump", project.Path(), "TpdbStructs"}).out;
    std::vector<std::string> lines;
    std::istringstream in(rows);
    for (std::string line; std::getline(in, line);) lines.push_back(line + "\n");
    std::reverse(lines.begin() + 1, lines.end());
    std::string turned;
    for (const std::string& line : lines) turned += line;
    Write(project.Path("rows.csv"), turned);
    EXPECT_EQ(RunTool({"delete", project.Path(), "TpdbStructs", ""}).status, kSuccess);
    EXPECT_EQ(RunTool({"load", project.Path(), "TpdbStructs", project.Path("rows.csv")}).status,
              kSuccess);
    EXPECT_TRUE(RunTool({"export", project.Path(), "--format", "json"}).out == outcome.out);
    EXPECT_EQ(RunTool({"set", project.Path(), "TchrTrends", "ID = 7", "Unit=bar"}).status,
              kSuccess);
    EXPECT_FALSE(RunTool({"export", project.Path(), "--format", "json"}).out == outcome.out);
}

TEST(ExchangeTest, ADumpHasTheRowsColumnsAndOrderThatAreAskedFor) {
    const auto dump = [](std::vector<std::string> options) {
        options.insert(options.begin(), {"dump", kBrewery, "TpdbStructs"});
        return RunTool(options);
    };
    const std::string all = dump({}).out;
    EXPECT_EQ(dump({"--sort", "key"}).out, all) << "the rows are stored in this order";
    EXPECT_EQ(dump({"--where", "ID > 0"}).out, all);
    EXPECT_EQ(dump({"--where", "ID < 3", "--columns", "name,ID"}).out,
              "Name,ID\r\nSudhaus,1\r\nG\u00e4rkeller,2\r\n");
    EXPECT_EQ(dump({"--columns", "ID", "--where", "Name = 'Sudhaus'", "--format", "json"}).out,
              "[\n{\"ID\":1}\n]\n");
    EXPECT_EQ(dump({"--where", "ID = 99"}).out, dump({"--where", "ID < 0"}).out);
    for (const auto& [option, value, what] :
         {std::tuple("--columns", "ID,Colour", "Colour"), std::tuple("--where", "ID", "ID"),
          std::tuple("--where", "Colour = 1", "Colour")}) {
        const Outcome outcome = dump({option, value});
        EXPECT_EQ(outcome.status, kFailure) << value;
        EXPECT_THAT(outcome.err, StartsWith("kvs: " + kBrewery + ": ")) << value;
        EXPECT_THAT(outcome.err, HasSubstr(what)) << value;
    }
    // Every form of value is the same on both ways through the file, memos and binaries too.
    for (const char* table : {"TalmClasses", "TchrTrends", "TidxTexts"}) {
        for (const char* format : {"csv", "json"}) {
            EXPECT_EQ(
                RunTool({"dump", kBrewery, table, "--format", format, "--where", "ID > 0"}).out,
                RunTool({"dump", kBrewery, table, "--format", format}).out)
                << table;
        }
    }
}

TEST(ExchangeTest, ADumpByKeyDoesNotDependOnTheOrderOfStoring) {
    const ProjectCopy project(kBrewery);
    Write(project.Path("rows.csv"), "ID,LCID\n9,1036\n7,1040\n");
    EXPECT_EQ(RunTool({"load", project.Path(), "TcfgLanguages", project.Path("rows.csv")}).status,
              kSuccess);
    EXPECT_THAT(RunTool({"dump", project.Path(), "TcfgLanguages", "--columns", "ID"}).out,
                EndsWith("\r\n9\r\n7\r\n"));
    EXPECT_THAT(
        RunTool({"dump", project.Path(), "TcfgLanguages", "--columns", "ID", "--sort", "key"}).out,
        EndsWith("\r\n7\r\n9\r\n"));
}

TEST(ExchangeTest, ALoadChangesTheRowsThatHaveTheKey) {
    const ProjectCopy project(kBrewery);
    const std::string csv = project.Path("rows.csv");
    const auto load = [&](const std::string& rows, std::vector<std::string> options) {
        Write(csv, rows);
        options.insert(options.begin(), {"load", project.Path(), "TpdbStructs", csv});
        return RunTool(options);
    };
    const std::string rows =
        "ID;Name;Comment\r\n01;Sudhaus 2;\"a;b\"\r\n2;G\u00e4rkeller;\r\n99;Neu;\r\n";
    const std::string before = RunTool({"dump", project.Path(), "TpdbStructs"}).out;
    EXPECT_EQ(load(rows, {"--update", "id", "--dry-run"}).out,
              "1 row would be added, 2 would change, 0 as they are\n");
    EXPECT_EQ(RunTool({"dump", project.Path(), "TpdbStructs"}).out, before);
    EXPECT_EQ(load(rows, {"--update", "id"}).out, "1 row added, 2 changed, 0 as they are\n");
    EXPECT_EQ(load(rows, {"--update", "id"}).out, "0 rows added, 0 changed, 3 as they are\n");
    const std::string after =
        RunTool({"dump", project.Path(), "TpdbStructs", "--where", "ID < 3 OR ID = 99"}).out;
    EXPECT_EQ(after, "ID,Name,Comment\r\n1,Sudhaus 2,a;b\r\n2,G\u00e4rkeller,\r\n99,Neu,\r\n");
    const std::pair<const char*, const char*> wrong[] = {
        {"Name;Comment\nSudhaus;x\n", "does not name the column \"ID\""},
        {"ID;Name\n;x\n", "Line 2: The key is Null."},
        {"ID;Name\n1;x\n1;y\n", "Line 3: An earlier line has this key."},
    };
    for (const auto& [text, what] : wrong) {
        const Outcome outcome = load(text, {"--update", "ID"});
        EXPECT_EQ(outcome.status, kFailure);
        EXPECT_THAT(outcome.err, HasSubstr(what));
    }
    ASSERT_EQ(RunTool({"set", project.Path(), "TpdbStructs", "ID < 3", "Comment=same"}).status,
              kSuccess);
    EXPECT_THAT(load("Comment;Name\nsame;x\n", {"--update", "Comment"}).err,
                HasSubstr("Several rows of the table have this key."));
}

}  // namespace
}  // namespace tools
