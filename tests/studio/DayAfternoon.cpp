// The afternoon of the day, and the day as a whole.

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTableView>
#include <QTest>

#include "studio/DayTest.h"
#include "studio/ProjectTree.h"

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A window that lives beside the studio's; null while it is not shown.
QWidget* ShownWindow(const QString& name) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == name && window->isVisible()) return window;
    }
    return nullptr;
}

}  // namespace

void DayTest::Run(const char* name, void (DayTest::*chapter)()) {
    if (HasFailure()) return;
    SCOPED_TRACE(name);
    QElapsedTimer time;
    time.start();
    (this->*chapter)();
    RecordProperty(name, static_cast<int>(time.elapsed()));  // ms
}

void DayTest::GoOnInEnglish() {
    studio_.reset();
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_THAT(ErrorsIn(file_.toStdString()), IsEmpty());
    StartWithProject(kEnglish);
    EXPECT_EQ(studio_->Editor()->windowTitle(), u"Archive Editor"_s);
    EXPECT_EQ(studio_->ArchiveNodes(), plan_.ArchiveNames());
    EXPECT_EQ(Archives().Names(), plan_.ArchiveNames());
    EXPECT_EQ(studio_->Find<QComboBox>(u"cmbLanguage"_s)->currentData().toInt(), kGerman);
    ExpectLayoutAsLeft();
}

void DayTest::FillInTheSecondLanguage() {
    ChooseTextLanguage(1);
    const QString english[] = {u"Brewhouse"_s, u"Fermentation"_s, u"Daily file"_s};
    for (int i = 0; i < 3; ++i) {
        studio_->ClickNode(plan_.archives[i].name);
        EditInDialog(u"FArchiv"_s,
                     [&](QWidget& dialog) { User::Fill(dialog, u"txtTextID"_s, english[i]); });
        plan_.archives[i].texts.english = english[i];
    }
    OpenArchive(u"Sudhaus"_s);
    for (int row = 0; row < 6; ++row) {
        const QString text = u"Kettle no. %1"_s.arg(row + 1);
        Trends().ClickCell(row, u"Name"_s);
        EditInDialog(u"FTrend"_s,
                     [&](QWidget& dialog) { User::Fill(dialog, u"txtTextID"_s, text); });
        plan_.Of(u"Sudhaus"_s).trends[row].texts.english = text;
    }
    ChooseTextLanguage(0);
    OpenArchive(u"Sudhaus"_s);
    Trends().ClickCell(4, u"Name"_s);
    EditInDialog(u"FTrend"_s, [](QWidget& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>(u"txtTextID"_s)->text(), u"Würze in Pfanne"_s);
        User::Press(Qt::Key_Escape);
    });
    EXPECT_THAT(TakeMessages(), IsEmpty());
    ExpectFileAsPlanned();
}

void DayTest::Rename() {
    studio_->ClickNode(u"Störung"_s);
    EditInDialog(u"FArchiv"_s, [this](QWidget& dialog) {
        User::Fill(dialog, u"txtName"_s, u"Sudhaus"_s);
        User::Press(Qt::Key_Return);
        EXPECT_THAT(TakeMessages(), ElementsAre(u"Double Name"_s));
        ASSERT_TRUE(dialog.isVisible());
        User::Fill(dialog, u"txtName"_s, u"Störungen"_s);
    });
    DayPlan::Archive& archive = plan_.Of(u"Störung"_s);
    // The text was the name all the time, so it goes with it.
    archive.name = archive.texts.german = u"Störungen"_s;
    EXPECT_EQ(studio_->ArchiveNodes(), plan_.ArchiveNames());
    EXPECT_EQ(studio_->Editor()->windowTitle(), u"Archive Editor: Störungen"_s);

    OpenArchive(u"Sudhaus"_s);
    DayPlan::Archive& brewhouse = plan_.Of(u"Sudhaus"_s);
    Trends().Overwrite(7, u"Name"_s, u"Whirlpool"_s);
    brewhouse.trends[7].name = u"Whirlpool"_s;
    Trends().ClickCell(8, u"Name"_s);
    User::Type(u"Whirlpool"_s);
    User::Press(Qt::Key_Return);
    EXPECT_THAT(TakeMessages(), ElementsAre(u"Name already in use"_s));
    // What was refused stays in the cell until it is another text or given up.
    User::Press(Qt::Key_A, Qt::ControlModifier);
    User::Press(Qt::Key_Backspace);
    User::Press(Qt::Key_Return);
    EXPECT_THAT(TakeMessages(), ElementsAre(u"Name field must have a unique identifier (name)"_s));
    User::Press(Qt::Key_Escape);
    EXPECT_EQ(Trends().Names(), brewhouse.TrendNames());
    ExpectFileAsPlanned();
}

void DayTest::Copy() {
    // The archive in the grid, with all that belongs to it; its copy is opened.
    OpenArchive(u"Sudhaus"_s);
    User::Press(Qt::Key_F6);
    User::Press(Qt::Key_D, Qt::ControlModifier);
    DayPlan::Archive copy = plan_.Of(u"Sudhaus"_s);
    copy.name = u"Copy of Sudhaus"_s;
    for (DayPlan::Trend& trend : copy.trends) trend.nameOfText.clear();
    plan_.archives.append(copy);
    EXPECT_EQ(studio_->Editor()->windowTitle(), u"Archive Editor: Copy of Sudhaus"_s);
    EXPECT_EQ(studio_->ArchiveNodes(), plan_.ArchiveNames());
    EXPECT_EQ(Trends().Names(), copy.TrendNames());

    // Two trends of it, once more.
    OpenArchive(copy.name);
    Trends().ClickRecord(1);
    Trends().ClickRecord(4, Qt::ControlModifier);
    for (const QString& prefix : {u"Copy of "_s, u"Copy(2) of "_s}) {
        User::Press(Qt::Key_D, Qt::ControlModifier);
        for (const int row : {1, 4}) {
            DayPlan::Trend trend = copy.trends[row];
            trend.name = prefix + trend.name;
            plan_.Of(copy.name).trends.append(trend);
        }
        Trends().ClickRecord(1);
        Trends().ClickRecord(4, Qt::ControlModifier);
    }
    EXPECT_EQ(Trends().Names(), plan_.Of(copy.name).TrendNames());
    EXPECT_THAT(TakeMessages(), IsEmpty());
    ExpectFileAsPlanned();
}

void DayTest::Delete() {
    OpenArchive(u"Gärung"_s);
    Trends().ClickRecord(2);
    Trends().ClickRecord(4, Qt::ShiftModifier);
    answerTo_ = messages::MessageResult::Cancel;
    User::Press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_EQ(Trends().RowCount(), 40);
    answerTo_ = messages::MessageResult::Ok;
    User::Press(Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_THAT(TakeMessages(), testing::Each(u"Do you really want to delete 3 trend objects?"_s));
    plan_.Of(u"Gärung"_s).trends.remove(2, 3);
    EXPECT_EQ(Trends().Names(), plan_.Of(u"Gärung"_s).TrendNames());
    EXPECT_EQ(Panel(1), u"Func: Delete"_s);
    EXPECT_EQ(Panel(3), u"Trends:3"_s);

    // The tree: by key, and from the context menu.
    studio_->ClickNode(u"Kennlinie"_s);
    User::Press(Qt::Key_Delete, Qt::ControlModifier);
    plan_.Remove(u"Kennlinie"_s);
    user_.InDialog(
        u"mnuArchive"_s, [](QWidget& menu) { User::ClickEntry(menu, u"mnuArchiv(2)"_s); },
        [&] {
            QWidget* tree = studio_->Window().Tree().viewport();
            const QPoint node = studio_->NodePoint(u"Monatsdatei"_s);
            User::ClickAt(*tree, node);
            User::ClickAt(*tree, node, {}, Qt::RightButton);
        });
    plan_.Remove(u"Monatsdatei"_s);
    EXPECT_THAT(
        TakeMessages(),
        ElementsAre(u"Do you really want to delete the archive containing 0 trend objects?"_s,
                    u"Do you really want to delete the archive containing 30 trend "
                    "objects?"_s));
    EXPECT_EQ(studio_->ArchiveNodes(), plan_.ArchiveNames());
    EXPECT_EQ(Archives().Names(), plan_.ArchiveNames());
    ExpectFileAsPlanned();
}

void DayTest::ChooseOptions() {
    OpenArchive(u"Tagesdatei"_s);
    user_.InDialog(
        u"FConfigEditor"_s,
        [](QWidget& dialog) {
            EXPECT_EQ(dialog.windowTitle(), u"Options"_s);
            User::Fill(dialog, u"chkDelQuestion"_s, {});
            User::Fill(dialog, u"chkShowStatusBar"_s, {});
            auto* hidden = dialog.findChild<QListWidget*>(u"lstTrendColExist"_s);
            const auto found = hidden->findItems(u"Display Maximum"_s, Qt::MatchExactly);
            ASSERT_EQ(found.size(), 1);
            User::Fill(dialog, u"lstTrendColExist"_s, {});
            hidden->scrollToItem(found.front());
            const QPoint place = hidden->visualItemRect(found.front()).center();
            User::ClickAt(*hidden->viewport(), place);
            QTest::mouseDClick(hidden->viewport(), Qt::LeftButton, {}, place);
            User::Fill(dialog, u"cmdOk"_s, {});
        },
        [this] { ChooseExtra(kOptions); });
    EXPECT_TRUE(Trends().ShownFields().contains(u"VMax"_s));
    EXPECT_FALSE(studio_->Find<QWidget>(u"sb"_s)->isVisible());
    NoteLayout();
    // Nobody is asked any more.
    Trends().ClickRecord(0);
    User::Press(Qt::Key_Delete, Qt::ControlModifier);
    plan_.Of(u"Tagesdatei"_s).trends.removeFirst();
    EXPECT_EQ(Trends().Names(), plan_.Of(u"Tagesdatei"_s).TrendNames());
    EXPECT_THAT(TakeMessages(), IsEmpty());
}

void DayTest::LookAtHelpAndReport() {
    ChooseExtra(kStatistic);
    EXPECT_EQ(Panel(1), u"Func: Statistik"_s);
    EXPECT_EQ(Panel(2), u"Archive:%1"_s.arg(plan_.archives.size()));
    EXPECT_EQ(Panel(3), u"Trends:%1"_s.arg(plan_.TrendCount()));

    const auto closeAndGoOn = [this](QWidget* window) {
        window->close();
        studio_->Window().activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&studio_->Window()));
    };
    ChooseExtra(kReport);
    QWidget* report = ShownWindow(u"frmReport"_s);
    ASSERT_NE(report, nullptr);
    auto* archives = report->findChild<QListWidget*>(u"lstArchives"_s);
    const auto isListed = [&] { return archives->count() >= plan_.archives.size(); };
    EXPECT_TRUE(QTest::qWaitFor(isListed)) << archives->count();
    closeAndGoOn(report);

    OpenArchive(u"Sudhaus"_s);
    User::Press(Qt::Key_F1);
    QWidget* help = ShownWindow(u"frmHelp"_s);
    ASSERT_NE(help, nullptr);
    closeAndGoOn(help);
    EXPECT_THAT(TakeMessages(), IsEmpty());
}

/// Another program has worked on the archives; what was arranged in the editor stays.
void DayTest::TakeInWhatOthersDid() {
    {
        ado::Connection connection;
        Connect(connection);
        const std::int32_t root = 1;
        const std::u16string name = u"Abfüllung";
        const std::int32_t archive = AddRow(connection, "TchrArchives", {{"Name", name}});
        const std::int32_t group =
            AddRow(connection, "TidxGroups",
                   {{"ParentID", root}, {"Name", name}, {"Type", -2}, {"Parameter", archive}});
        const std::int32_t text =
            AddRow(connection, "TidxTexts", {{"ParentID", group}, {"Name", u"arch" + name}});
        ado::Recordset archives;
        archives.Open("TchrArchives", connection, ado::CommandType::Table);
        archives.SetFilter("ID = " + std::to_string(archive));
        archives.Set("TextID", text);
        archives.Update();
    }
    plan_.archives.append({u"Abfüllung"_s, {}, {}, {}});
    ChooseExtra(kRefresh);
    QCoreApplication::processEvents();
    EXPECT_EQ(studio_->ArchiveNodes(), plan_.ArchiveNames());
    EXPECT_EQ(Archives().Names(), plan_.ArchiveNames());
    ExpectLayoutAsLeft();
    OpenArchive(u"Abfüllung"_s);
    User::Press(Qt::Key_Insert);
    const QString name = Trends().CurrentName();
    EXPECT_TRUE(name.startsWith(u"Trd"_s)) << name.toStdString();
    plan_.Of(u"Abfüllung"_s).trends.append({name, {}});
    EXPECT_THAT(TakeMessages(), IsEmpty());
    ExpectFileAsPlanned();
}

void DayTest::FindEverythingAsItWas() {
    User::Press(Qt::Key_W, Qt::ControlModifier);  // closes the project
    EXPECT_FALSE(studio_->Window().HasProject());
    EXPECT_THAT(TakeMessages(), IsEmpty());
    const Content content = ReadContent(file_.toStdString());
    plan_.ExpectIn(content);
    ExpectSameForMdbTools(file_.toStdString(), content);
    EXPECT_THAT(ErrorsIn(file_.toStdString()), IsEmpty());

    studio_.reset();
    StartWithProject(kEnglish);
    EXPECT_EQ(studio_->ArchiveNodes(), plan_.ArchiveNames());
    ExpectLayoutAsLeft();
    EXPECT_FALSE(studio_->Find<QWidget>(u"sb"_s)->isVisible());
    for (const DayPlan::Archive& archive : plan_.archives) {
        OpenArchive(archive.name);
        EXPECT_EQ(Trends().Names(), archive.TrendNames()) << archive.name.toStdString();
    }
    OpenArchive(u"Tagesdatei"_s);
    Trends().ClickRecord(0);
    User::Press(Qt::Key_Delete, Qt::ControlModifier);
    plan_.Of(u"Tagesdatei"_s).trends.removeFirst();
    EXPECT_THAT(TakeMessages(), IsEmpty()) << "nobody is asked, as before";
    ExpectFileAsPlanned();
    studio_.reset();
    EXPECT_THAT(ErrorsIn(file_.toStdString()), IsEmpty());
}

TEST_F(DayTest, FromANewProjectToTheReport) {
    Run("MakeAProject", &DayTest::MakeAProject);
    Run("OtherToolsFillIn", &DayTest::OtherToolsFillIn);
    Run("MakeTenArchives", &DayTest::MakeTenArchives);
    Run("AddTrendsByKey", &DayTest::AddTrendsByKey);
    Run("PasteFromASpreadsheet", &DayTest::PasteTrendsFromASpreadsheet);
    Run("CopyTrendsAcross", &DayTest::CopyTrendsAcross);
    Run("SetTrendsUp", &DayTest::SetTrendsUp);
    Run("SortAndNarrow", &DayTest::SortAndNarrow);
    Run("ArrangeTheGrid", &DayTest::ArrangeTheGrid);
    Run("GoOnInEnglish", &DayTest::GoOnInEnglish);
    Run("SecondLanguage", &DayTest::FillInTheSecondLanguage);
    Run("Rename", &DayTest::Rename);
    Run("Copy", &DayTest::Copy);
    Run("Delete", &DayTest::Delete);
    Run("ChooseOptions", &DayTest::ChooseOptions);
    Run("LookAtHelpAndReport", &DayTest::LookAtHelpAndReport);
    Run("TakeInWhatOthersDid", &DayTest::TakeInWhatOthersDid);
    Run("FindEverythingAsItWas", &DayTest::FindEverythingAsItWas);
}
