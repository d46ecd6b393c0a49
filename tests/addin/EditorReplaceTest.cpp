#include <gmock/gmock.h>

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include "addin/EditorTest.h"
#include "projectdb/Text.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// The window that finds and replaces over the project.
class EditorReplaceTest : public EditorTest {
protected:
    enum HitColumn { kArchive, kTrend, kField, kOld, kNew, kNote };

    /// Opens it by a key in the trends.
    void OpenWindow(Qt::Key key, Qt::KeyboardModifiers held = Qt::ControlModifier) {
        Key(key, held);
        ASSERT_NE(Window(), nullptr);
        ASSERT_TRUE(Window()->isVisible());
        QApplication::setActiveWindow(Window());
        QApplication::processEvents();
    }
    [[nodiscard]] QDialog* Window() { return Editor()->findChild<QDialog*>(u"FReplace"_s); }
    template <typename Control>
    [[nodiscard]] Control& The(const QString& name) {
        auto* control = Window()->findChild<Control*>(name);
        if (control == nullptr) qFatal("no %s", qPrintable(name));
        return *control;
    }
    [[nodiscard]] QTableView& List() { return The<QTableView>(u"grdHits"_s); }
    void TypeInto(const QString& field, const QString& text) {
        QLineEdit& line = The<QLineEdit>(field);
        line.setFocus();
        line.selectAll();
        QTest::keyClick(&line, Qt::Key_Delete);
        for (const QChar letter : text) {
            // The test library knows the keys of ASCII only.
            if (letter.unicode() < 0x80) {
                QTest::keyClicks(&line, letter);
            } else {
                line.insert(letter);
            }
        }
    }
    /// All has been found, and asked what stands against it.
    void WaitFor(const QString& state) {
        const QLabel& label = The<QLabel>(u"lblState"_s);
        ASSERT_TRUE(QTest::qWaitFor([&] { return label.text() == state; }))
            << label.text().toStdString();
    }
    void WaitForButton(const QString& text) {
        const QPushButton& button = The<QPushButton>(u"cmdReplace"_s);
        ASSERT_TRUE(QTest::qWaitFor([&] { return button.text() == text; }))
            << button.text().toStdString();
    }
    [[nodiscard]] QString Hit(int row, int column) {
        return List().model()->index(row, column).data().toString();
    }
    [[nodiscard]] QStringList StoredTexts(std::int32_t archive) {
        QStringList texts;
        Elsewhere([&](projectdb::ProjectRows& rows) {
            ASSERT_TRUE(rows.SeekArchive(archive));
            ASSERT_TRUE(rows.SeekGroup(archive));
            ASSERT_TRUE(rows.SeekTextOf(rows.Archives()));
            for (const ado::Recordset* of : {&rows.Archives(), &rows.Groups(), &rows.Texts()}) {
                texts += projectdb::ToQString(ado::ToText(of->Get("Name")));
            }
        });
        return texts;
    }
};

TEST_F(EditorReplaceTest, FindsInAllArchivesAndGoesThere) {
    Open();
    OpenWindow(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(The<QPushButton>(u"cmdReplace"_s).isVisible());
    TypeInto(u"txtTerm"_s, u"gärkeller.gärtank 1.grenze"_s);
    WaitFor(u"1 hit"_s);
    EXPECT_EQ(Hit(0, kArchive), u"Gärkeller"_s);
    EXPECT_EQ(Hit(0, kTrend), u"Gärtank 1 Füllstand"_s);
    EXPECT_EQ(Hit(0, kOld), u"Gärkeller.Gärtank 1.Grenze"_s);
    // Found anew with each key.
    TypeInto(u"txtTerm"_s, u"Gärtank 1.(Temp|Druck)"_s);
    WaitFor(u"Nothing found."_s);
    The<QCheckBox>(u"chkExpression"_s).click();
    WaitFor(u"2 hits"_s);
    TypeInto(u"txtTerm"_s, u"Gärtank (1"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return The<QLabel>(u"lblTermFault"_s).isVisible(); }));
    EXPECT_TRUE(The<QLabel>(u"lblTermFault"_s).text().contains(u"From character 11"_s))
        << The<QLabel>(u"lblTermFault"_s).text().toStdString();
    TypeInto(u"txtTerm"_s, u"Gärtank (1) pH"_s);
    WaitFor(u"1 hit"_s);
    EXPECT_FALSE(The<QLabel>(u"lblTermFault"_s).isVisible());

    QTest::keyClick(&The<QLineEdit>(u"txtTerm"_s), Qt::Key_Return);
    QTest::keyClick(&List(), Qt::Key_Return);
    EXPECT_EQ(host_.selected, u"ARCH2"_s);
    EXPECT_EQ(CurrentName(), u"Gärtank 1 pH"_s);
    EXPECT_TRUE(Window()->isVisible());
}

TEST_F(EditorReplaceTest, WritesWhatTheButtonSaysInOneStep) {
    Open();
    OpenWindow(Qt::Key_H);
    TypeInto(u"txtTerm"_s, u"Whirlpool"_s);
    TypeInto(u"txtReplacement"_s, u"Wanne"_s);
    The<QCheckBox>(u"chkTexts"_s).click();
    WaitForButton(u"Re&place 13 hits"_s);
    EXPECT_EQ(Hit(0, kNew), u"Wanne Temperatur"_s);
    // Without the tick of one, and without what the list does not show.
    List().setFocus();
    List().selectRow(0);
    QTest::keyClick(&List(), Qt::Key_Space);
    WaitForButton(u"Re&place 12 hits"_s);
    TypeInto(u"txtNarrow"_s, u".wanne."_s);
    WaitForButton(u"Re&place 7 hits"_s);
    The<QPushButton>(u"cmdReplace"_s).click();
    EXPECT_EQ(messages_.size(), 0);
    EXPECT_EQ(The<QLabel>(u"lblState"_s).text().section(u'.', 0, 0), u"Replaced: 7"_s);
    EXPECT_EQ(Stored(u"Whirlpool Temperatur"_s, "TrendVar"), u"Sudhaus.Wanne.Temperatur"_s);
    EXPECT_EQ(Stored(u"Whirlpool Füllstand"_s, "Maximum"), u"Sudhaus.Wanne.Grenze"_s);
    EXPECT_EQ(Text(18, u"TrendVar"_s), u"Sudhaus.Wanne.Temperatur"_s) << "the grid follows";

    TurnTo();
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Stored(u"Whirlpool Temperatur"_s, "TrendVar"), u"Sudhaus.Whirlpool.Temperatur"_s);
    EXPECT_EQ(Stored(u"Whirlpool Füllstand"_s, "Maximum"), u"Sudhaus.Whirlpool.Grenze"_s);
    EXPECT_FALSE(Action(u"mnuUndo"_s)->isEnabled());
}

TEST_F(EditorReplaceTest, AnArchiveIsRenamedAsInTheEditor) {
    Open();
    OpenWindow(Qt::Key_H);
    TypeInto(u"txtTerm"_s, u"keller"_s);
    TypeInto(u"txtReplacement"_s, u"raum"_s);
    for (const QString& kind : {u"chkVariables"_s, u"chkTexts"_s, u"chkComments"_s}) {
        The<QCheckBox>(kind).click();
    }
    WaitForButton(u"Re&place 2 hits"_s);
    The<QPushButton>(u"cmdReplace"_s).click();
    EXPECT_TRUE(host_.calls.contains(u"change ARCH2"_s));
    EXPECT_EQ(StoredTexts(2), QStringList({u"Gärraum"_s, u"Gärraum"_s, u"archGärraum"_s}));
    EXPECT_TRUE(Names(0).contains(u"Lagerraum"_s));
    // One that would be there twice has no tick, and the button does not count it.
    TypeInto(u"txtTerm"_s, u"(Gär|Lager)raum"_s);
    TypeInto(u"txtReplacement"_s, u"\\1"_s);
    The<QCheckBox>(u"chkExpression"_s).click();
    WaitForButton(u"Re&place 2 hits"_s);
    TypeInto(u"txtReplacement"_s, u"Energie"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Hit(0, kNote) == u"the name is in use"_s; }));
    EXPECT_FALSE(The<QPushButton>(u"cmdReplace"_s).isEnabled());
    TypeInto(u"txtReplacement"_s, u"\\2"_s);
    EXPECT_TRUE(The<QLabel>(u"lblReplacementFault"_s).text().contains(u"no group 2"_s));
}

TEST_F(EditorReplaceTest, AProjectThatOthersHaveChangedIsReadAnew) {
    Open();
    OpenWindow(Qt::Key_H);
    TypeInto(u"txtTerm"_s, u"Whirlpool.pH"_s);
    TypeInto(u"txtReplacement"_s, u"Kessel"_s);
    The<QCheckBox>(u"chkExpression"_s).click();
    WaitForButton(u"Re&place 2 hits"_s);
    Elsewhere([](projectdb::ProjectRows& rows) {
        ASSERT_TRUE(rows.SeekTrend(23));
        rows.Trends().Set("Name", std::u16string(u"anders"));
        rows.Trends().Update();
    });
    // Nothing is written where one of them is another by now.
    The<QPushButton>(u"cmdReplace"_s).click();
    EXPECT_EQ(Hit(0, kNote), u"changed meanwhile"_s);
    EXPECT_TRUE(The<QLabel>(u"lblState"_s).text().startsWith(u"Nothing was changed"_s));
    EXPECT_EQ(Stored(u"anders"_s, "TextID"), u"24"_s);
    TurnTo();
    QApplication::setActiveWindow(Window());
    WaitForButton(u"Re&place 1 hit"_s);
}

TEST_F(EditorReplaceTest, AVariableShowsItsUsesFromItsCell) {
    Open(u"ARCH1"_s, false);
    ClickCell(2, u"Unit"_s);
    Key(Qt::Key_U, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Window(), nullptr) << "no variable";
    ClickCell(2, u"Maximum"_s);
    OpenWindow(Qt::Key_U, Qt::ControlModifier | Qt::ShiftModifier);
    WaitFor(u"1 Stelle"_s);
    EXPECT_EQ(Hit(0, kOld), u"Sudhaus.Maischbottich.Grenze"_s);
    EXPECT_EQ(Hit(0, kField), Column(1, u"Maximum"_s)->property("Caption").toString());
}

TEST_F(EditorReplaceTest, DialogsAndTheBrowserShowUsesToo) {
    Open();
    QStringList seen;
    // Over the dialog, which waits; `show` returns when the list has been looked at.
    const auto look = [&](QWidget& over, const std::function<void()>& show) {
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            auto* uses = over.findChild<QDialog*>(u"FReplace"_s);
            const auto* list = uses != nullptr ? uses->findChild<QTableView*>() : nullptr;
            if (list == nullptr || list->model()->rowCount() == 0) return;
            seen += list->model()->index(0, kTrend).data().toString();
            EXPECT_FALSE(uses->findChild<QPushButton*>(u"cmdReplace"_s)->isVisible());
            uses->reject();
        });
        timer.start(1);
        show();
    };
    host_.whileChoosing = [&](QWidget* owner, const KV4AddIn::VariableChoice& choice) {
        look(*owner, [&] { choice.showUses(owner, u"Sudhaus.Whirlpool.pH"_s); });
    };
    ClickCell(2, u"Unit"_s);
    AnswerDialog([this] { Key(Qt::Key_F9); },
                 [&](QDialog& dialog) {
                     auto* field = dialog.findChild<QLineEdit*>(u"txtMaximum"_s);
                     look(dialog, [&] { field->actions().constFirst()->trigger(); });
                     dialog.findChild<QPushButton*>(u"cmdChoose(0)"_s)->click();
                     dialog.reject();
                 });
    EXPECT_EQ(seen, QStringList({u"Maischbottich Füllstand"_s, u"Whirlpool pH"_s}));
}

}  // namespace
