// An archive is deleted by mistake, and the project taken back to what it was in the morning.

#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "studio/StudioDesk.h"

namespace {

using namespace Qt::Literals::StringLiterals;

class RestoreTest : public StudioDesk {};

TEST_F(RestoreTest, TheEditorShowsWhatHasComeBackAndGoesOn) {
    ASSERT_TRUE(QFile::copy(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"), file_));
    QFile::setPermissions(file_, QFile::ReadOwner | QFile::WriteOwner);
    StartWithProject(kEnglish);
    const QStringList before = studio_->ArchiveNodes();
    studio_->ClickNode(u"Sudhaus"_s);
    const QStringList trends = Trends().Names();
    ASSERT_FALSE(trends.isEmpty());
    User::Press(Qt::Key_Delete, Qt::ControlModifier);
    ASSERT_FALSE(studio_->ArchiveNodes().contains(u"Sudhaus"_s));
    studio_->ClickNode(before.back());
    messages_.clear();

    user_.InDialog(
        u"frmBackups"_s,
        [](QWidget& shown) {
            auto* list = shown.findChild<QTreeWidget*>(u"lstBackups"_s);
            ASSERT_TRUE(QTest::qWaitFor([&] { return list->topLevelItemCount() == 1; }));
            User::Click(*shown.findChild<QPushButton*>(u"cmdRestore"_s));
        },
        [&] { User::ChooseFromMenu(studio_->Window(), u"mnuFile"_s, u"mnuFileBackups"_s); });
    EXPECT_EQ(TakeMessages().size(), 1) << "the question, and no complaint";
    EXPECT_EQ(studio_->ArchiveNodes(), before);
    EXPECT_EQ(Archives().Names(), before);
    EXPECT_EQ(Archives().CurrentName(), before.back()) << "where the user was";
    studio_->ClickNode(u"Sudhaus"_s);
    EXPECT_EQ(Trends().Names(), trends);

    // The deletion is a step of another state of the project.
    User::Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(TakeMessages(), QStringList());
    EXPECT_EQ(studio_->ArchiveNodes(), before);

    // What comes back can be worked on, and is the file that is there under the name.
    Trends().Overwrite(0, u"Unit"_s, u"kPa"_s);
    EXPECT_EQ(Trends().Cell(0, u"Unit"_s), u"kPa"_s);
    ado::Connection other;
    Connect(other);
    ado::Recordset rows;
    rows.Open("TchrTrends", other, ado::CommandType::Table);
    rows.SetFilter("Unit = 'kPa' AND Name = '" + trends.front().toStdString() + "'");
    EXPECT_EQ(rows.RecordCount(), 1U);
}

}  // namespace
