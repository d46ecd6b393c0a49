// Editing in place, with keys and mouse as a user has them.

#include <QComboBox>
#include <QLineEdit>

#include "controls/GridTest.h"

namespace {

using namespace Qt::Literals::StringLiterals;

using GridEditTest = GridTest;

struct KeyPress {
    Qt::Key key = Qt::Key_unknown;
    Qt::KeyboardModifiers held = {};
    QString text = {};  // typed instead of the key
};

// Each case begins on trend 105, whose name is Trd105, variable Plant.Tank5, maximum 37.5, filter
// 2, colour red, unit bar (cannot be edited) and filter depth 5.
struct KeyCase {
    const char* what;
    int column;
    std::vector<KeyPress> keys;
    QVariant stored;  // in that cell of trend 105 afterwards
    GridRowId row;    // current cell afterwards
    int currentColumn;
    bool editing;
};

const KeyPress kF2{Qt::Key_F2};
const KeyPress kEnter{Qt::Key_Return};
const KeyPress kTab{Qt::Key_Tab};
const KeyPress kEsc{Qt::Key_Escape};
const KeyPress kDel{Qt::Key_Delete};
const KeyPress kDown{Qt::Key_Down};

KeyPress Typed(const QString& text) {
    return {Qt::Key_unknown, {}, text};
}

class GridKeyTest : public GridTest {
protected:
    void Press(const KeyPress& press) {
        if (press.text.isEmpty()) {
            Key(press.key, press.held);
        } else {
            Type(press.text);
        }
    }
};

TEST_F(GridKeyTest, KeysDoWhatTheyDoInASpreadsheet) {
    const KeyPress shiftTab{Qt::Key_Backtab, Qt::ShiftModifier};
    const KeyPress shiftEnter{Qt::Key_Return, Qt::ShiftModifier};
    const KeyPress left{Qt::Key_Left};
    const QVariant null;
    const KeyCase cases[] = {
        {"typing replaces", kName, {Typed(u"Druck"_s), kEnter}, u"Druck"_s, 106, kName, false},
        {"F2 keeps the value",
         kName,
         {kF2, {Qt::Key_End}, Typed(u"x"_s), kEnter},
         u"Trd105x"_s,
         106,
         kName,
         false},
        {"Backspace empties",
         kVar,
         {{Qt::Key_Backspace}, Typed(u"A.B"_s), kEnter},
         u"A.B"_s,
         106,
         kVar,
         false},
        {"Shift+Enter goes up", kName, {Typed(u"P"_s), shiftEnter}, u"P"_s, 104, kName, false},
        {"Enter without an edit", kName, {kEnter}, u"Trd105"_s, 106, kName, false},
        {"Tab goes on editing", kName, {Typed(u"P"_s), kTab}, u"P"_s, 105, kVar, true},
        {"Tab passes what is locked", kColour, {kF2, kTab}, 0x0000FF, 105, kDepth, true},
        {"Tab at the row's end", kDepth, {Typed(u"9"_s), kTab}, 9, 106, kName, true},
        {"Shift+Tab goes back", kVar, {kF2, shiftTab}, u"Plant.Tank5"_s, 105, kName, true},
        {"Tab without an edit", kName, {kTab}, u"Trd105"_s, 105, kVar, false},
        {"Esc gives it back", kName, {Typed(u"Druck"_s), kEsc}, u"Trd105"_s, 105, kName, false},
        {"Down leaves the cell", kName, {Typed(u"P"_s), kDown}, u"P"_s, 106, kName, false},
        {"Left leaves what was begun by typing",
         kVar,
         {Typed(u"P"_s), left},
         u"P"_s,
         105,
         kName,
         false},
        {"Left after F2 moves the caret",
         kVar,
         {kF2, {Qt::Key_End}, left, Typed(u"_"_s), kEnter},
         u"Plant.Tank_5"_s,
         106,
         kVar,
         false},
        {"Del clears", kMaximum, {kDel}, null, 105, kMaximum, false},
        {"Del in an edit", kName, {kF2, kDel, Typed(u"N"_s), kEnter}, u"N"_s, 106, kName, false},
        {"emptied and committed", kDepth, {kF2, kDel, kEnter}, null, 106, kDepth, false},
        {"a list holds its own values", kFilter, {kDel}, 2, 105, kFilter, false},
        {"a list by its first letter", kFilter, {Typed(u"n"_s), kEnter}, 0, 106, kFilter, false},
        {"a list by Up", kFilter, {kF2, {Qt::Key_Up}, kEnter}, 1, 106, kFilter, false},
        {"a list left alone", kFilter, {kF2, kTab}, 2, 105, kColour, true},
        {"what cannot be edited", kUnit, {Typed(u"x"_s), kF2, kDel}, u"bar"_s, 105, kUnit, false},
        {"decimal comma", kMaximum, {Typed(u"1,5"_s), kEnter}, 1.5, 106, kMaximum, false},
        {"decimal point", kMaximum, {Typed(u"-2.25e1"_s), kEnter}, -22.5, 106, kMaximum, false},
        {"letters are no number", kMaximum, {Typed(u"3abc"_s), kEnter}, 3.0, 106, kMaximum, false},
        {"a letter opens no number", kMaximum, {Typed(u"x"_s), kEnter}, 37.5, 106, kMaximum, false},
        {"half a number", kMaximum, {Typed(u"-"_s), kEnter}, 37.5, 105, kMaximum, true},
        {"no fraction", kDepth, {Typed(u"1.5"_s), kEnter}, 15, 106, kDepth, false},
        {"a colour", kColour, {Typed(u"#0080FF"_s), kEnter}, 0xFF8000, 106, kColour, false},
        {"half a colour", kColour, {Typed(u"#00"_s), kEnter}, 0x0000FF, 105, kColour, true},
        {"too great", kColour, {Typed(u"16777216"_s), kEnter}, 0x0000FF, 105, kColour, true},
    };
    for (const KeyCase& test : cases) {
        SCOPED_TRACE(test.what);
        trends_.Load(Trends(20), 1);
        trends_.commits.clear();
        ASSERT_TRUE(split_->SetCurrentCell(105, test.column));
        for (const KeyPress& press : test.keys) Press(press);
        EXPECT_EQ(trends_.Value(105, test.column), test.stored);
        EXPECT_EQ(split_->CurrentRow(), test.row);
        EXPECT_EQ(split_->CurrentColumn(), test.currentColumn);
        EXPECT_EQ(split_->Editing(), test.editing);
        EXPECT_EQ(trends_.rowCount(), 20) << "no key deletes a row";
        Press({Qt::Key_Escape});
        QCoreApplication::processEvents();
    }
}

TEST_F(GridKeyTest, DownOnTheLastRowDoesNothing) {
    split_->SetCurrentCell(120, kName);
    Key(Qt::Key_Down);
    EXPECT_EQ(split_->CurrentRow(), 120);
    EXPECT_EQ(split_->RowCount(), 20);
    Type(u"Last"_s);
    Key(Qt::Key_Down);
    EXPECT_TRUE(split_->Editing()) << "there is nowhere to go, so the edit stays";
    Key(Qt::Key_Escape);
    EXPECT_EQ(trends_.Value(120, kName), u"Trd120"_s);
}

TEST_F(GridKeyTest, UnchangedValuesAreNotStored) {
    split_->SetCurrentCell(105, kMaximum);
    for (int column = 0; column < split_->ColumnCount(); ++column) {
        Key(Qt::Key_F2);
        Key(Qt::Key_Tab);
    }
    EXPECT_TRUE(trends_.commits.empty());
}

TEST_F(GridEditTest, SpaceAndButtonAskForTheChooser) {
    const QSignalSpy asked(split_, &GridSplit::ButtonClick);
    split_->SetCurrentCell(105, kVar);
    Key(Qt::Key_Space);
    ASSERT_EQ(asked.size(), 1);
    EXPECT_EQ(asked[0][0].toLongLong(), 105);
    EXPECT_EQ(asked[0][1].toInt(), kVar);

    Key(Qt::Key_F2);  // the whole text is selected
    Key(Qt::Key_Space);
    EXPECT_EQ(asked.size(), 2);
    EXPECT_FALSE(split_->Editing());

    Key(Qt::Key_F2);
    Key(Qt::Key_End);
    Key(Qt::Key_Space);
    EXPECT_EQ(asked.size(), 2) << "within a text a blank is a blank";
    Key(Qt::Key_Escape);

    const QModelIndex cell = View()->model()->index(4, kColour);
    const QRect rect = View()->visualRect(cell);
    const QPoint button(rect.right() - 5, rect.center().y());
    QTest::mouseClick(View()->viewport(), Qt::LeftButton, {}, button);
    EXPECT_EQ(asked.size(), 2) << "the cell was not current: it had no button yet";
    QTest::mouseClick(View()->viewport(), Qt::LeftButton, {}, button);
    ASSERT_EQ(asked.size(), 3);
    EXPECT_EQ(asked[2][1].toInt(), kColour);
    const QSignalSpy doubled(split_, &GridSplit::DblClick);
    QTest::mouseDClick(View()->viewport(), Qt::LeftButton, {}, button);
    EXPECT_EQ(doubled.size(), 0) << "its first press was enough";
    EXPECT_FALSE(split_->Editing());
}

TEST_F(GridEditTest, ListsTakeTheirOwnValuesOnly) {
    trends_.answer = nullptr;
    split_->Column(u"Filter")->SetValueItems({{0, u"No Filter"_s}, {1, u"Average Value"_s}});
    EXPECT_EQ(split_->CellText(101, kFilter), u"Average Value"_s);
    EXPECT_EQ(split_->CellText(102, kFilter), u"2"_s) << "not listed";
    split_->SetCurrentCell(102, kFilter);
    Key(Qt::Key_F2);
    auto* list = qobject_cast<QComboBox*>(Editor());
    ASSERT_NE(list, nullptr);
    EXPECT_FALSE(list->isEditable());
    EXPECT_EQ(list->currentIndex(), -1);
    Key(Qt::Key_Return);
    EXPECT_TRUE(trends_.commits.empty()) << "nothing was chosen, what is stored stays";
    Click(102, kFilter);
    Key(Qt::Key_Down, Qt::AltModifier);
    list = qobject_cast<QComboBox*>(Editor());
    ASSERT_NE(list, nullptr);
    ASSERT_TRUE(list->view()->isVisible());
    QTest::keyClick(list->view(), Qt::Key_Down);
    QTest::keyClick(list->view(), Qt::Key_Return);
    EXPECT_FALSE(split_->Editing()) << "picking commits";
    ASSERT_EQ(trends_.commits.size(), 1U);
    EXPECT_EQ(trends_.commits[0].row, 102);
    EXPECT_TRUE(trends_.commits[0].value.toInt() == 0 || trends_.commits[0].value.toInt() == 1);
}

// What is asked for next is meant for the new row, wherever the order of the rows has put it.
TEST_F(GridEditTest, EnterDoesNotLeaveARowThatHasJustBeenMade) {
    split_->SetCurrentCell(105, kName);
    ASSERT_TRUE(split_->BeginRow());
    trends_.answer = [](const auto&) { return GridCommit::Refused(); };
    Type(u"Twice"_s);
    Key(Qt::Key_Return);
    EXPECT_TRUE(split_->Editing());
    QApplication::processEvents();
    trends_.answer = {};
    Type(u"Once"_s);
    Key(Qt::Key_Return);
    EXPECT_FALSE(split_->Editing());
    EXPECT_EQ(split_->CurrentRow(), 105);
    for (const bool givenUp : {false, true}) {
        ASSERT_TRUE(split_->BeginRow());
        if (givenUp) {
            Key(Qt::Key_Escape);
        } else {
            Key(Qt::Key_Tab);
            EXPECT_TRUE(split_->Editing());
            Key(Qt::Key_Return);
            EXPECT_EQ(split_->CurrentRow(), 105) << "in its other cells too";
        }
        // From then on it is a row as any other.
        split_->SetCurrentCell(105, kName);
        Type(u"Neu"_s);
        Key(Qt::Key_Return);
        EXPECT_EQ(split_->CurrentRow(), 106);
        split_->SetCurrentCell(105, kName);
    }
}

TEST_F(GridEditTest, LeavingTheCellCommits) {
    QLineEdit elsewhere(&grid_);
    elsewhere.show();
    struct Way {
        const char* what;
        std::function<void()> leave;
    };
    const Way ways[] = {
        {"a click on another cell", [&] { Click(110, kVar); }},
        {"another field gets the keyboard", [&] { elsewhere.setFocus(); }},
        {"F6", [&] { Key(Qt::Key_F6); }},
        {"a command", [&] { EXPECT_TRUE(grid_.CommitPendingEdit()); }},
        {"the window takes the grid elsewhere", [&] { split_->SetCurrentCell(112, kName); }},
    };
    for (const Way& way : ways) {
        SCOPED_TRACE(way.what);
        trends_.Load(Trends(20), 1);
        View()->setFocus();
        split_->SetCurrentCell(105, kName);
        Type(u"Neu"_s);
        EXPECT_TRUE(split_->DataChanged());
        way.leave();
        EXPECT_EQ(trends_.Value(105, kName), u"Neu"_s);
        EXPECT_FALSE(split_->DataChanged());
    }
}

TEST_F(GridEditTest, ARefusedTextStaysInItsCellUntilItIsGivenUp) {
    const QSignalSpy errors(split_, &GridSplit::DataError);
    struct Answer {
        GridCommit commit;
        int errors;
    };
    for (const Answer& answer :
         {Answer{GridCommit::Refused(), 0}, Answer{GridCommit::Failed(32, u"changed"_s), 1}}) {
        trends_.answer = [&](const FakeSource::Commit&) { return answer.commit; };
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Tab, Qt::Key_F6, Qt::Key_Down}) {
            const auto before = errors.size();
            split_->SetCurrentCell(105, kName);
            Type(u"Trd106"_s);
            Key(key);
            ASSERT_TRUE(split_->Editing());
            EXPECT_EQ(qobject_cast<QLineEdit*>(Editor())->text(), u"Trd106"_s);
            EXPECT_TRUE(Editor()->hasFocus());
            EXPECT_EQ(split_->CellText(105, kName), u"Trd105"_s);
            EXPECT_EQ(split_->CurrentRow(), 105);
            EXPECT_EQ(split_->CurrentColumn(), kName);
            EXPECT_EQ(errors.size() - before, answer.errors);
            QCoreApplication::processEvents();
            Key(Qt::Key_Escape);
            EXPECT_FALSE(split_->Editing());
        }
        const auto told = errors.size();
        split_->SetCurrentCell(105, kName);
        Type(u"Trd106"_s);
        Click(110, kVar);
        EXPECT_EQ(split_->CurrentRow(), 105) << "the click that left the cell moves nowhere";
        EXPECT_FALSE(grid_.CommitPendingEdit()) << "nothing that would follow may run";
        EXPECT_TRUE(split_->Editing());
        EXPECT_EQ(errors.size() - told, answer.errors) << "one refusal is told of once";
        QCoreApplication::processEvents();
        split_->SetCurrentCell(112, kName);
        EXPECT_EQ(split_->CurrentRow(), 105) << "nor does the window go elsewhere";
        QCoreApplication::processEvents();
        ClickSelector(110);
        EXPECT_EQ(split_->CurrentRow(), 105);
        QCoreApplication::processEvents();
        Key(Qt::Key_Escape);
        Click(110, kVar);
        EXPECT_EQ(split_->CurrentRow(), 110);
    }
}

TEST_F(GridEditTest, NothingElseIsStoredWhileTheUserIsToldWhy) {
    const QSignalSpy errors(split_, &GridSplit::DataError);
    trends_.answer = [&](const FakeSource::Commit&) {
        EXPECT_FALSE(grid_.CommitPendingEdit());
        Key(Qt::Key_Delete);
        return GridCommit::Failed(7, u"why"_s, u"where"_s);
    };
    split_->SetCurrentCell(105, kName);
    Type(u"New"_s);
    Key(Qt::Key_Return);
    EXPECT_EQ(trends_.commits.size(), 1U);
    ASSERT_EQ(errors.size(), 1);
    EXPECT_EQ(errors[0][2].toString(), u"where"_s);
    Key(Qt::Key_Escape);
}

TEST_F(GridEditTest, WhatIsNoNumberKeepsTheKeyboard) {
    split_->SetCurrentCell(105, kMaximum);
    Type(u"-"_s);
    Click(110, kVar);
    ASSERT_TRUE(split_->Editing());
    EXPECT_TRUE(Editor()->hasFocus());
    QCoreApplication::processEvents();
    // Another window in front, or a menu, is no leaving of the cell.
    Key(Qt::Key_5);
    for (const Qt::FocusReason reason :
         {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason, Qt::MenuBarFocusReason}) {
        QFocusEvent away(QEvent::FocusOut, reason);
        QApplication::sendEvent(Editor(), &away);
        EXPECT_TRUE(split_->Editing()) << reason;
        EXPECT_TRUE(trends_.commits.empty()) << reason;
    }
}

TEST_F(GridEditTest, AListBeginsWhereItsCellIs) {
    auto rows = Trends(20);
    rows[4].values[kFilter] = {};
    trends_.Load(rows, 1);
    for (const bool chooses : {false, true}) {
        split_->SetCurrentCell(105, kFilter);
        Key(Qt::Key_F2);
        EXPECT_EQ(qobject_cast<QComboBox*>(Editor())->currentIndex(), -1);
        if (chooses) Type(u"n"_s);
        Key(Qt::Key_Return);
        EXPECT_EQ(trends_.commits.size(), chooses ? 1U : 0U) << "the first entry is a change";
    }
    EXPECT_EQ(trends_.Value(105, kFilter), 0);
}

TEST_F(GridEditTest, SeveralCellsAreWrittenOrNone) {
    const QSignalSpy refused(split_, &GridSplit::TextRefused);
    split_->SetCurrentCell(105, kUnit);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    ASSERT_EQ(split_->SelectedCells().columns, (QList<int>{kUnit, kDepth}));
    Type(u"7"_s);
    Key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_EQ(refused.size(), 1) << "one of them is locked";
    EXPECT_EQ(refused[0][0].toInt(), kUnit);
    EXPECT_TRUE(trends_.commits.empty());
    QCoreApplication::processEvents();
    Key(Qt::Key_Escape);
    // A failure leads to the cell that it is about.
    trends_.answer = [](const auto&) { return GridCommit::Failed(32, u"changed"_s); };
    EXPECT_FALSE(split_->WriteCells({{107, kName, u"x"_s}}));
    EXPECT_EQ(split_->CurrentRow(), 107);
    EXPECT_EQ(split_->CurrentColumn(), kName);
}

// Beside a selection with holes there is nothing to fill, and a press alone fills nothing.
TEST_F(GridEditTest, TheHandleFillsWhatItIsDraggedOver) {
    split_->SetFillsByMouse(true);
    const QSignalSpy filled(split_, &GridSplit::FillWanted);
    auto* handle = View()->findChild<QWidget*>(u"fillHandle"_s);
    ASSERT_NE(handle, nullptr);
    const auto drag = [&](GridRowId to) {
        const QPoint at = handle->mapFrom(View()->viewport(), CellPoint(to, kMaximum));
        QTest::mousePress(handle, Qt::LeftButton);
        QMouseEvent move(QEvent::MouseMove, at, handle->mapToGlobal(at), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(handle, &move);
        QTest::mouseRelease(handle, Qt::LeftButton, {}, at);
    };
    Click(105, kMaximum);
    Click(106, kMaximum, Qt::ShiftModifier);
    ASSERT_TRUE(handle->isVisible());
    QTest::mouseClick(handle, Qt::LeftButton);
    drag(103);
    EXPECT_EQ(filled.size(), 0);
    EXPECT_EQ(split_->SelectedRows(), (QList<GridRowId>{105, 106}));
    drag(108);
    ASSERT_EQ(filled.size(), 1);
    EXPECT_EQ(filled[0][0].toInt(), 2) << "rows to take from";
    EXPECT_EQ(split_->SelectedRows(), (QList<GridRowId>{105, 106, 107, 108}));
    Click(105, kMaximum);
    Click(107, kMaximum, Qt::ControlModifier);
    Click(109, kMaximum, Qt::ControlModifier);
    ASSERT_EQ(split_->SelectedRows(), (QList<GridRowId>{107, 109}));
    EXPECT_FALSE(handle->isVisible());
}

TEST_F(GridEditTest, EitherListCanRefuse) {
    trends_.answer = [](const FakeSource::Commit&) { return GridCommit::Refused(); };
    archives_.Load({}, 0);
    grid_.SplitAt(0).SetSource(&trends_);
    grid_.SplitAt(1).SetSource(&archives_);
    View(0)->setFocus();
    grid_.SplitAt(0).SetCurrentCell(105, kName);
    Type(u"New"_s);
    EXPECT_FALSE(grid_.CommitPendingEdit());
    Key(Qt::Key_Escape);
}

TEST_F(GridEditTest, TheEditReachesItsRowWhateverHappensMeanwhile) {
    struct Meanwhile {
        const char* what;
        std::function<void()> happens;
    };
    const Meanwhile cases[] = {
        {"sorted", [&] { split_->Sort(u"Maximum"); }},
        {"narrowed to other rows", [&] { split_->SetFilterText(u"Tank17"_s); }},
        {"read anew", [&] { trends_.Load(Trends(20), 1); }},
        {"read anew the other way round",
         [&] {
             auto rows = trends_.Rows();
             std::reverse(rows.begin(), rows.end());
             trends_.Load(rows, 1);
         }},
        {"released and read anew",
         [&] {
             trends_.Release();
             EXPECT_EQ(split_->RowCount(), 0);
             trends_.Load(trends_.Kept(), 1);
         }},
        {"another row is gone", [&] { trends_.Remove(101); }},
        {"a row is added",
         [&] {
             trends_.Append({999, Trends(1)[0].values});
         }},
        {"its column is moved", [&] { split_->Column(u"Name")->SetOrder(4); }},
    };
    for (const Meanwhile& meanwhile : cases) {
        SCOPED_TRACE(meanwhile.what);
        split_->SetFilterText({});
        split_->ClearSort();
        trends_.Load(Trends(20), 1);
        trends_.commits.clear();
        split_->SetCurrentCell(103, kName);
        Type(u"New"_s);
        meanwhile.happens();
        ASSERT_TRUE(split_->Editing());
        QCoreApplication::processEvents();
        EXPECT_TRUE(Editor()->isVisible());
        EXPECT_EQ(QApplication::focusWidget(), Editor());
        const auto shown = split_->ShownRows();
        const QModelIndex cell =
            View()->model()->index(static_cast<int>(shown.indexOf(103)), kName);
        EXPECT_TRUE(View()->visualRect(cell).contains(Editor()->geometry().center()));
        Type(u"Name"_s);
        Key(Qt::Key_Return);
        ASSERT_EQ(trends_.commits.size(), 1U);
        EXPECT_EQ(trends_.commits[0].row, 103);
        EXPECT_EQ(trends_.Value(103, kName), u"NewName"_s);
    }
}

TEST_F(GridEditTest, AnEditWhoseRowIsGoneIsReported) {
    const QSignalSpy lost(split_, &GridSplit::EditDiscarded);
    split_->SetCurrentCell(103, kName);
    Type(u"Text"_s);
    trends_.Remove(103);
    ASSERT_EQ(lost.size(), 1);
    EXPECT_EQ(lost[0][2].toString(), u"Text"_s);
    EXPECT_FALSE(split_->Editing());
    split_->SetCurrentCell(104, kName);
    Type(u"Text"_s);
    trends_.Load(Trends(3), 1);
    EXPECT_EQ(lost.size(), 2);
    EXPECT_TRUE(trends_.commits.empty());
    split_->SetCurrentCell(102, kName);
    Key(Qt::Key_F2);
    trends_.Remove(102);
    EXPECT_EQ(lost.size(), 2) << "nothing had been typed";
    // Gone by the time the message has been read.
    trends_.answer = [&](const FakeSource::Commit&) {
        trends_.Remove(103);
        return GridCommit::Failed(32, u"changed"_s);
    };
    split_->SetCurrentCell(103, kName);
    Type(u"Late"_s);
    Key(Qt::Key_Return);
    ASSERT_EQ(lost.size(), 3);
    EXPECT_EQ(lost[2][2].toString(), u"Late"_s);
}

TEST_F(GridEditTest, DoubleClickEditsUnlessTheWindowHasAnotherUseForIt) {
    const QSignalSpy clicks(split_, &GridSplit::DblClick);
    Click(104, kName);
    QTest::mouseDClick(View()->viewport(), Qt::LeftButton, {}, CellPoint(104, kName));
    EXPECT_TRUE(split_->Editing());
    Key(Qt::Key_Escape);
    split_->SetDoubleClickEdits(false);
    QTest::mouseDClick(View()->viewport(), Qt::LeftButton, {}, CellPoint(104, kName));
    EXPECT_FALSE(split_->Editing());
    EXPECT_EQ(clicks.size(), 2);
    EXPECT_EQ(clicks[1][0].toLongLong(), 104);
}

}  // namespace
