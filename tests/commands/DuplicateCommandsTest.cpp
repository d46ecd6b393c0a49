#include "commands/CommandTesting.h"
#include "commands/DuplicateName.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

class DuplicateCommandsTest : public CommandTest {
protected:
    /// A row's copy: other numbers and names, the rest as it is.
    static std::string Copy(std::string row,
                            std::initializer_list<std::pair<const char*, std::string>> fields) {
        for (const auto& [field, value] : fields) {
            const std::string name = std::string(field) + "=";
            const std::size_t at = row.starts_with(name) ? 0 : row.find("|" + name) + 1;
            row.replace(at, row.find('|', at) - at, name + value);
        }
        return row;
    }
};

TEST_F(DuplicateCommandsTest, NamesOfCopiesAreCounted) {
    QStringList used;
    const auto isUsed = [&](const QString& name) { return used.contains(name); };
    for (const char* expected : {"Kopie von Pumpe", "Kopie(2) von Pumpe", "Kopie(3) von Pumpe"}) {
        used += DuplicateName(u"Pumpe"_s, 80, texts_, isUsed);
        EXPECT_EQ(used.last(), QString::fromLatin1(expected));
    }
    EXPECT_EQ(DuplicateName(u"Pumpe"_s, 12, texts_, isUsed), u"Kopie von Pu"_s);
    EXPECT_EQ(DuplicateName(u"a\U0001F37A"_s, 12, texts_, isUsed), u"Kopie von a"_s)
        << "no half character";
    MResources::TextTable english;
    english.AddTexts(701, {u"Copy of"});
    EXPECT_EQ(DuplicateName(u"Pump"_s, 80, english, isUsed), u"Copy of Pump"_s);
}

TEST_F(DuplicateCommandsTest, AnArchiveIsCopiedWithAllThatHangsFromIt) {
    OpenBrewery();
    const Content original = Read();
    Content expected = original;
    Put(expected["TchrArchives"],
        Copy(RowOf(expected["TchrArchives"], 4),
             {{"ID", "15"}, {"Name", "Kopie von Filtration"}, {"TextID", "243"}}));
    Put(expected["TidxGroups"],
        Copy(RowOf(expected["TidxGroups"], 6),
             {{"ID", "17"}, {"Name", "Kopie von Filtration"}, {"Parameter", "15"}}));
    Put(expected["TidxTexts"],
        Copy(RowOf(expected["TidxTexts"], 70),
             {{"ID", "243"}, {"ParentID", "17"}, {"Name", "archKopie von Filtration"}}));
    int trend = 228;
    int text = 243;
    for (const std::string& row : original.at("TchrTrends")) {
        const std::size_t at = row.find("|ArchiveID=4|TextID=");
        if (at == std::string::npos) continue;
        ++trend;
        ++text;
        const int textId = std::stoi(row.substr(at + 20));
        Put(expected["TchrTrends"], Copy(row, {{"ID", std::to_string(trend)},
                                               {"ArchiveID", "15"},
                                               {"TextID", std::to_string(text)}}));
        Put(expected["TidxTexts"], Copy(RowOf(expected["TidxTexts"], textId),
                                        {{"ID", std::to_string(text)}, {"ParentID", "17"}}));
    }
    ASSERT_EQ(trend, 240);

    EXPECT_EQ(copies_.DuplicateArchive(4, {}), 15);

    EXPECT_EQ(Read(), expected);
    EXPECT_EQ(tree_.calls, QStringList(u"add 15 Kopie von Filtration"_s));
    EXPECT_TRUE(IsUsed(u"Kopie von Filtration"_s));
    EXPECT_EQ(copies_.DuplicateArchive(4, {}), 16);
    EXPECT_EQ(tree_.calls.last(), u"add 16 Kopie(2) von Filtration"_s);
    EXPECT_FALSE(copies_.DuplicateArchive(99, {}));
    // The copy stands on its own.
    const Content before = Read();
    EXPECT_EQ(copies_.DuplicateArchive(4, {}), 17);
    EXPECT_TRUE(archives_.Delete(u"ARCH17"_s, {}, {}));
    EXPECT_EQ(Read(), before);
}

TEST_F(DuplicateCommandsTest, CopiesOfAwkwardArchivesAreInOrder) {
    struct Case {
        const char* what;
        std::int32_t id;
        std::string text;  // of the copy, behind its name
    };
    const Case cases[] = {
        {"no group", 12, "|L1031=Ohne Gruppe|L1033=No group"},
        {"two groups", 13, "|L1031=Zwei Gruppen|L1033=Two groups"},
        {"a text not there", 8, ""},
        {"no text", 9, ""},
    };
    OpenEdgeCases();
    std::int32_t id = 14;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const Content before = Read();
        EXPECT_EQ(copies_.DuplicateArchive(c.id, {}), ++id);
        const Content after = Read();
        const std::string name = projectdb::ToUtf8(tree_.calls.last().section(u' ', 2));
        EXPECT_EQ(after.at("TidxGroups").size(), before.at("TidxGroups").size() + 1);
        EXPECT_THAT(after.at("TidxGroups").back(),
                    testing::EndsWith("|ParentID=1|Name=" + name + "|Type=-2|Parameter=" +
                                      std::to_string(id) + "|Delete=False|Rename=False"));
        EXPECT_THAT(after.at("TidxTexts").back(), testing::EndsWith("|Name=arch" + name + c.text));
    }
    // A trend whose text is missing has one in the copy, and so shows in the grid.
    EXPECT_EQ(copies_.DuplicateArchive(10, {}), ++id);
    OpenArchive(id);
    EXPECT_EQ(window_.trends.size(), 6);
}

TEST_F(DuplicateCommandsTest, TrendsAreCopiedWithinTheirArchive) {
    OpenBrewery();
    OpenArchive(1);
    Content expected = Read();
    const auto add = [&](int original, int id, int text, const std::string& name) {
        const std::string row = RowOf(expected["TchrTrends"], original);
        Put(expected["TchrTrends"],
            Copy(row,
                 {{"ID", std::to_string(id)}, {"Name", name}, {"TextID", std::to_string(text)}}));
        Put(expected["TidxTexts"], Copy(RowOf(expected["TidxTexts"], original + 1),
                                        {{"ID", std::to_string(text)}, {"Name", "Idx" + name}}));
    };
    add(3, 229, 243, "Kopie von Maischbottich Füllstand");
    add(1, 230, 244, "Kopie von Maischbottich Temperatur");
    add(3, 231, 245, "Kopie(2) von Maischbottich Füllstand");
    const std::int32_t ids[] = {3, 1, 3, 999};
    EXPECT_THAT(copies_.DuplicateTrends(ids, {}), ElementsAre(229, 230, 231));
    EXPECT_EQ(Read(), expected);
    EXPECT_EQ(window_.trends.size(), 27);
    EXPECT_THAT(copies_.DuplicateTrends({}, {}), IsEmpty());
}

TEST_F(DuplicateCommandsTest, ColumnsOfOtherToolsAndLongValuesAreCopied) {
    OpenAltered([](ado::NewTable& form) {
        if (form.name != "TchrTrends") return;
        form.columns.push_back({"Notes", ado::DataType::LongVarWChar});
        form.columns.push_back({"Picture", ado::DataType::LongVarBinary});
        form.columns.push_back({"Locked", ado::DataType::Boolean});
    });
    const std::int32_t archive = archives_.New(u"L1031"_s);
    const std::u16string notes(20000, u'ß');
    ado::Binary picture(9000);
    for (std::size_t i = 0; i < picture.size(); ++i) picture[i] = static_cast<std::byte>(i % 251);
    const std::int32_t trend = Insert("TchrTrends", {{"Name", std::u16string(u"lang")},
                                                     {"ArchiveID", archive},
                                                     {"Notes", notes},
                                                     {"Picture", picture},
                                                     {"Locked", true}});
    OpenArchive(archive);
    const std::int32_t ids[] = {trend};
    ASSERT_EQ(copies_.DuplicateTrends(ids, {}).size(), 1U);
    ASSERT_TRUE(copies_.DuplicateArchive(archive, {}));
    projectdb::ProjectRows rows(Environment());
    for (const std::int32_t id : {2, 3, 4}) {
        ASSERT_TRUE(rows.SeekTrend(id));
        EXPECT_EQ(rows.Trends().Get("Notes"), ado::Value(notes));
        EXPECT_EQ(rows.Trends().Get("Picture"), ado::Value(picture));
        EXPECT_EQ(rows.Trends().Get("Locked"), ado::Value(true));
    }
}

TEST_F(DuplicateCommandsTest, ACopyThatIsGivenUpOrFailsIsNotThere) {
    OpenBrewery();
    OpenArchive(1);
    const Content before = Read();
    const std::int32_t ids[] = {1, 2, 3};
    const auto giveUp = [](int done, int) { return done < 2; };
    const auto fail = [](int done, int) -> bool {
        if (done == 2) throw ado::AdoError(7, "A page is damaged.");
        return true;
    };
    EXPECT_FALSE(copies_.DuplicateArchive(1, giveUp));
    EXPECT_THAT(copies_.DuplicateTrends(ids, giveUp), IsEmpty());
    EXPECT_EQ(ErrorOf([&] { std::ignore = copies_.DuplicateArchive(1, fail); }), 7);
    EXPECT_EQ(ErrorOf([&] { std::ignore = copies_.DuplicateTrends(ids, fail); }), 7);
    EXPECT_EQ(Read(), before);
    EXPECT_THAT(tree_.calls, IsEmpty());
    EXPECT_FALSE(IsUsed(u"Kopie von Sudhaus"_s));
    EXPECT_EQ(copies_.DuplicateArchive(1, {}), 15) << "and no number is lost";
}

TEST_F(DuplicateCommandsTest, LongNamesAreCutToFitEveryTable) {
    OpenBrewery();
    Insert("TchrArchives", {{"Name", std::u16string(80, u'a')}, {"TextID", 1}});
    for (int i = 0; i < 2; ++i) ASSERT_TRUE(copies_.DuplicateArchive(15, {}));
    const Content after = Read();
    EXPECT_THAT(after.at("TchrArchives").back(),
                testing::HasSubstr("|Name=Kopie(2) von " + std::string(67, 'a') + "|"));
    EXPECT_THAT(after.at("TidxTexts").back(),
                testing::HasSubstr("|Name=archKopie(2) von " + std::string(67, 'a') + "|"));
}

}  // namespace
