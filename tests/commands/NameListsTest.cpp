#include "commands/CommandTesting.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using projectdb::kArchiveNames;
using projectdb::kTrendNames;
using Command = ADOArchiv::Command;

class NameListsTest : public CommandTest {};

TEST_F(NameListsTest, NamesAreTheSameAsInTheFilesTextIndexes) {
    struct Case {
        QString a;
        QString b;
        bool same;
    };
    const Case cases[] = {
        {u"Sudhaus"_s, u"SUDHAUS"_s, true},   {u"Gärkeller"_s, u"GÄRKELLER"_s, true},
        {u"Straße"_s, u"STRASSE"_s, true},    {u"Pumpe"_s, u"Pumpe  "_s, true},
        {u"Ka\u0308lte"_s, u"Kälte"_s, true}, {u"Pumpe"_s, u" Pumpe"_s, false},
        {u"Kälte"_s, u"Kalte"_s, false},      {u"co-op"_s, u"coop"_s, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(NameLists().IsSameName(c.a, c.b), c.same) << qPrintable(c.a + u" / "_s + c.b);
    }
}

TEST_F(NameListsTest, AListHoldsTheNamesOfAllRows) {
    OpenBrewery();
    ado::Recordset& rows = Environment().Recordset(Command::Archives);
    names_.AddNameInGroup(kArchiveNames, u"of before"_s);
    names_.NamesInGroup(kArchiveNames, Environment());
    EXPECT_EQ(rows.State(), ado::ObjectState::Closed) << "it was closed before";
    EXPECT_TRUE(IsUsed(u"sudhaus"_s));
    EXPECT_TRUE(IsUsed(u"Chargen"_s));
    EXPECT_FALSE(IsUsed(u"of before"_s));
    EXPECT_FALSE(names_.TestNameInGroup(kTrendNames, u"Sudhaus"_s));

    Environment().Open(Command::Archives).MoveLast();
    names_.NamesInGroup(kArchiveNames, Environment());
    EXPECT_EQ(projectdb::NameOf(rows), u"Sudhaus"_s) << "back on the first row";

    names_.NamesInGroup(kTrendNames, Environment());
    EXPECT_FALSE(names_.TestNameInGroup(kTrendNames, u"Maischbottich Druck"_s));
    OpenArchive(1);
    names_.NamesInGroup(kTrendNames, Environment());
    EXPECT_TRUE(names_.TestNameInGroup(kTrendNames, u"Maischbottich Druck"_s));
}

TEST_F(NameListsTest, ChangesKeepTheListInStep) {
    names_.AddNameInGroup(kArchiveNames, u"Neues Archiv"_s);
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(IsUsed(u"Neues Archiv"_s)) << "testing changes nothing";
    for (int i = 0; i < 2; ++i) EXPECT_FALSE(IsUsed(u"frei"_s));
    names_.ChangeNameInGroup(kArchiveNames, u"Neues Archiv"_s, u"NEUES ARCHIV"_s);
    EXPECT_TRUE(IsUsed(u"Neues Archiv"_s));
    names_.ChangeNameInGroup(kArchiveNames, u"Neues Archiv"_s, u"Neues Archiv"_s);
    EXPECT_TRUE(IsUsed(u"Neues Archiv"_s));
    names_.ChangeNameInGroup(kArchiveNames, u"Neues Archiv"_s, u"Keller"_s);
    EXPECT_FALSE(IsUsed(u"Neues Archiv"_s));
    EXPECT_TRUE(IsUsed(u"Keller"_s));
    names_.AddNameInGroup(kArchiveNames, u"keller"_s);  // a second row of that name
    names_.DeleteNameInGroup(kArchiveNames, u"Keller"_s);
    EXPECT_TRUE(IsUsed(u"Keller"_s));
    names_.DeleteNameInGroup(kArchiveNames, u"Keller"_s);
    names_.DeleteNameInGroup(kArchiveNames, u"Keller"_s);
    EXPECT_FALSE(IsUsed(u"Keller"_s));
}

}  // namespace
