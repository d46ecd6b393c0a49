#include <gmock/gmock.h>

#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTableView>
#include <QTableWidget>
#include <QTextBrowser>
#include <QToolButton>

#include "addin/EditorTest.h"
#include "projectdb/Text.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// The list of findings under the grid, and their number in the status bar.
class EditorFindingsTest : public EditorTest {
protected:
    /// The project with the planted faults.
    void OpenFaulty(const QString& archive, bool english = true) {
        project_ = CopyProject(QStringLiteral(KV_TEST_DATA "/Stadtwerke.kvs"), u"Stadtwerke.kvs"_s);
        Open(archive, english);
    }
    [[nodiscard]] QString Count() {
        return Editor()->findChild<QToolButton*>(u"cmdFindings"_s)->text();
    }
    /// Waits until the check has ended with this.
    void ExpectCount(const QString& count) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return Count() == count; }, 60'000))
            << Count().toStdString() << " instead of " << count.toStdString();
    }
    [[nodiscard]] QTableView* List() { return Editor()->findChild<QTableView*>(u"tblFindings"_s); }
    [[nodiscard]] QString ListText(int row, int column) {
        return List()->model()->index(row, column).data().toString();
    }
    /// What stands in the current row, columns apart by "|".
    [[nodiscard]] QString CurrentFinding() {
        QStringList cells;
        for (int column = 0; column < List()->model()->columnCount(); ++column) {
            cells += ListText(List()->currentIndex().row(), column);
        }
        return cells.join(u'|');
    }
    /// Makes the finding with this text the only one that is shown.
    void Narrow(const QString& text) {
        Editor()->findChild<QLineEdit*>(u"txtFindingFilter"_s)->setText(text);
        ASSERT_EQ(List()->model()->rowCount(), 1) << text.toStdString();
        List()->setCurrentIndex(List()->model()->index(0, 0));
    }
    void Press(const QString& button) {
        QTest::mouseClick(Editor()->findChild<QPushButton*>(button), Qt::LeftButton);
        QApplication::processEvents();
    }
};

const QString kFaults = u"36 errors, 22 warnings, 8 notes"_s;

TEST_F(EditorFindingsTest, TheCountFollowsEachChange) {
    Open();
    ExpectCount(u"28 errors"_s);
    ClickCell(0, u"VMin"_s);
    Type(u"5000"_s);
    Key(Qt::Key_Return);
    EXPECT_NE(Count(), u"28 errors"_s) << "what is known is of before";
    ExpectCount(u"29 errors"_s);
    Key(Qt::Key_Z, Qt::ControlModifier);
    ExpectCount(u"28 errors"_s);
    // What another program does shows too.
    Elsewhere([](projectdb::ProjectRows& rows) {
        rows.Trends().Set("Factor", 0.0);
        rows.Trends().Update();
    });
    ExpectCount(u"28 errors, 1 warning"_s);
}

TEST_F(EditorFindingsTest, TheListLeadsToTheCellAndBack) {
    Open(u"ARCH1"_s, false);
    Column(1, u"Maximum"_s)->setProperty("Visible", true);
    ExpectCount(u"28 Fehler"_s);
    EXPECT_FALSE(List()->isVisible());
    Key(Qt::Key_F4);
    EXPECT_TRUE(List()->isVisible());
    EXPECT_TRUE(List()->hasFocus());
    EXPECT_EQ(CurrentFinding(),
              u"Fehler|Das Archiv nennt in „X-Variable“ die Variable „Chargen.Charge.Nummer“, die "
              u"das Projekt nicht hat|Chargen||X-Variable"_s);
    Narrow(u"Gärtank 3"_s);
    List()->setFocus();
    EXPECT_EQ(CurrentFinding(),
              u"Fehler|Der Trend nennt in „Maximum“ die Variable „Gärkeller.Gärtank 3.Grenze“, die "
              u"das Projekt nicht hat|Gärkeller|Gärtank 3 Füllstand|Maximum"_s);
    EXPECT_THAT(Editor()->findChild<QLabel*>(u"lblFindingDetail"_s)->text().toStdString(),
                testing::StartsWith("Eine Einstellung nennt eine Variable"));
    Key(Qt::Key_Return);
    EXPECT_EQ(CurrentName(), u"Gärtank 3 Füllstand"_s);
    EXPECT_EQ(Split(1)->currentIndex().column(), ColumnNumber(1, u"Maximum"_s));
    EXPECT_FALSE(List()->hasFocus());
    // Neither a hidden column nor a narrowed grid is in the way.
    Column(1, u"Maximum"_s)->setProperty("Visible", false);
    auto* find = Editor()->findChild<QLineEdit*>(u"txtFind"_s);
    Key(Qt::Key_F, Qt::ControlModifier);
    find->setText(u"nowhere"_s);
    ASSERT_EQ(RowCount(1), 0);
    List()->setFocus();
    Key(Qt::Key_Return);
    EXPECT_EQ(find->text(), QString());
    EXPECT_EQ(CurrentName(), u"Gärtank 3 Füllstand"_s);
    EXPECT_EQ(Split(1)->currentIndex().column(), ColumnNumber(1, u"Name"_s));
    // There and back: the first F4 gives the list the keyboard, the second one takes it away.
    Key(Qt::Key_F4);
    EXPECT_TRUE(List()->hasFocus());
    Key(Qt::Key_Delete);
    EXPECT_EQ(messages_.size(), 0) << "a key of the grid";
    Key(Qt::Key_Escape);
    EXPECT_TRUE(List()->isVisible());
    EXPECT_FALSE(List()->hasFocus());
    Key(Qt::Key_F4);
    Key(Qt::Key_F4);
    EXPECT_FALSE(List()->isVisible());
    EXPECT_FALSE(List()->hasFocus());
    // An archive's setting leads to the archive.
    Editor()->findChild<QToolButton*>(u"cmdFindings"_s)->click();
    Narrow(u"X-Variable"_s);
    List()->setFocus();
    Key(Qt::Key_Return);
    EXPECT_EQ(CurrentName(0), u"Chargen"_s);
}

TEST_F(EditorFindingsTest, F1InTheListShowsItsPage) {
    OpenFaulty(u"ARCH1"_s);
    ExpectCount(kFaults);
    Key(Qt::Key_F4);
    ASSERT_TRUE(List()->hasFocus());
    QTest::keyClick(List(), Qt::Key_F1);
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto help = std::find_if(windows.begin(), windows.end(), [](const QWidget* window) {
        return window->objectName() == u"frmHelp"_s && window->isVisible();
    });
    ASSERT_NE(help, windows.end());
    EXPECT_TRUE((*help)
                    ->findChild<QTextBrowser*>(u"txtPage"_s)
                    ->source()
                    .path()
                    .endsWith(u"/findings.html"_s));
}

TEST_F(EditorFindingsTest, SafeCuresAreOneStep) {
    OpenFaulty(u"ARCH1"_s);
    ExpectCount(kFaults);
    Key(Qt::Key_F4);
    Press(u"cmdCureSafe"_s);
    ExpectCount(u"29 errors, 19 warnings, 8 notes"_s);
    EXPECT_FALSE(Editor()->findChild<QPushButton*>(u"cmdCureSafe"_s)->isEnabled());
    EXPECT_TRUE(List()->hasFocus());
    Key(Qt::Key_Z, Qt::ControlModifier);
    ExpectCount(kFaults);
    EXPECT_FALSE(Action(u"mnuUndo"_s)->isEnabled());
}

TEST_F(EditorFindingsTest, OtherCuresAreShownBefore) {
    OpenFaulty(u"ARCH1"_s);
    ExpectCount(kFaults);
    Key(Qt::Key_F4);
    Narrow(u"above the Display"_s);
    QStringList shown;
    const auto look = [&](bool accept) {
        return [&shown, accept](QDialog& dialog) {
            const auto* table = dialog.findChild<QTableWidget*>(u"tblCures"_s);
            shown.clear();
            for (int row = 0; row < table->rowCount(); ++row) {
                for (int column = 1; column < table->columnCount(); ++column) {
                    shown += table->item(row, column)->text();
                }
            }
            accept ? dialog.accept() : dialog.reject();
        };
    };
    AnswerDialog([&] { Press(u"cmdCureFinding"_s); }, look(false));
    EXPECT_EQ(shown, (QStringList{u"Display Minimum"_s, u"500"_s, u"10"_s, u"Display Maximum"_s,
                                  u"10"_s, u"500"_s}));
    ExpectCount(kFaults);  // given up
    AnswerDialog([&] { Press(u"cmdCureFinding"_s); }, look(true));
    ExpectCount(u"35 errors, 22 warnings, 8 notes"_s);
    EXPECT_EQ(List()->model()->rowCount(), 0);
}

TEST_F(EditorFindingsTest, AnAcceptedFindingCountsNoMore) {
    OpenFaulty(u"ARCH1"_s);
    ExpectCount(kFaults);
    Key(Qt::Key_F4);
    Narrow(u"above the Display"_s);
    AnswerDialog([&] { Press(u"cmdAcceptFinding"_s); },
                 [](QDialog& dialog) {
                     EXPECT_FALSE(dialog.findChild<QPushButton*>(u"cmdOk"_s)->isEnabled())
                         << "without a reason";
                     dialog.findChild<QLineEdit*>(u"txtReason"_s)->setText(u"wired so"_s);
                     dialog.findChild<QLineEdit*>(u"txtBy"_s)->setText(u"mk"_s);
                     dialog.findChild<QPushButton*>(u"cmdOk"_s)->click();
                 });
    ExpectCount(u"35 errors, 22 warnings, 8 notes"_s);
    QFile file(folder_.filePath(u"Stadtwerke.kvs-lint"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const std::string text = file.readAll().toStdString();
    EXPECT_THAT(text, testing::AllOf(testing::HasSubstr("place = TchrTrends/269/VMin\n"),
                                     testing::HasSubstr("reason = wired so\nby = mk\n")));
    // Another program takes it back.
    file.close();
    ASSERT_TRUE(file.remove());
    ExpectCount(kFaults);
}

TEST_F(EditorFindingsTest, SettingsThatAreNotUnderstoodAreTold) {
    QFile file(folder_.filePath(u"Brauerei.kvs-lint"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[nonsense]\n");
    file.close();
    Open();
    ExpectCount(u"Not checked"_s);
    EXPECT_FALSE(Editor()->findChild<QLabel*>(u"lblFindingState"_s)->text().isEmpty());
}

}  // namespace
