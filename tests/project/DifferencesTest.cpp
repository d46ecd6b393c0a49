#include "project/Differences.h"

#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ado/CreateFile.h"
#include "jet/Compact.h"
#include "project/Changes.h"
#include "ProjectFiles.h"
#include "RandomDay.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kBrewery = std::string(KV_EXAMPLES "/Brauerei.kvs");

project::Differences Compare(const std::string& before, const std::string& after) {
    ado::Connection earlier;
    OpenProject(earlier, before);
    ado::Connection later;
    OpenProject(later, after);
    return project::Compare(earlier, later);
}

/// Rows by table and number, each with what it was and is.
auto InOrder(std::span<const ado::RowChange> rows) {
    std::map<std::pair<std::string, std::int32_t>,
             std::pair<std::vector<ado::Value>, std::vector<ado::Value>>>
        ordered;
    for (const ado::RowChange& row : rows) {
        ordered[{row.table, ado::ToLong(*row.KnownIn("ID"))}] = {row.before, row.after};
    }
    return ordered;
}

TEST(DifferencesTest, AreWhatADayHasChanged) {
    for (DayNumbers days(3); days.Next();) {
        SCOPED_TRACE(days.Number());
        const TestFolder folder;
        const std::string path = folder.Copy(kBrewery, "day.kvs");
        project::ChangeSet day;
        {
            ado::Connection connection;
            OpenProject(connection, path);
            day = RandomDay(connection, days.Number(), "A").WorkBySteps(80);
        }
        const project::Differences found = Compare(kBrewery, path);
        EXPECT_GT(found.rows.size(), 30U);
        EXPECT_EQ(InOrder(found.rows), InOrder(day.Rows()));
        EXPECT_EQ(InOrder(found.rows).size(), found.rows.size());
        EXPECT_THAT(found.tables, IsEmpty());

        // Where the rows lie in the file does not matter.
        const std::string compact = folder.Copy(path, "compact.kvs");
        ASSERT_TRUE(jet::Compact(jet::SystemDisk(), compact).IsOk());
        EXPECT_TRUE(Compare(path, compact).IsEmpty());
    }
}

TEST(DifferencesTest, TellTheNamesOfWhatRowsName) {
    const TestFolder folder;
    const std::string path = folder.Copy(kBrewery, "moved.kvs");
    {
        ado::Connection connection;
        OpenProject(connection, path);
        project::Rows rows(connection);
        ASSERT_TRUE(rows.SeekTrend(5));
        rows.Trends().Set("ArchiveID", 2);
        rows.Trends().Update();
    }
    const project::Differences found = Compare(kBrewery, path);
    EXPECT_THAT(found.rows, SizeIs(1));
    EXPECT_EQ(found.before, (project::RowNames{{{"TchrArchives", 1}, u"Sudhaus"}}));
    EXPECT_EQ(found.after, (project::RowNames{{{"TchrArchives", 2}, u"Gärkeller"}}));
}

/// A file with a table of numbers without an order, one without numbers, and one more column.
std::string MakeForeign(const std::string& path, bool isLater) {
    std::vector<ado::NewTable> tables(3);
    tables[0].name = "Unordered";
    tables[0].columns = {{"ID"}, {"X", ado::DataType::Double}};
    tables[1].name = "Plain";
    tables[1].columns = {{"Word", ado::DataType::VarWChar, 20}};
    tables[2].name = isLater ? "Later" : "Earlier";
    tables[2].columns = {{"ID"}};
    if (isLater) tables[0].columns.push_back({"Y"});
    ado::CreateFile(path, tables, [&](ado::Connection& connection) {
        ado::Recordset rows;
        rows.Open("Unordered", connection, ado::CommandType::Table);
        const std::vector<std::int32_t> ids = isLater ? std::vector{2, 9, 4} : std::vector{4, 7, 2};
        for (const std::int32_t id : ids) {
            rows.AddNew();
            rows.Set("ID", id);
            rows.Set("X", id == 2 ? std::numeric_limits<double>::quiet_NaN() : 1.5);
            if (isLater && id == 4) rows.Set("Y", 1);
            rows.Update();
        }
        ado::Recordset words;
        words.Open("Plain", connection, ado::CommandType::Table);
        using Words = std::vector<std::u16string>;
        for (const auto& word : isLater ? Words{u"b", u"a", u"a"} : Words{u"a", u"b", u"b", u"c"}) {
            words.AddNew();
            words.Set("Word", word);
            words.Update();
        }
    });
    return path;
}

TEST(DifferencesTest, HoldForTablesOfAnyKind) {
    const TestFolder folder;
    const project::Differences found =
        Compare(MakeForeign(folder.Path("a.kvs"), false), MakeForeign(folder.Path("b.kvs"), true));
    std::vector<std::string> texts;
    for (const ado::RowChange& row : found.rows) {
        std::string text = row.table;
        for (const auto* side : {&row.before, &row.after}) {
            text += " |";
            for (const ado::Value& value : *side) {
                for (const char16_t c : u" " + ado::ToText(value)) text += static_cast<char>(c);
            }
        }
        texts.push_back(text);
    }
    EXPECT_THAT(texts,
                ElementsAre("Unordered | 4 1.5  | 4 1.5 1", "Unordered | 7 1.5  |",
                            "Unordered | | 9 1.5 ", "Plain | b |", "Plain | c |", "Plain | | a"));
    using Kind = project::TableDifference::Kind;
    std::vector<std::tuple<Kind, std::string, std::string>> tables;
    for (const auto& each : found.tables) tables.push_back({each.kind, each.table, each.column});
    EXPECT_THAT(tables, ElementsAre(std::tuple(Kind::ColumnNew, "Unordered", "Y"),
                                    std::tuple(Kind::TableGone, "Earlier", ""),
                                    std::tuple(Kind::TableNew, "Later", "")));
}

}  // namespace
