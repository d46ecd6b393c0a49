#include <gmock/gmock.h>

#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "addin/EditorTest.h"
#include "support/CancelsProgress.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// The table over all archives, opened from the editor by its key.
class EditorProjectTableTest : public EditorTest {
protected:
    void OpenTable(bool english = true) {
        Open(u"ARCH1"_s, english);
        Key(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
        ASSERT_NE(Table(), nullptr);
        WaitForRows();
    }
    [[nodiscard]] QWidget* Table() { return Editor()->findChild<QWidget*>(u"frmProjectTable"_s); }
    [[nodiscard]] QTableView* Rows(int split = 1) {
        const QObject* grid = Table()->findChild<QObject*>(u"tdbTable"_s);
        return grid->findChild<QTableView*>(u"tdbTable.Splits(%1)"_s.arg(split));
    }
    void WaitForRows() {
        ASSERT_TRUE(QTest::qWaitFor([this] { return Rows()->model()->rowCount() > 0; }));
        // The count is told when everything stands.
        ASSERT_TRUE(
            QTest::qWaitFor([this] { return !Count().isEmpty() && Count().front().isDigit(); }));
    }
    [[nodiscard]] QString Count() { return Table()->findChild<QLabel*>(u"lblCount"_s)->text(); }
    [[nodiscard]] QLineEdit* Filter(const QString& field) {
        for (QLineEdit* edit : Table()->findChildren<QLineEdit*>(u"txtFilter_"_s + field)) {
            if (!edit->isHidden()) return edit;
        }
        ADD_FAILURE() << field.toStdString();
        return nullptr;
    }
    [[nodiscard]] int ColumnOf(const QString& caption) {
        for (int column = 0; column < Rows()->model()->columnCount(); ++column) {
            if (Rows()->model()->headerData(column, Qt::Horizontal).toString() == caption) {
                return column;
            }
        }
        ADD_FAILURE() << caption.toStdString();
        return 0;
    }
    [[nodiscard]] QString At(int row, const QString& caption) {
        return Rows()->model()->index(row, ColumnOf(caption)).data().toString();
    }
    void GoTo(int row, const QString& caption) {
        const QModelIndex cell = Rows()->model()->index(row, ColumnOf(caption));
        Rows()->scrollTo(cell);
        QTest::mouseClick(Rows()->viewport(), Qt::LeftButton, {},
                          Rows()->visualRect(cell).center());
        ASSERT_EQ(Rows()->currentIndex(), cell);
    }
    void Press(Qt::Key key, Qt::KeyboardModifiers held = Qt::NoModifier) {
        QTest::keyClick(Rows(), key, held);
    }
    /// The first key opens the cell's editor, which gets the others.
    void TypeInto(const QString& text) {
        QTest::keyClicks(Rows(), text.left(1));
        QTest::keyClicks(QApplication::focusWidget(), text.mid(1));
    }
    void Trigger(const QString& action) { Table()->findChild<QAction*>(action)->trigger(); }
};

TEST_F(EditorProjectTableTest, AllTrendsStandThereAndAreNarrowedByColumn) {
    OpenTable();
    const int all = Rows()->model()->rowCount();
    EXPECT_GT(all, RowCount(1)) << "more than the open archive's";
    Filter(u"Unit"_s)->setText(u"=bar"_s);
    const int bars = Rows()->model()->rowCount();
    EXPECT_GT(bars, 0);
    EXPECT_LT(bars, all);
    for (int row = 0; row < bars; ++row) EXPECT_EQ(At(row, u"Unit"_s), u"bar"_s);
    // The archives beside it count what is left, and narrow further.
    int counted = 0;
    for (int row = 1; row < Rows(0)->model()->rowCount(); ++row) {
        counted += Rows(0)->model()->index(row, 1).data().toInt();
    }
    EXPECT_EQ(counted, bars);
    Rows(0)->selectionModel()->setCurrentIndex(Rows(0)->model()->index(1, 0),
                                               QItemSelectionModel::NoUpdate);
    EXPECT_EQ(Rows()->model()->rowCount(), Rows(0)->model()->index(1, 1).data().toInt());
    Trigger(u"mnuReset"_s);
    EXPECT_EQ(Rows()->model()->rowCount(), all);
    EXPECT_EQ(Filter(u"Unit"_s)->text(), QString());
}

TEST_F(EditorProjectTableTest, WhatIsTypedIsAStepThatTheEditorShowsToo) {
    OpenTable();
    Filter(u"Name"_s)->setText(u"="_s + Text(0, u"Name"_s));
    ASSERT_EQ(Rows()->model()->rowCount(), 1);
    const QString name = Text(0, u"Name"_s);
    const QString before = Stored(name, "Unit");
    GoTo(0, u"Unit"_s);
    TypeInto(u"mbar"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(Stored(name, "Unit"), u"mbar"_s);
    EXPECT_EQ(At(0, u"Unit"_s), u"mbar"_s);
    EXPECT_EQ(Text(0, u"Unit"_s), u"mbar"_s) << "in the editor";
    Trigger(u"mnuUndo"_s);
    EXPECT_EQ(Stored(name, "Unit"), before);
    EXPECT_TRUE(QTest::qWaitFor([&] { return At(0, u"Unit"_s) == before; }));
}

/// Rows that are filtered away are never written; a refusal leaves everything as it was.
TEST_F(EditorProjectTableTest, ABlockGoesIntoTheRowsThatAreShown) {
    OpenTable();
    const int all = Rows()->model()->rowCount();
    Filter(u"Unit"_s)->setText(u"=bar"_s);
    const int bars = Rows()->model()->rowCount();
    ASSERT_GE(bars, 3);
    GoTo(0, u"Comment"_s);
    Press(Qt::Key_Down, Qt::ShiftModifier);
    Press(Qt::Key_Down, Qt::ShiftModifier);
    QApplication::clipboard()->setText(u"checked"_s);
    Trigger(u"mnuPaste"_s);
    Trigger(u"mnuReset"_s);
    ASSERT_EQ(Rows()->model()->rowCount(), all);
    int written = 0;
    for (int row = 0; row < all; ++row) {
        if (At(row, u"Comment"_s) == u"checked"_s) {
            ++written;
            EXPECT_EQ(At(row, u"Unit"_s), u"bar"_s);
        }
    }
    EXPECT_EQ(written, 3);

    // Filled down, by key and by dragging the corner, between rows that are filtered away.
    Filter(u"Unit"_s)->setText(u"=bar"_s);
    GoTo(0, u"Comment"_s);
    TypeInto(u"L 01"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    GoTo(0, u"Comment"_s);
    for (int i = 1; i < bars; ++i) Press(Qt::Key_Down, Qt::ShiftModifier);
    Trigger(u"mnuFillCounting"_s);
    Trigger(u"mnuReset"_s);
    written = 0;
    for (int row = 0; row < all; ++row) {
        if (!At(row, u"Comment"_s).startsWith(u"L "_s)) continue;
        ++written;
        EXPECT_EQ(At(row, u"Unit"_s), u"bar"_s);
    }
    EXPECT_EQ(written, bars);

    // Filled down and counted on, over what is sorted.
    GoTo(0, u"Comment"_s);
    Press(Qt::Key_Down, Qt::ShiftModifier);
    QApplication::clipboard()->setText(u"No 09"_s);
    Trigger(u"mnuPaste"_s);
    Trigger(u"mnuFillCounting"_s);
    EXPECT_EQ(At(0, u"Comment"_s), u"No 09"_s);
    EXPECT_EQ(At(1, u"Comment"_s), u"No 10"_s);
    Trigger(u"mnuFill"_s);
    EXPECT_EQ(At(1, u"Comment"_s), u"No 09"_s);

    // Two trends of an archive under one name.
    const QString first = At(0, u"Runtime Name"_s);
    GoTo(1, u"Runtime Name"_s);
    QApplication::clipboard()->setText(first);
    messages_.clear();
    Trigger(u"mnuPaste"_s);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_NE(At(1, u"Runtime Name"_s), first);
}

TEST_F(EditorProjectTableTest, WhatAnotherProgramWritesIsShownOnReturn) {
    OpenTable();
    const QString name = Text(0, u"Name"_s);
    Filter(u"Name"_s)->setText(u"="_s + name);
    Elsewhere([&](projectdb::ProjectRows& rows) {
        rows.Trends().Find("Name = '" + name.toStdString() + "'");
        rows.Trends().Set("Unit", std::u16string(u"theirs"));
        rows.Trends().Update();
    });
    // Written over what has not been seen: refused, and shown.
    GoTo(0, u"Unit"_s);
    messages_.clear();
    TypeInto(u"mine"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(messages_.size(), 1);
    EXPECT_EQ(Stored(name, "Unit"), u"theirs"_s);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(At(0, u"Unit"_s), u"theirs"_s);
    Elsewhere([&](projectdb::ProjectRows& rows) {
        rows.Trends().Find("Name = '" + name.toStdString() + "'");
        rows.Trends().Set("Unit", std::u16string(u"later"));
        rows.Trends().Update();
    });
    QEvent activated(QEvent::WindowActivate);
    QApplication::sendEvent(Table(), &activated);
    EXPECT_TRUE(QTest::qWaitFor([&] { return At(0, u"Unit"_s) == u"later"_s; }));
    EXPECT_EQ(Rows()->model()->rowCount(), 1) << "still narrowed";
}

/// Nothing is written of what is given up in its middle.
TEST_F(EditorProjectTableTest, ALargeChangeShowsItsProgressAndIsGivenUp) {
    project_ = Brewery();
    Elsewhere([](projectdb::ProjectRows& rows) {
        for (int i = 0; i < 300; ++i) {
            project::NewTrend trend;
            trend.name = u"Many " + QString::number(i).toStdU16String();
            rows.AddTrend(1, trend);
            rows.AddTrendText(rows.GroupOfTrends(1), trend);
        }
    });
    OpenTable();
    Filter(u"Name"_s)->setText(u"Many"_s);
    ASSERT_EQ(Rows()->model()->rowCount(), 300);
    GoTo(0, u"Comment"_s);
    Press(Qt::Key_A, Qt::ControlModifier);
    QApplication::clipboard()->setText(u"written"_s);
    {
        const CancelsProgress user;
        Trigger(u"mnuPaste"_s);
        EXPECT_TRUE(user.hasCancelled);
    }
    EXPECT_EQ(Stored(u"Many 0"_s, "Comment"), u"(Null)"_s);
    EXPECT_EQ(Stored(u"Many 299"_s, "Comment"), u"(Null)"_s);
    EXPECT_THAT(messages_, testing::IsEmpty());
    Trigger(u"mnuPaste"_s);
    EXPECT_EQ(Stored(u"Many 299"_s, "Comment"), u"written"_s);
}

TEST_F(EditorProjectTableTest, WhatCannotBeReadIsSaidAndReadAgain) {
    Open();
    const QString aside = project_ + u".aside"_s;
    ASSERT_TRUE(QFile::rename(project_, aside));
    Key(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    auto* again = Table()->findChild<QPushButton*>(u"cmdReadAgain"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return again->isVisible(); }));
    EXPECT_FALSE(Table()->findChild<QLabel*>(u"lblNotAll"_s)->text().isEmpty());
    EXPECT_EQ(Rows()->model()->rowCount(), 0);
    ASSERT_TRUE(QFile::rename(aside, project_));
    again->click();
    WaitForRows();
    EXPECT_FALSE(again->isVisible());
    EXPECT_THAT(messages_, testing::IsEmpty());
}

/// Narrowed and ordered by two columns, with texts that are missing.
TEST_F(EditorProjectTableTest, LooksInBothLanguages) {
    const QString folder = qEnvironmentVariable("KV_SCREENSHOTS");
    for (const bool english : {true, false}) {
        OpenTable(english);
        Table()->resize(1150, 420);
        Filter(u"Unit"_s)->setText(u"=bar | =\u00B0C"_s);
        QTableView* rows = Rows();
        QHeaderView* headings = rows->horizontalHeader();
        const auto click = [&](const QString& caption, Qt::KeyboardModifiers held) {
            const int column = ColumnOf(caption);
            const QPoint at(headings->sectionViewportPosition(column) + 12, 6);
            QTest::mouseClick(headings->viewport(), Qt::LeftButton, held, at);
        };
        const QString variable = english ? u"Trend Variable"_s : u"Trendvariable"_s;
        rows->scrollTo(rows->model()->index(0, ColumnOf(variable)));
        click(variable, {});
        EXPECT_TRUE(Count().contains(variable)) << Count().toStdString();
        // Each field stands under its heading, as wide as the column.
        for (QLineEdit* field : Table()->findChildren<QLineEdit*>()) {
            if (!field->objectName().startsWith(u"txtFilter_"_s) || field->isHidden()) continue;
            EXPECT_FALSE(field->accessibleName().isEmpty());
            EXPECT_GT(field->y(), headings->fontMetrics().height() / 2);
        }
        QApplication::processEvents();
        if (!folder.isEmpty()) {
            Table()->grab().save(folder +
                                 u"/project-table-%1.png"_s.arg(english ? u"en"_s : u"de"_s));
        }
        CloseProject();
    }
    EXPECT_THAT(messages_, testing::IsEmpty());
}

TEST_F(EditorProjectTableTest, WhatIsChosenThereIsExported) {
    OpenTable();
    const QString file = project_ + u".csv"_s;
    const auto exported = [&] {
        QApplication::setActiveWindow(Table());
        AnswerDialog(
            [&] { Press(Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier); },
            [&](QDialog& dialog) {
                ASSERT_EQ(dialog.objectName(), u"FExport"_s);
                EXPECT_TRUE(dialog.findChild<QRadioButton*>(u"optSelected"_s)->isChecked());
                dialog.findChild<QRadioButton*>(u"optCsv"_s)->click();
                dialog.findChild<QLineEdit*>(u"txtFile"_s)->setText(file);
                dialog.findChild<QPushButton*>(u"cmdOk"_s)->click();
            });
        QFile written(file);
        EXPECT_TRUE(written.open(QIODevice::ReadOnly));
        const QByteArray content = written.readAll();
        written.remove();
        return content;
    };
    GoTo(3, u"Unit"_s);
    Press(Qt::Key_Space, Qt::ShiftModifier);
    const QByteArray one = exported();
    EXPECT_EQ(one.count('\n'), 2) << one.toStdString();
    EXPECT_TRUE(one.contains(At(3, u"Runtime Name"_s).toUtf8()));
    // Without a selection, what the filters leave.
    GoTo(0, u"Unit"_s);
    Filter(u"Unit"_s)->setText(u"=%"_s);
    ASSERT_TRUE(QTest::qWaitFor([this] { return Rows()->model()->rowCount() < 200; }));
    EXPECT_EQ(exported().count('\n'), 1 + Rows()->model()->rowCount());
}

TEST_F(EditorProjectTableTest, AViewIsKeptAndATrendFoundInTheEditor) {
    OpenTable();
    auto* views = Table()->findChild<QComboBox*>(u"cmbView"_s);
    EXPECT_GE(views->findText(u"Unknown variables"_s), 0);
    Filter(u"Unit"_s)->setText(u"=bar"_s);
    AnswerDialog([this] { Trigger(u"mnuKeepView"_s); },
                 [](QDialog& dialog) {
                     dialog.findChild<QLineEdit*>()->setText(u"Pressures"_s);
                     dialog.accept();
                 });
    const int bars = Rows()->model()->rowCount();
    Trigger(u"mnuReset"_s);
    ASSERT_GE(views->findText(u"Pressures"_s), 0);
    views->setCurrentIndex(views->findText(u"Pressures"_s));
    emit views->activated(views->currentIndex());
    EXPECT_EQ(Rows()->model()->rowCount(), bars);

    GoTo(bars - 1, u"Unit"_s);
    const QString name = At(bars - 1, u"Runtime Name"_s);
    Trigger(u"mnuGoTo"_s);
    EXPECT_EQ(CurrentName(), name);
}

}  // namespace
