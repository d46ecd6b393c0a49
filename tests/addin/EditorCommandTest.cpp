#include <gmock/gmock.h>

#include <QClipboard>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QScopeGuard>
#include <QStatusBar>
#include <QToolButton>

#include "addin/EditorTest.h"
#include "commandset/OwnKeys.h"
#include "projectdb/Text.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class EditorCommandTest : public EditorTest {
protected:
    [[nodiscard]] QString Panel(int number) {
        return Editor()->findChild<QLabel*>(u"sb.Panels(%1)"_s.arg(number))->text();
    }
    [[nodiscard]] QLineEdit* Find() { return Editor()->findChild<QLineEdit*>(u"txtFind"_s); }
    [[nodiscard]] static QString Clipboard() { return QApplication::clipboard()->text(); }
    static void SetClipboard(const QString& text) { QApplication::clipboard()->setText(text); }
    [[nodiscard]] QString Shown(const QString& action) {
        return Action(action)->isEnabled() ? u"on"_s : u"off"_s;
    }
};

TEST_F(EditorCommandTest, MenusFollowTheNodeOfTheTree) {
    Open();
    const QStringList actions = {u"mnuArchiv(0)"_s, u"mnuArchiv(1)"_s, u"mnuArchiv(2)"_s,
                                 u"mnuTrend(0)"_s,  u"mnuTrend(1)"_s,  u"mnuTrend(2)"_s};
    struct Case {
        QString node;
        QStringList enabled;
    };
    const Case cases[] = {
        {u"ARC0"_s, {u"mnuArchiv(0)"_s}},
        // Nothing is selected, so that there is nothing to delete.
        {u"ARCH3"_s, {u"mnuArchiv(1)"_s, u"mnuArchiv(2)"_s, u"mnuTrend(0)"_s, u"mnuTrend(1)"_s}},
    };
    auto* menu = Editor()->findChild<QMenu*>(u"mnuTrends"_s);
    for (const Case& c : cases) {
        Click(c.node);
        emit menu->aboutToShow();
        QStringList enabled;
        for (const QString& action : actions) {
            if (Action(action)->isEnabled()) enabled += action;
        }
        EXPECT_EQ(enabled, c.enabled) << c.node.toStdString();
        EXPECT_FALSE(Action(u"mnuArchiv(3)"_s)->isVisible());
        EXPECT_FALSE(Action(u"mnuArchiv(4)"_s)->isVisible());
        for (int i : {0, 1, 2, 4}) EXPECT_TRUE(Action(u"mnuExtra(%1)"_s.arg(i))->isEnabled());
    }
    TurnTo();
    SelectRow(1);
    EXPECT_EQ(Shown(u"mnuTrend(2)"_s), u"on"_s);
    ClickCell(1, u"Name"_s);
    EXPECT_EQ(Shown(u"mnuTrend(2)"_s), u"off"_s);
}

TEST_F(EditorCommandTest, TextsFollowTheInterfaceLanguage) {
    struct Case {
        bool english;
        QString trendMenu;
        QString deleteTrend;
        QString refresh;
        QStringList captions;
        QStringList panels;
    };
    const Case cases[] = {
        {true,
         u"&Trends"_s,
         u"&Delete\tCtrl+Del"_s,
         u"&Actualize Database Connection"_s,
         {u"Trend Variable"_s, u"Substitution Value Maximum"_s, u"Comment"_s},
         {u"Func:"_s, u"Archives:"_s, u"Trends:"_s}},
        {false,
         u"&Trends"_s,
         u"&Löschen\tStrg+Entf"_s,
         u"&Ansicht aktualisieren"_s,
         {u"Trendvariable"_s, u"ErsatzMax"_s, u"Kommentar"_s},
         {u"Func:"_s, u"Archive:"_s, u"Trends:"_s}},
    };
    for (const Case& c : cases) {
        Open(u"ARC0"_s, c.english);
        EXPECT_EQ(Editor()->findChild<QMenu*>(u"mnuTrends"_s)->title(), c.trendMenu);
        EXPECT_EQ(Action(u"mnuTrend(2)"_s)->text(), c.deleteTrend);
        EXPECT_EQ(Action(u"mnuExtra(2)"_s)->text(), c.refresh);
        QStringList captions;
        for (const QString& field : {u"TrendVar"_s, u"SurrogateMax"_s, u"Comment"_s}) {
            captions += Column(1, field)->property("Caption").toString();
        }
        EXPECT_EQ(captions, c.captions);
        EXPECT_EQ((QStringList{Panel(1), Panel(2), Panel(3)}), c.panels);
        EXPECT_TRUE(Editor()->windowTitle() ==
                    (c.english ? u"Archive Editor"_s : u"Archiv Editor"_s));
        CloseProject();
    }
}

TEST_F(EditorCommandTest, PanelsCountWhatACommandDid) {
    Open();
    Action(u"mnuExtra(0)"_s)->trigger();
    EXPECT_EQ(Panel(1), u"Func: Statistik"_s);
    EXPECT_EQ(Panel(2), u"Archive:14"_s);
    EXPECT_TRUE(Panel(3).mid(7).toInt() > 100) << Panel(3).toStdString();
    SelectRow(0);
    SelectRow(1, Qt::ShiftModifier);
    Key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(Panel(1), u"Func: Delete"_s);
    EXPECT_EQ(Panel(3), u"Trends:2"_s);
}

TEST_F(EditorCommandTest, SortingAndSelectingActOnWhatIsShown) {
    Open();
    ClickCell(0, u"Unit"_s);
    const QString before = CurrentName();
    Key(Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(CurrentName(), before);
    QStringList units;
    for (int row = 0; row < RowCount(1); ++row) units += Text(row, u"Unit"_s);
    QStringList sorted = units;
    std::stable_sort(sorted.begin(), sorted.end(), [](const QString& a, const QString& b) {
        return QString::localeAwareCompare(a, b) < 0;
    });
    EXPECT_EQ(units.first(), sorted.first());
    Key(Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(Text(RowCount(1) - 1, u"Unit"_s), units.first());

    ClickCell(3, u"Name"_s);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_THAT(SelectedRows(), ElementsAre(3, 4, 5));
    Key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_THAT(SelectedRows(), ElementsAre(3, 4));
    SelectRow(7, Qt::ControlModifier);
    EXPECT_THAT(SelectedRows(), ElementsAre(3, 4, 7));

    const QStringList gone = {Text(3, u"Name"_s), Text(4, u"Name"_s), Text(7, u"Name"_s)};
    const int rows = RowCount(1);
    Key(Qt::Key_Delete, Qt::ControlModifier);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_EQ(messages_[0].text, u"Do you really want to delete 3 trend objects?"_s);
    EXPECT_EQ(RowCount(1), rows - 3);
    for (const QString& name : gone) EXPECT_THAT(Names(), Not(Contains(name)));
    // Nothing is selected any more: the key does nothing.
    messages_.clear();
    Key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_THAT(messages_, IsEmpty());
    EXPECT_EQ(RowCount(1), rows - 3);
}

TEST_F(EditorCommandTest, WhoDoesNotWantToBeAskedIsNot) {
    QFile settings(folder_.filePath(u"KVEditors.ini"_s));
    ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
    settings.write("[FKVARCHIVDBSERVER]\r\nRequestOnDelete=False\r\n");
    settings.close();
    Open();
    const int rows = RowCount(1);
    SelectRow(2);
    Key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(RowCount(1), rows - 1);
    EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(EditorCommandTest, DeclinedDeletionsChangeNothing) {
    Open();
    QStringList questions;
    const messages::MessageAnswer decline([&](const messages::Message& message) {
        questions += message.text;
        return messages::MessageResult::Cancel;
    });
    SelectRow(2);
    Key(Qt::Key_Delete, Qt::ControlModifier);
    Key(Qt::Key_F6);
    Key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_THAT(questions,
                ElementsAre(u"Do you really want to delete 1 trend object?"_s,
                            u"Do you really want to delete the archive containing 24 trend "
                            u"objects?"_s));
    EXPECT_EQ(RowCount(1), 24);
    EXPECT_EQ(RowCount(0), 14);
}

TEST_F(EditorCommandTest, DeletingTheOnlyArchiveGoesToTheRoot) {
    project_ = CopyProject(QStringLiteral(KV_TEST_DATA "/Leer.kvs"), u"Leer.kvs"_s);
    Open(u"ARC0"_s);
    TurnTo(0);
    Key(Qt::Key_F8);
    ASSERT_EQ(RowCount(0), 1);
    Key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(messages_.size(), 1);
    EXPECT_EQ(RowCount(0), 0);
    EXPECT_FALSE(host_.ChildKeys(u"ARC0"_s));
    EXPECT_EQ(host_.selected, u"ARC0"_s);
    EXPECT_EQ(Editor()->windowTitle(), u"Archive Editor"_s);
    EXPECT_EQ(Shown(u"mnuTrend(0)"_s), u"off"_s);
    EXPECT_EQ(Shown(u"mnuArchiv(0)"_s), u"on"_s);
    EXPECT_EQ(CurrentRow(0), -1);
}

TEST_F(EditorCommandTest, KeysOfTheUsersOwnAreObeyedAndShownAtOnce) {
    const auto given = qScopeGuard([] { commandset::SetOwnKeys({}); });
    Open(u"ARCH2"_s);
    const int trends = RowCount(1);
    EXPECT_EQ(Action(u"mnuTrend(0)"_s)->text(), u"&New\tF8"_s);
    commandset::SetOwnKeys({{u"mnuTrend(0)"_s, {Qt::CTRL | Qt::Key_N}},
                            {u"mnuArchiv(1)"_s, {Qt::Key_F11}},
                            {u"mnuFind"_s, {Qt::Key_F3}},
                            {u"mnuFreeze"_s, {Qt::Key_F12}},
                            {u"mnuExtra(7)"_s, {}},
                            {u"mnuUndo"_s, {Qt::CTRL | Qt::Key_U}}});
    EXPECT_EQ(Action(u"mnuTrend(0)"_s)->text(), u"&New\tCtrl+N"_s);
    EXPECT_EQ(Action(u"mnuTrend(0)"_s)->toolTip(), u"Trends: New (Ctrl+N)"_s);
    EXPECT_TRUE(Find()->toolTip().contains(u"F3"_s)) << Find()->toolTip().toStdString();
    EXPECT_FALSE(Editor()->findChild<QToolButton*>(u"cmdFindings"_s)->toolTip().contains(u"F4"_s));
    Key(Qt::Key_F8);
    Key(Qt::Key_F4);
    EXPECT_EQ(RowCount(1), trends);
    Key(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(RowCount(1), trends + 1);
    EXPECT_TRUE(Editor()->findChild<QLabel*>(u"lblDone"_s)->text().endsWith(u"Ctrl+U"_s));
    Key(Qt::Key_U, Qt::ControlModifier);
    EXPECT_EQ(RowCount(1), trends);
    const bool isFrozen = Action(u"mnuFreeze"_s)->isChecked();
    Key(Qt::Key_F12);
    EXPECT_NE(Action(u"mnuFreeze"_s)->isChecked(), isFrozen);
    // In the host's tree too.
    EXPECT_EQ(DialogOf([&] { EXPECT_FALSE(KeyIsLeft(u"ARCH2"_s, 112 + 10, 0)); }), u"FArchiv"_s);
    commandset::SetOwnKeys({});
    Key(Qt::Key_F8);
    EXPECT_EQ(RowCount(1), trends + 1);
    EXPECT_EQ(Action(u"mnuTrend(0)"_s)->text(), u"&New\tF8"_s);
}

TEST_F(EditorCommandTest, KeysRunTheCommandsOfTheSplitThatHasThem) {
    Open(u"ARCH2"_s);
    const int trends = RowCount(1);
    Key(Qt::Key_F8);
    EXPECT_EQ(RowCount(1), trends + 1);
    EXPECT_TRUE(CurrentName().startsWith(u"Trd"_s));
    Key(Qt::Key_Insert);
    EXPECT_EQ(RowCount(1), trends + 2);
    EXPECT_EQ(DialogOf([&] { Key(Qt::Key_F9); }), u"FTrend"_s);
    EXPECT_EQ(DialogOf([&] {
                  const QRect cell =
                      Split(1)->visualRect(Split(1)->model()->index(0, ColumnNumber(1, u"Name"_s)));
                  QTest::mouseDClick(Split(1)->viewport(), Qt::LeftButton, {}, cell.center());
              }),
              u"FTrend"_s);

    Key(Qt::Key_F6);
    EXPECT_EQ(Keyboard(), Split(0));
    EXPECT_EQ(DialogOf([&] { Key(Qt::Key_F9); }), u"FArchiv"_s);
    // The tree shows another editor's node: it is the archive that is open here.
    host_.selected = u"VARS"_s;
    EXPECT_EQ(DialogOf([&] { Key(Qt::Key_F9); }), u"FArchiv"_s);
    Key(Qt::Key_F8);
    EXPECT_EQ(RowCount(0), 15) << "also while one is open";
    Click(u"ARC0"_s);
    Key(Qt::Key_F8);
    EXPECT_EQ(RowCount(0), 16);
    EXPECT_THAT(host_.ChildTexts(u"ARC0"_s), Contains(u"New Archive"_s));

    Click(u"ARCH2"_s);
    Key(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(host_.selected, u"ARCH3"_s);
    EXPECT_EQ(Editor()->windowTitle(), u"Archive Editor: Lagerkeller"_s);
    EXPECT_EQ(CurrentName(0), u"Lagerkeller"_s);
    Key(Qt::Key_PageUp, Qt::ControlModifier);
    Key(Qt::Key_PageUp, Qt::ControlModifier);
    Key(Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(host_.selected, u"ARCH1"_s) << "there is none before the first";
    EXPECT_EQ(RowCount(1), 24);
    Key(Qt::Key_F6);
    EXPECT_EQ(Keyboard(), Split(1));
    // Down on the last row makes none.
    ClickCell(23, u"Name"_s);
    Key(Qt::Key_Down);
    EXPECT_EQ(RowCount(1), 24);
    EXPECT_EQ(CurrentRow(), 23);
    EXPECT_THAT(MessageTexts(), IsEmpty());
}

TEST_F(EditorCommandTest, NarrowingShowsSomeRowsAndStoresNothing) {
    Open();
    ClickCell(4, u"Name"_s);
    Key(Qt::Key_F, Qt::ControlModifier);
    ASSERT_EQ(Keyboard(), Find());
    Type(u"temp"_s);
    const QStringList shown = Names();
    EXPECT_GT(shown.size(), 1);
    EXPECT_LT(shown.size(), 24);
    for (const QString& name : shown) {
        EXPECT_TRUE(name.contains(u"temp"_s, Qt::CaseInsensitive)) << name.toStdString();
    }
    EXPECT_EQ(RowCount(0), 14) << "the other split is not narrowed";

    // Commands act on what is shown.
    Key(Qt::Key_Return);
    EXPECT_EQ(Keyboard(), Split(1));
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(Clipboard().count(u'\n'), shown.size() + 1);
    // What is new must be seen, though it does not match.
    Key(Qt::Key_F8);
    EXPECT_EQ(RowCount(1), 25);
    EXPECT_TRUE(CurrentName().startsWith(u"Trd"_s));
    EXPECT_EQ(Find()->text(), QString());

    Key(Qt::Key_F, Qt::ControlModifier);
    Type(u"temp"_s);
    Key(Qt::Key_Escape);
    EXPECT_EQ(RowCount(1), 25);
    EXPECT_EQ(Keyboard(), Split(1));

    // Turned to from the archives it narrows those, and the trends no longer.
    Key(Qt::Key_F, Qt::ControlModifier);
    Type(u"temp"_s);
    TurnTo(0);
    QTest::mouseClick(Find(), Qt::LeftButton);
    Find()->setFocus(Qt::MouseFocusReason);
    EXPECT_EQ(RowCount(1), 25);
    Type(u"keller"_s);
    EXPECT_THAT(Names(0), ElementsAre(u"Gärkeller"_s, u"Lagerkeller"_s));
    // An archive that is narrowed out is opened from the tree all the same.
    Click(u"ARCH9"_s);
    EXPECT_EQ(RowCount(1), 12);
    EXPECT_EQ(CurrentRow(0), -1);
}

TEST_F(EditorCommandTest, NarrowingTellsHowManyRowsAreLeft) {
    Open();
    auto* found = Editor()->findChild<QLabel*>(u"lblFound"_s);
    auto* bar = Editor()->findChild<QStatusBar*>(u"sb"_s);
    EXPECT_FALSE(found->isVisible());
    Key(Qt::Key_F, Qt::ControlModifier);
    Type(u"temp"_s);
    EXPECT_EQ(found->text(), u"%1 of 24"_s.arg(RowCount(1)));
    Type(u"xyz"_s);
    EXPECT_EQ(RowCount(1), 0);
    EXPECT_EQ(found->text(), u"0 of 24"_s);
    EXPECT_TRUE(bar->currentMessage().contains(u"\"tempxyz\""_s));
    Key(Qt::Key_Escape);
    EXPECT_EQ(RowCount(1), 24);
    EXPECT_FALSE(found->isVisible());
    EXPECT_EQ(bar->currentMessage(), QString());

    // From the tree it narrows the archives.
    TurnAway();
    EXPECT_FALSE(KeyIsLeft(u"ARCH1"_s, 70, KV4AddIn::kCtrl));
    TurnTo(1);
    Find()->setFocus(Qt::ShortcutFocusReason);
    ASSERT_TRUE(Find()->placeholderText().contains(u"archives"_s));
    Type(u"keller"_s);
    EXPECT_EQ(found->text(), u"2 of 14"_s);
    EXPECT_EQ(RowCount(1), 24);
    EXPECT_EQ(CurrentRow(0), -1);
    Find()->clear();
    EXPECT_EQ(CurrentName(0), u"Sudhaus"_s) << "which is open all the time";
}

TEST_F(EditorCommandTest, RowsAreCopiedWithTheirHeadings) {
    Open(u"ARCH1"_s, false);
    for (const QString& field : {u"Factor"_s, u"VDrawMode"_s, u"VLineColor"_s}) {
        Column(1, field)->setProperty("Visible", true);
    }
    ClickCell(0, u"Factor"_s);
    Type(u"8,25"_s);
    Key(Qt::Key_Return);
    SelectRow(0);
    SelectRow(2, Qt::ControlModifier);
    Key(Qt::Key_C, Qt::ControlModifier);
    const QStringList lines = Clipboard().split(u'\n');
    ASSERT_EQ(lines.size(), 4);
    QStringList captions;
    for (const QString& field : ShownFields(1)) {
        captions += Column(1, field)->property("Caption").toString();
    }
    EXPECT_EQ(lines[0].split(u'\t'), captions);
    EXPECT_EQ(lines[1].split(u'\t')[0], Text(0, u"Name"_s));
    EXPECT_EQ(lines[2].split(u'\t')[0], Text(2, u"Name"_s));
    EXPECT_THAT(lines[1].split(u'\t'), Contains(u"8,25"_s));
    EXPECT_EQ(lines[3], QString());

    ClickCell(0, u"Unit"_s);
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(Clipboard(), u"°C"_s);
    Key(Qt::Key_F6);
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(Clipboard(), u"Sudhaus"_s);
}

// What was not shown used to be lost on the way.
TEST_F(EditorCommandTest, CopiedTrendsArePastedWhole) {
    Open();
    ClickCell(1, u"Factor"_s);
    Type(u"0.1"_s);
    Key(Qt::Key_Return);
    ClickCell(1, u"VLineColor"_s);
    Type(u"#123456"_s);
    Key(Qt::Key_Return);
    for (const QString& field : {u"Factor"_s, u"VLineColor"_s}) {
        Column(1, field)->setProperty("Visible", false);
    }
    const QStringList fields = {u"TrendVar"_s,  u"Maximum"_s,    u"Factor"_s, u"Unit"_s,
                                u"VDrawMode"_s, u"VLineColor"_s, u"L1031"_s,  u"L1033"_s,
                                u"VUnitID"_s,   u"Comment"_s};
    const auto values = [&](int row) {
        QStringList texts;
        for (const QString& field : fields) texts += Text(row, field);
        return texts;
    };
    const QStringList original = values(1);
    const QString name = Text(1, u"Name"_s);
    EXPECT_EQ(original[2], u"0.1"_s);
    SelectRow(1);
    SelectRow(3, Qt::ShiftModifier);
    Key(Qt::Key_C, Qt::ControlModifier);
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(RowCount(1), 27);
    EXPECT_EQ(CurrentName(), u"Copy of "_s + name);
    EXPECT_EQ(values(CurrentRow()), original);
    EXPECT_EQ(SelectedRows().size(), 3);

    Click(u"ARCH4"_s);
    const int trends = RowCount(1);
    TurnTo();
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(RowCount(1), trends + 3);
    EXPECT_EQ(CurrentName(), name) << "free in the other archive";
    EXPECT_EQ(values(CurrentRow()), original);
    EXPECT_THAT(MessageTexts(), IsEmpty());
}

TEST_F(EditorCommandTest, TextFromASpreadsheetIsPastedOrRefusedAsAWhole) {
    struct Case {
        QString text;
        QStringList names;  // pasted
        QString message;    // contains
    };
    const QString longName(120, u'x');
    const Case cases[] = {
        {u"Name\tFactor\r\nA\t1,5\r\nB\t2.5\r\n"_s, {u"A"_s, u"B"_s}, {}},
        {u"\"Comment\"\tRuntime Name\n\"two\nlines\"\tC\n\t\n"_s, {u"C"_s}, {}},
        {u"Runtime Name\tOutput Type\tCurve Color\tL1033\nD\tbars\t#FF0000\tEnglish\n"_s,
         {u"D"_s},
         {}},
        {u"Name\tVDrawMode\tVLineColor\nE\t4\t255\n"_s, {u"E"_s}, {}},
        {u"Name\tFactor\nA\t\n"_s, {u"Copy of A"_s}, u"bear the name of a trend"_s},
        // Refused
        {u"Name\tFactor\nF\t1\nG\tone\n"_s, {}, u"Row 2, column 'Factor': 'one'"_s},
        {u"Name\tVDrawMode\nF\tsomehow\n"_s, {}, u"Row 1, column 'Output Type': 'somehow'"_s},
        {u"Name\tVLineWidth\nF\t70000\n"_s, {}, u"'70000'"_s},
        {u"Name\tHysteresisMode\nF\t99\n"_s, {}, u"'99'"_s},
        {u"Name\tFactor\nF\t1.000,5\n"_s, {}, u"'1.000,5'"_s},
        {u"Name\tComment\nF\tx\n"_s + longName + u"\ty\n"_s, {}, u"Row 2, column 'Runtime Name'"_s},
        {u"Name\tNonsense\nF\t1\n"_s, {}, u"'Nonsense'"_s},
        {u"Name\tArchiveID\nF\t2\n"_s, {}, u"'ArchiveID'"_s},
        {u"F\t1\nG\t2\n"_s, {}, u"2 rows of 2 columns"_s},
        {u"Name\tFactor\nF\t1\t2\n"_s, {}, u"column '3'"_s},
    };
    Open();
    yesOrNo_ = messages::MessageResult::No;  // rows of the same name are new ones too
    ASSERT_EQ(Column(1, u"Name"_s)->property("Caption").toString(), u"Runtime Name"_s);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        messages_.clear();
        const QStringList before = Names();
        SetClipboard(c.text);
        TurnTo();
        Key(Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(Names().mid(before.size()), c.names);
        EXPECT_EQ(Names().mid(0, before.size()), before);
        if (c.message.isEmpty()) {
            EXPECT_THAT(MessageTexts(), IsEmpty());
        } else {
            ASSERT_EQ(messages_.size(), 1);
            EXPECT_TRUE(messages_[0].text.contains(c.message)) << messages_[0].text.toStdString();
            EXPECT_EQ(messages_[0].title, u"Archive Editor"_s);
        }
    }
    EXPECT_EQ(Stored(u"A"_s, "Factor"), u"1.5"_s);
    EXPECT_EQ(Stored(u"B"_s, "Factor"), u"2.5"_s);
    EXPECT_EQ(Stored(u"D"_s, "VDrawMode"), u"4"_s);
    EXPECT_EQ(Stored(u"D"_s, "VLineColor"), u"255"_s);
    EXPECT_EQ(Stored(u"Copy of A"_s, "Factor"), u"1"_s) << "the default of a new trend";
}

TEST_F(EditorCommandTest, ATextIsPastedIntoTheCell) {
    struct Case {
        QString field;
        QString text;
        QString stored;
        bool refused;
    };
    const Case cases[] = {
        {u"Comment"_s, u"pasted"_s, u"pasted"_s, false},
        {u"Comment"_s, u"\"a \"\"quoted\"\" cell\"\r\n"_s, u"a \"quoted\" cell"_s, false},
        {u"Factor"_s, u" 2,5\n"_s, u"2.5"_s, false},
        {u"Factor"_s, u"much"_s, u"2.5"_s, true},
        {u"VDrawMode"_s, u"Bars"_s, u"4"_s, false},
        {u"VDrawMode"_s, u"Stripes"_s, u"4"_s, true},
        {u"VLineColor"_s, u"#00FF00"_s, u"65280"_s, false},
        {u"VLineColor"_s, u"99999999"_s, u"65280"_s, true},
        {u"Filter"_s, u"3"_s, u"3"_s, false},
        {u"Filter"_s, u"120"_s, u"3"_s, true},
        {u"VLineStyle"_s, u"1"_s, u"1"_s, false},
        {u"VLineStyle"_s, u"10"_s, u"1"_s, true},
        {u"Name"_s, u"Läuterbottich Temperatur"_s, {}, false},
    };
    Open();
    const QString name = Text(0, u"Name"_s);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.field.toStdString());
        messages_.clear();
        ClickCell(0, c.field);
        SetClipboard(c.field == u"Name"_s ? Text(1, u"Name"_s) : c.text);
        Key(Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(RowCount(1), 24);
        if (c.field == u"Name"_s) {
            EXPECT_THAT(MessageTexts(), ElementsAre(u"Name already in use"_s));
            continue;
        }
        EXPECT_EQ(Stored(name, c.field.toStdString()), c.stored);
        EXPECT_EQ(messages_.size(), c.refused ? 1 : 0);
    }
}

TEST_F(EditorCommandTest, DuplicatesStandBesideTheirOriginals) {
    Open();
    const QString name = CurrentName();
    Key(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(RowCount(1), 25);
    EXPECT_EQ(CurrentName(), u"Copy of "_s + name);
    Key(Qt::Key_F6);
    Key(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(RowCount(0), 15);
    EXPECT_EQ(CurrentName(0), u"Copy of Sudhaus"_s);
    EXPECT_EQ(RowCount(1), 25);
    EXPECT_EQ(Editor()->windowTitle(), u"Archive Editor: Copy of Sudhaus"_s);
    EXPECT_THAT(MessageTexts(), IsEmpty());
}

TEST_F(EditorCommandTest, TheNameColumnStaysInView) {
    Open();
    for (const QString& field : {u"VMax"_s, u"VMin"_s, u"Unit"_s, u"Maximum"_s, u"Minimum"_s}) {
        Column(1, field)->setProperty("Visible", true);
    }
    EXPECT_TRUE(Action(u"mnuFreeze"_s)->isChecked());
    ASSERT_EQ(ShownFields(1).first(), u"Name"_s);
    Split(1)->horizontalScrollBar()->setValue(Split(1)->horizontalScrollBar()->maximum());
    QApplication::processEvents();
    const auto views = Split(1)->findChildren<QTableView*>();
    ASSERT_EQ(views.size(), 1);
    EXPECT_TRUE(views[0]->isVisible());
    EXPECT_GE(views[0]->visualRect(views[0]->model()->index(0, ColumnNumber(1, u"Name"_s))).left(),
              0);
    Action(u"mnuFreeze"_s)->trigger();
    EXPECT_FALSE(views[0]->isVisible());
}

TEST_F(EditorCommandTest, WithoutTheReportAddInThereIsAWord) {
    for (const bool english : {true, false}) {
        Open(u"ARCH1"_s, english);
        messages_.clear();
        Action(u"mnuExtra(1)"_s)->trigger();
        EXPECT_THAT(MessageTexts(),
                    ElementsAre(english ? u"The Report functionality is not available."_s
                                        : u"Die Reportfunktion steht nicht zur Verfügung."_s));
        CloseProject();
    }
}

TEST_F(EditorCommandTest, TheReportOpensInAWindowOfItsOwn) {
    qputenv("KV_ADDINS", KV_ADDIN_FOLDER);
    Open();
    ClickCell(0, u"Comment"_s);
    Type(u"in the report"_s);
    QPointer<QWidget> report;
    for (int i = 0; i < 2; ++i) {
        Action(u"mnuExtra(1)"_s)->trigger();
        EXPECT_THAT(MessageTexts(), IsEmpty());
        int windows = 0;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (!window->windowTitle().contains(u"Brauerei.kvs"_s)) continue;
            EXPECT_TRUE(!report || window == report) << "the same window again";
            report = window;
            ++windows;
        }
        EXPECT_EQ(windows, 1);
    }
    qunsetenv("KV_ADDINS");
    EXPECT_EQ(Stored(u"Maischbottich Temperatur"_s, "Comment"), u"in the report"_s);
    ASSERT_TRUE(report);
    EXPECT_TRUE(report->isVisible());
    report->close();
}

}  // namespace
