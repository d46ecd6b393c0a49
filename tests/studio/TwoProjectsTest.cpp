// Two projects beside each other with the real add-ins, which lie in the same process.

#include <algorithm>
#include <QApplication>
#include <QFile>
#include <QTabBar>
#include <QTest>

#include "studio/ProjectTree.h"
#include "studio/StudioDesk.h"
#include "support/ProjectInOrder.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::IsEmpty;

class TwoProjectsTest : public StudioDesk {
protected:
    void CopyBrewery(const QString& file) const {
        ASSERT_TRUE(QFile::copy(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"), file));
        QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
    }
    void Turn() const {
        QTabBar& bar = *studio_->Find<QTabBar>(u"tabProjects"_s);
        User::ClickAt(bar, bar.tabRect(1 - bar.currentIndex()).center());
    }
    [[nodiscard]] static int RowsWithUnit(const QString& file, const std::string& unit) {
        const auto rows = RowsOf(ReadContent(file.toStdString()), "TchrTrends");
        return static_cast<int>(std::count_if(rows.begin(), rows.end(), [&](const auto& row) {
            return FieldOf(row.second, "Unit") == unit;
        }));
    }
    void ExpectUnits(int inFirst, int inSecond) const {
        EXPECT_EQ(RowsWithUnit(file_, "kPa1"), inFirst);
        EXPECT_EQ(RowsWithUnit(second_, "kPa2"), inSecond);
        EXPECT_EQ(RowsWithUnit(file_, "kPa2") + RowsWithUnit(second_, "kPa1"), 0);
    }
    void ShowReport() const {
        User::ChooseFromMenu(*studio_->Editor(), u"mnuExtras"_s, u"mnuExtra(%1)"_s.arg(kReport));
    }
    void UndoInTrends() const {
        User::ClickAt(*Trends().View().viewport(), {20, 5});
        User::Press(Qt::Key_Z, Qt::ControlModifier);
    }

    QString second_ = folder_.filePath(u"Zweite.kvs"_s);
};

TEST_F(TwoProjectsTest, WhatIsDoneAndTakenBackInOneLeavesTheOtherAlone) {
    CopyBrewery(file_);
    CopyBrewery(second_);
    StartWithProject(kGerman);
    studio_->ClickNode(u"Sudhaus"_s);
    Trends().Overwrite(0, u"Unit"_s, u"kPa1"_s);
    QWidget* const firstEditor = studio_->Editor();

    ASSERT_TRUE(studio_->Window().OpenProject(second_));
    EXPECT_EQ(studio_->ArchiveNodes(), QStringList()) << "not looked into yet";
    studio_->ClickNode();
    ASSERT_NE(studio_->Editor(), firstEditor);
    studio_->ClickNode(u"Sudhaus"_s);
    EXPECT_NE(Trends().Cell(0, u"Unit"_s), u"kPa1"_s);
    Trends().Overwrite(0, u"Unit"_s, u"kPa2"_s);
    ExpectUnits(1, 1);

    // Each has its own last step.
    Turn();
    EXPECT_EQ(studio_->Editor(), firstEditor);
    UndoInTrends();
    ExpectUnits(0, 1);
    User::Press(Qt::Key_Y, Qt::ControlModifier);
    ExpectUnits(1, 1);
    Turn();
    UndoInTrends();
    ExpectUnits(1, 0);

    // A text that is being typed goes into its own project when the user turns away.
    Trends().ClickCell(0, u"Unit"_s);
    User::Type(u"kPa2"_s);
    Turn();
    ExpectUnits(1, 1);
    EXPECT_THAT(TakeMessages(), IsEmpty());

    // Its tables go from archive to archive by the key that changes tabs elsewhere.
    const QString title = studio_->Window().windowTitle();
    Trends().ClickCell(0, u"Unit"_s);
    User::Press(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(studio_->Editor(), firstEditor);
    EXPECT_NE(studio_->Window().windowTitle(), title);
    User::Press(Qt::Key_PageDown, Qt::AltModifier);
    EXPECT_NE(studio_->Editor(), firstEditor);

    ASSERT_TRUE(studio_->Window().CloseProject());
    EXPECT_EQ(studio_->Editor(), firstEditor);
    studio_->ClickNode(u"Sudhaus"_s);
    Trends().Overwrite(1, u"Unit"_s, u"kPa1"_s);
    ExpectUnits(2, 1);
    EXPECT_THAT(TakeMessages(), IsEmpty());
}

// The report is one for all editors.
TEST_F(TwoProjectsTest, AReportsRowLeadsToTheTabOfItsProject) {
    CopyBrewery(file_);
    CopyBrewery(second_);
    StartWithProject(kGerman);
    studio_->ClickNode(u"Sudhaus"_s);
    ShowReport();
    ASSERT_TRUE(studio_->Window().OpenProject(second_));
    studio_->ClickNode();
    ShowReport();
    QList<QWidget*> reports;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->inherits("report::ReportWindow") && window->isVisible()) reports += window;
    }
    ASSERT_EQ(reports.size(), 2) << "each project has its own";
    const auto rows = RowsOf(ReadContent(file_.toStdString()), "TchrTrends");
    const int trend = rows.rbegin()->first;
    QWidget* const secondEditor = studio_->Editor();
    const QString before = secondEditor->windowTitle();
    for (QWidget* report : reports) {
        if (!report->windowTitle().contains(u"Anlage"_s)) continue;
        QMetaObject::invokeMethod(report, "RowChosen", Q_ARG(QString, u"TchrTrends"_s),
                                  Q_ARG(int, trend), Q_ARG(QString, u"Unit"_s));
    }
    EXPECT_NE(studio_->Editor(), secondEditor);
    EXPECT_EQ(Trends().CurrentName().toStdString(), FieldOf(rows.at(trend), "Name"));
    EXPECT_EQ(secondEditor->windowTitle(), before) << "nothing has moved there";
    EXPECT_THAT(TakeMessages(), IsEmpty());
    for (QWidget* report : reports) report->close();
}

}  // namespace
