// What a command acts on: the row that is current after a deletion, the node that the menus stand
// for, what is new, and what is said where nothing can be done.

#include <gmock/gmock.h>

#include <QLineEdit>
#include <QStatusBar>

#include "addin/EditorTest.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

class EditorSelectionTest : public EditorTest {
protected:
    [[nodiscard]] QString Said() {
        auto* bar = Editor()->findChild<QStatusBar*>(u"sb"_s);
        const QString text = bar->currentMessage();
        bar->clearMessage();
        return text;
    }
    [[nodiscard]] bool IsOn(const QString& action) { return Action(action)->isEnabled(); }
};

// The keyboard's coming back used to make the first archive current, which opened it.
TEST_F(EditorSelectionTest, AfterADeletionTheNeighbourIsOpen) {
    Open(u"ARCH4"_s);
    TurnTo(0);
    Key(Qt::Key_Delete, Qt::ControlModifier);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_EQ(messages_[0].title, u"Archive Editor: Filtration"_s);
    TurnAway();
    TurnTo(0);
    EXPECT_EQ(host_.selected, u"ARCH5"_s);
    EXPECT_EQ(CurrentName(0), u"Abfüllung"_s);
    EXPECT_EQ(Editor()->windowTitle(), u"Archive Editor: Abfüllung"_s);

    // Beside it as the list is sorted; before it where there is none behind.
    QTest::mouseClick(Split(0)->horizontalHeader()->viewport(), Qt::LeftButton, {}, {30, 8});
    ASSERT_EQ(Names(0).last(), u"Wasser"_s);
    Click(u"ARCH10"_s);
    TurnTo(0);
    Key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(CurrentName(0), u"Sudhaus"_s);

    // From the tree it is the tree's neighbour.
    TurnAway();
    EXPECT_FALSE(KeyIsLeft(u"ARCH1"_s, 46, KV4AddIn::kCtrl));
    EXPECT_EQ(host_.selected, u"ARCH2"_s);
    EXPECT_EQ(messages_.size(), 3);
}

// Two could be highlighted, one of which went.
TEST_F(EditorSelectionTest, OnlyTheArchiveThatIsDeletedIsHighlighted) {
    Open(u"ARCH4"_s);
    TurnTo(0);
    SelectRow(1, Qt::NoModifier, 0);
    SelectRow(2, Qt::ControlModifier, 0);
    ASSERT_EQ(SelectedRows(0).size(), 2) << "to be copied";
    QStringList titles;
    const messages::MessageAnswer decline([&](const messages::Message& message) {
        titles += message.title;
        return messages::MessageResult::Cancel;
    });
    Key(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(titles, QStringList{u"Archive Editor: "_s + CurrentName(0)});
    EXPECT_TRUE(SelectedRows(0).isEmpty());
}

TEST_F(EditorSelectionTest, TypingInTheListOfArchivesLooksForWhatIsTyped) {
    Open(u"ARCH4"_s);
    TurnTo(0);
    const QStringList all = Names(0);
    Type(u"was"_s);
    EXPECT_EQ(Keyboard()->objectName(), u"txtFind"_s);
    EXPECT_EQ(Names(0), all.filter(u"was"_s, Qt::CaseInsensitive));
    EXPECT_LT(Names(0).size(), all.size());
    Key(Qt::Key_Escape);
    EXPECT_EQ(Names(0), all);
}

TEST_F(EditorSelectionTest, TheKeyboardOrAClickBesideTheRowsOpensNoArchive) {
    Open(u"ARC0"_s);
    host_.container.resize(1000, 900);
    TurnTo(0);
    QTest::mouseClick(Split(0)->viewport(), Qt::LeftButton, {},
                      Split(0)->viewport()->rect().bottomLeft() + QPoint(20, -5));
    EXPECT_EQ(CurrentRow(0), -1);
    EXPECT_EQ(host_.selected, u"ARC0"_s);
    Key(Qt::Key_Down);
    EXPECT_EQ(host_.selected, u"ARCH1"_s) << "a key that moves begins at the first";
}

TEST_F(EditorSelectionTest, MenusStandForTheOpenArchiveAsSoonAsTheWindowHasTheKeyboard) {
    Open(u"ARCH3"_s);
    TurnAway();
    host_.selected = u"VARS"_s;
    addIn_->CKV4Extensibility_NodeMouseUp({{}, u"VARS"_s, {}}, KV4AddIn::kRightButton, 0, 1, 1);
    EXPECT_FALSE(IsOn(u"mnuTrend(0)"_s)) << "they stand for the node";
    TurnTo();
    EXPECT_TRUE(IsOn(u"mnuTrend(0)"_s));
    EXPECT_TRUE(IsOn(u"mnuArchiv(1)"_s));
    EXPECT_FALSE(IsOn(u"mnuArchiv(0)"_s));
    TurnTo(0);
    EXPECT_TRUE(IsOn(u"mnuArchiv(0)"_s)) << "the list is a place for new archives";
}

TEST_F(EditorSelectionTest, TheFirstClickOnAForeignNodeLeavesTheSelectionThere) {
    Initialize(Brewery());
    host_.calls.clear();
    Click(u"VARS"_s);
    EXPECT_EQ(host_.ChildTexts(u"ARC0"_s).size(), 14);
    EXPECT_EQ(host_.selected, u"VARS"_s);
    EXPECT_FALSE(host_.calls.contains(u"select ARC0"_s));
}

TEST_F(EditorSelectionTest, WhatIsNewIsInSightAndHasTheKeyboard) {
    host_.container.resize(1000, 300);
    Open(u"ARCH1"_s);
    TurnTo(0);
    Action(u"mnuTrend(0)"_s)->trigger();
    QApplication::processEvents();
    EXPECT_EQ(CurrentRow(), 24);
    EXPECT_TRUE(Split(1)->viewport()->rect().contains(
        Split(1)->visualRect(Split(1)->model()->index(24, ColumnNumber(1, u"TrendVar"_s)))));
    EXPECT_THAT(SelectedRows(), ElementsAre(24));
    // Its name is being edited.
    auto* name = qobject_cast<QLineEdit*>(CellEditor());
    ASSERT_NE(name, nullptr);
    EXPECT_TRUE(name->text().startsWith(u"Trd"_s));
    EXPECT_EQ(name->selectedText(), name->text());
    Type(u"Neu"_s);
    EXPECT_EQ(DialogOf([&] { Key(Qt::Key_F9); }), u"FTrend"_s) << "the trend, not the archive";
    EXPECT_EQ(CurrentName(), u"Neu"_s);

    // In the middle of the rows when they are sorted: the next key is meant for it all the same.
    ClickCell(0, u"Name"_s);
    Key(Qt::Key_O, Qt::ControlModifier);
    Key(Qt::Key_F8);
    EXPECT_GT(CurrentRow(), 0);
    Type(u"Abc"_s);
    Key(Qt::Key_Return);
    EXPECT_EQ(CurrentName(), u"Abc"_s);
    EXPECT_EQ(DialogOf([&] { Key(Qt::Key_F9); },
                       [](QDialog& dialog) {
                           EXPECT_EQ(dialog.findChild<QLineEdit*>(u"txtName"_s)->text(), u"Abc"_s);
                       }),
              u"FTrend"_s);

    // From the tree, too; and again with the same key.
    TurnAway();
    EXPECT_FALSE(KeyIsLeft(u"ARC0"_s, 119, 0));
    QApplication::setActiveWindow(&host_.container);
    QApplication::processEvents();
    EXPECT_EQ(CurrentName(0), u"New Archive"_s);
    EXPECT_EQ(Editor()->windowTitle(), u"Archive Editor: New Archive"_s);
    EXPECT_EQ(Keyboard(), Split(0));
    EXPECT_TRUE(Split(0)->viewport()->rect().contains(
        Split(0)->visualRect(Split(0)->currentIndex()).center()));
    Key(Qt::Key_F8);
    EXPECT_EQ(CurrentName(0), u"New Archive(1)"_s);
    EXPECT_EQ(RowCount(0), 16);
    EXPECT_EQ(DialogOf([&] { Key(Qt::Key_F9); }), u"FArchiv"_s);
    EXPECT_THAT(MessageTexts(), IsEmpty());
}

TEST_F(EditorSelectionTest, ACommandThatCannotRunSaysWhy) {
    struct Case {
        const char* what;
        QString node;
        int split;
        Qt::Key key;
        Qt::KeyboardModifiers held;
        QString says;  // contains
    };
    const Case cases[] = {
        {"no row selected", u"ARCH1"_s, 1, Qt::Key_Delete, Qt::ControlModifier, u"Shift+Space"_s},
        {"no archive: new trend", u"ARC0"_s, 1, Qt::Key_F8, {}, u"No archive is open"_s},
        {"no archive: insert", u"ARC0"_s, 1, Qt::Key_Insert, {}, u"No archive is open"_s},
        {"no archive: edit", u"ARC0"_s, 0, Qt::Key_F9, {}, u"No archive is open"_s},
        {"no archive: delete", u"ARC0"_s, 0, Qt::Key_Delete, Qt::ControlModifier,
         u"No archive is open"_s},
        {"no archive: copy", u"ARC0"_s, 1, Qt::Key_C, Qt::ControlModifier, u"nothing to copy"_s},
        {"no archive: paste", u"ARC0"_s, 1, Qt::Key_V, Qt::ControlModifier,
         u"No archive is open"_s},
        {"paste into the archives", u"ARCH1"_s, 0, Qt::Key_V, Qt::ControlModifier,
         u"table of trends"_s},
        {"before the first", u"ARCH1"_s, 0, Qt::Key_PageUp, Qt::ControlModifier,
         u"no further archive"_s},
    };
    Open();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Click(c.node);
        TurnTo(c.split);
        EXPECT_EQ(Said(), QString());
        Key(c.key, c.held);
        EXPECT_TRUE(Said().contains(c.says)) << Said().toStdString();
    }
    EXPECT_EQ(RowCount(0), 14);
    // In the tree the key stays whoever else's it may be.
    Click(u"ARCH1"_s);
    TurnAway();
    EXPECT_TRUE(KeyIsLeft(u"ARCH1"_s, 119, 0));
    EXPECT_TRUE(Said().contains(u"\"Archives\""_s));
    EXPECT_THAT(MessageTexts(), IsEmpty());
}

}  // namespace
