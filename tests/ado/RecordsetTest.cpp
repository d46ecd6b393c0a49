#include "AdoTesting.h"
#include "TrendQuery.h"

namespace ado {
namespace {

using testing::ElementsAre;

class RecordsetTest : public testing::Test {
protected:
    void OpenFile(const std::string& path) { connection_.Open(ConnectionString(path)); }
    void OpenTable(const char* table) { rows_.Open(table, connection_, CommandType::Table); }
    void OpenTrends(const char16_t* archive) {
        rows_.Open(kTrendQuery, connection_, CommandType::Text, {archive});
    }

    Connection connection_;
    Recordset rows_;
};

TEST_F(RecordsetTest, MovesLikeACursor) {
    OpenFile(Example("Brauerei.kvs"));
    OpenTable("TchrArchives");
    EXPECT_EQ(ToLong(rows_.Get("ID")), 1) << "opened on the first row";
    rows_.MovePrevious();
    EXPECT_TRUE(rows_.IsBOF());
    EXPECT_FALSE(rows_.IsEOF());
    EXPECT_EQ(ErrorOf([&] { rows_.MovePrevious(); }), ErrorNumber::kNoCurrentRecord);
    rows_.MoveNext();
    EXPECT_EQ(ToLong(rows_.Get("ID")), 1);
    rows_.MoveLast();
    EXPECT_EQ(ToText(rows_.Get("name")), u"Chargen");
    const Bookmark last = rows_.GetBookmark();
    rows_.MoveNext();
    EXPECT_TRUE(rows_.IsEOF());
    EXPECT_EQ(ErrorOf([&] { rows_.MoveNext(); }), ErrorNumber::kNoCurrentRecord);
    rows_.MovePrevious();
    EXPECT_EQ(rows_.GetBookmark(), last);
    rows_.MoveFirst();
    rows_.SetBookmark(last);
    EXPECT_EQ(ToLong(rows_.Get("ID")), 14);
    EXPECT_EQ(rows_.RecordCount(), 14U);
    EXPECT_EQ(ToLong(rows_.Get("ID")), 14) << "counting does not move";
    EXPECT_EQ(ErrorOf([&] { std::ignore = rows_.Get("Nothing"); }), ErrorNumber::kItemNotFound);
    EXPECT_EQ(ErrorOf([&] { std::ignore = rows_.Get(rows_.Fields().size()); }),
              ErrorNumber::kItemNotFound);
    rows_.SetFilter("ID < 14");
    const Bookmark first = rows_.GetBookmark();
    EXPECT_EQ(ErrorOf([&] { rows_.SetBookmark(last); }), ErrorNumber::kInvalidArgument);
    rows_.SetFilter("");
    rows_.SetBookmark(last);
    rows_.SetBookmark(first);
    EXPECT_EQ(ToLong(rows_.Get("ID")), 1) << "bookmarks lead in both directions";
    rows_.Requery();
    EXPECT_EQ(ToLong(rows_.Get("ID")), 1);
}

TEST_F(RecordsetTest, EmptyTableIsAtBothEnds) {
    OpenFile(TestData("Leer.kvs"));
    OpenTable("TchrArchives");
    EXPECT_TRUE(rows_.IsBOF());
    EXPECT_TRUE(rows_.IsEOF());
    EXPECT_EQ(rows_.RecordCount(), 0U);
    EXPECT_EQ(ErrorOf([&] { rows_.MoveFirst(); }), ErrorNumber::kNoCurrentRecord);
    EXPECT_EQ(ErrorOf([&] { rows_.MoveLast(); }), ErrorNumber::kNoCurrentRecord);
    rows_.Find("ID=1");
    EXPECT_TRUE(rows_.IsEOF());
    rows_.Requery();
    rows_.Find("ID=1", 0, SearchDirection::Backward);
    EXPECT_TRUE(rows_.IsBOF() && rows_.IsEOF());
}

TEST_F(RecordsetTest, FindsForwardAndBackwardFromTheCurrentRow) {
    OpenFile(Example("Brauerei.kvs"));
    OpenTable("TidxTexts");
    rows_.Find("ID=51");
    EXPECT_EQ(ToText(rows_.Get("Name")), u"archLagerkeller");
    rows_.Find("ID=1");
    EXPECT_TRUE(rows_.IsEOF()) << "a row in front of the current one is not found";
    rows_.Find("ID=1");
    EXPECT_TRUE(rows_.IsEOF()) << "there is nothing behind the end";
    rows_.MoveFirst();
    rows_.Find("Name LIKE 'arch*'", 1);
    EXPECT_EQ(ToText(rows_.Get("Name")), u"archGärkeller");
    rows_.Find("Name LIKE 'arch*'", 1, SearchDirection::Backward);
    EXPECT_EQ(ToText(rows_.Get("Name")), u"archSudhaus");
    rows_.Find("ID=500", 0, SearchDirection::Backward);
    EXPECT_TRUE(rows_.IsBOF());
    rows_.Find("ID=242", 0, SearchDirection::Backward);
    EXPECT_TRUE(rows_.IsBOF()) << "there is nothing in front of the beginning";
    rows_.MoveLast();
    EXPECT_EQ(ErrorOf([&] { rows_.Find("ID=1 AND Name='x'"); }), ErrorNumber::kInvalidArgument);
    EXPECT_EQ(ToLong(rows_.Get("ID")), 242) << "a refused search does not move";
}

TEST_F(RecordsetTest, SortsByTheFilesOwnOrderOfTexts) {
    OpenFile(Example("Brauerei.kvs"));
    OpenTable("TchrArchives");
    rows_.SetSort("Name");
    EXPECT_THAT(Column(rows_, "Name"),
                ElementsAre(u"Abfüllung", u"Chargen", u"CIP", u"Dampf", u"Druckluft", u"Energie",
                            u"Filtration", u"Gärkeller", u"Kälte", u"KEG", u"Labor", u"Lagerkeller",
                            u"Sudhaus", u"Wasser"));
    rows_.SetFilter("ID > 10");
    rows_.SetSort("SampleMode DESC, ID");
    EXPECT_THAT(Column(rows_, "ID"), ElementsAre(u"13", u"14", u"11", u"12"));
    EXPECT_EQ(ErrorOf([&] { rows_.SetSort("Nothing"); }), ErrorNumber::kItemNotFound);
    EXPECT_EQ(ErrorOf([&] { rows_.SetSort("Name Comment"); }), ErrorNumber::kSyntax);
    EXPECT_EQ(rows_.Sort(), "SampleMode DESC, ID") << "the order in force must stay";
    rows_.SetSort("");
    EXPECT_THAT(Column(rows_, "ID"), ElementsAre(u"11", u"12", u"13", u"14"));
}

TEST_F(RecordsetTest, TrendQueryHasEveryColumnOnceAndQualifiesDoubles) {
    OpenFile(TestData("Leer.kvs"));
    OpenTrends(u"0");
    std::vector<std::string> names;
    for (const Field& field : rows_.Fields()) names.push_back(field.name);
    EXPECT_THAT(names,
                ElementsAre("ID", "Name", "ArchiveID", "TextID", "TidxTexts.ID", "ParentID",
                            "TidxTexts.Name", "ParamNames", "L1031", "L1033", "TrendVar", "Maximum",
                            "Minimum", "SurrogateMax", "SurrogateMin", "ErrorValue", "Hysteresis",
                            "HysteresisMode", "Factor", "Offset", "Filter", "FilterDepth", "Unit",
                            "VMax", "VMin", "VUpper", "VLower", "VLineColor", "VLineWidth",
                            "VLineStyle", "VUpperColor", "VLowerColor", "VConfig", "VDrawMode",
                            "VMaxSamples", "VUnitID", "Comment", "Expr1"));
    EXPECT_EQ(rows_.RecordCount(), 0U);
    EXPECT_EQ(rows_.Fields()[6].baseTable, "TidxTexts");
    EXPECT_EQ(rows_.Fields()[0].baseTable, "TchrTrends");
    EXPECT_EQ(rows_.Fields()[0].type, DataType::Integer);
    EXPECT_EQ(rows_.Fields()[1].type, DataType::VarWChar);
    EXPECT_EQ(rows_.Fields()[1].definedSize, 80);
}

TEST_F(RecordsetTest, TrendQueryJoinsTheTrendsOfOneArchiveWithTheirTexts) {
    OpenFile(Example("Brauerei.kvs"));
    OpenTrends(u"3");
    EXPECT_EQ(rows_.RecordCount(), 18U);
    EXPECT_EQ(ToLong(rows_.Get("ArchiveID")), 3);
    for (rows_.MoveFirst(); !rows_.IsEOF(); rows_.MoveNext()) {
        EXPECT_EQ(ToLong(rows_.Get("TextID")), ToLong(rows_.Get("Expr1")));
        EXPECT_EQ(ToText(rows_.Get("TidxTexts.Name")), u"Idx" + ToText(rows_.Get("Name")));
    }
    rows_.SetFilter("[TidxTexts].ID = 52");
    EXPECT_EQ(rows_.RecordCount(), 1U);
    rows_.SetFilter("");
    rows_.SetSort("L1031 DESC");
    const std::vector<std::u16string> texts = Column(rows_, "L1031");
    rows_.SetSort("L1031");
    EXPECT_THAT(Column(rows_, "L1031"), testing::ElementsAreArray(texts.rbegin(), texts.rend()));
    rows_.SetSort("TidxTexts.ID DESC");
    EXPECT_EQ(ToLong(rows_.Get("Expr1")), 69);
}

TEST_F(RecordsetTest, TrendsWithoutATextAreLeftOut) {
    OpenFile(TestData("Grenzfaelle.kvs"));
    OpenTable("TchrTrends");
    std::size_t joined = 0;
    for (std::int32_t archive = 0; archive < 20; ++archive) {
        Recordset trends;
        trends.Open(kTrendQuery, connection_, CommandType::Text, {ToText(Value(archive))});
        joined += trends.RecordCount();
    }
    std::size_t withText = 0;
    Recordset texts;
    texts.Open("TidxTexts", connection_, CommandType::Table);
    for (; !rows_.IsEOF(); rows_.MoveNext()) {
        if (IsNull(rows_.Get("TextID"))) continue;
        texts.SetFilter("ID = " + std::to_string(ToLong(rows_.Get("TextID"))));
        withText += texts.RecordCount();
    }
    EXPECT_EQ(joined, withText);
    EXPECT_LT(withText, rows_.RecordCount()) << "the file must have a trend without a text";
}

TEST_F(RecordsetTest, RefusesSourcesThatDoNotExist) {
    OpenFile(Example("Brauerei.kvs"));
    const auto query = [&](const char* statement) {
        return ErrorOf([&] { rows_.Open(statement, connection_, CommandType::Text, {}); });
    };
    EXPECT_EQ(ErrorOf([&] { OpenTable("Nothing"); }), ErrorNumber::kTableNotFound);
    EXPECT_EQ(query("SELECT * FROM Nothing"), ErrorNumber::kTableNotFound);
    EXPECT_EQ(query("SELECT Nothing FROM TchrArchives"), ErrorNumber::kParameterMissing);
    EXPECT_EQ(query(kTrendQuery), ErrorNumber::kParameterMissing);
    EXPECT_EQ(query("SELECT FROM TchrArchives"), ErrorNumber::kSyntax);
    EXPECT_EQ(query("DELETE FROM TchrArchives"), ErrorNumber::kSyntax);
    EXPECT_EQ(query("SELECT * FROM TchrArchives AS A B"), ErrorNumber::kSyntax);
    EXPECT_EQ(query("SELECT ID FROM TchrArchives, TchrTrends"), ErrorNumber::kSyntax);
    EXPECT_EQ(query("SELECT A.ID FROM TchrArchives AS A, TchrTrends, TidxTexts"),
              ErrorNumber::kFeatureNotAvailable);
    EXPECT_EQ(rows_.State(), ObjectState::Closed);
    EXPECT_THAT(connection_.OpenRecordsets(), testing::IsEmpty());
}

TEST_F(RecordsetTest, JoinsWithoutAnIndexGiveTheSameRows) {
    OpenFile(Example("Brauerei.kvs"));
    const auto count = [&](const char* statement) {
        Recordset rows;
        rows.Open(statement, connection_, CommandType::Text, {});
        return rows.RecordCount();
    };
    // Names have no index in the groups; IDs have one.
    EXPECT_EQ(count("SELECT A.ID FROM TchrArchives AS A, TidxGroups AS G WHERE A.Name = G.Name"),
              14U);
    EXPECT_EQ(count("SELECT * FROM TchrArchives, TchrTrends WHERE TchrTrends.ArchiveID = "
                    "TchrArchives.ID"),
              228U);
    EXPECT_EQ(count("SELECT * FROM TcfgLanguages, TchrArchives"), 28U);
    EXPECT_EQ(count("SELECT * FROM TcfgLanguages, TchrArchives WHERE TcfgLanguages.ID < "
                    "TchrArchives.ID"),
              25U);
}

TEST_F(RecordsetTest, AParameterThatStandsTwiceIsGivenOnce) {
    OpenFile(Example("Brauerei.kvs"));
    rows_.Open("SELECT * FROM TchrArchives WHERE ID = Param1 OR TextID = param1", connection_,
               CommandType::Text, {u"1"});
    EXPECT_EQ(rows_.RecordCount(), 1U);
    EXPECT_EQ(ErrorOf([&] { rows_.AddNew(); }), ErrorNumber::kFeatureNotAvailable);
}

TEST_F(RecordsetTest, ReadsMemoAndOleValuesWhole) {
    OpenFile(Example("Brauerei.kvs"));
    OpenTable("TalmClasses");
    EXPECT_EQ(ToText(rows_.Get("Name")), u"Störung");
    EXPECT_EQ(std::get<std::u16string>(rows_.Get("Description")), u"kurz");
    EXPECT_EQ(std::get<Binary>(rows_.Get("Icon")),
              (Binary{std::byte{1}, std::byte{2}, std::byte{3}}));
    EXPECT_EQ(rows_.Fields()[3].type, DataType::LongVarBinary);
    rows_.MoveNext();
    EXPECT_GT(std::get<std::u16string>(rows_.Get("Description")).size(), 1000U);
    EXPECT_GT(std::get<Binary>(rows_.Get("Icon")).size(), 1000U);
}

}  // namespace
}  // namespace ado
