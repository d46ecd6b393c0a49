#include <gmock/gmock.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTableWidget>

#include "addin/EditorTest.h"
#include "projectdb/Text.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

const QString kFirst = u"Maischbottich Temperatur"_s;

class EditorEditTest : public EditorTest {
protected:
    /// Gives a trend's field another value in another program, while this one has it shown.
    void ChangeElsewhere(const QString& trend, const std::string& field, const ado::Value& value) {
        Elsewhere([&](projectdb::ProjectRows& rows) {
            ASSERT_TRUE(Seek(rows, trend));
            rows.Trends().Set(field, value);
            rows.Trends().Update();
        });
    }
    void DeleteElsewhere(const QString& trend) {
        Elsewhere([&](projectdb::ProjectRows& rows) {
            ASSERT_TRUE(Seek(rows, trend));
            rows.Trends().Delete();
        });
    }

private:
    static bool Seek(projectdb::ProjectRows& rows, const QString& trend) {
        std::ignore = rows.SeekTrendsOf(1);
        while (!rows.Trends().IsEOF() && projectdb::NameOf(rows.Trends()) != trend) {
            rows.Trends().MoveNext();
        }
        return !rows.Trends().IsEOF();
    }
};

TEST_F(EditorEditTest, EveryKindOfCellTakesWhatItsColumnHolds) {
    struct Case {
        QString field;
        QString typed;
        QString stored;
        QString shownEnglish;
        QString shownGerman;
    };
    const Case cases[] = {
        {u"Unit"_s, u"mbar"_s, u"mbar"_s, u"mbar"_s, u"mbar"_s},
        {u"Comment"_s, u"Überlauf 2"_s, u"Überlauf 2"_s, u"Überlauf 2"_s, u"Überlauf 2"_s},
        {u"FilterDepth"_s, u"12"_s, u"12"_s, u"12"_s, u"12"_s},
        {u"VMaxSamples"_s, u"-5"_s, u"-5"_s, u"-5"_s, u"-5"_s},
        {u"Factor"_s, u"8.25"_s, u"8.25"_s, u"8.25"_s, u"8,25"_s},
        {u"Offset"_s, u"-0,5"_s, u"-0.5"_s, u"-0.5"_s, u"-0,5"_s},
        {u"VMax"_s, u"1e3"_s, u"1000"_s, u"1000"_s, u"1000"_s},
        {u"VDrawMode"_s, u"B"_s, u"4"_s, u"Bars"_s, u"Balken"_s},
        {u"HysteresisMode"_s, u"a"_s, u"0"_s, u"absolute"_s, u"Absolut"_s},
        {u"VLineColor"_s, u"#0000FF"_s, u"16711680"_s, u"#0000FF"_s, u"#0000FF"_s},
    };
    for (const bool english : {true, false}) {
        Open(u"ARCH1"_s, english);
        for (const Case& c : cases) {
            SCOPED_TRACE(c.field.toStdString() + (english ? " English" : " German"));
            ClickCell(1, c.field);
            Type(c.typed);
            ASSERT_NE(CellEditor(), nullptr);
            Key(Qt::Key_Return);
            EXPECT_EQ(CellEditor(), nullptr);
            EXPECT_EQ(Text(1, c.field), english ? c.shownEnglish : c.shownGerman);
            EXPECT_EQ(Stored(Text(1, u"Name"_s), c.field.toStdString()), c.stored);
            EXPECT_EQ(CurrentRow(), 2) << "Enter goes down";
            // Back to nothing, for the other language; a list has no such entry.
            ClickCell(1, c.field);
            Key(Qt::Key_Delete);
            const bool list = c.field == u"VDrawMode"_s || c.field == u"HysteresisMode"_s;
            EXPECT_EQ(Stored(Text(1, u"Name"_s), c.field.toStdString()),
                      list ? c.stored : u"(Null)"_s);
            if (list) {
                Type(english ? u"N"_s : u"K"_s);
                Key(Qt::Key_Home);
                Key(Qt::Key_Return);
            }
        }
        EXPECT_THAT(MessageTexts(), IsEmpty());
        CloseProject();
    }
}

TEST_F(EditorEditTest, ATextThatStandsForAnEmptyOneShowsAsEmpty) {
    project_ = Brewery();
    ChangeElsewhere(kFirst, "Unit", std::u16string(1, u'\0'));
    Open();
    EXPECT_EQ(Text(0, u"Unit"_s), QString());
    ClickCell(0, u"Unit"_s);
    Key(Qt::Key_F2);
    EXPECT_EQ(qobject_cast<QLineEdit*>(CellEditor())->text(), QString());
    Key(Qt::Key_Escape);
    EXPECT_EQ(Stored(kFirst, "Unit"), QString(QChar()));
}

TEST_F(EditorEditTest, NamesAreUniqueAndNotEmpty) {
    struct Case {
        QString typed;
        QString message;  // English
    };
    const Case cases[] = {
        {u" "_s, u"Name field must have a unique identifier (name)"_s},
        {u"Läutergrant Füllstand"_s, u"Name already in use"_s},
        {u"LÄUTERGRANT FÜLLSTAND"_s, u"Name already in use"_s},
        {u"MAISCHBOTTICH Temperatur"_s, {}},
        {u"Neu"_s, {}},
        {u"Maischbottich Temperatur"_s, {}},
    };
    Open();
    // A name that is in use in the archive, whatever it holds.
    const QString other = Text(1, u"Name"_s);
    for (Case c : cases) {
        SCOPED_TRACE(c.typed.toStdString());
        messages_.clear();
        if (c.typed == u"Läutergrant Füllstand"_s) c.typed = other;
        if (c.typed == u"LÄUTERGRANT FÜLLSTAND"_s) c.typed = other.toUpper();
        const QString before = Text(0, u"Name"_s);
        ClickCell(0, u"Name"_s);
        Key(Qt::Key_F2);
        auto* editor = qobject_cast<QLineEdit*>(CellEditor());
        ASSERT_NE(editor, nullptr);
        editor->clear();
        Type(c.typed);
        Key(Qt::Key_Return);
        if (c.message.isEmpty()) {
            EXPECT_THAT(messages_, IsEmpty());
            EXPECT_EQ(Text(0, u"Name"_s), c.typed);
            EXPECT_NE(Stored(c.typed, "ID"), u"(no row)"_s);
            continue;
        }
        EXPECT_THAT(MessageTexts(), ElementsAre(c.message));
        EXPECT_EQ(Text(0, u"Name"_s), before);
        EXPECT_NE(Stored(before, "ID"), u"(no row)"_s);
        EXPECT_EQ(CurrentRow(), 0) << "stays with the cell";
        EXPECT_EQ(TypedText(), c.typed) << "until the user gives it up";
        Key(Qt::Key_Escape);
        EXPECT_EQ(Text(0, u"Name"_s), before);
    }
    // The emptied name itself.
    messages_.clear();
    ClickCell(0, u"Name"_s);
    Key(Qt::Key_Delete);
    EXPECT_EQ(messages_.size(), 1);
    EXPECT_EQ(Text(0, u"Name"_s), kFirst);
    // A name that has been refused takes nothing from the one that stays.
    QApplication::processEvents();
    messages_.clear();
    ClickCell(1, u"Name"_s);
    Type(kFirst);
    Key(Qt::Key_Return);
    EXPECT_THAT(MessageTexts(), ElementsAre(u"Name already in use"_s));
    Key(Qt::Key_Escape);
    EXPECT_EQ(Text(1, u"Name"_s), other);
}

// The list of archives marks the one whose trends are shown, whatever has been clicked.
TEST_F(EditorEditTest, ARefusedTextKeepsItsArchive) {
    Open();
    const QString open = CurrentName(0);
    ClickCell(0, u"Name"_s);
    Type(Text(1, u"Name"_s));
    ClickCell(3, u"Name"_s, 0);
    QApplication::processEvents();
    EXPECT_EQ(host_.selected, u"ARCH1"_s);
    EXPECT_EQ(CurrentName(0), open);
    EXPECT_EQ(Text(0, u"Name"_s), kFirst);
}

TEST_F(EditorEditTest, WhereAnotherHasWrittenTheSameCellTheUserSettlesIt) {
    Open();
    const QString third = Text(2, u"Name"_s);
    ClickCell(2, u"Unit"_s);
    Type(u"mine"_s);
    // What it has changed beside the cell joins without a question.
    ChangeElsewhere(third, "Comment", std::u16string(u"also theirs"));
    ChangeElsewhere(third, "Unit", std::u16string(u"theirs"));
    EXPECT_EQ(DialogOf([&] { Key(Qt::Key_Return); }), u"FConflict"_s);
    EXPECT_EQ(Stored(third, "Unit"), u"theirs"_s);
    EXPECT_EQ(TypedText(), u"mine"_s) << "until the user gives it up";
    EXPECT_EQ(Text(2, u"Comment"_s), u"also theirs"_s);
    EXPECT_EQ(CurrentRow(), 2);
    Key(Qt::Key_Return);
    EXPECT_EQ(Stored(third, "Unit"), u"mine"_s) << "who knows what the other has written";

    const auto settle = [&](const QString& button) {
        ClickCell(2, u"Unit"_s);
        Type(u"own"_s);
        ChangeElsewhere(third, "Unit", std::u16string(u"another"));
        AnswerDialog([&] { Key(Qt::Key_Return); },
                     [&](QDialog& dialog) {
                         dialog.findChild<QPushButton*>(button)->click();
                         dialog.findChild<QPushButton*>(u"cmdOk"_s)->click();
                     });
        return Stored(third, "Unit");
    };
    EXPECT_EQ(settle(u"cmdAllTheirs"_s), u"another"_s);
    EXPECT_EQ(Text(2, u"Unit"_s), u"another"_s);
    ChangeElsewhere(third, "Unit", std::u16string(u"before"));
    TurnAway();
    TurnTo();
    EXPECT_EQ(settle(u"cmdAllMine"_s), u"own"_s);
    EXPECT_EQ(Stored(third, "Comment"), u"also theirs"_s);
    // Where both say the same there is nothing to ask.
    ClickCell(2, u"Unit"_s);
    Type(u"same"_s);
    ChangeElsewhere(third, "Unit", std::u16string(u"same"));
    EXPECT_EQ(DialogOf([&] { Key(Qt::Key_Return); }), QString());
    EXPECT_EQ(Stored(third, "Unit"), u"same"_s);
    // And where it is written once more while the user is asked, he is asked for that too.
    ClickCell(2, u"Unit"_s);
    Type(u"own"_s);
    ChangeElsewhere(third, "Unit", std::u16string(u"another"));
    const auto ok = [](QDialog& dialog) {
        dialog.findChild<QPushButton*>(u"cmdAllMine"_s)->click();
        dialog.findChild<QPushButton*>(u"cmdOk"_s)->click();
    };
    const auto commit = [] { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return); };
    int asked = 0;
    AnswerDialog(
        [&] {
            AnswerDialog(commit, [&](QDialog& dialog) {
                ++asked;
                ok(dialog);
            });
        },
        [&](QDialog& dialog) {
            ++asked;
            ChangeElsewhere(third, "Unit", std::u16string(u"once more"));
            ok(dialog);
        });
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(Stored(third, "Unit"), u"own"_s);
    EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(EditorEditTest, ADialogAsksForTheFieldsThatBothHaveChanged) {
    Open();
    const QString third = Text(2, u"Name"_s);
    const auto edit = [&](const QString& button) {
        ClickCell(2, u"Name"_s);
        AnswerDialog([&] { Key(Qt::Key_F9); },
                     [&](QDialog& dialog) {
                         dialog.findChild<QLineEdit*>(u"txtUnit"_s)->setText(u"mine"_s);
                         dialog.findChild<QLineEdit*>(u"txtComment"_s)->setText(u"typed"_s);
                         ChangeElsewhere(third, "Unit", std::u16string(u"theirs"));
                         ChangeElsewhere(third, "Factor", 7.0);
                         const auto ok = [&] {
                             dialog.findChild<QPushButton*>(u"cmdOk"_s)->click();
                         };
                         EXPECT_EQ(DialogOf(ok), u"FConflict"_s);
                         EXPECT_TRUE(dialog.isVisible()) << "what was typed stays";
                         EXPECT_EQ(Stored(third, "Comment"), u"(Null)"_s);
                         AnswerDialog(ok, [&](QDialog& conflict) {
                             EXPECT_EQ(conflict.findChild<QTableWidget*>()->rowCount(), 1);
                             conflict.findChild<QPushButton*>(button)->click();
                             conflict.findChild<QPushButton*>(u"cmdOk"_s)->click();
                         });
                     });
        return Stored(third, "Unit");
    };
    EXPECT_EQ(edit(u"cmdAllTheirs"_s), u"theirs"_s);
    EXPECT_EQ(Stored(third, "Comment"), u"typed"_s);
    EXPECT_EQ(Stored(third, "Factor"), u"7"_s) << "changed by the other alone";
}

TEST_F(EditorEditTest, ARowDeletedElsewhereTakesItsEditAlong) {
    Open();
    const int rows = RowCount(1);
    ClickCell(2, u"Unit"_s);
    Type(u"mine"_s);
    DeleteElsewhere(Text(2, u"Name"_s));
    Key(Qt::Key_Return);
    ASSERT_EQ(messages_.size(), 3);
    EXPECT_TRUE(messages_[0].text.startsWith(u"TDB-Error: 32"_s));
    EXPECT_EQ(messages_[1].title, u"No way out"_s);
    EXPECT_TRUE(messages_[2].text.contains(u"'mine'"_s)) << "what has been typed is told";
    EXPECT_EQ(RowCount(1), rows - 1);
    EXPECT_EQ(CurrentRow(), 0);
}

TEST_F(EditorEditTest, WhatTheFieldDoesNotTakeIsADataError) {
    const QString typed = u"a unit that is much longer than its field allows"_s;
    for (const bool english : {true, false}) {
        Open(u"ARCH1"_s, english);
        ClickCell(0, u"Unit"_s);
        Type(typed);
        messages_.clear();
        Key(Qt::Key_Return);
        ASSERT_EQ(messages_.size(), 1);
        const QString head = english ? u"TDB-Error: -2147217887\n\nThe text is too long:"_s
                                     : u"TDB-Fehler: -2147217887\n\nDer Text ist zu lang:"_s;
        EXPECT_TRUE(messages_[0].text.startsWith(head)) << messages_[0].text.toStdString();
        EXPECT_TRUE(messages_[0].text.contains(english ? u"'Unit'"_s : u"'Einheit'"_s))
            << messages_[0].text.toStdString() << ": the heading, which the user knows";
        EXPECT_TRUE(messages_[0].details.contains(u"The text has 48 characters"_s));
        EXPECT_EQ(Stored(kFirst, "Unit"), u"°C"_s);
        EXPECT_EQ(CurrentRow(), 0);
        EXPECT_EQ(TypedText(), typed);

        // Nothing that would take the cell away runs while it is not given up.
        messages_.clear();
        Click(u"ARCH2"_s);
        EXPECT_EQ(messages_.size(), 1);
        EXPECT_EQ(TypedText(), typed);
        EXPECT_EQ(Text(0, u"Name"_s), kFirst);
        Key(Qt::Key_Escape);
        EXPECT_EQ(CellEditor(), nullptr);
        EXPECT_EQ(Text(0, u"Unit"_s), u"°C"_s);
        messages_.clear();
        Click(u"ARCH2"_s);
        EXPECT_THAT(messages_, IsEmpty());
        EXPECT_NE(Text(0, u"Name"_s), kFirst);
        CloseProject();
    }
}

// It used to stay there without a word.
TEST_F(EditorEditTest, WhatIsNoValueOfItsColumnStaysInTheCellAndIsTold) {
    Open();
    for (const auto& [field, typed] :
         {std::pair(u"Factor"_s, u"1.000,5"_s), std::pair(u"Factor"_s, u"1,000.5"_s),
          std::pair(u"VMaxSamples"_s, u"-"_s)}) {
        SCOPED_TRACE(typed.toStdString());
        const QString before = Stored(kFirst, field.toStdString());
        ClickCell(0, field);
        Type(typed);
        Key(Qt::Key_Return);
        EXPECT_EQ(TypedText(), typed);
        const QString said = Editor()->findChild<QStatusBar*>(u"sb"_s)->currentMessage();
        EXPECT_TRUE(said.startsWith(u"'%1' is no value of the column"_s.arg(typed)))
            << said.toStdString();
        Key(Qt::Key_Escape);
        EXPECT_EQ(Stored(kFirst, field.toStdString()), before);
    }
    EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(EditorEditTest, TheIndexTextFollowsARenamingThatItIsNamedBy) {
    Open();
    Key(Qt::Key_F8);
    Type(u"Neuling"_s);
    Key(Qt::Key_Return);
    const auto withText = [&](const QString& trend, auto look) {
        const std::int32_t id = Stored(trend, "TextID").toInt();
        Elsewhere([&](projectdb::ProjectRows& rows) {
            ASSERT_TRUE(rows.SeekText(id));
            look(rows.Texts());
        });
    };
    withText(u"Neuling"_s, [](ado::Recordset& text) {
        EXPECT_EQ(projectdb::NameOf(text), u"IdxNeuling"_s);
        text.Set("Name", std::u16string(u"Eigener"));
        text.Update();
    });
    Click(u"ARCH1"_s);  // shows what is new
    TurnTo();
    ClickCell(static_cast<int>(Names().indexOf(u"Neuling"_s)), u"Name"_s);
    Type(u"Altling"_s);
    Key(Qt::Key_Return);
    withText(u"Altling"_s, [](ado::Recordset& text) {
        EXPECT_EQ(projectdb::NameOf(text), u"Eigener"_s) << "does not come from the trend's";
    });
}

TEST_F(EditorEditTest, TrendsWithoutATextAreCountedInTheStatusBar) {
    struct Case {
        bool english;
        QString trend;
        QString said;
    };
    const Case cases[] = {
        {true, kFirst, u"1 trend is not shown, its text is missing"_s},
        {false, u"Maischbottich Druck"_s, u"2 Trends werden nicht angezeigt, ihre Texte fehlen"_s},
    };
    project_ = Brewery();
    for (const Case& c : cases) {
        ChangeElsewhere(c.trend, "TextID", ado::Null());
        Open(u"ARCH1"_s, c.english);
        auto* label = Editor()->findChild<QLabel*>(u"lblTextsMissing"_s);
        EXPECT_EQ(label->text(), c.said);
        EXPECT_TRUE(label->isVisible());
        Click(u"ARCH2"_s);
        EXPECT_FALSE(label->isVisible());
        CloseProject();
    }
}

TEST_F(EditorEditTest, ChoosersOpenBySpaceAndByButton) {
    Open();
    const QString variable = Text(0, u"TrendVar"_s);
    ClickCell(0, u"TrendVar"_s);
    for (const bool byKey : {true, false}) {
        for (const bool picks : {false, true}) {
            SCOPED_TRACE(byKey ? "space" : "button");
            const QString before = Text(0, u"TrendVar"_s);
            host_.calls.clear();
            host_.variable = std::nullopt;
            if (picks) host_.variable = byKey ? u"Plant.A"_s : u"Plant.B"_s;
            if (byKey) {
                Key(Qt::Key_Space);
            } else {
                const QRect cell = Split(1)->visualRect(Split(1)->currentIndex());
                QTest::mouseClick(Split(1)->viewport(), Qt::LeftButton, {},
                                  {cell.right() - 4, cell.center().y()});
            }
            EXPECT_THAT(host_.calls, ElementsAre(u"choose "_s + before));
            EXPECT_EQ(Stored(kFirst, "TrendVar"), picks ? *host_.variable : before);
        }
    }
    // In the middle of an edit, the text all selected: the space is none.
    Key(Qt::Key_F2);
    host_.variable = variable;
    Key(Qt::Key_Space);
    EXPECT_EQ(Stored(kFirst, "TrendVar"), variable);
    EXPECT_EQ(CellEditor(), nullptr);

    ClickCell(0, u"VLineColor"_s);
    const QString before = Stored(kFirst, "VLineColor");
    Key(Qt::Key_Space);
    QWidget* palette = QApplication::activePopupWidget();
    ASSERT_NE(palette, nullptr);
    QTest::keyClick(palette->focusWidget(), Qt::Key_Right);
    QTest::keyClick(palette->focusWidget(), Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_NE(Stored(kFirst, "VLineColor"), before);
    EXPECT_THAT(MessageTexts(), IsEmpty());
}

TEST_F(EditorEditTest, TheEditReachesItsRowThroughReloadAndSort) {
    Open();
    const QString third = Text(2, u"Name"_s);
    ClickCell(2, u"Comment"_s);
    Type(u"half"_s);
    // The host shows the same archive again in the middle of it; a click commits first.
    Click(u"ARCH1"_s);
    EXPECT_EQ(Stored(third, "Comment"), u"half"_s);
    ClickCell(2, u"Comment"_s);
    Type(u"at the root"_s);
    Click(u"ARC0"_s);
    EXPECT_EQ(Stored(third, "Comment"), u"at the root"_s);
    Click(u"ARCH1"_s);
    TurnTo();

    ClickCell(2, u"Comment"_s);
    Type(u"whole"_s);
    Key(Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(Stored(third, "Comment"), u"whole"_s);
    EXPECT_EQ(CurrentName(), third);
    EXPECT_THAT(MessageTexts(), IsEmpty());
}

TEST_F(EditorEditTest, CommandsAndShutDownStoreTheEditFirst) {
    Open();
    ClickCell(0, u"Comment"_s);
    Type(u"before statistic"_s);
    Action(u"mnuExtra(0)"_s)->trigger();
    EXPECT_EQ(Stored(kFirst, "Comment"), u"before statistic"_s);

    ClickCell(0, u"Comment"_s);
    Type(u"before new"_s);
    Key(Qt::Key_F8);
    EXPECT_EQ(Stored(kFirst, "Comment"), u"before new"_s);
    EXPECT_TRUE(CurrentName().startsWith(u"Trd"_s)) << CurrentName().toStdString();

    ClickCell(0, u"Comment"_s);
    Type(u"before the end"_s);
    CloseProject();
    EXPECT_EQ(Stored(kFirst, "Comment"), u"before the end"_s);
    EXPECT_TRUE(host_.container.children().isEmpty());

    // The same with an edit that cannot be stored: told, and nothing is left behind.
    Open();
    ClickCell(0, u"Name"_s);
    Type(u"x"_s);
    qobject_cast<QLineEdit*>(CellEditor())->clear();
    CloseProject();
    EXPECT_THAT(MessageTexts(), ElementsAre(u"Name field must have a unique identifier (name)"_s));
    EXPECT_NE(Stored(kFirst, "ID"), u"(no row)"_s);
}

TEST_F(EditorEditTest, TurningAwayStoresAndTurningBackShowsWhatIsNew) {
    Open();
    const QString third = Text(2, u"Name"_s);
    const QString fourth = Text(3, u"Name"_s);
    ClickCell(2, u"Comment"_s);
    Type(u"left"_s);
    TurnAway();
    EXPECT_EQ(Stored(third, "Comment"), u"left"_s);
    EXPECT_EQ(CellEditor(), nullptr);

    ChangeElsewhere(third, "Comment", std::u16string(u"theirs"));
    DeleteElsewhere(Text(0, u"Name"_s));
    EXPECT_EQ(Text(2, u"Comment"_s), u"left"_s);
    TurnTo();
    EXPECT_EQ(RowCount(1), 23);
    EXPECT_EQ(CurrentName(), third) << "the current row is kept";
    EXPECT_EQ(Text(1, u"Comment"_s), u"theirs"_s);

    // Within the window nothing is read anew.
    ChangeElsewhere(fourth, "Comment", std::u16string(u"unseen"));
    Split(0)->setFocus();
    QApplication::processEvents();
    Split(1)->setFocus();
    QApplication::processEvents();
    EXPECT_EQ(Text(2, u"Comment"_s), QString());
    EXPECT_THAT(MessageTexts(), IsEmpty());
}

TEST_F(EditorEditTest, TurningBackToAFileThatIsAsItWasReadsNothing) {
    Open();
    const QSignalSpy archives(Split(0)->model(), &QAbstractItemModel::modelReset);
    const QSignalSpy trends(Split(1)->model(), &QAbstractItemModel::modelReset);
    const auto reads = [&] {
        const qsizetype before = archives.size() + trends.size();
        TurnAway();
        TurnTo();
        return archives.size() + trends.size() > before;
    };
    // Shortly after a change the file is read once more to be sure.
    EXPECT_TRUE(QTest::qWaitFor([&] { return !reads(); }, 30000));
    ChangeElsewhere(Text(2, u"Name"_s), "Comment", std::u16string(u"theirs"));
    EXPECT_TRUE(reads());
    EXPECT_EQ(Text(2, u"Comment"_s), u"theirs"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !reads(); }, 30000));
    ClickCell(0, u"Comment"_s);
    Type(u"own"_s);
    Key(Qt::Key_Return);
    EXPECT_TRUE(reads()) << "the window's own change too";
}

TEST_F(EditorEditTest, AMessageBoxIsNoTurningAway) {
    Open();
    bool asked = false;
    int readMeanwhile = 0;
    const messages::MessageAnswer answer([&](const messages::Message&) {
        asked = true;
        QObject::connect(Split(1)->model(), &QAbstractItemModel::modelReset, &host_.tree,
                         [&] { ++readMeanwhile; });
        TurnAway();
        TurnTo();
        host_.tree.disconnect();
        QObject::disconnect(Split(1)->model(), nullptr, &host_.tree, nullptr);
        return messages::MessageResult::Ok;
    });
    ClickCell(0, u"Name"_s);
    Key(Qt::Key_Delete);
    EXPECT_TRUE(asked);
    EXPECT_EQ(readMeanwhile, 0);
}

}  // namespace
