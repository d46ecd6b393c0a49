#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <tuple>

#include "ado/AdoError.h"
#include "exchange/ExchangeTesting.h"
#include "project/Changes.h"
#include "project/Names.h"
#include "project/Rows.h"
#include "unicode/Unicode.h"

namespace exchange {
namespace {

using State = PlannedRow::State;
using Cause = PlannedRow::Cause;
using testing::HasSubstr;

const char* const kBrewery = KV_EXAMPLES "/Brauerei.kvs";
const char* const kOddCases = KV_TEST_DATA "/Grenzfaelle.kvs";

/// Rows 1 and 2 of the brewery's trends are those of the archive Sudhaus with these names.
constexpr const char* kFirst = "1,Sudhaus,Maischbottich Temperatur";

TEST(PlanTest, ARowIsKnownByItsIdAndItsNames) {
    const struct {
        const char* what;
        std::string rows;  // ID,Archive,Runtime Name
        MatchBy by;
        State state;
        Cause cause;
        std::size_t same;
    } cases[] = {
        {"renamed", "1,Sudhaus,Neu", MatchBy::Both, State::Changed, Cause::None, 0},
        {"moved", "1,Gärkeller,Maischbottich Temperatur", MatchBy::Both, State::Changed,
         Cause::None, 0},
        {"the ID of another", "1,Gärkeller,Neu", MatchBy::Both, State::Ambiguous, Cause::OtherNames,
         0},
        {"the same, by its ID", "1,Gärkeller,Neu", MatchBy::Id, State::Changed, Cause::None, 0},
        {"without ID", ",Sudhaus,Neu", MatchBy::Both, State::New, Cause::None, 0},
        {"an ID that is not there", "9999,Sudhaus,Neu", MatchBy::Both, State::New, Cause::None, 0},
        {"another ID, by name", "2,Sudhaus,Neu", MatchBy::Name, State::New, Cause::None, 0},
        {"an archive that is not there", ",Sudhaus 2,Neu", MatchBy::Both, State::Refused,
         Cause::NoArchive, 0},
        {"no archive", ",,Neu", MatchBy::Both, State::Refused, Cause::NoArchive, 0},
        {"no name", "1,Sudhaus,", MatchBy::Both, State::Refused, Cause::NoName, 0},
        {"a new one without a name", ",Sudhaus, ", MatchBy::Both, State::Refused, Cause::NoName, 0},
        {"a name in use", "1,Sudhaus,MAISCHBOTTICH FÜLLSTAND", MatchBy::Both, State::Refused,
         Cause::NameInUse, 0},
        {"twice", std::string(kFirst) + "\n" + kFirst, MatchBy::Both, State::Refused,
         Cause::GivenTwice, 1},
        {"twice, by other means", std::string(kFirst) + "\n,Sudhaus,Maischbottich Temperatur",
         MatchBy::Both, State::Refused, Cause::GivenTwice, 1},
        {"no ID", "x1,Sudhaus,Neu", MatchBy::Both, State::Refused, Cause::BadCell, 0},
        {"more cells than headings", "1,Sudhaus,Neu,more", MatchBy::Both, State::Refused,
         Cause::TooManyCells, 0},
        {"a name too long", "1,Sudhaus," + std::string(81, 'x'), MatchBy::Both, State::Refused,
         Cause::BadCell, 0},
    };
    Project project(kBrewery);
    for (const auto& each : cases) {
        const Plan plan =
            Planned(project.connection, "ID,Archive,Runtime Name\n" + each.rows, {each.by});
        std::vector<PlannedRow> rows;
        for (const PlannedRow& row : plan.rows) {
            if (row.state != State::Missing) rows.push_back(row);
        }
        ASSERT_EQ(rows.size(), 1U) << each.what;
        EXPECT_EQ(rows[0].state, each.state) << each.what;
        EXPECT_EQ(rows[0].cause, each.cause) << each.what;
        EXPECT_EQ(plan.same, each.same) << each.what;
    }
}

// A window lets the user say what a file's columns are, without reading it again.
TEST(PlanTest, HeadingsThatNobodyKnowsAreAssignedByHand) {
    Project project(kBrewery);
    Bytes bytes("Nr.,Kühlung,Einheit,Unit\n1,x,K,bar\n2,y,,\n");
    CsvInput input(bytes, {csv::Encoding::Utf8, ','});
    InputRows rows(project.connection, input, {.isOpen = true});
    ASSERT_EQ(rows.Columns().Kind(), SheetKind::Trends);
    ASSERT_EQ(rows.Headings().size(), 4U);
    EXPECT_EQ(rows.ColumnOf(0), std::nullopt);
    EXPECT_EQ(rows.ColumnOf(2), rows.Columns().FindField("Unit"));
    EXPECT_EQ(rows.ColumnOf(3), std::nullopt) << "the first one has it";
    EXPECT_FALSE(rows.HasKey());
    EXPECT_THROW(std::ignore = MakePlan(project.connection, rows, {}), ado::AdoError);

    rows.Assign(0, rows.Columns().FindRole(SheetColumn::Role::Id));
    rows.Assign(3, rows.ColumnOf(2));
    EXPECT_EQ(rows.ColumnOf(2), std::nullopt);
    rows.Assign(1, rows.Columns().FindField("Comment"));
    EXPECT_EQ(rows.At(0, 1).text, u"x");
    const Plan plan = MakePlan(project.connection, rows, {});
    ASSERT_EQ(plan.rows.front().changes.size(), 2U);
    EXPECT_EQ(plan.rows.front().changes[0].is, ado::Value(u"bar"));
    EXPECT_EQ(plan.rows.front().changes[1].is, ado::Value(u"x"));

    rows.SetKind(project.connection, SheetKind::Archives);
    EXPECT_EQ(rows.Columns().Kind(), SheetKind::Archives);
    EXPECT_FALSE(rows.HasKey());
    rows.Assign(0, rows.Columns().FindRole(SheetColumn::Role::Id));
    EXPECT_EQ(MakePlan(project.connection, rows, {}).same, 2U);
}

TEST(PlanTest, ACellIsTakenWholeOrRefused) {
    const std::u16string empty(project::kEmptyText);
    const struct {
        const char* heading;
        const char* cell;
        project::Problem problem;
        ado::Value value;  // where there is no problem
        Suspicion suspicion;
    } cases[] = {
        {"Factor", "2,5", project::Problem::None, 2.5, Suspicion::None},
        {"Normierungsfaktor", "2.5", project::Problem::None, 2.5, Suspicion::None},
        {"factor", "2.5x", project::Problem::NoNumber, {}, Suspicion::None},
        {"Factor", "1e400", project::Problem::OutOfRange, {}, Suspicion::None},
        {"Factor", "", project::Problem::None, ado::Null(), Suspicion::None},
        {"Filter", "Mittelung", project::Problem::None, 2, Suspicion::None},
        {"Filter", "averaging", project::Problem::None, 2, Suspicion::None},
        {"Filter", "2", project::Problem::None, 2, Suspicion::None},
        {"Filter", "9", project::Problem::NotListed, {}, Suspicion::None},
        {"Filter Depth", "1.5", project::Problem::NotWhole, {}, Suspicion::None},
        {"Curve Color", "#0A0B0C", project::Problem::None, 0x0C0B0A, Suspicion::None},
        {"Curve Color", "red", project::Problem::NoColour, {}, Suspicion::None},
        {"Comment", "", project::Problem::None, ado::Null(), Suspicion::None},
        {"Unit", "\"\"", project::Problem::None, empty, Suspicion::None},
        {"Unit",
         "123456789012345678901234567890123",
         project::Problem::TooLong,
         {},
         Suspicion::None},
        {"Hysteresis", "05. Mai", project::Problem::None, u"05. Mai", Suspicion::Date},
        {"Hysteresis", "2026-05-01", project::Problem::None, u"2026-05-01", Suspicion::Date},
        {"Hysteresis", "0.6", project::Problem::None, u"0.6", Suspicion::None},
        {"TrendVar", "Sudhaus.x", project::Problem::None, u"Sudhaus.x", Suspicion::None},
    };
    Project project(kBrewery);
    // What is Null differs from what is not there.
    project::Rows rows(project.connection);
    ASSERT_TRUE(rows.SeekTrend(1));
    rows.Trends().Set("Comment", std::u16string(u"a comment"));
    rows.Trends().Update();
    rows.Trends().Close();
    for (const auto& each : cases) {
        const Plan plan =
            Planned(project.connection, std::string("ID;") + each.heading + "\n1;" + each.cell, {},
                    csv::Encoding::Utf8, {SheetKind::Trends});
        ASSERT_FALSE(plan.rows.empty()) << each.heading << each.cell;
        const PlannedRow& row = plan.rows.front();
        EXPECT_EQ(row.problem, each.problem) << each.heading << each.cell;
        if (each.problem != project::Problem::None) continue;
        ASSERT_EQ(row.changes.size(), 1U) << each.heading << each.cell;
        EXPECT_EQ(row.changes[0].is, each.value) << each.heading << each.cell;
        EXPECT_EQ(row.changes[0].suspicion, each.suspicion) << each.heading << each.cell;
    }
}

TEST(PlanTest, ANumberThatASpreadsheetHasRoundedIsTheSameOne) {
    Project project(kBrewery);
    project::Rows rows(project.connection);
    ASSERT_TRUE(rows.SeekTrend(1));
    rows.Trends().Set("Factor", 0.1 + 0.2);
    rows.Trends().Set("Maximum", std::u16string(u"0012.50"));
    rows.Trends().Update();
    rows.Trends().Close();
    EXPECT_THAT(Exported(project.connection, SheetKind::Trends), HasSubstr("0.30000000000000004"));
    EXPECT_EQ(Planned(project.connection, "ID,Factor\n1,\"0,3\"").same, 1U);
    const Plan plan = Planned(project.connection, "ID,Maximum\n1,12.5");
    EXPECT_EQ(plan.rows.at(0).changes.at(0).suspicion, Suspicion::Rounded);
}

TEST(PlanTest, HeadingsThatMakeNoSheetAreRefused) {
    Project project(kBrewery);
    const std::pair<const char*, const char*> cases[] = {
        {"", "no heading row"},
        {"ID,L1031\n1,x", "archives and trends alike"},
        {"ID,Archive,Colour of the cat", "\"Colour of the cat\""},
        {"ID,Factor,Normierungsfaktor", "a second time"},
        {"Archive,Factor", "neither the ID nor"},
        {"ID,Archive,Runtime Name\n1,Sudhaus,\"a", "Line 2: a closing quote"},
        {"ID,Archive,Comment\n1,,x\n2,,\xFC",
         "Line 3: column 3 (\"Comment\"), character 1: the byte FC"},
    };
    for (const auto& [text, what] : cases) {
        try {
            std::ignore = Planned(project.connection, text);
            ADD_FAILURE() << text;
        } catch (const ado::AdoError& error) {
            EXPECT_THAT(error.Description(), HasSubstr(what));
        }
    }
}

// What is stored afterwards differs from before in what the plan says, and in nothing else.
TEST(PlanTest, NothingIsAppliedThatIsNotPlanned) {
    Project project(kBrewery);
    const Plan plan = Planned(project.connection,
                              "ID,Archive,Runtime Name,Display Text L1033,Factor\n"
                              "1,Sudhaus,Neu,Mash,3\n"
                              "2,Gärkeller,Maischbottich Druck,Pressure Maischbottich,1\n");
    project::ChangeRecorder recorder(project.connection);
    ASSERT_TRUE(Apply(project.connection, plan));
    std::multiset<std::string> planned;
    for (const PlannedRow& row : plan.rows) {
        for (const FieldChange& change : row.changes) {
            planned.insert(
                change.table + "." + change.column + ": " +
                unicode::ToUtf8(ado::ToText(change.was) + u" -> " + ado::ToText(change.is)));
        }
    }
    std::multiset<std::string> made;
    const project::ChangeSet changes = recorder.Take();
    for (const ado::RowChange& row : changes.Rows()) {
        for (std::size_t i = 0; i < row.columns->size(); ++i) {
            if (row.before.at(i) == row.after.at(i)) continue;
            made.insert(
                row.table + "." + (*row.columns)[i] + ": " +
                unicode::ToUtf8(ado::ToText(row.before[i]) + u" -> " + ado::ToText(row.after[i])));
        }
    }
    EXPECT_EQ(made, planned);
    EXPECT_GE(planned.size(), 6U) << "the texts' names and places go along";
}

TEST(PlanTest, AProjectThatHasChangedMeanwhileIsPlannedAnew) {
    Project project(kBrewery);
    const std::string header = "ID,Archive,Runtime Name,Factor\n";
    const std::string text = header + kFirst + ",3\n,Sudhaus,Neu,1\n";
    const Plan plan = Planned(project.connection, text);
    project::Rows rows(project.connection);
    ASSERT_TRUE(rows.SeekTrend(1));
    rows.Trends().Set("Factor", 2.0);
    rows.Trends().Update();
    rows.Trends().Close();
    const std::string before = Exported(project.connection, SheetKind::Trends);
    EXPECT_FALSE(Apply(project.connection, plan));
    EXPECT_EQ(Exported(project.connection, SheetKind::Trends), before);
    EXPECT_TRUE(Apply(project.connection, Planned(project.connection, text)));
}

// What a plan goes by besides the fields that it changes.
TEST(PlanTest, WhatAPlanGoesByMustStillBeThere) {
    using Meanwhile = void (*)(project::Rows & rows);
    static constexpr auto rename = [](ado::Recordset& rows) {
        rows.Set("Name", std::u16string(u"anders"));
        rows.Update();
    };
    const struct {
        const char* what;
        const char* text;
        Meanwhile meanwhile;
    } cases[] = {
        {"where a trend moves to",
         "ID,Archive,Runtime Name\n1,Gärkeller,Maischbottich Temperatur\n",
         [](project::Rows& rows) {
             ASSERT_TRUE(rows.SeekArchive(2));
             rename(rows.Archives());
         }},
        {"the group of its text", "ID,Archive,Runtime Name\n1,Gärkeller,Maischbottich Temperatur\n",
         [](project::Rows& rows) {
             ASSERT_TRUE(rows.SeekGroup(2));
             rows.Groups().Delete();
         }},
        {"what a row that goes is called", "ID,Archive,Runtime Name\n2,Sudhaus,Neu\n",
         [](project::Rows& rows) {
             ASSERT_TRUE(rows.SeekTrend(1));
             rename(rows.Trends());
         }},
        {"how many trends go with an archive", "ID,File Name\n1,sudhaus\n",
         [](project::Rows& rows) {
             project::NewTrend trend;
             trend.name = u"neu";
             rows.AddTrend(2, trend);
         }},
    };
    for (const auto& each : cases) {
        Project project(kBrewery);
        PlanOptions options;
        options.deleteMissing = true;
        const Plan plan = Planned(project.connection, each.text, options);
        {
            project::Rows rows(project.connection);
            each.meanwhile(rows);
        }
        const std::string before = project.Bytes();
        EXPECT_FALSE(Apply(project.connection, plan)) << each.what;
        EXPECT_TRUE(project.Bytes() == before) << each.what;
    }
}

TEST(PlanTest, NamesMayChangePlaces) {
    Project project(kBrewery);
    const Plan plan = Planned(project.connection,
                              "ID,Archive,Runtime Name\n1,Sudhaus,Maischbottich Druck\n"
                              "2,Sudhaus,Maischbottich Temperatur\n");
    EXPECT_EQ(plan.Count(State::Changed), 2U);
    EXPECT_TRUE(Apply(project.connection, plan));
}

TEST(PlanTest, RowsGoOnlyWhenThatIsAskedFor) {
    const std::string text = std::string("ID,Archive,Runtime Name\n") + kFirst + "\n";
    for (const bool deletes : {false, true}) {
        Project project(kBrewery);
        PlanOptions options;
        options.deleteMissing = deletes;
        const Plan plan = Planned(project.connection, text, options);
        const std::size_t missing = plan.Count(State::Missing);
        EXPECT_GT(missing, 5U);
        EXPECT_LT(missing, 30U) << "trends of other archives are not missing";
        ASSERT_TRUE(Apply(project.connection, plan));
        const Plan after = Planned(project.connection, text);
        EXPECT_EQ(after.Count(State::Missing), deletes ? 0 : missing);
    }
    // An archive takes its trends along.
    Project project(kBrewery);
    PlanOptions options;
    options.deleteMissing = true;
    const Plan plan = Planned(project.connection, "ID,File Name\n1,sudhaus\n", options);
    EXPECT_EQ(plan.Count(State::Missing), 13U);
    ASSERT_TRUE(Apply(project.connection, plan));
    project::Rows rows(project.connection);
    EXPECT_EQ(rows.Archives().RecordCount(), 1U);
    EXPECT_FALSE(rows.SeekTrendsOf(2));
    EXPECT_TRUE(rows.SeekTrendsOf(1));
}

TEST(PlanTest, RowsThatAreKeptOrInDoubtStay) {
    Project project(kBrewery);
    project::Rows rows(project.connection);
    ASSERT_TRUE(rows.SeekTrend(2));
    const auto shared = rows.Trends().Get("TextID");
    ASSERT_TRUE(rows.SeekTrend(1));
    rows.Trends().Set("TextID", shared);
    rows.Trends().Update();
    PlanOptions options;
    options.deleteMissing = true;
    options.kept.insert({SheetKind::Trends, 3});
    // Which row the second line means nobody knows.
    const Plan plan = Planned(project.connection,
                              "ID,Archive,Runtime Name\n1,Sudhaus,Maischbottich Temperatur\n"
                              "4,Gärkeller,Neu\n",
                              options);
    ASSERT_TRUE(Apply(project.connection, plan));
    EXPECT_FALSE(rows.SeekTrend(2));
    EXPECT_TRUE(rows.SeekTrend(3));
    EXPECT_TRUE(rows.SeekTrend(4));
    ASSERT_TRUE(rows.SeekTrend(1));
    EXPECT_TRUE(rows.SeekTextOf(rows.Trends())) << "the text of one that goes is another's too";
}

TEST(PlanTest, NamesThatAreNotFreeAreRefusedWithWhatWaitsForThem) {
    Project project(kBrewery);
    const std::string heading = "ID,Archive,Runtime Name\n";
    // The second one cannot give its name up, so that the first one cannot take it.
    const Plan chain = Planned(project.connection, heading +
                                                       "1,Sudhaus,Maischbottich Druck\n"
                                                       "2,Sudhaus,Maischbottich Füllstand\n");
    EXPECT_EQ(chain.rows.at(0).cause, Cause::NameInUse);
    EXPECT_EQ(chain.rows.at(1).cause, Cause::NameInUse);

    project::Rows rows(project.connection);
    ASSERT_TRUE(rows.SeekTrend(2));
    rows.Trends().Set("Name", std::u16string(u"Maischbottich Temperatur"));
    rows.Trends().Update();
    const Plan several =
        Planned(project.connection, heading + ",Sudhaus,Maischbottich Temperatur\n");
    EXPECT_EQ(several.rows.at(0).state, State::Ambiguous);
    EXPECT_EQ(several.rows.at(0).cause, Cause::SeveralRows);
}

// What somebody has named or put elsewhere by hand is left there; new curves differ in colour.
TEST(PlanTest, TextsFollowOnlyByTheRule) {
    Project project(kBrewery);
    project::Rows rows(project.connection);
    ASSERT_TRUE(rows.SeekTrend(1) && rows.SeekTextOf(rows.Trends()));
    rows.Texts().Set("Name", std::u16string(u"by hand"));
    rows.Texts().Set("ParentID", rows.RootGroup());
    rows.Texts().Update();
    const Plan plan = Planned(project.connection,
                              "ID,Archive,Runtime Name\n1,Gärkeller,Neu\n"
                              ",Gärkeller,A\n,Gärkeller,B\n",
                              {MatchBy::Id});
    ASSERT_TRUE(Apply(project.connection, plan));
    ASSERT_TRUE(rows.SeekTrend(1) && rows.SeekTextOf(rows.Trends()));
    EXPECT_EQ(project::NameOf(rows.Trends()), u"Neu");
    EXPECT_EQ(project::NameOf(rows.Texts()), u"by hand");
    EXPECT_EQ(rows.Texts().Get("ParentID"), ado::Value(rows.RootGroup()));
    std::set<std::u16string> colours;
    rows.Trends().SetFilter("Name = 'A' OR Name = 'B'");
    for (; !rows.Trends().IsEOF(); rows.Trends().MoveNext()) {
        colours.insert(ado::ToText(rows.Trends().Get("VLineColor")));
    }
    EXPECT_EQ(colours.size(), 2U);
}

// The other row keeps the text that both had.
TEST(PlanTest, ARowWhoseTextIsSharedGetsOneOfItsOwn) {
    Project project(kBrewery);
    project::Rows rows(project.connection);
    ASSERT_TRUE(rows.SeekTrend(1));
    const std::int32_t text = ado::ToLong(rows.Trends().Get("TextID"));
    ASSERT_TRUE(rows.SeekTrend(2));
    rows.Trends().Set("TextID", text);
    rows.Trends().Update();
    const Plan plan = Planned(project.connection, "ID,L1031\n2,Eigener\n", {}, csv::Encoding::Utf8,
                              {SheetKind::Trends});
    EXPECT_TRUE(plan.rows.at(0).ownText);
    ASSERT_TRUE(Apply(project.connection, plan));
    ASSERT_TRUE(rows.SeekText(text));
    EXPECT_EQ(rows.Texts().Get("L1031"), ado::Value(u"Temperatur Maischbottich"));
    ASSERT_TRUE(rows.SeekTrend(2));
    ASSERT_TRUE(rows.SeekTextOf(rows.Trends()));
    EXPECT_EQ(rows.Texts().Get("L1031"), ado::Value(u"Eigener"));
    EXPECT_EQ(project::NameOf(rows.Texts()),
              project::TrendTextName(project::NameOf(rows.Trends())));
    EXPECT_EQ(rows.Texts().Get("L1033"), ado::Value(u"Temperature Maischbottich"));
}

// Codes outside the lists, types with unknown bits and texts that are missing stay as they are.
TEST(PlanTest, WhatIsOddStaysBesideAChange) {
    Project project(kOddCases);
    project::Rows rows(project.connection);
    rows.Archives().SetFilter("Type = 33");
    ASSERT_FALSE(rows.Archives().IsEOF());
    const std::int32_t id = ado::ToLong(rows.Archives().Get("ID"));
    rows.Archives().Close();
    ASSERT_TRUE(Apply(
        project.connection,
        Planned(project.connection, "ID,Make Redundancy File\n" + std::to_string(id) + ",ja\n")));
    ASSERT_TRUE(rows.SeekArchive(id));
    EXPECT_EQ(rows.Archives().Get("Type"), ado::Value(33 | 64));
    // A number has to be of the bits that the column stands for.
    const Plan others =
        Planned(project.connection, "ID,Make Redundancy File\n" + std::to_string(id) + ",3\n");
    EXPECT_EQ(others.rows.at(0).problem, project::Problem::NotListed);
}

TEST(PlanTest, GivenUpWhileItReadsOrPlansItChangesNothing) {
    Project project(KV_EXAMPLES "/Brauerei.kvs");
    const std::string before = project.Bytes();
    std::string text = Exported(project.connection, SheetKind::Trends);
    text += ",Sudhaus,Neu\n";
    for (const std::size_t last : {std::size_t{0}, std::size_t{100}, std::size_t{228}}) {
        const GoOn until = [&](std::size_t rows) { return rows < last; };
        EXPECT_THROW(std::ignore = Planned(project.connection, text, {}, csv::Encoding::Utf8,
                                           {.goOn = until}),
                     GivenUp);
        Bytes bytes(text);
        CsvInput input(bytes, {csv::Encoding::Utf8, 0});
        const InputRows rows(project.connection, input, {});
        EXPECT_THROW(std::ignore = MakePlans(project.connection, {&rows, 1}, {}, until), GivenUp);
    }
    EXPECT_TRUE(project.Bytes() == before);
}

// The archives that go with chosen trends are theirs.
TEST(PlanTest, ChosenTrendsBringTheirArchivesAlone) {
    Project project(KV_EXAMPLES "/Brauerei.kvs");
    const auto lines = [&](SheetKind kind) {
        const std::string text =
            Exported(project.connection, kind, {}, "en", {.trends = {1, 2, 100}});
        return std::count(text.begin(), text.end(), '\n') - 1;
    };
    EXPECT_EQ(lines(SheetKind::Trends), 3);
    EXPECT_EQ(lines(SheetKind::Archives), 2);
}

}  // namespace
}  // namespace exchange
