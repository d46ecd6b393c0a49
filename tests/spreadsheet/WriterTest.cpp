#include <gtest/gtest.h>

#include <clocale>

#include "spreadsheet/Archive.h"
#include "spreadsheet/WorkbookReader.h"
#include "spreadsheet/WorkbookWriter.h"
#include "support/SmallDisk.h"

namespace spreadsheet {
namespace {

const std::vector<ColumnLook> kColumns = {
    {.heading = "ID", .isFixed = true},
    {.heading = "Näme", .isText = true},
    {.heading = "Number"},
    {.heading = "Choice", .isText = true, .choices = {"a, b", "\"c\"", "d"}},
};

std::string Finished(WorkbookWriter& writer) {
    std::string bytes;
    EXPECT_TRUE(writer.Finish([&](std::string_view piece) { bytes += piece; }))
        << writer.GetFault().Text();
    return bytes;
}

std::vector<Row> RowsOf(WorkbookReader& reader, std::size_t sheet) {
    std::vector<Row> rows;
    reader.Begin(sheet);
    for (Row row; reader.Next(row);) rows.push_back(row);
    EXPECT_FALSE(reader.GetFault()) << reader.GetFault().Text();
    return rows;
}

TEST(WriterTest, WhatIsWrittenIsRead) {
    const std::vector<std::string> texts = {"plain",
                                            "",
                                            " blanks ",
                                            "a\r\nb\tc",
                                            "=1+1",
                                            "007",
                                            "Grüße € \xF0\x9F\x98\x80",
                                            "<&>\"'",
                                            "_x0041_ __x000D_ _x",
                                            std::string("\0\x01\x1F", 3),
                                            "\xEF\xBF\xBE\xEF\xBF\xBF",
                                            std::string(kMostCharacters, 'x')};
    const std::vector<std::string> numbers = {"0",     "-5",     "2147483647", "0.1",
                                              "1e-09", "1e+300", "-1.25e-300", "123456.789012345"};
    WorkbookWriter writer("Lists", {"Fixed", "Not to be changed."});
    ASSERT_TRUE(writer.BeginSheet("First & <last>", kColumns, 2));
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string& number = numbers[i % numbers.size()];
        ASSERT_TRUE(writer.Write(
            std::vector<Cell>{{.column = 1,
                               .text = texts[i],
                               .fill = i % 2 == 0 ? std::optional(0x000080U) : std::nullopt},
                              {.column = 2, .kind = CellKind::Number, .text = number}}));
    }
    ASSERT_TRUE(writer.BeginSheet("Second", kColumns, 0));
    WorkbookReader reader;
    ASSERT_TRUE(reader.Open(Finished(writer))) << reader.GetFault().Text();
    ASSERT_EQ(reader.Sheets().size(), 3U);
    EXPECT_EQ(reader.Sheets()[0].name, "First & <last>");
    EXPECT_FALSE(reader.Sheets()[1].isHidden);
    EXPECT_TRUE(reader.Sheets()[2].isHidden);
    const std::vector<Row> rows = RowsOf(reader, 0);
    ASSERT_EQ(rows.size(), 1 + texts.size());
    EXPECT_EQ(rows[0].cells.at(1).text, "Näme");
    for (std::size_t i = 0; i < texts.size(); ++i) {
        ASSERT_EQ(rows[i + 1].cells.size(), 2U) << texts[i];
        EXPECT_EQ(rows[i + 1].number, i + 2);
        EXPECT_EQ(rows[i + 1].cells[0].kind, CellKind::Text);
        EXPECT_EQ(rows[i + 1].cells[0].text, texts[i]);
        EXPECT_EQ(rows[i + 1].cells[1].kind, CellKind::Number);
        EXPECT_EQ(rows[i + 1].cells[1].text, numbers[i % numbers.size()]);
    }
    EXPECT_EQ(RowsOf(reader, 1).size(), 1U);
    EXPECT_EQ(RowsOf(reader, 2).at(0).cells.at(0).text, "a, b");
    EXPECT_EQ(RowsOf(reader, 0).size(), rows.size()) << "once more";
}

TEST(WriterTest, LooksListsAndRulesAreInTheFile) {
    WorkbookWriter writer("Lists", {"Fixed", "Not to be changed."});
    ASSERT_TRUE(writer.BeginSheet("S", kColumns, 2));
    ASSERT_TRUE(writer.Write(std::vector<Cell>{{.column = 0, .kind = CellKind::Number, .text = "7"},
                                               {.column = 1, .text = "x", .fill = 0xFF8000}}));
    const Parts parts = Unzipped(Finished(writer));
    const std::string& sheet = parts.at("xl/worksheets/sheet1.xml");
    for (const char* piece :
         {"<autoFilter ref=\"A1:D2\"/>", "topLeftCell=\"C2\"", "state=\"frozen\"", "type=\"list\"",
          "<formula1>'Lists'!$A$1:$A$3</formula1>", "sqref=\"D2:D1048576\"", "type=\"custom\"",
          "<formula1>FALSE</formula1>", "sqref=\"A2\"", "Not to be changed."}) {
        EXPECT_NE(sheet.find(piece), sheet.npos) << piece << sheet;
    }
    EXPECT_NE(parts.at("xl/styles.xml").find("FFFF8000"), std::string::npos);
    EXPECT_NE(parts.at("xl/styles.xml").find("numFmtId=\"49\""), std::string::npos);
}

TEST(WriterTest, WhatHasNoRoomIsRefused) {
    WorkbookWriter writer("Lists", {"Fixed", "Not to be changed."});
    ASSERT_TRUE(writer.BeginSheet("S", kColumns, 0));
    ASSERT_TRUE(writer.Write({}));
    EXPECT_FALSE(writer.Write(
        std::vector<Cell>{{.column = 1, .text = std::string(kMostCharacters + 1, 'x')}}));
    EXPECT_EQ(writer.GetFault().Text(),
              "Sheet \"S\", cell B3: the text is longer than cells have room for");
    EXPECT_FALSE(writer.Write({}));
    EXPECT_FALSE(writer.Finish([](std::string_view) { ADD_FAILURE(); }));
}

// Where the locale writes 1,5 the file has 1.5 all the same.
TEST(WriterTest, TheLocaleHasNoSay) {
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    bool isSet = false;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE"}) {
        isSet = isSet || std::setlocale(LC_NUMERIC, name) != nullptr;
    }
    WorkbookWriter writer("Lists", {"Fixed", "Not to be changed."});
    ASSERT_TRUE(writer.BeginSheet("S", kColumns, 0));
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(writer.Write(
            std::vector<Cell>{{.column = 2, .kind = CellKind::Number, .text = "1.5"}}));
    }
    const std::string bytes = Finished(writer);
    std::setlocale(LC_NUMERIC, before.c_str());
    const std::string sheet = Unzipped(bytes).at("xl/worksheets/sheet1.xml");
    EXPECT_NE(sheet.find("<v>1.5</v>"), sheet.npos);
    if (!isSet) std::puts("no locale with a decimal comma is installed: tried with a point only");
}

// Its parts stand in temporary files before they are packed, and are larger than what comes of
// them.
TEST(WriterTest, AWorkbookIsWholeOrThereIsNone) {
    const auto write = [](std::string& bytes) {
        WorkbookWriter writer("Lists", {"Fixed", "Not to be changed."});
        bool isGood = writer.BeginSheet("First", kColumns, 1);
        for (int i = 0; i < 2000 && isGood; ++i) {
            isGood = writer.Write(std::vector<Cell>{
                {.column = 1, .text = "Trend " + std::to_string(i)},
                {.column = 2, .kind = CellKind::Number, .text = std::to_string(i)}});
        }
        isGood = isGood && writer.Finish([&](std::string_view piece) { bytes += piece; });
        EXPECT_EQ(isGood, !writer.GetFault());
        if (!isGood) {
            EXPECT_EQ(writer.GetFault().kind, Fault::Kind::NotWritten);
            EXPECT_TRUE(writer.GetFault().error);
            EXPECT_FALSE(writer.GetFault().part.empty());
        }
        return isGood;
    };
    std::string whole;
    ASSERT_TRUE(write(whole));
    int failed = 0;
    for (std::size_t room = whole.size() / 2; room < 8 * whole.size(); room += whole.size() / 4) {
        std::string bytes;
        const SmallDisk disk(room);
        if (!write(bytes)) {
            EXPECT_EQ(bytes, "");
            ++failed;
            continue;
        }
        WorkbookReader reader;
        ASSERT_TRUE(reader.Open(bytes)) << room;
        EXPECT_EQ(RowsOf(reader, 0).size(), 2001U) << room;
    }
    EXPECT_GT(failed, 3) << "rooms between the packed and the unpacked size";
}

}  // namespace
}  // namespace spreadsheet
