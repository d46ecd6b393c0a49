#include <QFile>

#include "commands/CommandTesting.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::IsEmpty;

class TrendCommandsTest : public CommandTest {};

TEST_F(TrendCommandsTest, ANewTrendIsNamedAfterItsNumber) {
    struct Case {
        const char* what;
        std::int32_t archive;
        std::int32_t parent;  // of its text
        std::int32_t colour;
    };
    constexpr std::int32_t kRed = 0x0000FF;
    constexpr std::int32_t kOrange = 0x00A5FF;
    const Case cases[] = {{"the archive's group", 11, 13, kOrange},
                          {"no trends yet", 1, 3, kRed},
                          {"another colour than the first", 1, 3, kOrange},
                          {"no group", 12, 1, kRed},
                          {"two groups", 13, 1, kRed}};
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
        Put(expected["TchrTrends"],
            "ID=" + number + "|Name=Trd" + number + "|ArchiveID=" + std::to_string(c.archive) +
                "|TextID=" + std::to_string(text) + NewTrendFields(c.colour));
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

TEST_F(TrendCommandsTest, ANewTrendGetsANameThatNoOtherHas) {
    OpenBrewery();
    OpenArchive(1);
    Insert("TchrTrends", {{"ArchiveID", 1}, {"Name", std::u16string(u"TRD230")}});
    Insert("TchrTrends", {{"ArchiveID", 2}, {"Name", std::u16string(u"Trd232")}});
    for (const char* name : {"Trd231", "Trd232"}) {
        const std::int32_t id = trends_.New();
        EXPECT_THAT(RowOf(Read().at("TchrTrends"), id),
                    testing::HasSubstr("Name=" + std::string(name) + "|"));
    }
    Insert("TchrTrends", {{"ArchiveID", 1}, {"Name", std::u16string(u"trd234")}});
    EXPECT_EQ(trends_.New(), 234);
    const Content after = Read();
    EXPECT_THAT(RowOf(after.at("TchrTrends"), 234), testing::HasSubstr("Name=Trd234(1)|"));
    EXPECT_THAT(after.at("TidxTexts").back(), testing::HasSubstr("Name=IdxTrd234(1)"));
}

TEST_F(TrendCommandsTest, ATableWithOtherColumnsGetsTheDefaultsThatItTakes) {
    OpenAltered([](ado::NewTable& form) {
        std::erase_if(form.columns, [](const auto& c) {
            return c.name == "CacheSize" || c.name == "VMaxSamples";
        });
        for (ado::NewColumn& column : form.columns) {
            if (column.name == "VLineColor" || column.name == "Factor") {
                column.type = ado::DataType::VarWChar;
                column.length = 10;
            }
            if (column.name == "FilePath") column.length = 5;
        }
    });
    const std::int32_t archive = archives_.New(u"L1031"_s);
    EXPECT_EQ(Read().at("TchrArchives")[0], Replaced(Replaced("ID=1|Name=Neues Archiv|TextID=1" +
                                                                  NewArchiveFields("Neues_Archiv"),
                                                              "|FilePath=<ProjectDir>", ""),
                                                     "|CacheSize=100", ""));
    OpenArchive(archive);
    EXPECT_EQ(trends_.New(), 1);
    std::string fields = Replaced(NewTrendFields(0), "|VLineColor=0", "");
    fields = Replaced(Replaced(fields, "|Factor=1", ""), "|VMaxSamples=1000", "");
    EXPECT_EQ(Read().at("TchrTrends")[0], "ID=1|Name=Trd1|ArchiveID=1|TextID=2" + fields);
    EXPECT_EQ(window_.trends, QStringList(u"Trd1"_s)) << "the query does without the column";
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
        int length;
        std::vector<std::string> trends;
        std::vector<std::string> texts;
    };
    const Case cases[] = {
        {"TchrTrends", 4, {}, {}},
        {"TidxTexts", 5, {"ID=1|Name=Trd1|ArchiveID=1" + NewTrendFields(255)}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.length);
        OpenAltered([&](ado::NewTable& form) {
            for (ado::NewColumn& column : form.columns) {
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
