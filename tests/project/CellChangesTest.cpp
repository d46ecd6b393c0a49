#include "project/CellChanges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "project/ProjectTesting.h"

namespace project {
namespace {

using Cause = CellRefusal::Cause;

std::u16string Text(const char16_t* text) {
    return text;
}

CellChange Change(std::string_view table, std::int32_t id, const char* column, ado::Value was,
                  ado::Value is) {
    return {table, id, column, std::move(was), std::move(is)};
}

CellChange Name(std::string_view table, std::int32_t id, const char16_t* was, const char16_t* is) {
    return Change(table, id, "Name", Text(was), Text(is));
}

ado::Value ValueOf(ado::Connection& connection, std::string_view table, std::int32_t id,
                   const char* column) {
    ado::Recordset rows;
    rows.Open(table, connection, ado::CommandType::Table);
    rows.SetFilter("ID = " + std::to_string(id));
    return rows.Get(column);
}

class CellChangesTest : public testing::Test {
protected:
    CellChangesTest() { project.AddInOrder(); }

    ado::Value Stored(std::string_view table, std::int32_t id, const char* column) {
        return ValueOf(project.connection, table, id, column);
    }

    TestProject project;
};

TEST_F(CellChangesTest, NamesCanBeSwappedAndTheirTextsFollow) {
    project.Set({{kTextTable, 4, "Name", u"named by hand"}});
    const std::vector<CellChange> swap = {Name(kTrendTable, 1, u"A", u"B"),
                                          Name(kTrendTable, 2, u"B", u"A"),
                                          Name(kArchiveTable, 2, u"Walze", u"Halle")};
    EXPECT_TRUE(CheckCells(project.connection, swap).empty());
    EXPECT_TRUE(WriteCells(project.connection, swap).isDone);
    EXPECT_EQ(Stored(kTrendTable, 1, "Name"), ado::Value(Text(u"B")));
    EXPECT_EQ(Stored(kTrendTable, 2, "Name"), ado::Value(Text(u"A")));
    EXPECT_EQ(Stored(kTextTable, 3, "Name"), ado::Value(Text(u"IdxB")));
    EXPECT_EQ(Stored(kTextTable, 4, "Name"), ado::Value(Text(u"named by hand")));
    EXPECT_EQ(Stored(kGroupTable, 3, "Name"), ado::Value(Text(u"Halle")));
    EXPECT_EQ(Stored(kTextTable, 2, "Name"), ado::Value(Text(u"archHalle")));
}

TEST_F(CellChangesTest, WhatStandsAgainstAChangeIsTold) {
    const std::u16string tooLong(300, u'x');
    struct Case {
        CellChange change;
        Cause cause;
    };
    const Case cases[] = {
        {Name(kTrendTable, 99, u"A", u"C"), Cause::RowGone},
        {Name(kTrendTable, 1, u"other", u"C"), Cause::Changed},
        {Name(kTrendTable, 1, u"A", u"b "), Cause::NameDouble},
        {Name(kArchiveTable, 2, u"Walze", u"öFEN"), Cause::NameDouble},
        {Name(kTrendTable, 1, u"A", u"  "), Cause::NameEmpty},
        {Change(kTrendTable, 1, "Name", Text(u"A"), tooLong), Cause::DoesNotFit},
        {Change(kTrendTable, 1, "Nothing", ado::Null{}, 1), Cause::NoField},
        {Change(kTrendTable, 1, "ID", 1, 5), Cause::NoField},
        {Change(kTextTable, 3, "L1031", Text(u"A"), tooLong), Cause::DoesNotFit},
        {Change(kTrendTable, 1, "VLineWidth", 1, Text(u"wide")), Cause::WrongType},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.change.column + " " + std::to_string(static_cast<int>(each.cause)));
        // A sound change beside it, which is not written either.
        const std::vector<CellChange> changes = {
            Change(kTrendTable, 2, "Comment", ado::Null{}, Text(u"beside")), each.change};
        const WrittenCells written = WriteCells(project.connection, changes);
        EXPECT_FALSE(written.isDone);
        ASSERT_EQ(written.refusals.size(), 1U);
        EXPECT_EQ(written.refusals[0].change, 1U);
        EXPECT_EQ(written.refusals[0].cause, each.cause);
        EXPECT_EQ(Stored(kTrendTable, 2, "Comment"), ado::Value(ado::Null{}));
    }
}

TEST_F(CellChangesTest, ANameThatBecomesAnotherCaseOfItselfIsNoDouble) {
    project.Set({{kTrendTable, 2, "Name", u"a"}});  // there twice already
    EXPECT_TRUE(
        CheckCells(project.connection, std::vector{Name(kTrendTable, 2, u"a", u"A")}).empty());
    const std::vector<CellChange> both = {Name(kTrendTable, 1, u"A", u"C"),
                                          Name(kTrendTable, 2, u"a", u"c")};
    EXPECT_EQ(CheckCells(project.connection, both).size(), 2U);
}

TEST_F(CellChangesTest, GivenUpInTheMiddleNothingIsWritten) {
    const std::vector<CellChange> changes = {
        Change(kTrendTable, 1, "Comment", ado::Null{}, Text(u"x")),
        Change(kTrendTable, 2, "Comment", ado::Null{}, Text(u"x"))};
    // While the first row is looked at, and when it has been written.
    for (const int last : {0, 3}) {
        const auto written = WriteCells(project.connection, changes, [last](int done, int total) {
            EXPECT_EQ(total, 4);
            return done < last;
        });
        EXPECT_FALSE(written.isDone);
        EXPECT_TRUE(written.refusals.empty());
        EXPECT_EQ(Stored(kTrendTable, 1, "Comment"), ado::Value(ado::Null{}));
    }
}

}  // namespace
}  // namespace project
