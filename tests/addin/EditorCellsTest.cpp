#include <gmock/gmock.h>

#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QStatusBar>

#include "addin/EditorTest.h"
#include "projectdb/Text.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::ElementsAreArray;

/// Several cells written as one.
class EditorCellsTest : public EditorTest {
protected:
    /// What the grid shows in the first rows of a column, and the file holds.
    [[nodiscard]] QStringList Shown(const QString& field, int rows) {
        QStringList texts;
        for (int row = 0; row < rows; ++row) texts += Text(row, field);
        return texts;
    }
    [[nodiscard]] QStringList StoredIn(const std::string& field, int rows) {
        QStringList texts;
        for (const QString& name : Shown(u"Name"_s, rows)) texts += Stored(name, field);
        return texts;
    }
    /// Cells from a row and a column on, by keys.
    void Select(int row, const QString& field, int rows, int columns = 1) {
        ClickCell(row, field);
        for (int i = 1; i < rows; ++i) Key(Qt::Key_Down, Qt::ShiftModifier);
        for (int i = 1; i < columns; ++i) Key(Qt::Key_Right, Qt::ShiftModifier);
    }
    void PasteText(const QString& text) {
        QApplication::clipboard()->setText(text);
        Key(Qt::Key_V, Qt::ControlModifier);
    }
    void Undo() { Key(Qt::Key_Z, Qt::ControlModifier); }
    [[nodiscard]] QString Hint() {
        return Editor()->findChild<QStatusBar*>(u"sb"_s)->currentMessage();
    }
    [[nodiscard]] QString Cells() {
        const auto* cells = Editor()->findChild<QLabel*>(u"lblCells"_s);
        return cells->isHidden() ? QString() : cells->text();
    }
};

TEST_F(EditorCellsTest, OneValueGoesIntoAllOfThemAndBackInOneStep) {
    Open();
    const QStringList units = Shown(u"Unit"_s, 5);
    const QStringList factors = Shown(u"Factor"_s, 5);
    // Typed, into the rows that are selected by Shift and arrows.
    Select(0, u"Unit"_s, 3);
    EXPECT_EQ(Cells(), u"3 cells"_s);
    Type(u"mbar"_s);
    Key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_THAT(Shown(u"Unit"_s, 4), ElementsAre(u"mbar"_s, u"mbar"_s, u"mbar"_s, units[3]));
    EXPECT_EQ(StoredIn("Unit", 3), QStringList({u"mbar"_s, u"mbar"_s, u"mbar"_s}));
    EXPECT_EQ(SelectedRows(), QList<int>({0, 1, 2})) << "they stay selected";
    Undo();
    EXPECT_EQ(Shown(u"Unit"_s, 5), units);

    // Pasted, into rows that are selected as such; sideways they stay so.
    ClickCell(1, u"Factor"_s);
    Key(Qt::Key_Left);
    SelectRow(1);
    SelectRow(3, Qt::ShiftModifier);
    Key(Qt::Key_Right);
    ASSERT_EQ(SelectedRows(), QList<int>({1, 2, 3}));
    ASSERT_EQ(Split(1)->currentIndex().column(), ColumnNumber(1, u"Factor"_s));
    PasteText(u"2.5"_s);
    EXPECT_THAT(Shown(u"Factor"_s, 5),
                ElementsAre(factors[0], u"2.5"_s, u"2.5"_s, u"2.5"_s, factors[4]));
    EXPECT_EQ(Cells(), u"3 cells, smallest 2.5, largest 2.5, sum 7.5"_s);
    // Cleared.
    Key(Qt::Key_Delete);
    EXPECT_EQ(StoredIn("Factor", 4).mid(1), QStringList({u"(Null)"_s, u"(Null)"_s, u"(Null)"_s}));
    Undo();
    Undo();
    EXPECT_EQ(Shown(u"Factor"_s, 5), factors);
    EXPECT_FALSE(Action(u"mnuUndo"_s)->isEnabled());
    // Chosen, by the variable browser.
    Select(0, u"TrendVar"_s, 2);
    host_.variable = u"Neu.Variable"_s;
    Key(Qt::Key_Space);
    EXPECT_EQ(StoredIn("TrendVar", 2), QStringList({u"Neu.Variable"_s, u"Neu.Variable"_s}));
}

TEST_F(EditorCellsTest, AllOrNothing) {
    Open();
    const QStringList names = Names();
    const QStringList styles = Shown(u"VLineStyle"_s, 3);
    // A name is one trend's.
    Select(0, u"Name"_s, 2);
    Type(u"Same"_s);
    Key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(messages_.size(), 1);
    EXPECT_EQ(TypedText(), u"Same"_s) << "what was typed stays";
    Key(Qt::Key_Escape);
    EXPECT_EQ(Names(), names);
    // Two may swap theirs, and each takes its text along.
    ClickCell(0, u"Name"_s);
    PasteText(names[1] + u'\n' + names[0] + u'\n');
    EXPECT_THAT(Names().mid(0, 2), ElementsAre(names[1], names[0]));
    Undo();
    EXPECT_EQ(Names(), names);
    // The second row has no such style, so the first keeps its own.
    ClickCell(0, u"VLineStyle"_s);
    messages_.clear();
    PasteText(u"1\n77\n"_s);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_THAT(messages_[0].text.toStdString(), testing::HasSubstr("Row 2"));
    EXPECT_EQ(Shown(u"VLineStyle"_s, 3), styles);
    // A block that has no room.
    ClickCell(static_cast<int>(names.size()) - 1, u"Unit"_s);
    messages_.clear();
    PasteText(u"a\nb\n"_s);
    EXPECT_EQ(messages_.size(), 1);
    EXPECT_FALSE(Action(u"mnuUndo"_s)->isEnabled());
}

TEST_F(EditorCellsTest, WhatIsNarrowedAwayIsNotWritten) {
    Open();
    const QStringList names = Names();
    auto* find = Editor()->findChild<QLineEdit*>(u"txtFind"_s);
    find->setText(u"Temperatur"_s);
    const QStringList shown = Names();
    ASSERT_LT(shown.size(), names.size());
    ASSERT_GT(shown.size(), 1);
    TurnTo();
    ClickCell(0, u"Comment"_s);
    Key(Qt::Key_A, Qt::ControlModifier);
    PasteText(u"alle"_s);
    find->clear();
    for (const QString& name : names) {
        EXPECT_EQ(Stored(name, "Comment") == u"alle"_s, shown.contains(name)) << name.toStdString();
    }
}

TEST_F(EditorCellsTest, FilledDownAndCountedOn) {
    Open();
    Select(0, u"Unit"_s, 1);
    PasteText(u"bar"_s);
    Select(0, u"Unit"_s, 3);
    Key(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(StoredIn("Unit", 3), QStringList({u"bar"_s, u"bar"_s, u"bar"_s}));
    ClickCell(0, u"Name"_s);
    PasteText(u"SS0009"_s);
    Select(0, u"Name"_s, 3);
    Key(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_THAT(Names().mid(0, 3), ElementsAre(u"SS0009"_s, u"SS0010"_s, u"SS0011"_s));
    // The step is that of the first two.
    ClickCell(0, u"VMax"_s);
    PasteText(u"10\n25\n"_s);
    Select(0, u"VMax"_s, 4);
    Key(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(StoredIn("VMax", 4), QStringList({u"10"_s, u"25"_s, u"40"_s, u"55"_s}));
    EXPECT_EQ(Cells(), u"4 cells, smallest 10, largest 55, sum 130"_s);
    // With places.
    ClickCell(0, u"Factor"_s);
    PasteText(u"0.5\n0.75\n"_s);
    Select(0, u"Factor"_s, 3);
    Key(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(StoredIn("Factor", 3), QStringList({u"0.5"_s, u"0.75"_s, u"1"_s}));
    // What has no number cannot be counted on.
    Select(0, u"Unit"_s, 2);
    Key(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Hint(), u"'Unit' cannot be counted on from 'bar'. Nothing was changed."_s);
    // Rows that are selected as such are duplicated by the same key.
    const qsizetype before = Names().size();
    SelectRow(0);
    Key(Qt::Key_D, Qt::ControlModifier);
    EXPECT_EQ(Names().size(), before + 1);
}

TEST_F(EditorCellsTest, RowsOfAKnownNameChangeItsTrendAfterAPreview) {
    Open();
    const QStringList names = Names();
    const QStringList units = StoredIn("Unit", 2);
    const QString text =
        u"Runtime Name\tUnit\tFilter\n%1\tmbar\t2\nNeu 1\tbar\t1\n"_s.arg(names[1]);
    yesOrNo_ = messages::MessageResult::Cancel;
    PasteText(text);
    EXPECT_EQ(Names(), names);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_THAT(
        messages_[0].text.toStdString(),
        testing::AllOf(testing::HasSubstr(
                           u"%1: Unit: '%2' \u2192 'mbar'"_s.arg(names[1], units[1]).toStdString()),
                       testing::HasSubstr("1 of the rows")));
    yesOrNo_ = messages::MessageResult::Yes;
    PasteText(text);
    EXPECT_EQ(Names(), names + QStringList{u"Neu 1"_s});
    EXPECT_EQ(StoredIn("Unit", 2), QStringList({units[0], u"mbar"_s}));
    EXPECT_EQ(Stored(names[1], "Filter"), u"2"_s);
    Undo();
    EXPECT_EQ(Names(), names);
    EXPECT_EQ(StoredIn("Unit", 2), units);
    EXPECT_FALSE(Action(u"mnuUndo"_s)->isEnabled()) << "one step";
    // All or none: the new one does not fit.
    messages_.clear();
    PasteText(u"Runtime Name\tUnit\n%1\tmbar\nNeu 2\t%2\n"_s.arg(names[1], QString(300, u'x')));
    EXPECT_EQ(Names(), names);
    EXPECT_EQ(StoredIn("Unit", 2), units);
    EXPECT_EQ(Text(1, u"Unit"_s), units[1]);
    // Without an update all of them are new, and of two of one name only one is meant.
    const qsizetype before = names.size();
    yesOrNo_ = messages::MessageResult::No;
    PasteText(text);
    EXPECT_EQ(Names().size(), before + 2);
    EXPECT_EQ(StoredIn("Unit", 2), units);
    yesOrNo_ = messages::MessageResult::Yes;
    PasteText(u"Runtime Name\tUnit\n%1\tmbar\n%1\tbar\n"_s.arg(names[1]));
    EXPECT_EQ(Names().size(), before + 3);
    EXPECT_EQ(StoredIn("Unit", 2), QStringList({units[0], u"mbar"_s}));
}

TEST_F(EditorCellsTest, DraggedOverAndChangedElsewhere) {
    Open();
    const QStringList names = Names();
    ClickCell(4, u"Comment"_s);  // elsewhere: two presses on one cell are a double click
    QTableView* view = Split(1);
    const auto at = [&](int row) {
        return view->visualRect(view->model()->index(row, ColumnNumber(1, u"Comment"_s))).center();
    };
    QTest::mousePress(view->viewport(), Qt::LeftButton, {}, at(0));
    QTest::mouseMove(view->viewport(), at(2));
    QMouseEvent drag(QEvent::MouseMove, at(2), view->viewport()->mapToGlobal(at(2)), Qt::NoButton,
                     Qt::LeftButton, {});
    QApplication::sendEvent(view->viewport(), &drag);
    QTest::mouseRelease(view->viewport(), Qt::LeftButton, {}, at(2));
    EXPECT_EQ(SelectedRows(), QList<int>({0, 1, 2}));
    // Another program has changed another field of one row, and the same of none.
    Elsewhere([&](projectdb::ProjectRows& rows) {
        rows.Trends().SetFilter("Name = '" + names[1].toStdString() + "'");
        rows.Trends().Set("Unit", std::u16string(u"theirs"));
        rows.Trends().Update();
    });
    Type(u"mine"_s);
    Key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(StoredIn("Comment", 3), QStringList({u"mine"_s, u"mine"_s, u"mine"_s}));
    EXPECT_EQ(Stored(names[1], "Unit"), u"theirs"_s);
    // The same field: nothing is written before it is settled.
    Elsewhere([&](projectdb::ProjectRows& rows) {
        rows.Trends().SetFilter("Name = '" + names[2].toStdString() + "'");
        rows.Trends().Set("Comment", std::u16string(u"theirs"));
        rows.Trends().Update();
    });
    Type(u"again"_s);
    EXPECT_EQ(DialogOf([&] { Key(Qt::Key_Return, Qt::ControlModifier); }), u"FConflict"_s);
    EXPECT_EQ(StoredIn("Comment", 3), QStringList({u"mine"_s, u"mine"_s, u"theirs"_s}));
}

/// The corner of the selected cells is dragged over the rows below.
TEST_F(EditorCellsTest, TheCornerFillsByMouse) {
    Open();
    Column(1, u"Comment"_s)->setProperty("Visible", true);
    const auto drag = [&](int fromRow, int rows, int toRow, Qt::KeyboardModifiers held) {
        ClickCell(fromRow, u"Comment"_s);
        for (int i = 1; i < rows; ++i) Key(Qt::Key_Down, Qt::ShiftModifier);
        auto* handle = Split(1)->findChild<QWidget*>(u"fillHandle"_s);
        ASSERT_TRUE(handle->isVisible());
        const QRect target =
            Split(1)->visualRect(Split(1)->model()->index(toRow, ColumnNumber(1, u"Comment"_s)));
        const QPoint to = handle->mapFromGlobal(Split(1)->viewport()->mapToGlobal(target.center()));
        QTest::mousePress(handle, Qt::LeftButton, held);
        QTest::mouseMove(handle, to);
        QMouseEvent move(QEvent::MouseMove, to, handle->mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, held);
        QApplication::sendEvent(handle, &move);
        QTest::mouseRelease(handle, Qt::LeftButton, held, to);
    };
    const auto comment = [&](int row) { return Text(row, u"Comment"_s); };
    ClickCell(0, u"Comment"_s);
    Type(u"No 8"_s);
    Key(Qt::Key_Return);
    drag(0, 1, 3, Qt::ControlModifier);
    EXPECT_EQ((QStringList{comment(0), comment(1), comment(2), comment(3)}),
              (QStringList{u"No 8"_s, u"No 9"_s, u"No 10"_s, u"No 11"_s}));
    drag(0, 2, 4, {});
    EXPECT_EQ((QStringList{comment(0), comment(1), comment(2), comment(3), comment(4)}),
              (QStringList{u"No 8"_s, u"No 9"_s, u"No 8"_s, u"No 9"_s, u"No 8"_s}));
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(comment(3), u"No 11"_s) << "one step";
}

}  // namespace
