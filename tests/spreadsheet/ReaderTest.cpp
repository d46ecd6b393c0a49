#include <gtest/gtest.h>

#include "spreadsheet/Archive.h"
#include "spreadsheet/WorkbookReader.h"

namespace spreadsheet {
namespace {

const char* KindName(CellKind kind) {
    switch (kind) {
        case CellKind::Text:
            return "text";
        case CellKind::Number:
            return "number";
        case CellKind::Boolean:
            return "boolean";
        case CellKind::Date:
            return "date";
        default:
            return "unknown";
    }
}

/// "A1 text:first|C1 number:5", or the fault.
std::string ReadAll(const std::string& bytes) {
    WorkbookReader reader;
    std::string out;
    if (!reader.Open(bytes)) return reader.GetFault().Text();
    reader.Begin(0);
    for (Row row; reader.Next(row);) {
        for (const Cell& cell : row.cells) {
            if (!out.empty()) out += '|';
            out += CellName(cell.column, row.number) + " " + KindName(cell.kind) + ":" + cell.text;
        }
    }
    return reader.GetFault() ? reader.GetFault().Text() : out;
}

std::string ReadRows(const std::string& rows) {
    return ReadAll(Zipped(WorkbookWith(rows)));
}

// What spreadsheets and libraries write for a cell, each in its own way.
TEST(ReaderTest, CellsOfAllPrograms) {
    const struct {
        const char* rows;
        const char* cells;
    } cases[] = {
        {"<row r='1'><c r='A1' t='s'><v>0</v></c><c r='B1' t='s'><v>1</v></c></row>",
         "A1 text:first|B1 text:two pieces"},
        {"<row r='2'><c r='C2' t='s'><v>2</v></c></row>", "C2 text:"},
        {"<row r='1'><c r='A1' t='inlineStr'><is><t>a&lt;b</t></is></c></row>", "A1 text:a<b"},
        {"<row r='1'><c r='A1' t='inlineStr'><is><r><t>a</t></r><r><t>b</t></r></is></c></row>",
         "A1 text:ab"},
        {"<row r='1'><c r='A1' t='str'><f>1&amp;\"x\"</f><v>1x</v></c></row>", "A1 text:1x"},
        {"<row r='1'><c r='A1' t='str'><f>\"\"</f><v></v></c></row>", "A1 text:"},
        {"<row r='1'><c r='A1'><f>\"\"</f></c><c r='B1'><f>A2+1</f></c></row>",
         "A1 text:|B1 unknown:=A2+1"},
        {"<row r='1'><c r='A1'><f>\"\"</f><v></v></c><c r='B1'><f>A2+1</f><v/></c></row>",
         "A1 text:|B1 unknown:=A2+1"},
        {"<row r='1'><c r='A1' t='e'><v>#REF!</v></c><c r='B1' t='b'><v>1</v></c></row>",
         "A1 unknown:#REF!|B1 boolean:TRUE"},
        // Numbers, in whichever digits.
        {"<row r='1'><c r='A1'><v>5</v></c><c r='B1' t='n'><v>1.50E+1</v></c>"
         "<c r='C1'><v>0.30000000000000004</v></c></row>",
         "A1 number:5|B1 number:15|C1 number:0.30000000000000004"},
        // Dates by their look alone; quoted letters of a format are none.
        {"<row r='1'><c r='A1' s='1'><v>46143</v></c><c r='B1' s='2'><v>46143.5</v></c>"
         "<c r='C1' s='3'><v>4</v></c><c r='D1' s='4'><v>0.25</v></c>"
         "<c r='E1' s='0'><v>46143</v></c></row>",
         "A1 date:2026-05-01|B1 date:2026-05-01 12:00:00|C1 number:4|D1 date:06:00:00|"
         "E1 number:46143"},
        {"<row r='1'><c r='A1' s='1'><v>1</v></c><c r='B1' s='1'><v>61</v></c>"
         "<c r='C1' s='1'><v>-1</v></c></row>",
         "A1 date:1900-01-01|B1 date:1900-03-01|C1 number:-1"},
        {"<row r='1'><c r='A1' s='2'><v>46142.9999999</v></c><c r='B1' s='5'><v>4</v></c>"
         "<c r='C1' s='6'><v>0.5</v></c></row>",
         "A1 date:2026-05-01|B1 number:4|C1 date:12:00:00"},
        {"<row r='1'><c r='A1' t='d'><v>2026-05-01</v></c></row>", "A1 date:2026-05-01"},
        // Cells with a look alone, rows and cells that do not say where they are, and gaps.
        {"<row r='3'><c r='B3' s='1'/><c r='XFD3'><v>1</v></c></row><row r='1048576'/>",
         "XFD3 number:1"},
        {"<row><c><v>1</v></c><c t='inlineStr'><is><t>b</t></is></c></row>"
         "<row><c r='C2'><v>2</v></c><c><v>3</v></c></row>",
         "A1 number:1|B1 text:b|C2 number:2|D2 number:3"},
        // Units that XML has no characters for.
        {"<row r='1'><c r='A1' t='inlineStr'><is><t>a_x000D_\nb _x005F_x0041_ _xD83D__xDE00_"
         " _x12_ __x0041_</t></is></c></row>",
         "A1 text:a\r\nb _x0041_ \xF0\x9F\x98\x80 _x12_ _A"},
        {"", ""},
    };
    for (const auto& each : cases) EXPECT_EQ(ReadRows(each.rows), each.cells) << each.rows;
}

TEST(ReaderTest, TheOtherCalendarPrefixesAndHiddenSheets) {
    Parts parts = WorkbookWith("<row r='1'><c r='A1' s='1'><v>44681</v></c></row>");
    parts["xl/workbook.xml"] =
        "<x:workbook xmlns:x='m' xmlns:r='r'><x:workbookPr date1904='1'/><x:sheets>"
        "<x:sheet name='S' r:id='r7'/><x:sheet name='L' state='veryHidden' r:id='r8'/></x:sheets>"
        "</x:workbook>";
    std::string& sheet = parts["xl/sheets/s.xml"];
    for (const char* name : {"worksheet", "sheetData", "row", "c ", "c>", "v>"}) {
        for (std::size_t at = sheet.find(name); at != sheet.npos; at = sheet.find(name, at + 3)) {
            const bool isTag = sheet[at - 1] == '<' || sheet[at - 1] == '/';
            if (isTag) sheet.insert(at, "x:");
        }
    }
    sheet.insert(sheet.find('>'), " xmlns:x='m'");
    EXPECT_EQ(ReadAll(Zipped(parts)), "A1 date:2026-05-01");
    WorkbookReader reader;
    ASSERT_TRUE(reader.Open(Zipped(parts)));
    ASSERT_EQ(reader.Sheets().size(), 2U);
    EXPECT_FALSE(reader.Sheets()[0].isHidden);
    EXPECT_TRUE(reader.Sheets()[1].isHidden);
    reader.Begin(1);
    Row row;
    EXPECT_FALSE(reader.Next(row));
    EXPECT_EQ(reader.GetFault().kind, Fault::Kind::Damaged);
}

TEST(ReaderTest, DamagedCellsAreNamed) {
    const struct {
        const char* rows;
        const char* where;
        const char* what;
    } cases[] = {
        {"<row r='1'><c r='A1' t='s'><v>3</v></c></row>", "cell A1", "not in the workbook"},
        {"<row r='1'><c r='A1' t='s'><v>-1</v></c></row>", "cell A1", "not in the workbook"},
        {"<row r='1'><c r='A1' t='s'><v>1e99</v></c></row>", "cell A1", "not in the workbook"},
        {"<row r='2'><c r='B2'><v>1,5</v></c></row>", "cell B2", "number is none"},
        {"<row r='2'><c r='B2'><v>nan</v></c></row>", "cell B2", "number is none"},
        {"<row r='2'><c r='B3'><v>1</v></c></row>", "row 2", "not where it says"},
        {"<row r='2'><c r='AAAAB2'><v>1</v></c></row>", "row 2", "not where it says"},
        {"<row r='2'><c r='XFE2'><v>1</v></c></row>", "cell XFE2", "that many columns"},
        {"<row r='2'><c r='B2'><v>1</v></c><c r='B2'><v>1</v></c></row>", "cell B2", "later one"},
        {"<row r='2'/><row r='2'/>", "cell A2", "later one"},
        {"<row r='x'/>", "cell A0", "later one"},
        {"<row r='1048577'/>", "\"S\"", "more rows"},
    };
    for (const auto& each : cases) {
        const std::string told = ReadRows(each.rows);
        EXPECT_NE(told.find("\"S\""), told.npos) << told;
        EXPECT_NE(told.find(each.what), told.npos) << told;
        const bool isPlace =
            std::string(each.where).starts_with("row") || told.find(each.where) != told.npos;
        EXPECT_TRUE(isPlace) << told;
    }
    const std::string longText(200000, 'x');
    for (const std::string& cell : {"<c r='A1' t='inlineStr'><is><t>" + longText + "</t></is></c>",
                                    "<c r='A1' t='str'><v>" + longText + "</v></c>"}) {
        EXPECT_EQ(ReadRows("<row r='1'>" + cell + "</row>"),
                  "Sheet \"S\", cell A1: the text is longer than cells have room for");
    }
}

TEST(ReaderTest, DamagedWorkbooksAreToldOf) {
    const Parts good = WorkbookWith("<row r='1'><c r='A1'><v>1</v></c></row>");
    const auto with = [&](const char* part, const std::string& text) {
        Parts parts = good;
        parts[part] = text;
        return ReadAll(Zipped(parts));
    };
    for (const char* part : {"_rels/.rels", "xl/workbook.xml", "xl/_rels/workbook.xml.rels",
                             "xl/texts.xml", "xl/styles.xml", "xl/sheets/s.xml"}) {
        Parts parts = good;
        parts.erase(part);
        const std::string missing = ReadAll(Zipped(parts));
        EXPECT_NE(missing.find(std::string(part) + "\""), missing.npos) << missing;
        const std::string cut = with(part, good.at(part).substr(0, good.at(part).size() - 3));
        EXPECT_TRUE(cut.starts_with("The workbook is damaged: \"")) << cut;
        // Entities grow without bounds.
        const std::string bomb = with(part, "<!DOCTYPE a [<!ENTITY b 'b'>]><a>&b;</a>");
        EXPECT_NE(bomb.find("it has a document type"), bomb.npos) << bomb;
    }
    const std::string blanks =
        with("xl/texts.xml", "<sst>" + std::string(std::size_t{64} << 20, ' ') + "</sst>");
    EXPECT_TRUE(blanks.starts_with("The workbook unpacks to more")) << blanks;
    const std::string tag =
        with("xl/sheets/s.xml", "<a b='" + std::string(std::size_t{3} << 20, ' ') + "'/>");
    EXPECT_NE(tag.find("a tag does not end"), tag.npos) << tag;

    EXPECT_TRUE(ReadAll("").starts_with("This is no workbook"));
    EXPECT_TRUE(ReadAll("ID;Name\r\n").starts_with("This is no workbook"));
    EXPECT_TRUE(ReadAll(Zipped({{"mimetype", "application/x"}})).starts_with("This is no workb"));
    EXPECT_TRUE(ReadAll("\xD0\xCF\x11\xE0").starts_with("The workbook is protected"));
    const std::string bytes = Zipped(good);
    for (std::size_t length = 0; length < bytes.size(); length += 7) {
        EXPECT_NE(ReadAll(bytes.substr(0, length)), "A1 number:1");
    }
}

// Every byte of a workbook is input.
TEST(ReaderTest, ChangedBytesEndInRowsOrAFault) {
    const std::string good = Zipped(WorkbookWith(
        "<row r='1'><c r='A1' t='s'><v>1</v></c><c r='B1' s='2'><v>46143.5</v></c></row>"));
    const std::string cells = ReadAll(good);
    for (std::size_t at = 0; at < good.size(); ++at) {
        std::string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ 0x41);
        const std::string told = ReadAll(bad);
        const bool isFault = told.starts_with("Th") || told.starts_with("Sheet");
        EXPECT_TRUE(told == cells || isFault) << at << told;
    }
}

}  // namespace
}  // namespace spreadsheet
