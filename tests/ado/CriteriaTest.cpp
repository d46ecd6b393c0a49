#include "AdoTesting.h"

namespace ado {
namespace {

/// Criteria against the archives and text groups of the brewery, which the tests know.
class CriteriaTest : public testing::Test {
protected:
    void SetUp() override { connection_.Open(ConnectionString(Example("Brauerei.kvs"))); }

    std::vector<std::u16string> Matching(const char* table, std::string_view criteria) {
        Recordset rows;
        rows.Open(table, connection_, CommandType::Table);
        rows.SetFilter(criteria);
        EXPECT_EQ(rows.Filter(), criteria);
        return Column(rows, "ID");
    }

    Connection connection_;
};

TEST_F(CriteriaTest, SelectsRowsAsTheCallersWriteThem) {
    struct Case {
        const char* table;
        const char* criteria;
        std::vector<std::u16string> ids;
    };
    const Case cases[] = {
        {"TchrArchives", "ID = 7", {u"7"}},
        {"TchrArchives", "ID=7", {u"7"}},
        {"TidxGroups", "ParentID = 0 AND Type = -2", {u"1"}},
        {"TidxGroups", "Parameter= 5 AND Type = -2", {u"7"}},
        {"TidxGroups", "Parameter= 99 AND Type = -2", {}},
        {"TchrArchives", "Name = 'SUDHAUS  '", {u"1"}},
        {"TchrArchives", "Name = 'O''Neil'", {}},
        {"TchrArchives", "[Name] LIKE 'k*'", {u"6", u"8"}},
        {"TchrArchives", "`Name` like '*KELLER'", {u"2", u"3"}},
        {"TchrArchives", "Name LIKE '*a*r*'", {u"3", u"10", u"13", u"14"}},
        {"TchrArchives", "ID > 12 OR ID < 2", {u"1", u"13", u"14"}},
        {"TchrArchives", "NOT (ID >= 2) or id = '3'", {u"1", u"3"}},
        {"TchrArchives", "ID <= 3 AND ID <> 2", {u"1", u"3"}},
        {"TchrArchives", "RedundancyFilePath <> Null", {u"2", u"11"}},
        {"TchrArchives", "RedundancyFilePath IS NOT NULL AND ID = 2", {u"2"}},
        {"TchrArchives", "XVar = Null AND ID > 12", {u"13"}},
        {"TchrArchives", "ID = 5.5", {}},
        {"TchrArchives", "ID = 99999999999", {}},
        {"TalmClasses", "Since > #2001-01-01# AND ID = 1", {u"1"}},
        {"TalmClasses", "Since < #1/1/2001# AND ID = 1", {}},
        {"TchrArchives", "'nan' = ID", {}},
        {"TchrArchives", "TchrArchives.ID = 4", {u"4"}},
        {"TidxGroups", "Delete = True AND Type = -2", {}},
        {"TidxGroups", "Delete = 0 AND ID < 3", {u"1", u"2"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.criteria);
        EXPECT_EQ(Matching(c.table, c.criteria), c.ids);
    }
}

TEST_F(CriteriaTest, RefusesWhatItCannotRead) {
    struct Case {
        std::string criteria;
        std::int32_t number;
    };
    std::string negated;
    for (int i = 0; i < 100'000; ++i) negated += "NOT ";
    const Case cases[] = {
        {"ID", ErrorNumber::kSyntax},
        {"ID = ", ErrorNumber::kSyntax},
        {"= 5", ErrorNumber::kSyntax},
        {"ID = 5 AND", ErrorNumber::kSyntax},
        {"ID = 5 ID = 6", ErrorNumber::kSyntax},
        {"Name = 'open", ErrorNumber::kSyntax},
        {"ID = 5)", ErrorNumber::kSyntax},
        {"ID ! 5", ErrorNumber::kSyntax},
        {"ID IN (1)", ErrorNumber::kSyntax},
        {"Since = #2001-13-01#", ErrorNumber::kSyntax},
        {"Since = #2001-12-01 24:00:00#", ErrorNumber::kSyntax},
        {"ID > Null", ErrorNumber::kSyntax},
        {"Nothing = 5", ErrorNumber::kItemNotFound},
        {std::string(100'000, '('), ErrorNumber::kSyntax},
        {negated, ErrorNumber::kSyntax},
    };
    Recordset rows;
    rows.Open("TchrArchives", connection_, CommandType::Table);
    rows.SetFilter("ID = 3");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.criteria.substr(0, 40));
        EXPECT_EQ(ErrorOf([&] { rows.SetFilter(c.criteria); }), c.number);
        EXPECT_EQ(rows.Filter(), "ID = 3") << "the filter in force must stay";
        EXPECT_EQ(rows.RecordCount(), 1U);
    }
}

TEST_F(CriteriaTest, FilterThatMatchesNothingLeavesTheRecordsetAtItsEnd) {
    Recordset rows;
    rows.Open("TchrArchives", connection_, CommandType::Table);
    rows.SetFilter("ID = 99");
    EXPECT_TRUE(rows.IsBOF());
    EXPECT_TRUE(rows.IsEOF());
    EXPECT_EQ(ErrorOf([&] { std::ignore = rows.Get("ID"); }), ErrorNumber::kNoCurrentRecord);
    rows.SetFilter("");
    EXPECT_EQ(ToLong(rows.Get("ID")), 1);
    EXPECT_EQ(rows.RecordCount(), 14U);
}

}  // namespace
}  // namespace ado
