#include <gtest/gtest.h>

#include <map>
#include <random>
#include <tuple>

#include "ado/AdoError.h"
#include "ado/FileCheck.h"
#include "exchange/ExchangeTesting.h"
#include "exchange/Workbook.h"
#include "project/Rows.h"
#include "unicode/Unicode.h"

namespace exchange {
namespace {

using State = PlannedRow::State;
using Cause = PlannedRow::Cause;
using BookCell = spreadsheet::Cell;
using BookKind = spreadsheet::CellKind;

constexpr const char* kBrewery = KV_EXAMPLES "/Brauerei.kvs";
const char* const kProjects[] = {kBrewery, KV_TEST_DATA "/Grenzfaelle.kvs",
                                 KV_TEST_DATA "/Leer.kvs", KV_TEST_DATA "/Stadtwerke.kvs"};

std::string Workbook(ado::Connection& connection, const char* language = "en") {
    WorkbookSheets writer(*words::FindLanguage(language));
    for (const SheetKind kind : {SheetKind::Archives, SheetKind::Trends}) {
        Export(connection, kind, {}, *words::FindLanguage(language), writer);
    }
    std::string bytes;
    writer.Finish([&](std::string_view piece) { bytes += piece; });
    return bytes;
}

std::vector<InputRows> Read(ado::Connection& connection, const std::string& bytes) {
    spreadsheet::WorkbookReader reader;
    EXPECT_TRUE(reader.Open(bytes)) << reader.GetFault().Text();
    return ReadWorkbook(connection, reader, {}).sheets;
}

std::vector<Plan> PlannedBook(ado::Connection& connection, const std::string& bytes,
                              const PlanOptions& options = {}) {
    return MakePlans(connection, Read(connection, bytes), options);
}

/// Cells by row and column, as another program would hold them.
struct Grid {
    std::string name;
    std::vector<std::map<std::size_t, BookCell>> rows;  // the first is the heading

    void Put(std::size_t row, std::size_t column, BookKind kind, const std::string& text) {
        if (row >= rows.size()) rows.resize(row + 1);
        rows[row][column] = {.column = column, .kind = kind, .text = text};
    }
    [[nodiscard]] std::string Text(std::size_t row, std::size_t column) const {
        const auto found = rows.at(row).find(column);
        return found != rows.at(row).end() ? found->second.text : std::string();
    }
    [[nodiscard]] std::size_t Column(const std::string& heading) const {
        for (const auto& [column, cell] : rows.at(0)) {
            if (cell.text == heading) return column;
        }
        ADD_FAILURE() << heading;
        return 0;
    }
};

std::vector<Grid> GridsOf(const std::string& bytes) {
    spreadsheet::WorkbookReader reader;
    EXPECT_TRUE(reader.Open(bytes));
    std::vector<Grid> grids;
    for (std::size_t i = 0; i < reader.Sheets().size(); ++i) {
        if (reader.Sheets()[i].isHidden) continue;
        Grid& grid = grids.emplace_back(Grid{reader.Sheets()[i].name, {}});
        reader.Begin(i);
        for (spreadsheet::Row row; reader.Next(row);) {
            grid.rows.emplace_back();
            for (const BookCell& cell : row.cells) grid.rows.back()[cell.column] = cell;
        }
    }
    EXPECT_FALSE(reader.GetFault());
    return grids;
}

std::string BytesOf(const std::vector<Grid>& grids) {
    spreadsheet::WorkbookWriter writer("Lists", {"", ""});
    for (const Grid& grid : grids) {
        std::vector<spreadsheet::ColumnLook> columns(grid.rows.at(0).rbegin()->first + 1);
        for (const auto& [column, cell] : grid.rows[0]) columns[column].heading = cell.text;
        EXPECT_TRUE(writer.BeginSheet(grid.name, columns, 0));
        for (std::size_t i = 1; i < grid.rows.size(); ++i) {
            std::vector<BookCell> cells;
            for (const auto& [column, cell] : grid.rows[i]) cells.push_back(cell);
            EXPECT_TRUE(writer.Write(cells)) << writer.GetFault().Text();
        }
    }
    std::string bytes;
    EXPECT_TRUE(writer.Finish([&](std::string_view piece) { bytes += piece; }));
    return bytes;
}

TEST(WorkbookTest, WhatIsExportedAndImportedUnchangedChangesNoByte) {
    for (const char* original : kProjects) {
        Project project(original);
        const std::string before = project.Bytes();
        for (const char* language : {"de", "en"}) {
            const std::string bytes = Workbook(project.connection, language);
            for (const MatchBy by : {MatchBy::Both, MatchBy::Id}) {
                const auto plans = PlannedBook(project.connection, bytes, {by});
                ASSERT_EQ(plans.size(), 2U);
                for (const Plan& plan : plans) {
                    EXPECT_TRUE(plan.rows.empty()) << original << unicode::ToUtf8(plan.sheet);
                }
                EXPECT_EQ(Apply(project.connection, plans, {}), Outcome::Done);
            }
            // What another program has read and written again, without looks and lists.
            for (const Plan& plan : PlannedBook(project.connection, BytesOf(GridsOf(bytes)))) {
                EXPECT_TRUE(plan.rows.empty()) << original;
            }
        }
        EXPECT_TRUE(project.Bytes() == before) << original;
    }
}

/// A value for a column, another one each time; none: Null.
std::optional<BookCell> NextValue(const SheetColumn& column, std::mt19937& random) {
    static const char* const kTexts[] = {"a;b", "a\"b",    "two\r\nlines", "Grüße €", "x,y\t",
                                         "=A1", "_x0041_", " blanks ",     "½ 水",    ""};
    static int count = 0;
    const auto pick = [&](std::size_t below) { return random() % below; };
    const bool isNeeded = column.role == SheetColumn::Role::Bits ||
                          column.field.name == "NewFile" ||
                          (column.meaning != nullptr && column.meaning->required);
    if (!isNeeded && pick(8) == 0) return std::nullopt;
    BookCell cell;
    if (!column.codes.empty()) {
        const int text = column.codes[pick(column.codes.size())].text;
        cell.text = unicode::ToUtf8(words::Languages()[pick(2)].Text(text));
    } else if (column.IsText()) {
        cell.text = kTexts[pick(std::size(kTexts))];
        if (isNeeded || !cell.text.empty()) cell.text += "v" + std::to_string(++count);
    } else if (column.meaning->kind == project::Kind::Colour) {
        char text[8];
        std::snprintf(text, sizeof text, "#%06X", static_cast<unsigned>(pick(0x1000000)));
        cell.text = text;
    } else {
        cell.kind = BookKind::Number;
        const bool isWhole = column.field.type != ado::DataType::Double;
        cell.text = isWhole ? std::to_string(pick(30000))
                            : std::to_string(static_cast<int>(pick(2000)) - 1000) + ".25";
    }
    return cell;
}

/// Rows by their ID, codes in one language.
std::map<std::string, std::map<std::size_t, std::string>> ById(const Grid& grid,
                                                               const Sheet& sheet) {
    std::map<std::string, std::map<std::size_t, std::string>> rows;
    for (std::size_t i = 1; i < grid.rows.size(); ++i) {
        auto& row = rows[grid.Text(i, 0)];
        for (const auto& [column, cell] : grid.rows[i]) {
            row[column] = cell.text;
            for (const project::Code& code : sheet.Columns()[column].codes) {
                const std::u16string german = words::Languages()[0].Text(code.text);
                if (unicode::ToUtf8(german) == cell.text) {
                    row[column] = unicode::ToUtf8(words::Languages()[1].Text(code.text));
                }
            }
        }
    }
    return rows;
}

// What is edited in the exported workbook is exported again.
TEST(WorkbookTest, AThousandEditsArriveExactly) {
    for (const char* original : {kProjects[0], kProjects[3]}) {
        Project project(original);
        std::mt19937 random(23);
        std::vector<Grid> grids = GridsOf(Workbook(project.connection));
        const Sheet sheets[] = {Sheet(project.connection, SheetKind::Archives),
                                Sheet(project.connection, SheetKind::Trends)};
        for (int edit = 0; edit < 1000; ++edit) {
            const std::size_t which = edit % 10 == 0 ? 0 : 1;
            Grid& grid = grids.at(which);
            const std::size_t row = 1 + random() % (grid.rows.size() - 1);
            const std::size_t column = 1 + random() % (sheets[which].Columns().size() - 1);
            const SheetColumn& it = sheets[which].Columns()[column];
            const bool isArchiveName =
                it.role == SheetColumn::Role::Archive || (which == 0 && it.field.name == "Name");
            if (isArchiveName) continue;
            const auto value = NextValue(it, random);
            grid.rows[row].erase(column);
            if (value) grid.Put(row, column, value->kind, value->text);
        }
        const std::string edited = BytesOf(grids);
        const auto plans = PlannedBook(project.connection, edited);
        for (const Plan& plan : plans) {
            for (const PlannedRow& row : plan.rows) EXPECT_EQ(row.cause, Cause::None) << row.line;
        }
        ASSERT_EQ(Apply(project.connection, plans, {}), Outcome::Done);
        const std::vector<Grid> after = GridsOf(Workbook(project.connection));
        for (std::size_t i = 0; i < 2; ++i) {
            EXPECT_EQ(ById(after[i], sheets[i]), ById(grids[i], sheets[i])) << original;
        }
        for (const Plan& plan : PlannedBook(project.connection, edited)) {
            EXPECT_TRUE(plan.rows.empty());
        }
        EXPECT_TRUE(ado::CheckFile(project.Path()).errors.empty());
    }
}

/// The brewery with an archive renamed, one more with a trend, and a trend moved there.
std::vector<Grid> GridsWithANewArchive(ado::Connection& connection) {
    std::vector<Grid> grids = GridsOf(Workbook(connection));
    Grid& archives = grids.at(0);
    const std::size_t newArchive = archives.rows.size();
    archives.Put(1, 1, BookKind::Text, "Umbenannt");
    archives.Put(newArchive, 1, BookKind::Text, "Neues Archiv");
    Grid& trends = grids.at(1);
    const std::size_t newTrend = trends.rows.size();
    trends.Put(2, 1, BookKind::Text, "Neues Archiv");
    trends.Put(3, 1, BookKind::Text, "Umbenannt");
    trends.Put(newTrend, 1, BookKind::Text, "Neues Archiv");
    trends.Put(newTrend, 2, BookKind::Text, "Neuer Trend");
    return grids;
}

// Trends may be put into an archive of the same workbook, and know one by its old name.
TEST(WorkbookTest, BothSheetsComeInTogether) {
    Project project(kBrewery);
    const std::string before = project.Bytes();
    const std::string bytes = BytesOf(GridsWithANewArchive(project.connection));
    const auto plans = PlannedBook(project.connection, bytes);
    EXPECT_TRUE(project.Bytes() == before) << "a plan has changed the project";
    ASSERT_EQ(plans.size(), 2U);
    EXPECT_EQ(plans[0].Count(State::New), 1U);
    EXPECT_EQ(plans[0].Count(State::Changed), 1U);
    EXPECT_EQ(plans[1].Count(State::New), 1U);
    ASSERT_EQ(plans[1].Count(State::Changed), 1U) << "an old name is no change";
    EXPECT_EQ(plans[1].rows[0].target, u"Neues Archiv");
    ASSERT_EQ(Apply(project.connection, plans, {}), Outcome::Done);
    project::Rows rows(project.connection);
    rows.Archives().SetFilter("Name = 'Neues Archiv'");
    const std::int32_t id = ado::ToLong(rows.Archives().Get("ID"));
    ASSERT_TRUE(rows.SeekTrendsOf(id));
    EXPECT_EQ(rows.Trends().RecordCount(), 2U);
    rows.Trends().Close();
    rows.Archives().Close();
    for (const Plan& plan : PlannedBook(project.connection, Workbook(project.connection))) {
        EXPECT_TRUE(plan.rows.empty());
    }
    EXPECT_TRUE(ado::CheckFile(project.Path()).errors.empty());
}

// Numbers that the plan has given away in advance may be somebody else's by then.
TEST(WorkbookTest, AnArchiveOfSomebodyElseMakesThePlanStale) {
    Project project(kBrewery);
    const std::string bytes = BytesOf(GridsWithANewArchive(project.connection));
    const auto plans = PlannedBook(project.connection, bytes);
    project::Rows rows(project.connection);
    rows.AddArchive(u"Dazwischen");
    rows.Archives().Close();
    const std::string before = project.Bytes();
    EXPECT_EQ(Apply(project.connection, plans, {}), Outcome::Stale);
    EXPECT_TRUE(project.Bytes() == before);
    EXPECT_EQ(Apply(project.connection, PlannedBook(project.connection, bytes), {}), Outcome::Done);
    EXPECT_TRUE(ado::CheckFile(project.Path()).errors.empty());
}

TEST(WorkbookTest, WhatIsNotWantedIsLeftOut) {
    Project project(kBrewery);
    const std::string bytes = BytesOf(GridsWithANewArchive(project.connection));
    PlanOptions options;
    const std::size_t newArchive = PlannedBook(project.connection, bytes)[0].rows.back().line;
    options.leftOut.insert({SheetKind::Archives, newArchive});
    const auto plans = PlannedBook(project.connection, bytes, options);
    EXPECT_EQ(plans[0].rows.back().cause, Cause::LeftOut);
    for (const PlannedRow& row : plans[1].rows) {
        EXPECT_EQ(row.cause, Cause::NoArchive) << "its archive does not come";
    }
    ASSERT_EQ(Apply(project.connection, plans, {}), Outcome::Done);
    EXPECT_EQ(GridsOf(Workbook(project.connection))[0].Text(1, 1), "Umbenannt");

    const std::string before = project.Bytes();
    const auto again = PlannedBook(project.connection, bytes);
    std::size_t told = 0;
    const auto stopAtTheSecond = [&](std::size_t rows) {
        told = rows;
        return rows < 2;
    };
    EXPECT_EQ(Apply(project.connection, again, stopAtTheSecond), Outcome::GivenUp);
    EXPECT_EQ(told, 2U);
    EXPECT_TRUE(project.Bytes() == before);
}

// What a spreadsheet makes of texts when it may.
TEST(WorkbookTest, WhatASpreadsheetHasSpoiltIsPointedOut) {
    const struct {
        const char* column;
        const char* stored;  // of a text; "": as it is
        BookKind kind;
        const char* text;
        Cause cause;
        Suspicion suspicion;
    } cases[] = {
        {"Unit", "007", BookKind::Number, "7", Cause::None, Suspicion::Rounded},
        {"Unit", "12345678901234567890", BookKind::Number, "1.23456789012346e+19", Cause::None,
         Suspicion::Rounded},
        {"Unit", "bar", BookKind::Number, "5", Cause::None, Suspicion::NoText},
        {"Unit", "bar", BookKind::Text, "5", Cause::None, Suspicion::None},
    };
    for (const auto& each : cases) {
        Project project(kBrewery);
        project::Rows rows(project.connection);
        ASSERT_TRUE(rows.SeekTrend(1));
        rows.Trends().Set(each.column, unicode::ToUtf16(each.stored));
        rows.Trends().Update();
        rows.Trends().Close();
        std::vector<Grid> grids = GridsOf(Workbook(project.connection));
        const std::size_t column = grids[1].Column(each.column);
        grids[1].Put(1, column, each.kind, each.text);
        const auto plans = PlannedBook(project.connection, BytesOf(grids));
        ASSERT_EQ(plans[1].rows.size(), 1U) << each.text;
        const PlannedRow& row = plans[1].rows[0];
        EXPECT_EQ(row.line, 2U);
        EXPECT_EQ(plans[1].sheet, u"Trends");
        EXPECT_EQ(row.cause, each.cause) << each.text;
        ASSERT_EQ(row.changes.size(), 1U);
        EXPECT_EQ(row.changes[0].suspicion, each.suspicion) << each.text;
        EXPECT_EQ(plans[1].places.at(*row.changes[0].sheetColumn), column);
    }
}

TEST(WorkbookTest, SheetsAreKnownByNameOrHeadings) {
    Project project(kBrewery);
    std::vector<Grid> grids = GridsOf(Workbook(project.connection, "de"));
    EXPECT_EQ(grids[0].name, "Archive");
    grids[1].name = "Tabelle1";
    Grid notes{"Notizen", {}};
    notes.Put(0, 0, BookKind::Text, "Name");
    notes.Put(0, 1, BookKind::Text, "Wer");
    grids.insert(grids.begin(), notes);
    spreadsheet::WorkbookReader reader;
    ASSERT_TRUE(reader.Open(BytesOf(grids)));
    const WorkbookRows both = ReadWorkbook(project.connection, reader, {});
    ASSERT_EQ(both.sheets.size(), 2U);
    EXPECT_EQ(both.sheets[1].SheetName(), u"Tabelle1");
    EXPECT_EQ(both.passedOver, std::vector<std::string>{"Notizen"});
    EXPECT_EQ(ReadWorkbook(project.connection, reader, {SheetKind::Trends}).sheets.size(), 1U);

    grids[0] = grids[2];
    grids[0].name = "Kopie";
    EXPECT_THROW(std::ignore = Read(project.connection, BytesOf(grids)), ado::AdoError);
    EXPECT_THROW(std::ignore = Read(project.connection, BytesOf({notes})), ado::AdoError);
}

}  // namespace
}  // namespace exchange
