#include <optional>
#include <QDir>
#include <QFile>

#include "project/Transaction.h"
#include "projectdb/ProjectTesting.h"
#include "projectdb/Text.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using projectdb::CHNds;
using projectdb::FunctionCounters;
using projectdb::Hierarchy;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class HierarchyTest : public ProjectTest {
protected:
    [[nodiscard]] std::vector<std::int32_t> Children() {
        std::vector<std::int32_t> ids;
        for (std::size_t i = 0; i < hierarchy_.Nodes().Count(); ++i) {
            const CHNds& children = hierarchy_.Nodes().Item(i).Children();
            for (std::size_t j = 0; j < children.Count(); ++j) ids.push_back(children.Item(j).Id());
        }
        return ids;
    }
    /// Answers the question and keeps the number that it was asked with.
    Hierarchy::Confirm Answer(bool answer) {
        return [this, answer](int trends) {
            askedWith_ = trends;
            return answer;
        };
    }

    Hierarchy hierarchy_{project_, window_, status_};
    std::optional<int> askedWith_;
};

TEST(CHNdsTest, KeepsItsOrderAndOneNodeForEachKey) {
    CHNds nodes;
    nodes.Add(CHNds::Kind::Trend, 7);
    const projectdb::CHNd& archive = nodes.Add(CHNds::Kind::Archive, 7);
    nodes.Add(CHNds::Kind::Trend, -1);
    EXPECT_EQ(&nodes.Add(CHNds::Kind::Archive, 7), &archive);
    ASSERT_EQ(nodes.Count(), 3U);
    EXPECT_EQ(&nodes.Item(1), &archive);
    EXPECT_EQ(nodes.Find(CHNds::Kind::Trend, -1), &nodes.Item(2));
    EXPECT_EQ(nodes.Find(CHNds::Kind::Archive, -1), nullptr);
    nodes.Clear();
    EXPECT_EQ(nodes.Count(), 0U);
    EXPECT_EQ(nodes.Find(CHNds::Kind::Trend, 7), nullptr);
}

TEST(FunctionCountersTest, ShowsEachChangeInThreePanels) {
    FakeStatus status;
    FunctionCounters counters(status);
    counters.Reset(u"Delete"_s);
    EXPECT_EQ(status.panels, QStringList({u"Func: Delete"_s, u"Archive:0"_s, u"Trends:0"_s}));
    counters.Add(u"Delete"_s, 1, 0);
    counters.Add(u"Delete"_s, 0, 12);
    EXPECT_EQ(status.panels, QStringList({u"Func: Delete"_s, u"Archive:1"_s, u"Trends:12"_s}));
    EXPECT_EQ(status.firstPanelWrites, 1);
    counters.Set(u"Statistik"_s, 14, 228);
    EXPECT_EQ(status.panels, QStringList({u"Func: Statistik"_s, u"Archive:14"_s, u"Trends:228"_s}));
    EXPECT_EQ(counters.Archives(), 14);
    EXPECT_EQ(counters.Trends(), 228);
    counters.Reset({});
    EXPECT_EQ(status.panels, QStringList({u"Func: "_s, u"Archive:0"_s, u"Trends:0"_s}));
}

TEST_F(HierarchyTest, CollectsAnArchiveWithItsTrends) {
    OpenEdgeCases();
    struct Case {
        QString key;
        int archives;
        std::vector<std::int32_t> trends;
    };
    const Case cases[] = {{u"ARCH10"_s, 1, {1, 2, 3, 4, 5, 6}},
                          {u"ARCH11"_s, 1, {7}},
                          {u"ARCH1"_s, 1, {}},
                          {u"ARCH99"_s, 0, {}},
                          {u"ARC0"_s, 0, {}}};
    for (const Case& c : cases) {
        hierarchy_.CollectArchive(c.key);
        EXPECT_EQ(hierarchy_.Counters().Archives(), c.archives) << qPrintable(c.key);
        EXPECT_EQ(hierarchy_.Counters().Trends(), static_cast<int>(c.trends.size()));
        EXPECT_EQ(Children(), c.trends);
        EXPECT_EQ(status_.panels[0], u"Func: "_s);
    }
}

TEST_F(HierarchyTest, DeletesAnArchiveWithAllThatHangsFromIt) {
    OpenEdgeCases();
    for (const std::int32_t archive : {1, 12}) InsertForeignGroup(archive);
    struct Case {
        const char* what;
        std::int32_t archive;
        std::set<std::int32_t> groups;
        std::set<std::int32_t> texts;
        std::set<std::int32_t> trends;
    };
    const Case cases[] = {
        {"without trends", 1, {3}, {1}, {}},
        {"with one trend", 11, {13}, {16, 17}, {7}},
        {"with a trend that has no text", 10, {12}, {10, 11, 12, 13, 14, 15}, {1, 2, 3, 4, 5, 6}},
        {"a text that is not there", 8, {10}, {}, {}},
        {"a text that is Null", 9, {11}, {}, {}},
        {"without a group", 12, {}, {18}, {}},
        {"with two groups", 13, {}, {19}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Content expected = Read();
        Erase(expected["TchrArchives"], {c.archive});
        Erase(expected["TidxGroups"], c.groups);
        Erase(expected["TidxTexts"], c.texts);
        Erase(expected["TchrTrends"], c.trends);
        const QString key = u"ARCH"_s + QString::number(c.archive);
        project_.currentNodeKey = key;
        projectdb::ReloadTrends(project_, window_);

        EXPECT_TRUE(hierarchy_.DeleteArchive(key, Answer(true), {}));

        EXPECT_EQ(askedWith_, static_cast<int>(c.trends.size()));
        EXPECT_EQ(Read(), expected);
        EXPECT_EQ(status_.panels, QStringList({u"Func: Delete"_s, u"Archive:1"_s,
                                               u"Trends:"_s + QString::number(c.trends.size())}));
        EXPECT_THAT(hierarchy_.LastDeletion().archives, ElementsAre(c.archive));
        EXPECT_THAT(hierarchy_.LastDeletion().trends, SizeIs(c.trends.size()));
        EXPECT_THAT(window_.trends, IsEmpty());
        EXPECT_EQ(window_.rebuilt.last(), u"Trd"_s);
    }
}

TEST_F(HierarchyTest, DeletesTheTrendsThatAreAskedFor) {
    OpenEdgeCases();
    project_.currentNodeKey = u"ARCH10"_s;
    projectdb::ReloadTrends(project_, window_);
    ASSERT_EQ(window_.trends.size(), 5) << "one of the six has no text";
    Content expected = Read();
    Erase(expected["TchrTrends"], {2, 4, 6});
    Erase(expected["TidxTexts"], {12, 14});
    const std::int32_t ids[] = {4, 2, 6, 4, 99};

    EXPECT_TRUE(hierarchy_.DeleteTrends(ids, Answer(true), {}));

    EXPECT_EQ(askedWith_, 4);
    EXPECT_EQ(Read(), expected);
    EXPECT_THAT(hierarchy_.LastDeletion().trends, ElementsAre(4, 2, 6));
    EXPECT_EQ(status_.panels, QStringList({u"Func: Delete"_s, u"Archive:0"_s, u"Trends:3"_s}));
    EXPECT_EQ(window_.trends, QStringList({u"HystNull"_s, u"Balken"_s, u"Leer"_s}));
    EXPECT_EQ(Environment().Recordset(ADOArchiv::Command::Trends).State(),
              ado::ObjectState::Closed);
    EXPECT_EQ(Environment().Recordset(ADOArchiv::Command::IdxTexts).State(),
              ado::ObjectState::Open);
}

TEST_F(HierarchyTest, DecliningChangesNothing) {
    OpenBrewery();
    project_.currentNodeKey = u"ARCH1"_s;
    projectdb::ReloadTrends(project_, window_);
    const QStringList shown = window_.trends;
    const Content before = Read();
    EXPECT_FALSE(hierarchy_.DeleteArchive(u"ARCH1"_s, Answer(false), {}));
    EXPECT_EQ(askedWith_, 24);
    const std::int32_t ids[] = {1, 2};
    EXPECT_FALSE(hierarchy_.DeleteTrends(ids, Answer(false), {}));
    EXPECT_EQ(askedWith_, 2);
    EXPECT_EQ(Read(), before);
    EXPECT_EQ(window_.trends, shown);
    EXPECT_THAT(hierarchy_.LastDeletion().archives, IsEmpty());
    EXPECT_THAT(hierarchy_.LastDeletion().trends, IsEmpty());
}

TEST_F(HierarchyTest, GivingUpTakesTheWholeDeletionBack) {
    OpenBrewery();
    project_.currentNodeKey = u"ARCH2"_s;
    const Content before = Read();
    std::vector<int> steps;
    const auto giveUp = [&](int done, int total) {
        EXPECT_EQ(total, 4);
        steps.push_back(done);
        return done < 2;
    };
    const std::int32_t ids[] = {25, 26, 27, 28};
    EXPECT_FALSE(hierarchy_.DeleteTrends(ids, {}, giveUp));

    EXPECT_THAT(steps, ElementsAre(0, 1, 2));
    EXPECT_THAT(hierarchy_.LastDeletion().trends, IsEmpty());
    EXPECT_EQ(Read(), before);
    EXPECT_EQ(window_.trends.size(), 24);
    EXPECT_EQ(status_.panels[2], u"Trends:0"_s);
}

// Both trends used to vanish from the grid with the text of one.
TEST_F(HierarchyTest, ATextThatAnotherRowNamesStays) {
    OpenBrewery();
    const std::int32_t text = 27;  // of trend 25
    const std::int32_t other =
        Insert("TchrTrends", {{"ArchiveID", 3}, {"Name", std::u16string(u"x")}, {"TextID", text}});
    const auto hasText = [&] { return !RowOf(Read().at("TidxTexts"), text).empty(); };
    const std::int32_t first[] = {25};
    const std::int32_t second[] = {other};
    EXPECT_TRUE(hierarchy_.DeleteTrends(first, {}, {}));
    EXPECT_TRUE(hasText());
    EXPECT_TRUE(hierarchy_.DeleteTrends(second, {}, {}));
    const Content after = Read();
    for (const std::string& row : after.at("TidxTexts")) {
        EXPECT_FALSE(row.starts_with("ID=27|")) << "nobody names it any more";
    }
}

TEST_F(HierarchyTest, AFailureInTheMiddleCommitsWhatWasDone) {
    OpenBrewery();
    project_.currentNodeKey = u"ARCH2"_s;
    Content expected = Read();
    Erase(expected["TchrTrends"], {25, 26});
    Erase(expected["TidxTexts"], {27, 28});
    const std::int32_t ids[] = {25, 26, 27};
    // What an operation on the third row would throw.
    const auto fail = [](int done, int) {
        if (done == 2) throw ado::AdoError(ado::ErrorNumber::kUnspecified, "A page is damaged.");
        return true;
    };
    EXPECT_EQ(ErrorOf([&] { hierarchy_.DeleteTrends(ids, {}, fail); }),
              ado::ErrorNumber::kUnspecified);
    EXPECT_EQ(Read(), expected);
    EXPECT_THAT(hierarchy_.LastDeletion().trends, ElementsAre(25, 26));
    EXPECT_EQ(window_.trends.size(), 22) << "the split shows what is left";
    EXPECT_FALSE(Environment().Connection().State() == ado::ObjectState::Closed);
    EXPECT_TRUE(hierarchy_.DeleteTrends(ids, {}, {})) << "and the next operation goes through";
    EXPECT_THAT(hierarchy_.LastDeletion().trends, ElementsAre(27));
}

TEST_F(HierarchyTest, WhenTheCommitFailsNothingIsDeleted) {
    OpenBrewery();
    project_.currentNodeKey = u"ARCH1"_s;
    const Content before = Read();
    // The journal cannot be made where a folder of its name lies.
    const QString journal = projectdb::ToQString(path_ + "-journal");
    const auto block = [&](int done, int) { return done != 5 || QDir().mkpath(journal + u"/x"_s); };
    EXPECT_NE(ErrorOf([&] { hierarchy_.DeleteArchive(u"ARCH1"_s, {}, block); }), 0);
    EXPECT_TRUE(QDir(journal).removeRecursively());
    EXPECT_EQ(Read(), before);
    EXPECT_THAT(hierarchy_.LastDeletion().archives, IsEmpty());
    EXPECT_EQ(status_.panels, QStringList({u"Func: Delete"_s, u"Archive:0"_s, u"Trends:0"_s}));
    EXPECT_EQ(window_.trends.size(), 24);
    EXPECT_TRUE(hierarchy_.DeleteArchive(u"ARCH1"_s, {}, {}));
}

/// Gives the column Name of TchrTrends an order that the engine does not know. The table has three
/// indexes, one of them on Name, and can only be read then.
void MakeTrendsReadOnly(const std::string& path) {
    constexpr qsizetype kPageSize = 4096;
    constexpr qsizetype kDefinitionHeader = 63;
    constexpr qsizetype kIndexBlock = 12;
    constexpr qsizetype kColumnBlock = 25;
    constexpr qsizetype kCollation = 11;  // in a column's block
    QFile file(projectdb::ToQString(path));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QByteArray content = file.readAll();
    const QByteArray name(reinterpret_cast<const char*>(u"TrendVar"), 16);
    int patched = 0;
    for (qsizetype page = 0; page + kPageSize <= content.size(); page += kPageSize) {
        const bool isDefinition = content[page] == 2;
        if (!isDefinition || !content.sliced(page, kPageSize).contains(name)) continue;
        file.seek(page + kDefinitionHeader + 3 * kIndexBlock + kColumnBlock + kCollation);
        file.write("\x07", 1);
        ++patched;
    }
    ASSERT_EQ(patched, 1);
}

// The archive, its group and texts used to be deleted before the trends were found to stay.
TEST_F(HierarchyTest, NothingGoesWhereOneTableCanOnlyBeRead) {
    expectedWarning_ = "its sort order is not known";
    OpenAltered([](ado::NewTable& form) {
        if (form.name != "TchrTrends") return;
        form.indexes.push_back({"Name", "Name"});
    });
    Insert("TchrArchives", {{"Name", std::u16string(u"Archiv")}, {"TextID", 1}});
    Insert("TidxGroups", {{"Type", -2}, {"Parameter", 1}, {"ParentID", 0}});
    Insert("TidxTexts", {{"Name", std::u16string(u"archArchiv")}});
    for (const std::int32_t text : {2, 3}) {
        Insert("TchrTrends", {{"ArchiveID", 1}, {"TextID", text}});
        Insert("TidxTexts", {{"Name", std::u16string(u"Idx")}});
    }
    project_.CloseDatabase();
    ASSERT_NO_FATAL_FAILURE(MakeTrendsReadOnly(path_));
    Environment().OpenConnection(projectdb::ToQString(path_));
    const Content before = Read();
    EXPECT_EQ(ErrorOf([&] { hierarchy_.DeleteArchive(u"ARCH1"_s, {}, {}); }),
              ado::ErrorNumber::kFeatureNotAvailable);
    EXPECT_EQ(Read(), before);
    EXPECT_THAT(hierarchy_.LastDeletion().archives, IsEmpty());
    EXPECT_THAT(hierarchy_.LastDeletion().trends, IsEmpty());
    EXPECT_EQ(status_.panels[1], u"Archive:0"_s);
}

TEST_F(HierarchyTest, RowsThatAnotherProgramTakesAwayMeanwhileAreNoFailure) {
    OpenEdgeCases();
    const auto meanwhile = [&](int trends) {
        EXPECT_EQ(trends, 1);
        ADOArchiv other;
        other.OpenConnection(projectdb::ToQString(path_));
        projectdb::ProjectRows rows(other);
        EXPECT_TRUE(rows.SeekTrend(7));
        rows.Trends().Delete();
        EXPECT_TRUE(rows.SeekText(16));
        rows.Texts().Delete();
        return true;
    };
    Content expected = Read();
    Erase(expected["TchrArchives"], {11});
    Erase(expected["TidxGroups"], {13});
    Erase(expected["TchrTrends"], {7});
    Erase(expected["TidxTexts"], {16});  // that of the trend belongs to the other program
    EXPECT_TRUE(hierarchy_.DeleteArchive(u"ARCH11"_s, meanwhile, {}));
    EXPECT_EQ(Read(), expected);
}

TEST_F(HierarchyTest, TheDataEnvironmentsOwnRecordsetsKeepTheirFilters) {
    OpenBrewery();
    ado::Recordset& archives = Environment().Open(ADOArchiv::Command::Archives);
    archives.MoveLast();
    EXPECT_TRUE(hierarchy_.DeleteArchive(u"ARCH3"_s, {}, {}));
    EXPECT_EQ(archives.Filter(), "");
    EXPECT_EQ(ado::ToLong(archives.Get("ID")), 14);
}

TEST_F(HierarchyTest, AScopeThatIsLeftTakesItsTransactionBack) {
    OpenBrewery();
    const Content before = Read();
    {
        projectdb::ProjectRows rows(Environment());
        const project::Transaction transaction(Environment().Connection());
        ASSERT_TRUE(rows.SeekArchive(1));
        const projectdb::EditScope scope(rows.Archives());
        rows.Archives().Delete();
        ASSERT_TRUE(rows.SeekTrend(1));
        rows.Trends().Set("Name", std::u16string(u"half"));
    }
    EXPECT_EQ(Read(), before);
}

}  // namespace
