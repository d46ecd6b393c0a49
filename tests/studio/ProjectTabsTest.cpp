// Projects beside each other: whose events, menus and options are whose, and how they come back.

#include "studio/ProjectTabs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <list>
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QFile>
#include <QSettings>
#include <QStatusBar>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>

#include "messages/MessageBox.h"
#include "studio/AddInSet.h"
#include "studio/EditorArea.h"
#include "studio/ProjectPage.h"
#include "studio/ProjectTree.h"
#include "studio/RecordingAddIn.h"
#include "studio/StudioHost.h"
#include "studio/StudioRegistry.h"
#include "studio/StudioWindow.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

/// One that can be there for several projects. An object that has gone leaves its place empty.
class ManyAddIn final : public RecordingAddIn, public KV4AddIn::IInstances {
public:
    class Instance final : public RecordingAddIn {
    public:
        explicit Instance(RecordingAddIn*& place) : place_(place) { place_ = this; }
        ~Instance() override { place_ = nullptr; }

    private:
        RecordingAddIn*& place_;
    };
    std::unique_ptr<KV4AddIn::CKV4Extensibility> MakeInstance() override {
        return std::make_unique<Instance>(others.emplace_back());
    }
    std::list<RecordingAddIn*> others;
};

class ProjectTabsTest : public testing::Test {
protected:
    ProjectTabsTest() {
        QFile::remove(qEnvironmentVariable("KV_REGISTRY"));
        for (const QString& name : {u"A"_s, u"B"_s, u"C"_s}) {
            QFile::copy(QStringLiteral(KV_TEST_DATA "/Leer.kvs"), Path(name));
        }
    }
    void Start(KV4AddIn::CKV4Extensibility& addIn) {
        addIns_.Add(u"Sample"_s, addIn);
        Restart();
    }
    /// As the next morning.
    void Restart() {
        if (window_) window_->close();
        window_.reset();
        window_ = std::make_unique<StudioWindow>(registry_, addIns_, QList<AddInReport>(), &state_);
        window_->show();
        QApplication::setActiveWindow(window_.get());
    }
    [[nodiscard]] QString Path(const QString& name) const {
        return folder_.filePath(name + u".kvs"_s);
    }
    void Open(const QString& name) {
        ASSERT_TRUE(window_->OpenProject(Path(name)));
        QCoreApplication::processEvents();
    }
    [[nodiscard]] QTabBar& Bar() const { return *window_->findChild<QTabBar*>(u"tabProjects"_s); }
    [[nodiscard]] QStringList Tabs() const {
        QStringList tabs;
        for (int i = 0; i < Bar().count(); ++i) tabs += Bar().tabText(i);
        return tabs;
    }
    [[nodiscard]] QString Shown() const { return window_->windowTitle().section(u" - "_s, 0, 0); }
    [[nodiscard]] QString Says() const { return window_->statusBar()->currentMessage(); }
    [[nodiscard]] QString Selected() const {
        const auto node = window_->Host().SelectedNode();
        return node ? node->key : QString();
    }
    /// The events since the last call; of the projects their names.
    [[nodiscard]] static QStringList Take(RecordingAddIn& addIn) {
        QStringList events = addIn.Take();
        for (QString& event : events) {
            if (!event.startsWith(u"Initialize"_s)) continue;
            event = u"Initialize "_s + event.section(u'\\', -1).section(u'.', 0, 0);
        }
        return events;
    }
    void Choose(const QString& action) const { window_->findChild<QAction*>(action)->trigger(); }

    QTemporaryDir folder_;
    QSettings state_{folder_.filePath(u"kvstudio.ini"_s), QSettings::IniFormat};
    StudioRegistry registry_;
    RecordingAddIn one_;
    ManyAddIn many_;
    AddInSet addIns_;
    std::unique_ptr<StudioWindow> window_;
};

TEST_F(ProjectTabsTest, EachProjectHasItsOwnAddInAndTreeAndWhatIsShownIsItsOwn) {
    Start(many_);
    Open(u"A"_s);
    EXPECT_FALSE(Bar().isVisible()) << "for one project";
    EXPECT_FALSE(window_->findChild<QAction*>(u"mnuViewNextProject"_s)->isEnabled());
    window_->Tree().ClickAsUser(u"SMP0"_s);
    window_->Tree().ClickAsUser(u"SMPL2"_s);
    many_.Take();
    Open(u"B"_s);
    EXPECT_TRUE(Bar().isVisible());
    EXPECT_THAT(Tabs(), ElementsAre(u"A"_s, u"B"_s));
    EXPECT_EQ(Bar().tabToolTip(1), Path(u"B"_s));
    EXPECT_EQ(Take(many_), QStringList{u"Deactivate"_s});
    ASSERT_EQ(many_.others.size(), 1U);
    RecordingAddIn& second = *many_.others.front();
    EXPECT_THAT(Take(second), ElementsAre(u"Initialize B"_s, u"StartupComplete"_s));

    window_->Tree().ClickAsUser(u"SMP0"_s);
    EXPECT_THAT(Take(many_), IsEmpty());
    EXPECT_TRUE(Take(second).contains(u"NodeClick /SMP0"_s));
    second.editor->setWindowTitle(u"Editor of B"_s);
    QCoreApplication::processEvents();
    EXPECT_EQ(window_->windowTitle(), u"Editor of B - B - Korvala Studio"_s);
    many_.editor->setWindowTitle(u"Editor of A"_s);
    EXPECT_EQ(window_->windowTitle(), u"Editor of B - B - Korvala Studio"_s);

    QTest::keyClick(&window_->Tree(), Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(window_->windowTitle(), u"Editor of A - A - Korvala Studio"_s);
    EXPECT_EQ(Selected(), u"SMPL2"_s);
    EXPECT_TRUE(window_->Tree().hasFocus());
    EXPECT_THAT(Take(many_), IsEmpty()) << "it has been there all the time";
    QTest::keyClick(&window_->Tree(), Qt::Key_PageUp, Qt::AltModifier);
    EXPECT_EQ(Shown(), u"Editor of B"_s);

    // In each its own language anew, and where the user was.
    second.Take();
    many_.Take();
    Choose(u"mnuSettingsLanguage(1033)"_s);
    EXPECT_THAT(Take(many_), ElementsAre(u"Terminate"_s)) << "the rest when it is shown";
    EXPECT_TRUE(Take(second).contains(u"NodeClick /SMP0"_s));
    QTest::keyClick(&window_->Tree(), Qt::Key_PageDown, Qt::AltModifier);
    EXPECT_TRUE(Take(many_).contains(u"NodeClick SMP0/SMPL2"_s));

    Choose(u"mnuFileClose"_s);
    EXPECT_EQ(many_.events.last(), u"Terminate"_s);
    EXPECT_FALSE(Bar().isVisible());
    EXPECT_EQ(Shown(), u"B"_s);
    EXPECT_EQ(many_.others.front(), &second);
    Choose(u"mnuFileClose"_s);
    EXPECT_FALSE(window_->HasProject());
    EXPECT_EQ(second.events.last(), u"Terminate"_s);
    EXPECT_EQ(window_->windowTitle(), u"Korvala Studio"_s);
}

// Without objects of its own for each project it goes where the user goes.
TEST_F(ProjectTabsTest, AnAddInThatIsThereOnceBelongsToTheProjectThatIsShown) {
    Start(one_);
    Open(u"A"_s);
    window_->Tree().ClickAsUser(u"SMP0"_s);
    window_->Tree().ClickAsUser(u"SMPL2"_s);
    one_.Take();
    Open(u"B"_s);
    EXPECT_THAT(Take(one_), ElementsAre(u"Deactivate"_s, u"Terminate"_s, u"Initialize B"_s,
                                        u"StartupComplete"_s));
    Bar().setCurrentIndex(0);
    EXPECT_EQ(Selected(), u"SMPL2"_s) << "where the user was";
    EXPECT_TRUE(Take(one_).contains(u"NodeClick SMP0/SMPL2"_s));
    Choose(u"mnuFileClose"_s);
    EXPECT_THAT(Take(one_), ElementsAre(u"Terminate"_s, u"Initialize B"_s, u"StartupComplete"_s));
    window_->close();
    EXPECT_THAT(Take(one_).filter(u"Terminate"_s), testing::SizeIs(1));
}

TEST_F(ProjectTabsTest, AProjectThatIsOpenIsShownUnderWhateverName) {
    Start(many_);
    std::filesystem::create_symlink(Path(u"A"_s).toStdString(), Path(u"symbolic"_s).toStdString());
    std::filesystem::create_hard_link(Path(u"A"_s).toStdString(), Path(u"hard"_s).toStdString());
    Open(u"A"_s);
    for (const QString& name : {u"A"_s, u"symbolic"_s, u"hard"_s}) {
        Open(u"B"_s);
        EXPECT_EQ(Shown(), u"B"_s);
        Open(name);
        EXPECT_EQ(Shown(), u"A"_s) << name.toStdString();
        EXPECT_EQ(Says(), u"Projekt A ist schon geöffnet"_s);
    }
    EXPECT_THAT(Tabs(), ElementsAre(u"A"_s, u"B"_s));
    // Another file of the same name is another project.
    ASSERT_TRUE(QDir(folder_.path()).mkdir(u"Nord"_s));
    ASSERT_TRUE(QFile::copy(Path(u"A"_s), Path(u"Nord/A"_s)));
    Open(u"Nord/A"_s);
    EXPECT_EQ(Tabs().last(), u"A (Nord)"_s);
}

TEST_F(ProjectTabsTest, ATabClosesByItsButtonAndTheMiddleButtonUnlessAnAddInIsAtWork) {
    Start(many_);
    for (const QString& name : {u"A"_s, u"B"_s, u"C"_s}) Open(name);
    bool wasRefused = false;
    many_.others.back()->onClick = [&] {
        emit Bar().tabCloseRequested(0);
        wasRefused = Bar().count() == 3 && !window_->OpenProject(Path(u"A"_s));
        window_->close();
        EXPECT_TRUE(window_->isVisible());
    };
    window_->Tree().ClickAsUser(u"SMP0"_s);
    EXPECT_TRUE(wasRefused);
    EXPECT_TRUE(Says().contains(u"Dialog"_s)) << Says().toStdString();

    QTest::mouseClick(&Bar(), Qt::MiddleButton, {}, Bar().tabRect(0).center());
    EXPECT_THAT(Tabs(), ElementsAre(u"B"_s, u"C"_s));
    EXPECT_EQ(Shown(), u"C"_s);
    EXPECT_EQ(many_.events.last(), u"Terminate"_s);
    auto* close = qobject_cast<QAbstractButton*>(Bar().tabButton(1, QTabBar::RightSide));
    ASSERT_NE(close, nullptr);
    EXPECT_EQ(close->accessibleName(), u"C schließen"_s);
    QTest::mouseClick(close, Qt::LeftButton);
    EXPECT_EQ(Shown(), u"B"_s);
    EXPECT_EQ(many_.others.back(), nullptr) << "its object goes with its project";
}

// A report or a list beside the studio may belong to a project that lies behind another one.
TEST_F(ProjectTabsTest, AnAddInThatLeadsSomewhereBringsItsProjectToTheFront) {
    Start(many_);
    Open(u"A"_s);
    window_->Tree().ClickAsUser(u"SMP0"_s);
    Open(u"B"_s);
    ASSERT_TRUE(many_.host->RefreshNode(u"SMPL1"_s, u"Renamed"_s));
    EXPECT_EQ(Shown(), u"B"_s);
    ASSERT_TRUE(many_.host->SelectNode(u"SMPL1"_s));
    EXPECT_EQ(Shown(), u"A"_s);
    EXPECT_EQ(Selected(), u"SMPL1"_s);
}

TEST_F(ProjectTabsTest, TheProjectsOfTheLastSessionComeBackAndOneThatHasGoneStopsNone) {
    Start(many_);
    for (const QString& name : {u"A"_s, u"B"_s, u"C"_s}) {
        Open(name);
        window_->Tree().ClickAsUser(u"SMP0"_s);
        window_->Tree().ClickAsUser(u"SMPL2"_s);
    }
    Bar().setCurrentIndex(1);
    ASSERT_TRUE(QFile::remove(Path(u"A"_s)));
    Restart();
    many_.Take();
    bool isAsked = false;
    const messages::MessageAnswer answer([&isAsked](const messages::Message&) {
        isAsked = true;
        return messages::MessageResult::Ok;
    });
    window_->OpenLastSession();
    QCoreApplication::processEvents();
    EXPECT_FALSE(isAsked);
    EXPECT_THAT(Tabs(), ElementsAre(u"B"_s, u"C"_s));
    EXPECT_EQ(Shown(), u"B"_s);
    EXPECT_EQ(Selected(), u"SMPL2"_s);
    EXPECT_TRUE(Says().endsWith(Path(u"A"_s))) << Says().toStdString();
    // The other one has not been looked into, and is where it was when it is.
    EXPECT_EQ(Take(many_).filter(u"Initialize"_s).size(), 1);
    Restart();
    window_->OpenLastSession();
    Bar().setCurrentIndex(1);
    EXPECT_EQ(Selected(), u"SMPL2"_s);
    // What the user closes does not come back.
    Choose(u"mnuFileClose"_s);
    Restart();
    window_->OpenLastSession();
    EXPECT_THAT(Tabs(), ElementsAre(u"B"_s));
}

TEST_F(ProjectTabsTest, HelpOpensFromTheMenuAndByF1WhereNoEditorHasItsOwn) {
    Start(one_);
    const auto help = [] {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() == u"frmHelp"_s && window->isVisible()) return window;
        }
        return static_cast<QWidget*>(nullptr);
    };
    QTest::keyClick(window_.get(), Qt::Key_F1);
    ASSERT_NE(help(), nullptr);
    help()->close();
    Choose(u"mnuHelpContents"_s);
    ASSERT_NE(help(), nullptr);
    help()->close();
    Open(u"A"_s);
    window_->Tree().ClickAsUser(u"SMP0"_s);
    QCoreApplication::processEvents();
    EXPECT_TRUE(window_->findChild<QAction*>(u"mnuHelpContents"_s)->shortcut().isEmpty());
}

}  // namespace
}  // namespace studio
