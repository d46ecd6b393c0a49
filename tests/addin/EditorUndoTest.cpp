#include <gmock/gmock.h>

#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QStatusBar>
#include <QTableWidget>

#include "addin/EditorTest.h"
#include "projectdb/Text.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::Contains;
using testing::Not;

/// Going back and forth in the window, by keys, menu and list.
class EditorUndoTest : public EditorTest {
protected:
    [[nodiscard]] QString Hint() {
        return Editor()->findChild<QStatusBar*>(u"sb"_s)->currentMessage();
    }
    void Undo() { Key(Qt::Key_Z, Qt::ControlModifier); }
    void Redo() { Key(Qt::Key_Y, Qt::ControlModifier); }
    void TypeInto(int row, const QString& field, const QString& text) {
        ClickCell(row, field);
        Type(text);
        Key(Qt::Key_Return);
    }
};

TEST_F(EditorUndoTest, ATypedCellGoesBackAndForthAndTheCursorWithIt) {
    Open();
    const QString trend = Text(0, u"Name"_s);
    const QString unit = Text(0, u"Unit"_s);
    EXPECT_FALSE(Action(u"mnuUndo"_s)->isEnabled());
    Undo();
    EXPECT_EQ(Hint(),
              u"Nothing has been changed since the project was opened that can be undone."_s);

    TypeInto(0, u"Unit"_s, u"bar"_s);
    EXPECT_EQ(Stored(trend, "Unit"), u"bar"_s);
    EXPECT_EQ(Action(u"mnuUndo"_s)->text(),
              u"&Undo: Change of trend %1: Unit\tCtrl+Z"_s.arg(trend));
    auto* done = Editor()->findChild<QLabel*>(u"lblDone"_s);
    EXPECT_EQ(done->text(), u"Change of trend %1: Unit. Undo with Ctrl+Z"_s.arg(trend));
    ClickCell(3, u"Comment"_s);
    Undo();
    EXPECT_EQ(done->text(), QString());
    EXPECT_EQ(Stored(trend, "Unit"), unit);
    EXPECT_EQ(Text(0, u"Unit"_s), unit);
    EXPECT_EQ(CurrentName(), trend);
    EXPECT_EQ(Hint(), u"Undone: Change of trend %1: Unit"_s.arg(trend));
    EXPECT_FALSE(Action(u"mnuUndo"_s)->isEnabled());
    Key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Stored(trend, "Unit"), u"bar"_s);

    // Inside a cell that is being edited the key is the field's own.
    ClickCell(0, u"Unit"_s);
    Type(u"x"_s);
    Undo();
    EXPECT_EQ(Stored(trend, "Unit"), u"bar"_s);
    Key(Qt::Key_Escape);
    EXPECT_EQ(Stored(trend, "Unit"), u"bar"_s);
    // A name takes its text along, and back.
    TypeInto(0, u"Name"_s, u"Umbenannt"_s);
    Undo();
    EXPECT_EQ(Text(0, u"Name"_s), trend);
    TypeInto(1, u"Name"_s, u"Umbenannt"_s);
    EXPECT_EQ(Text(1, u"Name"_s), u"Umbenannt"_s) << "the name is free again";
}

TEST_F(EditorUndoTest, ADeletedArchiveComesBackIntoTreeListAndSight) {
    Open();
    const QStringList nodes = host_.ChildKeys(u"ARC0"_s).value_or(QStringList());
    const QStringList archives = Names(0);
    const QStringList trends = Names();
    EXPECT_FALSE(KeyIsLeft(u"ARCH1"_s, 46, KV4AddIn::kCtrl));
    EXPECT_THAT(Names(0), Not(Contains(archives.front())));
    TurnTo(0);
    Undo();
    EXPECT_EQ(Names(0), archives);
    EXPECT_THAT(Names(), testing::UnorderedElementsAreArray(trends));
    EXPECT_THAT(Editor()->windowTitle(),
                testing::Property(&QString::toStdString,
                                  testing::HasSubstr(archives.front().toStdString())));
    EXPECT_EQ(host_.ChildKeys(u"ARC0"_s).value_or(QStringList()).size(), nodes.size());
    Redo();
    EXPECT_EQ(MessageTexts().size(), 1)
        << MessageTexts().join(u'|').toStdString() << Hint().toStdString();
    EXPECT_THAT(Names(0), Not(Contains(archives.front())));
}

TEST_F(EditorUndoTest, SeveralStepsGoBackByTheListAndLiveThroughRefresh) {
    Open();
    const QString trend = Text(0, u"Name"_s);
    const QString unit = Text(0, u"Unit"_s);
    for (const QString& text : {u"a"_s, u"b"_s, u"c"_s}) TypeInto(0, u"Unit"_s, text);
    Action(u"mnuExtra(2)"_s)->trigger();
    QApplication::processEvents();
    TurnTo();
    auto* list = Editor()->findChild<QMenu*>(u"mnuUndoSteps"_s);
    emit list->aboutToShow();
    ASSERT_EQ(list->actions().size(), 3);
    list->actions().at(1)->trigger();
    EXPECT_EQ(Stored(trend, "Unit"), u"a"_s);
    Undo();
    EXPECT_EQ(Stored(trend, "Unit"), unit);
}

TEST_F(EditorUndoTest, AConflictIsSettledFieldByField) {
    Open();
    const QString trend = Text(0, u"Name"_s);
    const QString unit = Text(0, u"Unit"_s);
    const auto elsewhere = [&](const char16_t* text) {
        Elsewhere([&](projectdb::ProjectRows& rows) {
            rows.Trends().SetFilter("Name = '" + trend.toStdString() + "'");
            rows.Trends().Set("Unit", std::u16string(text));
            rows.Trends().Update();
        });
    };
    TypeInto(0, u"Unit"_s, u"bar"_s);
    elsewhere(u"Pa");
    const auto look = [&](QDialog& dialog) {
        auto* table = dialog.findChild<QTableWidget*>(u"tblConflicts"_s);
        ASSERT_NE(table, nullptr);
        ASSERT_EQ(table->rowCount(), 1);
        EXPECT_EQ(table->item(0, 1)->text(), u"bar"_s);
        EXPECT_EQ(table->item(0, 2)->text(), u"Pa"_s);
        EXPECT_EQ(table->item(0, 3)->text(), unit);
        EXPECT_FALSE(dialog.findChild<QPushButton*>(u"cmdOk"_s)->isEnabled());
    };
    EXPECT_EQ(DialogOf([&] { Undo(); }, look), u"FConflict"_s);
    EXPECT_EQ(Stored(trend, "Unit"), u"Pa"_s) << "given up: nothing is written";
    EXPECT_TRUE(Action(u"mnuUndo"_s)->isEnabled());
    AnswerDialog([&] { Undo(); },
                 [&](QDialog& dialog) {
                     auto* table = dialog.findChild<QTableWidget*>(u"tblConflicts"_s);
                     table->item(0, 2)->setCheckState(Qt::Checked);
                     table->item(0, 3)->setCheckState(Qt::Checked);
                     EXPECT_EQ(table->item(0, 2)->checkState(), Qt::Unchecked);
                     dialog.findChild<QPushButton*>(u"cmdOk"_s)->click();
                 });
    EXPECT_EQ(Stored(trend, "Unit"), unit);
}

}  // namespace
