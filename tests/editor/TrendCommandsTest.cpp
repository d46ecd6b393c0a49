#include <QFile>

#include "editor/CommandTesting.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::IsEmpty;

class TrendCommandsTest : public CommandTest {};

TEST_F(TrendCommandsTest, ANewTrendIsNamedAfterItsNumber) {
    struct Case {
        const char* what;
        std::int32_t archive;
        std::int32_t parent;  // of its text
    };
    const Case cases[] = {{"the archive's group", 11, 13},
                          {"no trends yet", 1, 3},
                          {"no group", 12, 1},
                          {"two groups", 13, 1}};
    OpenEdgeCases();
    Content expected = Read();
    int id = 7;
    int text = 20;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        OpenArchive(c.archive);
        const qsizetype shown = window_.trends.size();
        const std::string number = std::to_string(++id);
        ++text;
        Put(expected["TchrTrends"], "ID=" + number + "|Name=Trd" + number +
                                        "|ArchiveID=" + std::to_string(c.archive) +
                                        "|TextID=" + std::to_string(text));
        Put(expected["TidxTexts"], "ID=" + std::to_string(text) + "|ParentID=" +
                                       std::to_string(c.parent) + "|Name=IdxTrd" + number);
        EXPECT_EQ(trends_.New(), id);
        EXPECT_EQ(Read(), expected);
        EXPECT_EQ(window_.trends.size(), shown + 1);
        EXPECT_EQ(window_.trends.last(), projectdb::ToQString("Trd" + number));
        EXPECT_EQ(window_.rebuilt.last(), u"Trd"_s);
    }
    for (const QString& key : {u"ARC0"_s, u""_s, u"ARCH"_s}) {
        project_.currentNodeKey = key;
        EXPECT_EQ(trends_.New(), 0) << qPrintable(key);
    }
    OpenArchive(99);
    EXPECT_EQ(ErrorOf([&] { trends_.New(); }), ado::ErrorNumber::kNoCurrentRecord)
        << "another program has deleted it";
    EXPECT_EQ(Read(), expected);
}

TEST_F(TrendCommandsTest, WithoutARootGroupTheTextHasNoGroup) {
    OpenEmpty();
    Insert("TchrArchives", {{"Name", std::u16string(u"fremd")}});
    OpenArchive(1);
    trends_.New();
    EXPECT_EQ(Read().at("TidxTexts").back(), "ID=1|ParentID=0|Name=IdxTrd1");
}

TEST_F(TrendCommandsTest, AFailingStepOfNewLeavesTheStepsBeforeIt) {
    struct Case {
        const char* table;
        std::size_t length;
        std::vector<std::string> trends;
        std::vector<std::string> texts;
    };
    const Case cases[] = {
        {"TchrTrends", 4, {}, {}},
        {"TidxTexts", 4, {"ID=1|Name=Trd1|ArchiveID=1"}, {}},
        {"TidxTexts", 5, {"ID=1|Name=Trd1|ArchiveID=1"}, {"ID=1|ParentID=0|Name=@New@"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.length);
        OpenAltered([&](jet::TableSpec& form) {
            for (jet::ColumnSpec& column : form.columns) {
                if (form.name == c.table && column.name == "Name") column.length = c.length;
            }
        });
        Insert("TchrArchives", {{"Name", std::u16string(u"Archiv")}});
        OpenArchive(1);
        EXPECT_EQ(ErrorOf([&] { trends_.New(); }), ado::ErrorNumber::kDoesNotFit);
        const Content after = Read();
        EXPECT_EQ(after.at("TchrTrends"), c.trends);
        EXPECT_EQ(after.at("TidxTexts"), c.texts);
        project_.CloseDatabase();
        EXPECT_THAT(ErrorsIn(path_), IsEmpty());
        QFile::remove(projectdb::ToQString(path_));
    }
    path_.clear();
}

TEST_F(TrendCommandsTest, EditingHappensOnTheTrendsRowOfTheSplit) {
    OpenBrewery();
    OpenArchive(1);
    names_.NamesInGroup(projectdb::kTrendNames, Environment());
    Content expected = Read();
    Put(expected["TchrTrends"],
        Replaced(RowOf(expected["TchrTrends"], 2), "Maischbottich Druck", "Kesseldruck"));
    Put(expected["TidxTexts"],
        Replaced(RowOf(expected["TidxTexts"], 3), "Druck Maischbottich", "Kessel"));
    const auto edit = [&](ado::Recordset& trends) {
        EXPECT_TRUE(trends_.IsEditing());
        EXPECT_EQ(ado::ToLong(trends.Get("ID")), 2);
        trends.Set("Name", std::u16string(u"Kesseldruck"));
        trends.Set("L1031", std::u16string(u"Kessel"));
        trends.Update();
        return true;
    };
    EXPECT_TRUE(trends_.Edit(2, edit));
    EXPECT_FALSE(trends_.IsEditing());
    EXPECT_EQ(Read(), expected);
    EXPECT_TRUE(names_.TestNameInGroup(projectdb::kTrendNames, u"Kesseldruck"_s));
    EXPECT_FALSE(names_.TestNameInGroup(projectdb::kTrendNames, u"Maischbottich Druck"_s));
}

TEST_F(TrendCommandsTest, AnEditThatIsNotStoredLeavesNothingBehind) {
    OpenBrewery();
    OpenArchive(1);
    const Content before = Read();
    const auto refuse = [](ado::Recordset& trends) {
        trends.Set("Name", std::u16string(u"verworfen"));
        return false;
    };
    const auto fail = [](ado::Recordset& trends) -> bool {
        trends.Set("Name", std::u16string(u"verworfen"));
        throw ado::AdoError(7, "the dialog fails");
    };
    int called = 0;
    const auto count = [&](ado::Recordset&) { return ++called > 0; };
    EXPECT_FALSE(trends_.Edit(1, refuse));
    EXPECT_EQ(ErrorOf([&] { trends_.Edit(1, fail); }), 7);
    EXPECT_FALSE(trends_.IsEditing());
    EXPECT_FALSE(trends_.Edit(999, count)) << "no such trend in the split";
    project_.currentNodeKey = u"ARC0"_s;
    projectdb::ReloadTrends(project_, window_);
    EXPECT_FALSE(trends_.Edit(1, count)) << "an empty split";
    Environment().CloseRecordset(ADOArchiv::Command::tabTrends);
    EXPECT_FALSE(trends_.Edit(1, count));
    EXPECT_EQ(called, 0);
    EXPECT_EQ(Read(), before);
}

TEST_F(TrendCommandsTest, ATrendChangedElsewhereIsNotOverwritten) {
    OpenBrewery();
    OpenArchive(1);
    const auto edit = [&](ado::Recordset& trends) {
        std::ignore = trends.Get("VMax");
        Meanwhile([](projectdb::ProjectRows& rows) {
            EXPECT_TRUE(rows.SeekTrend(1));
            rows.Trends().Set("VMax", 111.0);
            rows.Trends().Update();
        });
        trends.Set("VMin", 5.0);
        trends.Update();
        return true;
    };
    Content expected = Read();
    Put(expected["TchrTrends"],
        Replaced(RowOf(expected["TchrTrends"], 1), "|VMax=120", "|VMax=111"));
    EXPECT_EQ(ErrorOf([&] { trends_.Edit(1, edit); }), ado::ErrorNumber::kRowNotLocated);
    EXPECT_EQ(Read(), expected);
}

TEST_F(TrendCommandsTest, DeletingAsksWithTheNumberOfTrends) {
    OpenBrewery();
    OpenArchive(1);
    const Content before = Read();
    const std::int32_t ids[] = {1, 2, 3};
    EXPECT_FALSE(trends_.Delete(std::span(ids).first(1), Answer(false), {}));
    EXPECT_FALSE(trends_.Delete(std::span(ids).first(2), Answer(false), {}));
    EXPECT_FALSE(trends_.Delete({}, Answer(true), {}));
    EXPECT_EQ(questions_, QStringList({u"Einen Trend?"_s, u"2 Trends?"_s}));
    EXPECT_EQ(Read(), before);
    EXPECT_TRUE(trends_.Delete(ids, {}, {}));
    EXPECT_EQ(questions_.size(), 2);
    EXPECT_EQ(window_.trends.size(), 21);
}

TEST_F(TrendCommandsTest, AProgramThatHoldsTheFileStopsACommandBeforeItsFirstStep) {
    OpenBrewery();
    OpenArchive(1);
    const Content before = Read();
    Meanwhile([&](projectdb::ProjectRows& rows) {
        EXPECT_TRUE(rows.SeekArchive(1));
        // Another program in the middle of a change of its own: nobody else gets to write.
        ADOArchiv other;
        other.OpenConnection(projectdb::ToQString(path_));
        other.Connection().BeginTrans();
        const std::int32_t ids[] = {1};
        EXPECT_NE(ErrorOf([&] { trends_.Delete(ids, {}, {}); }), 0);
        other.Connection().RollbackTrans();
    });
    EXPECT_EQ(Read(), before);
    EXPECT_EQ(window_.trends.size(), 24) << "the split shows its rows again";
    EXPECT_NE(trends_.New(), 0);
}

}  // namespace
