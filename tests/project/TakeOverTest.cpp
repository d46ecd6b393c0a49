#include "project/TakeOver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "project/Changes.h"
#include "project/CreateProject.h"
#include "ProjectFiles.h"
#include "RandomDay.h"

namespace {

using project::TakeOverRefusal;
using project::Wanted;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kBrewery = std::string(KV_EXAMPLES "/Brauerei.kvs");

/// The brewery beside a copy of it in which things are changed.
class TakeOverTest : public testing::Test {
protected:
    TakeOverTest() {
        OpenProject(there_, folder_.Copy(kBrewery, "there.kvs"));
        OpenProject(here_, folder_.Copy(kBrewery, "here.kvs"));
    }

    project::Differences Compare() { return project::Compare(there_, here_); }
    /// Takes over what stands in these rows of a table, or in a column of theirs.
    std::vector<TakeOverRefusal> Take(const std::string& table, std::vector<std::int32_t> ids,
                                      const std::string& column = {}) {
        const project::Differences found = Compare();
        std::vector<Wanted> wanted;
        for (std::size_t i = 0; i < found.rows.size(); ++i) {
            const bool isMeant =
                found.rows[i].table == table &&
                std::ranges::count(ids, project::NumberOf(found.rows[i]).value_or(0)) > 0;
            if (isMeant) wanted.push_back({i, column});
        }
        EXPECT_EQ(wanted.size(), ids.size()) << "some do not differ";
        return project::TakeOver(here_, project::PlanTakeOver(found, wanted));
    }
    /// What still differs, of what can be taken over and otherwise.
    std::vector<std::string> Left(bool others = false) {
        std::vector<std::string> left;
        const project::Differences found = Compare();
        for (const ado::RowChange& row : found.rows) {
            if (project::IsTakenOver(found, row.table) == others) continue;
            left.push_back(row.table + ' ' + std::to_string(project::NumberOf(row).value_or(0)));
        }
        return left;
    }
    static void SetIn(ado::Connection& connection, std::string_view table, std::int32_t id,
                      const char* column, const ado::Value& value) {
        ado::Recordset rows;
        rows.Open(table, connection, ado::CommandType::Table);
        rows.SetFilter("ID = " + std::to_string(id));
        rows.Set(column, value);
        rows.Update();
    }

    TestFolder folder_;
    ado::Connection there_;
    ado::Connection here_;
};

// Of its own tables the project then holds what the other one does, whatever was done to both.
TEST_F(TakeOverTest, AllOfARandomDayGoesBack) {
    RandomDay(here_, 4, "A").Work(80);
    RandomDay(there_, 5, "B").Work(20);
    const project::Differences found = Compare();
    std::vector<Wanted> all;
    for (std::size_t i = 0; i < found.rows.size(); ++i) all.push_back({i, {}});
    ASSERT_GT(all.size(), 40U);
    EXPECT_THAT(project::TakeOver(here_, project::PlanTakeOver(found, all)), IsEmpty());
    EXPECT_THAT(Left(), IsEmpty());
}

TEST_F(TakeOverTest, AFieldComesAloneAndARowWithItsText) {
    SetIn(there_, project::kTrendTable, 5, "Unit", std::u16string(u"K"));
    SetIn(there_, project::kTrendTable, 5, "Factor", 2.0);
    SetIn(there_, project::kTrendTable, 6, "Unit", std::u16string(u"K"));
    project::Rows rows(there_);
    ASSERT_TRUE(rows.SeekTrend(5));
    const std::int32_t text = ado::ToLong(rows.Trends().Get("TextID"));
    SetIn(there_, project::kTextTable, text, "L1031", std::u16string(u"Anders"));
    const std::string textRow = "TidxTexts " + std::to_string(text);

    EXPECT_THAT(Take("TchrTrends", {5}, "Unit"), IsEmpty());
    EXPECT_THAT(Left(), ElementsAre("TchrTrends 5", "TchrTrends 6", textRow));
    EXPECT_THAT(Take("TchrTrends", {5}), IsEmpty());
    EXPECT_THAT(Left(), ElementsAre("TchrTrends 6"));
}

TEST_F(TakeOverTest, ANameComesWithWhatBearsIt) {
    project::Rows rows(there_);
    ASSERT_TRUE(rows.SeekArchive(3));
    rows.Archives().Set("Name", std::u16string(u"Anders"));
    rows.Archives().Update();
    rows.NameGroupAndText(3);
    EXPECT_THAT(Left(), SizeIs(3));
    EXPECT_THAT(Take("TchrArchives", {3}, "Name"), IsEmpty());
    EXPECT_THAT(Left(), IsEmpty());

    // Trends of other archives may be called the same.
    ASSERT_TRUE(rows.SeekTrendsOf(3));
    SetIn(there_, project::kTrendTable, 5, "Name", rows.Trends().Get("Name"));
    EXPECT_THAT(Take("TchrTrends", {5}), IsEmpty());
    EXPECT_THAT(Left(), IsEmpty());
}

// A row comes without the language that the project does not have.
TEST_F(TakeOverTest, TheColumnsOfBothNeedNotBeTheSame) {
    const auto fill = [&](ado::Connection& connection, const char* file,
                          std::vector<std::uint32_t> languages) {
        connection.Close();
        project::CreateProject(folder_.Path(file), languages);
        OpenProject(connection, folder_.Path(file));
        project::Rows rows(connection);
        const std::int32_t id = rows.AddArchive(u"Kessel");
        rows.AddArchiveText(rows.AddGroup(id, u"Kessel"), u"Kessel", "L1036");
    };
    fill(there_, "more.kvs", {1031, 1033, 1036});
    fill(here_, "less.kvs", {1033, 1036});
    SetIn(there_, project::kTextTable, 1, "L1031", std::u16string(u"Kessel"));
    SetIn(there_, project::kTextTable, 1, "L1036", std::u16string(u"Chaudron"));
    EXPECT_THAT(Take("TidxTexts", {1}), IsEmpty());
    project::Rows rows(here_);
    ASSERT_TRUE(rows.SeekText(1));
    EXPECT_EQ(rows.Texts().Get("L1036"), ado::Value(u"Chaudron"));
}

// What names each other goes together, so that nothing leads nowhere afterwards.
TEST_F(TakeOverTest, AnArchiveComesAndGoesWithAllThatHangsFromIt) {
    for (ado::Connection* with : {&there_, &here_}) {
        SCOPED_TRACE(with == &there_ ? "comes" : "goes");
        RandomDay(*with, 1, "A").AddArchive();
        project::Rows rows(*with);
        rows.Archives().MoveLast();
        const std::int32_t archive = ado::ToLong(rows.Archives().Get("ID"));
        project::NewTrend trend;
        trend.name = u"Messwert";
        trend.texts = {{"L1031", trend.name}};
        rows.AddTrend(archive, trend);
        rows.AddTrendText(rows.GroupOfTrends(archive), trend);
        EXPECT_THAT(Left(), SizeIs(5));
        EXPECT_THAT(Take("TchrArchives", {archive}), IsEmpty());
        EXPECT_THAT(Left(), IsEmpty());
    }
}

TEST_F(TakeOverTest, ADeletedArchiveComesBackWithItsTrends) {
    project::Rows rows(here_);
    rows.BeginRemoving();
    std::vector<std::int32_t> trends;
    ASSERT_TRUE(rows.SeekTrendsOf(2));
    for (; !rows.Trends().IsEOF(); rows.Trends().MoveNext()) {
        trends.push_back(ado::ToLong(rows.Trends().Get("ID")));
    }
    ASSERT_GT(trends.size(), 1U);
    for (const std::int32_t trend : trends) std::ignore = rows.RemoveTrend(trend);
    std::ignore = rows.RemoveArchive(2);

    // The trend brings the archive that it names, and that brings the others.
    EXPECT_THAT(Take("TchrTrends", {trends.front()}), IsEmpty());
    EXPECT_THAT(Left(), IsEmpty());
}

TEST_F(TakeOverTest, WhatStandsAgainstItIsToldAndNothingIsWritten) {
    project::Rows rows(there_);
    ASSERT_TRUE(rows.SeekTrend(5));
    const std::u16string name = ado::ToText(rows.Trends().Get("Name"));
    SetIn(here_, project::kTrendTable, 5, "Name", std::u16string(u"Frei"));
    SetIn(here_, project::kTrendTable, 5, "Unit", std::u16string(u"K"));
    SetIn(here_, project::kTrendTable, 6, "Name", name);

    const auto refused = Take("TchrTrends", {5});
    ASSERT_EQ(refused.size(), 1U);
    EXPECT_EQ(refused[0].cause, TakeOverRefusal::Cause::NameInUse);
    EXPECT_EQ(refused[0].name, name);
    EXPECT_THAT(Left(), ElementsAre("TchrTrends 5", "TchrTrends 6"));
    EXPECT_THAT(Take("TchrTrends", {5, 6}), IsEmpty()) << "the names are free as a set";

    SetIn(here_, project::kTrendTable, 5, "Unit", std::u16string(u"K"));
    const project::Differences found = Compare();
    SetIn(here_, project::kTrendTable, 5, "Unit", std::u16string(u"L"));
    const std::vector<Wanted> first = {{0, {}}};
    const auto changed = project::TakeOver(here_, project::PlanTakeOver(found, first));
    ASSERT_EQ(changed.size(), 1U);
    EXPECT_EQ(changed[0].cause, TakeOverRefusal::Cause::Changed);
    EXPECT_THAT(Left(), ElementsAre("TchrTrends 5"));
}

TEST_F(TakeOverTest, TablesOfOtherEditorsAreLeftAlone) {
    SetIn(there_, project::kVariableTable, 1, "Name", std::u16string(u"anders"));
    EXPECT_THAT(Take("TpdbVars", {1}), IsEmpty());
    EXPECT_THAT(Left(true), ElementsAre("TpdbVars 1"));
}

TEST_F(TakeOverTest, AComparisonStopsWhenItIsTold) {
    std::size_t looked = 0;
    EXPECT_THROW(std::ignore = project::Compare(there_, here_,
                                                [&](std::size_t rows) {
                                                    looked = rows;
                                                    return false;
                                                }),
                 project::CompareStopped);
    EXPECT_GT(looked, 0U);
}

}  // namespace
