#include <gmock/gmock.h>

#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QTreeView>

#include "addin/EditorTest.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// The window that shows the open project beside another one.
class EditorCompareTest : public EditorTest {
protected:
    /// As the studio asks for it; the other project is the file as it is now.
    void CompareWithCopy() {
        const QString other = QDir(folder_.path()).filePath(u"Sicherung.kvs"_s);
        ASSERT_TRUE(QFile::copy(project_, other));
        other_ = other;
    }
    void OpenWindow() {
        const QVariant shown = addIn_->CKV4Extensibility_GetMessage(
            u"Host"_s, u"Compare"_s, QStringList{other_, u"Sicherung"_s});
        ASSERT_TRUE(shown.toBool());
        ASSERT_NE(Window(), nullptr);
        QApplication::setActiveWindow(Window());
    }
    [[nodiscard]] QDialog* Window() { return Editor()->findChild<QDialog*>(u"FCompare"_s); }
    template <typename Control>
    [[nodiscard]] Control& The(const QString& name) {
        auto* control = Window()->findChild<Control*>(name);
        if (control == nullptr) qFatal("no %s", qPrintable(name));
        return *control;
    }
    void WaitFor(const QString& state) {
        const QLabel& label = The<QLabel>(u"lblState"_s);
        ASSERT_TRUE(QTest::qWaitFor([&] {
            return label.text() == state && !The<QPushButton>(u"cmdCancel"_s).isVisible();
        })) << label.text().toStdString();
    }
    [[nodiscard]] QTreeView& Tree() { return The<QTreeView>(u"trvDifferences"_s); }
    [[nodiscard]] QString Current(int column) {
        const QModelIndex index = Tree().currentIndex();
        return index.siblingAtColumn(column).data().toString();
    }

    QString other_;
};

TEST_F(EditorCompareTest, TakesOverAFieldAndARowAsStepsOfTheEditor) {
    Open();
    CompareWithCopy();
    const QString unit = Stored(u"Whirlpool Temperatur"_s, "Unit");
    const QString trendVar = Stored(u"Whirlpool Temperatur"_s, "TrendVar");
    Elsewhere([](projectdb::ProjectRows& rows) {
        rows.Trends().SetFilter("Name = 'Whirlpool Temperatur'");
        rows.Trends().Set("Unit", std::u16string(u"K"));
        rows.Trends().Set("TrendVar", std::u16string(u"Sudhaus.Anders"));
        rows.Trends().Update();
    });
    OpenWindow();
    WaitFor(u"Differences: 1"_s);
    EXPECT_EQ(The<QToolButton>(u"cmdChanged"_s).text(), u"&Changed: 1"_s);
    EXPECT_EQ(Current(1), u"Whirlpool Temperatur (archive Sudhaus)"_s);

    // The field under it.
    QTest::keyClick(&Tree(), Qt::Key_Down);
    EXPECT_EQ(Current(0), u"Trend Variable"_s);
    EXPECT_EQ(Current(1), u"Sudhaus.Anders"_s);
    EXPECT_EQ(Current(2), trendVar);
    The<QPushButton>(u"cmdTakeOver"_s).click();
    WaitFor(u"Taken over: 1. Ctrl+Z in the editor takes it back."_s);
    EXPECT_EQ(Stored(u"Whirlpool Temperatur"_s, "TrendVar"), trendVar);
    EXPECT_EQ(Stored(u"Whirlpool Temperatur"_s, "Unit"), u"K"_s);

    The<QPushButton>(u"cmdTakeOver"_s).click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return Tree().model()->rowCount() == 0; }));
    EXPECT_EQ(Stored(u"Whirlpool Temperatur"_s, "Unit"), unit);
    EXPECT_EQ(messages_.size(), 0) << "a row that changes can be taken back: nothing is asked";

    TurnTo();
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Stored(u"Whirlpool Temperatur"_s, "Unit"), u"K"_s);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Stored(u"Whirlpool Temperatur"_s, "TrendVar"), u"Sudhaus.Anders"_s);
    // What is listed is of the project as it is.
    QApplication::setActiveWindow(Window());
    WaitFor(u"Differences: 1"_s);
}

TEST_F(EditorCompareTest, GoesFromDifferenceToDifferenceAndIntoTheEditor) {
    Open();
    CompareWithCopy();
    Elsewhere([](projectdb::ProjectRows& rows) {
        for (const int archive : {1, 2}) {
            ASSERT_TRUE(rows.SeekTrendsOf(archive));
            rows.Trends().Set("Unit", std::u16string(u"K"));
            rows.Trends().Update();
        }
    });
    OpenWindow();
    WaitFor(u"Differences: 2"_s);
    const QString first = Current(1);
    QTest::keyClick(&Tree(), Qt::Key_F8);
    const QString second = Current(1);
    EXPECT_NE(first, second);
    QTest::keyClick(&Tree(), Qt::Key_F8);
    EXPECT_EQ(The<QLabel>(u"lblState"_s).text(), u"There is no further difference."_s);
    QTest::keyClick(&Tree(), Qt::Key_F8, Qt::ShiftModifier);
    EXPECT_EQ(Current(1), first);
    QTest::keyClick(&Tree(), Qt::Key_F8);
    QTest::keyClick(&Tree(), Qt::Key_Return);
    EXPECT_EQ(host_.selected, u"ARCH2"_s);
    EXPECT_TRUE(second.startsWith(CurrentName() + u" ("_s)) << second.toStdString();
}

TEST_F(EditorCompareTest, TakingOverAllIsAskedForAndTakenBackAsAWhole) {
    Open();
    CompareWithCopy();
    const auto sorted = [this] {
        QStringList names = Names();  // rows that come back may stand elsewhere
        names.sort();
        return names;
    };
    const QStringList names = sorted();
    SelectRow(0);
    Key(Qt::Key_Delete, Qt::ControlModifier);
    const QStringList fewer = sorted();
    ASSERT_EQ(fewer.size(), names.size() - 1);
    messages_.clear();
    OpenWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return Tree().model()->rowCount() > 0; }));
    The<QPushButton>(u"cmdTakeAll"_s).click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return Tree().model()->rowCount() == 0; }));
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_TRUE(messages_[0].text.startsWith(u"Take over 2 differences"_s))
        << messages_[0].text.toStdString();
    TurnTo();
    EXPECT_EQ(sorted(), names);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(sorted(), fewer);
}

TEST_F(EditorCompareTest, AFileThatCannotBeReadIsSaid) {
    Open();
    other_ = QDir(folder_.path()).filePath(u"fehlt.kvs"_s);
    OpenWindow();
    const QLabel& state = The<QLabel>(u"lblState"_s);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return state.text().startsWith(u"The projects cannot be compared: "_s); }));
    EXPECT_TRUE(state.text().contains(u"fehlt.kvs"_s)) << state.text().toStdString();
    EXPECT_FALSE(The<QPushButton>(u"cmdTakeAll"_s).isEnabled());
}

}  // namespace
