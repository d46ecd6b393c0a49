#include <algorithm>
#include <QDir>
#include <QFile>

#include "commands/CommandTesting.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::IsEmpty;

const QString kGerman = u"L1031"_s;

class ArchiveCommandsTest : public CommandTest {
protected:
    /// A dialog in which the user types a name and presses OK.
    static ArchiveCommands::EditArchive Typing(const QString& name) {
        return [name](ado::Recordset& archives, ado::Recordset&, const auto& save) {
            archives.Set("Name", projectdb::ToUtf16(name));
            archives.Set("Comment", std::u16string(u"geändert"));
            save();
            return true;
        };
    }
};

/// What a new archive adds to the file.
void AddNewArchive(Content& content, int id, int group, int text, int root, const std::string& name,
                   const std::string& column = "L1031") {
    const std::string i = std::to_string(id);
    const std::string g = std::to_string(group);
    const std::string t = std::to_string(text);
    std::string file = name;
    std::replace(file.begin(), file.end(), ' ', '_');
    Put(content["TchrArchives"],
        "ID=" + i + "|Name=" + name + "|TextID=" + t + NewArchiveFields(file));
    Put(content["TidxGroups"], "ID=" + g + "|ParentID=" + std::to_string(root) + "|Name=" + name +
                                   "|Type=-2|Parameter=" + i + "|Delete=False|Rename=False");
    Put(content["TidxTexts"], "ID=" + t + "|ParentID=" + g + "|Name=arch" + name +
                                  (column.empty() ? "" : "|" + column + "=" + name));
}

TEST_F(ArchiveCommandsTest, ANewArchiveHasItsGroupItsTextAndItsNode) {
    OpenBrewery();
    Content expected = Read();
    AddNewArchive(expected, 15, 17, 243, 1, "Neues Archiv");
    EXPECT_EQ(archives_.New(kGerman), 15);
    EXPECT_EQ(Read(), expected);
    EXPECT_EQ(tree_.calls, QStringList(u"add 15 Neues Archiv"_s));
    EXPECT_TRUE(IsUsed(u"neues archiv"_s));

    AddNewArchive(expected, 16, 18, 244, 1, "Neues Archiv(1)", "L1033");
    EXPECT_EQ(archives_.New(u"L1033"_s), 16);
    AddNewArchive(expected, 17, 19, 245, 1, "Neues Archiv(2)", "");
    EXPECT_EQ(archives_.New(u"L1036"_s), 17) << "a language without a column";
    EXPECT_EQ(Read(), expected);
}

TEST_F(ArchiveCommandsTest, ANewArchiveTakesTheFirstFreeName) {
    OpenEdgeCases();  // has a "Neues Archiv(1)", but no "Neues Archiv"
    Content expected = Read();
    AddNewArchive(expected, 15, 18, 21, 1, "Neues Archiv");
    archives_.New(kGerman);
    AddNewArchive(expected, 16, 19, 22, 1, "Neues Archiv(2)");
    archives_.New(kGerman);
    Insert("TchrArchives", {{"Name", std::u16string(u"NEUES ARCHIV(3)")}});
    Put(expected["TchrArchives"], "ID=17|Name=NEUES ARCHIV(3)");
    AddNewArchive(expected, 18, 20, 23, 1, "Neues Archiv(4)");
    archives_.New(kGerman);
    EXPECT_EQ(Read(), expected);
}

// The first archive's group used to become the root of all later ones.
TEST_F(ArchiveCommandsTest, AProjectWithoutARootGroupGetsGroupsAtTheTop) {
    for (const bool isNew : {false, true}) {
        isNew ? OpenNew() : OpenEmpty();
        const int root = isNew ? 1 : 0;  // new projects have one
        InsertForeignGroup(0);           // at the top as well, and no place for archives
        Content expected = Read();
        AddNewArchive(expected, 1, root + 2, 1, root, "Neues Archiv");
        EXPECT_EQ(archives_.New(kGerman), 1);
        AddNewArchive(expected, 2, root + 3, 2, root, "Neues Archiv(1)");
        EXPECT_EQ(archives_.New(kGerman), 2);
        EXPECT_EQ(Read(), expected);
        EXPECT_TRUE(archives_.Delete(u"ARCH1"_s, {}, {}));
        AddNewArchive(expected, 3, root + 4, 3, root, "Neues Archiv");
        EXPECT_EQ(archives_.New(kGerman), 3);
        EXPECT_EQ(RowOf(Read().at("TidxGroups"), root + 4),
                  RowOf(expected.at("TidxGroups"), root + 4));
        project_.CloseDatabase();
        QFile::remove(projectdb::ToQString(path_));
    }
    path_.clear();
}

TEST_F(ArchiveCommandsTest, AFailingStepOfNewLeavesTheStepsBeforeIt) {
    struct Case {
        const char* what;
        std::function<void(ado::NewTable&)> change;
        std::vector<const char*> tables;  // that have their row in the end
        const char* archive;
    };
    const auto shorten = [](const char* table, int length) {
        return [=](ado::NewTable& form) {
            if (form.name != table) return;
            for (ado::NewColumn& column : form.columns) {
                if (column.name == "Name") column.length = length;
            }
        };
    };
    const auto forbid = [](const char* table, const char* field) {
        return [=](ado::NewTable& form) {
            if (form.name != table) return;
            form.indexes.push_back({field, field, ado::NewIndex::Kind::Unique});
        };
    };
    const Case cases[] = {
        {"the archive", shorten("TchrArchives", 4), {}, ""},
        {"its name", shorten("TchrArchives", 5), {"TchrArchives"}, "ID=1|Name=@New@"},
        {"its group", shorten("TidxGroups", 4), {"TchrArchives"}, "ID=1|Name=Neues Archiv"},
        {"no groups",
         [](ado::NewTable& form) {
             if (form.name == "TidxGroups") form.name = "Groups";
         },
         {"TchrArchives"},
         "ID=1|Name=Neues Archiv"},
        {"its text",
         shorten("TidxTexts", 4),
         {"TchrArchives", "TidxGroups"},
         "ID=1|Name=Neues Archiv"},
        {"its TextID",
         forbid("TchrArchives", "TextID"),
         {"TchrArchives", "TidxGroups", "TidxTexts"},
         "ID=2|Name=Neues Archiv"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        OpenAltered(c.change);
        Content expected = Read();
        if (std::string_view(c.archive).starts_with("ID=2")) {
            Insert("TchrArchives", {{"Name", std::u16string(u"alt")}, {"TextID", 1}});
            Put(expected["TchrArchives"], "ID=1|Name=alt|TextID=1");
        }
        EXPECT_NE(ErrorOf([&] { archives_.New(kGerman); }), 0);
        const Content after = Read();
        if (*c.archive != '\0') {
            const bool named = std::string_view(c.archive).ends_with("Neues Archiv");
            std::string row = c.archive + NewArchiveFields("Neues_Archiv");
            if (!named) row = Replaced(row, "|FileName=Neues_Archiv", "");
            Put(expected["TchrArchives"], row);
        }
        EXPECT_EQ(after.at("TchrArchives"), expected["TchrArchives"]);
        for (const char* table : {"TidxGroups", "TidxTexts"}) {
            const bool has =
                std::find(c.tables.begin(), c.tables.end(), std::string(table)) != c.tables.end();
            if (!after.contains(table)) continue;
            EXPECT_EQ(after.at(table).size(), has ? 1U : 0U) << table;
        }
        EXPECT_THAT(tree_.calls, IsEmpty());
        EXPECT_THAT(Environment().Connection().OpenRecordsets(), IsEmpty());
        EXPECT_THAT(ErrorsIn(path_), IsEmpty());
        project_.CloseDatabase();
        QFile::remove(projectdb::ToQString(path_));
    }
    path_.clear();
}

TEST_F(ArchiveCommandsTest, NothingIsThereWhenNewCannotBeCommitted) {
    OpenBrewery();
    OpenArchive(1);
    const Content before = Read();
    // The journal cannot be made where a folder of its name lies.
    const QString journal = projectdb::ToQString(path_ + "-journal");
    ASSERT_TRUE(QDir().mkpath(journal + u"/x"_s));
    EXPECT_NE(ErrorOf([&] { archives_.New(kGerman); }), 0);
    EXPECT_NE(ErrorOf([&] { trends_.New(); }), 0);
    EXPECT_NE(ErrorOf([&] { std::ignore = copies_.DuplicateArchive(1, {}); }), 0);
    EXPECT_TRUE(QDir(journal).removeRecursively());
    EXPECT_EQ(Read(), before);
    EXPECT_THAT(tree_.calls, IsEmpty());
    EXPECT_EQ(archives_.New(kGerman), 15) << "and the next one is made";
    EXPECT_EQ(trends_.New(), 229);
}

TEST_F(ArchiveCommandsTest, ARenamedArchiveTakesItsNodeGroupAndTextAlong) {
    struct Case {
        const char* what;
        std::int32_t id;
        std::int32_t group;  // 0: none is changed
        std::int32_t text;
    };
    const Case cases[] = {
        {"as usual", 1, 3, 1},          {"no group", 12, 0, 18}, {"two groups", 13, 0, 19},
        {"a text not there", 8, 10, 0}, {"no text", 9, 11, 0},
    };
    OpenEdgeCases();
    for (const std::int32_t archive : {1, 12}) InsertForeignGroup(archive);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Content expected = Read();
        const std::string old = [&] {
            const std::string row = RowOf(expected["TchrArchives"], c.id);
            const std::size_t at = row.find("Name=") + 5;
            return row.substr(at, row.find('|', at) - at);
        }();
        const std::string name = "Umbenannt " + std::to_string(c.id);
        const auto rename = [&](const char* table, std::int32_t id, const std::string& prefix) {
            if (id == 0) return;
            Put(expected[table], Replaced(RowOf(expected[table], id), "Name=" + prefix + old,
                                          "Name=" + prefix + name));
        };
        rename("TchrArchives", c.id, "");
        rename("TidxGroups", c.group, "");
        rename("TidxTexts", c.text, "arch");
        std::string& row =
            *std::find(expected["TchrArchives"].begin(), expected["TchrArchives"].end(),
                       RowOf(expected["TchrArchives"], c.id));
        row = Replaced(row, "|MaxFiles=", "|Comment=geändert|MaxFiles=");
        tree_.calls.clear();

        EXPECT_TRUE(archives_.Edit(c.id, Typing(projectdb::ToQString(name))));

        EXPECT_EQ(Read(), expected);
        EXPECT_EQ(tree_.calls,
                  QStringList(u"text %1 %2"_s.arg(c.id).arg(projectdb::ToQString(name))));
        EXPECT_TRUE(IsUsed(projectdb::ToQString(name)));
        EXPECT_FALSE(IsUsed(projectdb::ToQString(old)));
    }
}

TEST_F(ArchiveCommandsTest, EditingWithoutANewNameTouchesNothingElse) {
    OpenBrewery();
    Content expected = Read();
    Put(expected["TchrArchives"],
        Replaced(RowOf(expected["TchrArchives"], 6), "nur im Hauptspeicher", "geändert"));
    EXPECT_TRUE(archives_.Edit(6, Typing(u"KEG"_s)));
    EXPECT_EQ(Read(), expected);
    EXPECT_THAT(tree_.calls, IsEmpty());

    // Giving up, even in the middle of writing back, leaves everything as it was.
    const auto giveUp = [](ado::Recordset& archives, ado::Recordset& texts, const auto&) {
        archives.Set("Name", std::u16string(u"verworfen"));
        texts.Set("L1031", std::u16string(u"verworfen"));
        return false;
    };
    const auto fail = [](ado::Recordset& archives, ado::Recordset&, const auto&) -> bool {
        archives.Set("Name", std::u16string(u"verworfen"));
        throw ado::AdoError(1, "the dialog fails");
    };
    EXPECT_FALSE(archives_.Edit(6, giveUp));
    EXPECT_NE(ErrorOf([&] { archives_.Edit(6, fail); }), 0);
    EXPECT_EQ(Read(), expected);
    EXPECT_NE(ErrorOf([&] { archives_.Edit(99, giveUp); }), 0) << "there is no such archive";
}

TEST_F(ArchiveCommandsTest, CaseAloneMayBeChanged) {
    OpenBrewery();
    EXPECT_TRUE(archives_.Edit(1, Typing(u"SUDHAUS"_s)));
    const Content after = Read();
    EXPECT_THAT(RowOf(after.at("TchrArchives"), 1), testing::HasSubstr("Name=SUDHAUS|"));
    EXPECT_THAT(RowOf(after.at("TidxGroups"), 3), testing::HasSubstr("Name=SUDHAUS|"));
    EXPECT_THAT(RowOf(after.at("TidxTexts"), 1), testing::HasSubstr("Name=archSUDHAUS|"));
    EXPECT_TRUE(IsUsed(u"Sudhaus"_s));
}

// The text used to be stored before the archive failed, and to stay.
TEST_F(ArchiveCommandsTest, AnEditIsStoredAsAWholeOrNotAtAll) {
    OpenBrewery();
    int attempt = 0;
    const auto edit = [&](ado::Recordset& archives, ado::Recordset& texts, const auto& save) {
        texts.Find("ID = 1");
        texts.Set("L1033", std::u16string(u"Brewery"));
        EXPECT_EQ(ado::ToLong(archives.Get("ScanTime")), ++attempt == 1 ? 500 : 250);
        if (attempt == 1) {
            Meanwhile([](projectdb::ProjectRows& rows) {
                EXPECT_TRUE(rows.SeekArchive(1));
                rows.Archives().Set("ScanTime", 250);
                rows.Archives().Update();
            });
        }
        archives.Set("Name", std::u16string(u"Anders"));
        save();
        return true;
    };
    Content expected = Read();
    Put(expected["TchrArchives"],
        Replaced(RowOf(expected["TchrArchives"], 1), "ScanTime=500", "ScanTime=250"));
    EXPECT_EQ(ErrorOf([&] { archives_.Edit(1, edit); }), ado::ErrorNumber::kRowNotLocated);
    EXPECT_EQ(Read(), expected);
    EXPECT_THAT(tree_.calls, IsEmpty());
    EXPECT_TRUE(archives_.Edit(1, edit)) << "and goes through on the row as it is now";
    EXPECT_EQ(tree_.calls, QStringList(u"text 1 Anders"_s));
}

TEST_F(ArchiveCommandsTest, ARenamingThatFailsLeavesTheOldNameEverywhere) {
    for (const bool textFails : {false, true}) {
        OpenAltered([&](ado::NewTable& form) {
            const bool isShort = form.name == (textFails ? "TidxTexts" : "TidxGroups");
            for (ado::NewColumn& column : form.columns) {
                if (isShort && column.name == "Name") column.length = 20;
            }
        });
        const std::int32_t id = archives_.New(kGerman);
        const Content before = Read();
        tree_.calls.clear();
        const QString name = u"ein sehr langer neuer Name"_s;
        EXPECT_EQ(ErrorOf([&] { archives_.Edit(id, Typing(name)); }),
                  ado::ErrorNumber::kDoesNotFit);
        EXPECT_EQ(Read(), before);
        EXPECT_THAT(tree_.calls, IsEmpty());
        EXPECT_TRUE(IsUsed(u"Neues Archiv"_s));
        EXPECT_FALSE(IsUsed(name));
        project_.CloseDatabase();
        EXPECT_THAT(ErrorsIn(path_), IsEmpty());
        QFile::remove(projectdb::ToQString(path_));
    }
    path_.clear();
}

TEST_F(ArchiveCommandsTest, DeletingAsksWithTheNumberOfTrends) {
    struct Case {
        const char* key;
        const char* question;
    };
    const Case cases[] = {{"ARCH1", "Archiv mit 0 Trends?"},
                          {"ARCH11", "Archiv mit einem Trend?"},
                          {"ARCH10", "Archiv mit 6 Trends?"}};
    OpenEdgeCases();
    const Content before = Read();
    for (const Case& c : cases) {
        EXPECT_FALSE(archives_.Delete(QString::fromLatin1(c.key), Answer(false), {}));
        EXPECT_EQ(questions_.last(), QString::fromLatin1(c.question));
    }
    EXPECT_EQ(Read(), before);
    EXPECT_THAT(tree_.calls, IsEmpty());
    names_.NamesInGroup(projectdb::kArchiveNames, Environment());
    questions_.clear();

    EXPECT_TRUE(archives_.Delete(u"ARCH11"_s, Answer(true), {}));
    EXPECT_TRUE(archives_.Delete(u"ARCH1"_s, {}, {})) << "nothing is asked";
    EXPECT_EQ(questions_.size(), 1);
    EXPECT_EQ(tree_.calls, QStringList({u"remove 11"_s, u"remove 1"_s}));
    EXPECT_FALSE(IsUsed(u"EinTrend"_s));
    EXPECT_TRUE(IsUsed(u"Niemals"_s));
    EXPECT_EQ(Read().at("TchrArchives").size(), before.at("TchrArchives").size() - 2);
}

TEST_F(ArchiveCommandsTest, TheNodeGoesExactlyWhenItsArchiveIsGone) {
    OpenBrewery();
    // Given up before anything, and after the archive's own rows: its trends used to be left
    // without an archive.
    const Content before = Read();
    for (const int last : {0, 3}) {
        EXPECT_FALSE(archives_.Delete(u"ARCH1"_s, {}, [&](int done, int) { return done < last; }));
        EXPECT_THAT(tree_.calls, IsEmpty());
        EXPECT_EQ(Read(), before);
        EXPECT_EQ(status_.panels[2], u"Trends:0"_s);
    }
    // Failed after them.
    tree_.calls.clear();
    projectdb::Failure failure;
    try {
        archives_.Delete(u"ARCH2"_s, {}, [](int done, int) -> bool {
            if (done < 3) return true;
            throw ado::AdoError(7, "A page is damaged.", {reasons::Cause::FileDamaged, "a.kvs"});
        });
    } catch (...) {
        failure = projectdb::Failure::Current();
    }
    EXPECT_EQ(failure.Details(), u"7   A page is damaged."_s);
    // What is left used to stand under the details only, and the cause to be unknown.
    EXPECT_TRUE(failure.Text().startsWith(
        u"Archiv und 2 Trends weg, 22 da: Die Datei 'a.kvs' ist beschädigt."_s))
        << failure.Text().toStdString();
    EXPECT_EQ(tree_.calls, QStringList(u"remove 2"_s));
    // Not there any more.
    EXPECT_TRUE(archives_.Delete(u"ARCH2"_s, {}, {}));
    EXPECT_EQ(tree_.calls.size(), 2);
}

TEST_F(ArchiveCommandsTest, TheStatisticCountsTheWholeProject) {
    struct Case {
        std::function<void()> open;
        QStringList panels;
    };
    const Case cases[] = {
        {[&] { OpenBrewery(); }, {u"Func: Statistik"_s, u"Archive:14"_s, u"Trends:228"_s}},
        {[&] { OpenEdgeCases(); }, {u"Func: Statistik"_s, u"Archive:14"_s, u"Trends:7"_s}},
        {[&] { OpenEmpty(); }, {u"Func: Statistik"_s, u"Archive:0"_s, u"Trends:0"_s}},
    };
    for (const Case& c : cases) {
        c.open();
        Statistic::Show(Environment(), hierarchy_.Counters());
        EXPECT_EQ(status_.panels, c.panels);
        project_.CloseDatabase();
        QFile::remove(projectdb::ToQString(path_));
    }
    path_.clear();
}

}  // namespace
