#include <gmock/gmock.h>

#include <QAction>
#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>

#include "addin/EditorTest.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// The dialog that makes trends by patterns.
class EditorPatternsTest : public EditorTest {
protected:
    void InDialog(const std::function<void(QDialog&)>& work) {
        AnswerDialog([this] { Key(Qt::Key_F8, Qt::ControlModifier); }, work);
    }
    static void TypeInto(QDialog& dialog, const QString& name, const QString& text) {
        auto* line = dialog.findChild<QLineEdit*>(name);
        line->setFocus();
        line->selectAll();
        QTest::keyClick(line, Qt::Key_Delete);
        QTest::keyClicks(line, text);
    }
    [[nodiscard]] static QPushButton& Make(QDialog& dialog) {
        return *dialog.findChild<QPushButton*>(u"cmdMake"_s);
    }
    static void WaitFor(QDialog& dialog, const QString& button) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return Make(dialog).text() == button; }))
            << Make(dialog).text().toStdString();
    }
};

TEST_F(EditorPatternsTest, MakesWhatThePreviewShowsInOneStep) {
    Open();
    const int before = RowCount(1);
    InDialog([](QDialog& dialog) {
        ASSERT_EQ(dialog.objectName(), u"FPatterns"_s);
        TypeInto(dialog, u"txtName"_s, u"P{1..3} {Temp|Druck}"_s);
        TypeInto(dialog, u"txtVariable"_s, u"PLC.P{01..03}.{T|P}"_s);
        TypeInto(dialog, u"txtText(1)"_s, u"pump {1}"_s);
        WaitFor(dialog, u"&Make 6 trends"_s);
        auto* entries = dialog.findChild<QTableWidget*>(u"tblEntries"_s);
        ASSERT_EQ(entries->rowCount(), 2);
        entries->item(1, 1)->setText(u"mbar"_s);
        // As the palette does.
        dialog.findChild<QWidget*>(u"clrEntry(0)"_s)->setProperty("Color", 0x0000FF);
        EXPECT_EQ(entries->item(0, 4)->text(), u"#FF0000"_s);
        auto* plan = dialog.findChild<QTableView*>(u"tblPlan"_s);
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return plan->model()->index(5, 4).data().toString() == u"mbar"_s; }));
        // A name that is there, typed into the preview, and given up again.
        const QModelIndex first = plan->model()->index(0, 0);
        plan->model()->setData(first, u"whirlpool ph"_s, Qt::EditRole);
        EXPECT_FALSE(Make(dialog).isEnabled());
        plan->model()->setData(first, QVariant::fromValue(Qt::Unchecked), Qt::CheckStateRole);
        WaitFor(dialog, u"&Make 5 trends"_s);
        EXPECT_TRUE(Make(dialog).isEnabled());
        Make(dialog).click();
    });
    EXPECT_EQ(messages_.size(), 0);
    EXPECT_EQ(RowCount(1), before + 5);
    EXPECT_EQ(SelectedRows().size(), 5);
    EXPECT_EQ(CurrentName(), u"P1 Druck"_s);
    EXPECT_EQ(Stored(u"P3 Druck"_s, "TrendVar"), u"PLC.P03.P"_s);
    EXPECT_EQ(Stored(u"P3 Druck"_s, "Unit"), u"mbar"_s);
    EXPECT_EQ(Stored(u"P3 Temp"_s, "VLineColor"), u"255"_s);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(RowCount(1), before);

    // Kept for the next time, with what went with the entries.
    InDialog([](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>(u"txtName"_s)->text(), u"P{1..3} {Temp|Druck}"_s);
        EXPECT_EQ(dialog.findChild<QTableWidget*>(u"tblEntries"_s)->item(1, 1)->text(), u"mbar"_s);
        TypeInto(dialog, u"txtName"_s, u"P{1..3"_s);
        const auto* state = dialog.findChild<QLabel*>(u"lblState"_s);
        EXPECT_TRUE(QTest::qWaitFor([&] { return state->text().contains(u"character 2"_s); }))
            << state->text().toStdString();
        EXPECT_FALSE(Make(dialog).isEnabled());
        dialog.reject();
    });
    EXPECT_EQ(RowCount(1), before);
}

TEST_F(EditorPatternsTest, VariablesThatAreChosenTogetherBecomeTrends) {
    Open();
    host_.variables = {u"A.Tank.p"_s, u"B.Tank.p"_s, u"B.Tank.T"_s};
    InDialog([](QDialog& dialog) {
        dialog.findChild<QAction*>(u"cmdChoose"_s)->trigger();
        EXPECT_EQ(dialog.findChild<QLineEdit*>(u"txtName"_s)->text(),
                  u"{A Tank p|B Tank p|B Tank T}"_s)
            << "as much of them as tells them apart";
        WaitFor(dialog, u"&Make 3 trends"_s);
        Make(dialog).click();
    });
    EXPECT_EQ(Stored(u"B Tank T"_s, "TrendVar"), u"B.Tank.T"_s);
}

TEST_F(EditorPatternsTest, AnArchiveIsDuplicatedByPattern) {
    Open();
    TurnTo(0);
    const QStringList before = Names(0);
    AnswerDialog([this] { Key(Qt::Key_F8, Qt::ControlModifier); },
                 [](QDialog& dialog) {
                     ASSERT_EQ(dialog.objectName(), u"FArchivePatterns"_s);
                     TypeInto(dialog, u"txtName"_s, u"Brewery {1..2}"_s);
                     TypeInto(dialog, u"txtFindInCopies"_s, u"Sudhaus."_s);
                     TypeInto(dialog, u"txtBy"_s, u"Hall{7..8}."_s);
                     WaitFor(dialog, u"&Make 2 archives"_s);
                     Make(dialog).click();
                 });
    EXPECT_EQ(messages_.size(), 0);
    EXPECT_EQ(Names(0), before + QStringList({u"Brewery 1"_s, u"Brewery 2"_s}));
    EXPECT_EQ(host_.selected, host_.nodes.at(host_.nodes.size() - 2).node.key);
    EXPECT_EQ(RowCount(1), 24);
    EXPECT_EQ(Text(0, u"TrendVar"_s), u"Hall7.Maischbottich.Temperatur"_s);
    Action(u"mnuUndo"_s)->trigger();
    EXPECT_EQ(Names(0), before);
}

}  // namespace
