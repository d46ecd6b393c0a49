#include "studio/StudioWindow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "messages/MessageBox.h"
#include "studio/AddInSet.h"
#include "studio/EditorArea.h"
#include "studio/ProjectTree.h"
#include "studio/RecordingAddIn.h"
#include "studio/StudioHost.h"
#include "studio/StudioRegistry.h"
#include "support/DamagedMap.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;

class StudioWindowTest : public testing::Test {
protected:
    StudioWindowTest() {
        QFile::remove(qEnvironmentVariable("KV_REGISTRY"));
        addIns_.Add(u"Sample"_s, addIn_);
        QFile::copy(QStringLiteral(KV_TEST_DATA "/Leer.kvs"), Path(u"Anlage.kvs"_s));
        Make();
    }
    void Make() {
        window_.reset();
        window_ = std::make_unique<StudioWindow>(registry_, addIns_, QList<AddInReport>(), &state_);
        window_->show();
    }
    QString Path(const QString& name) const { return folder_.filePath(name); }
    QString InProjectForm(const QString& name) const { return Path(name).replace(u'/', u'\\'); }
    void Write(const QString& name, const QByteArray& content) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QAction* Action(const QString& name) const { return window_->findChild<QAction*>(name); }
    QMenu* Recent() const {
        auto* menu = window_->findChild<QMenu*>(u"mnuFileRecent"_s);
        emit menu->aboutToShow();
        return menu;
    }

    QTemporaryDir folder_;
    QSettings state_{folder_.filePath(u"kvstudio.ini"_s), QSettings::IniFormat};
    StudioRegistry registry_;
    RecordingAddIn addIn_;
    AddInSet addIns_;
    std::unique_ptr<StudioWindow> window_;
};

TEST_F(StudioWindowTest, ProjectRunsFromInitializeToTerminate) {
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    EXPECT_EQ(window_->FirstAddInNode(), u"SMP0"_s);
    EXPECT_EQ(window_->windowTitle(), u"Anlage - Korvala Studio"_s);
    window_->close();
    EXPECT_THAT(addIn_.Take(),
                ElementsAre(u"Initialize %1  0"_s.arg(InProjectForm(u"Anlage.kvs"_s)),
                            u"StartupComplete"_s, u"Terminate"_s));
}

TEST_F(StudioWindowTest, RegisteredNameGoesToTheAddInAsItIs) {
    Write(u"machine.reg"_s,
          u"Windows Registry Editor Version 5.00\r\n\r\n"
          "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Brantor GmbH\\Korvala\\4.0\\Projects\\Anlage]\r\n"
          "\"Path\"=\"%1\"\r\n"_s.arg(folder_.path().replace(u'/', u"\\\\"_s))
              .toUtf8());
    const QByteArray before = qgetenv("KV_REGISTRY");
    qputenv("KV_REGISTRY", Path(u"machine.reg"_s).toUtf8());
    EXPECT_TRUE(window_->OpenProject(u"Anlage"_s));
    EXPECT_EQ(addIn_.events.value(0), u"Initialize Anlage  0"_s);
    qputenv("KV_REGISTRY", before);
}

TEST_F(StudioWindowTest, WhatIsNoProjectIsRefusedAndTheOpenOneStays) {
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    addIn_.Take();
    Write(u"Text.kvs"_s, "this is no database");
    Write(u"Leer0.kvs"_s, {});
    Write(u"Bild.png"_s, "x");
    ASSERT_TRUE(QDir(folder_.path()).mkdir(u"Ordner.kvs"_s));
    struct Row {
        QString project;
        QString expected;
    };
    const Row rows[] = {{u"Fehlt.kvs"_s, u"nicht gefunden"_s},
                        {u"Text.kvs"_s, u"keine Projektdatenbank"_s},
                        {u"Leer0.kvs"_s, u"ist leer"_s},
                        {u"Ordner.kvs"_s, u"keine Datei"_s},
                        {u"Bild.png"_s, u"Endung .kvs"_s}};
    QString shown;
    const messages::MessageAnswer answer([&shown](const messages::Message& message) {
        shown = message.text;
        return messages::MessageResult::Ok;
    });
    for (const Row& row : rows) {
        shown.clear();
        EXPECT_FALSE(window_->OpenProject(Path(row.project)));
        EXPECT_TRUE(shown.contains(row.expected)) << qPrintable(shown);
    }
    EXPECT_FALSE(window_->OpenProject(u"Unbekannt"_s));
    EXPECT_TRUE(shown.contains(u"nicht eingetragen"_s)) << qPrintable(shown);
    EXPECT_TRUE(window_->HasProject());
    EXPECT_TRUE(addIn_.Take().isEmpty());
}

TEST_F(StudioWindowTest, ABlankBehindTheNameMayBelongToIt) {
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs "_s)));
    EXPECT_EQ(window_->windowTitle(), u"Anlage - Korvala Studio"_s);
    ASSERT_TRUE(QFile::copy(Path(u"Anlage.kvs"_s), Path(u"Blank.kvs "_s)));
    ASSERT_TRUE(window_->OpenProject(Path(u"Blank.kvs "_s)));
    EXPECT_EQ(window_->windowTitle(), u"Blank - Korvala Studio"_s);
    EXPECT_TRUE(addIn_.events.contains(u"Initialize %1  0"_s.arg(InProjectForm(u"Blank.kvs "_s))));
}

TEST_F(StudioWindowTest, AProjectThatCanOnlyBeLookedAtSaysSoInTheTitle) {
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    EXPECT_EQ(window_->windowTitle(), u"Anlage - Korvala Studio"_s);
    // Of a version that nobody writes any more.
    QFile::copy(QStringLiteral(KV_TEST_DATA "/test2V1997.mdb"), Path(u"Alt.kvs"_s));
    ASSERT_TRUE(window_->OpenProject(Path(u"Alt.kvs"_s)));
    EXPECT_EQ(window_->windowTitle(), u"Alt [nur lesbar] - Korvala Studio"_s);
    Action(u"mnuSettingsLanguage(1033)"_s)->trigger();
    EXPECT_EQ(window_->windowTitle(), u"Alt [read only] - Korvala Studio"_s);
    // One that every change would damage more.
    QFile::copy(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"), Path(u"Kaputt.kvs"_s));
    ASSERT_TRUE(QFile::setPermissions(Path(u"Kaputt.kvs"_s), QFile::ReadOwner | QFile::WriteOwner));
    ASSERT_NO_FATAL_FAILURE(FreeUsedPages(Path(u"Kaputt.kvs"_s)));
    ASSERT_TRUE(window_->OpenProject(Path(u"Kaputt.kvs"_s)));
    EXPECT_EQ(window_->windowTitle(), u"Kaputt [read only] - Korvala Studio"_s);
}

TEST_F(StudioWindowTest, LanguageIsStoredAndTheProjectLoadedAgain) {
    EXPECT_EQ(Action(u"mnuFileOpen"_s)->text(), u"Ö&ffnen..."_s);
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    addIn_.Take();
    Action(u"mnuSettingsLanguage(1033)"_s)->trigger();
    EXPECT_EQ(Action(u"mnuFileOpen"_s)->text(), u"&Open..."_s);
    EXPECT_EQ(addIn_.Take().size(), 3) << "Terminate, Initialize, StartupComplete";
    EXPECT_EQ(StudioRegistry().InterfaceLanguage(), kEnglish);
    Make();
    EXPECT_EQ(Action(u"mnuFileOpen"_s)->text(), u"&Open..."_s) << "at the next start, too";
}

TEST_F(StudioWindowTest, AnotherLanguageComesBackToTheNodeThatWasSelected) {
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    window_->Tree().ClickAsUser(u"SMP0"_s);
    window_->Tree().ClickAsUser(u"SMPL2"_s);
    addIn_.Take();
    Action(u"mnuSettingsLanguage(1033)"_s)->trigger();
    ASSERT_TRUE(window_->Tree().SelectedNode());
    EXPECT_EQ(window_->Tree().SelectedNode()->key, u"SMPL2"_s);
    EXPECT_EQ(addIn_.Take().filter(u"NodeClick"_s),
              (QStringList{u"NodeClick /SMP0"_s, u"NodeClick SMP0/SMPL2"_s}));
    // One that is not there any more: its branch.
    addIn_.childCount = 1;
    Action(u"mnuSettingsLanguage(1031)"_s)->trigger();
    EXPECT_EQ(window_->Tree().SelectedNode()->key, u"SMP0"_s);
}

// Alt and a letter used to turn between both menus, and the File menu showed Ctrl+O while it
// sorted.
TEST_F(StudioWindowTest, AKeyOfTwoMenusIsThatOfTheWindowWithTheKeyboard) {
    /// Keeps Ctrl+O to itself.
    class Grid final : public QWidget {
    public:
        using QWidget::QWidget;
        bool event(QEvent* event) override {
            if (event->type() == QEvent::ShortcutOverride) {
                const auto* key = static_cast<QKeyEvent*>(event);
                event->setAccepted(key->keyCombination() == (Qt::CTRL | Qt::Key_O));
                return true;
            }
            return QWidget::event(event);
        }
    };
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    auto* editor = new QWidget(window_->findChild<EditorArea*>()->Container());
    auto* bar = new QMenuBar(editor);
    QAction* archive = bar->addMenu(u"&Inhalt && more"_s)->menuAction();
    QAction* trends = bar->addMenu(u"&Trends"_s)->menuAction();
    auto* grid = new Grid(editor);
    grid->setAccessibleName(u"Grid"_s);
    grid->setFocusPolicy(Qt::StrongFocus);
    editor->show();
    QApplication::setActiveWindow(window_.get());
    const auto viewNow = [this] { return window_->findChild<QMenu*>(u"mnuView"_s)->title(); };
    auto* file = window_->findChild<QMenu*>(u"mnuFile"_s);

    window_->Tree().setFocus();
    QCoreApplication::processEvents();
    EXPECT_EQ(viewNow(), u"Ans&icht"_s);
    EXPECT_EQ(archive->text(), u"Inhalt && more"_s);
    EXPECT_EQ(trends->text(), u"&Trends"_s) << "nobody else's";
    emit file->aboutToShow();
    EXPECT_FALSE(Action(u"mnuFileOpen"_s)->text().contains(u'\t'));
    emit file->aboutToHide();

    grid->setFocus();
    QCoreApplication::processEvents();
    EXPECT_EQ(viewNow(), u"Ansicht"_s);
    EXPECT_EQ(archive->text(), u"&Inhalt && more"_s);
    emit file->aboutToShow();
    EXPECT_TRUE(Action(u"mnuFileOpen"_s)->text().endsWith(u'\t')) << "no key is shown";
    EXPECT_FALSE(Action(u"mnuFileNew"_s)->text().contains(u'\t'));
    emit file->aboutToHide();
    EXPECT_EQ(Action(u"mnuFileOpen"_s)->text(), u"Ö&ffnen..."_s);
    delete editor;
    window_->Tree().setFocus();
    QCoreApplication::processEvents();
    EXPECT_EQ(viewNow(), u"Ans&icht"_s);
}

TEST_F(StudioWindowTest, RecentProjectsAreKeptMissingOnesCannotBeChosen) {
    QFile::copy(Path(u"Anlage.kvs"_s), Path(u"Zwei & drei.kvs"_s));
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    ASSERT_TRUE(window_->OpenProject(Path(u"Zwei & drei.kvs"_s)));
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    QFile::remove(Path(u"Zwei & drei.kvs"_s));
    Make();
    const QList<QAction*> entries = Recent()->actions();
    ASSERT_EQ(entries.size(), 4) << "two projects, separator, clear";
    EXPECT_TRUE(entries[0]->text().startsWith(u"&1  Anlage"_s));
    EXPECT_TRUE(entries[0]->isEnabled());
    EXPECT_TRUE(entries[1]->text().startsWith(u"&2  Zwei && drei"_s));
    EXPECT_FALSE(entries[1]->isEnabled());
    entries[0]->trigger();
    EXPECT_TRUE(window_->HasProject());
    Recent()->actions().last()->trigger();
    EXPECT_EQ(Recent()->actions().size(), 3) << "(none), separator, clear";
}

TEST_F(StudioWindowTest, EditorFillsTheAreaAndGivesItBack) {
    auto* area = window_->findChild<EditorArea*>();
    auto* empty = window_->findChild<QWidget*>(u"fraEmpty"_s);
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    EXPECT_EQ(area->currentWidget(), empty);
    window_->Tree().ClickAsUser(u"SMP0"_s);
    QCoreApplication::processEvents();
    EXPECT_EQ(area->currentWidget(), area->Container());
    EXPECT_TRUE(addIn_.editor->isVisible());
    EXPECT_EQ(addIn_.editor->geometry(), area->Container()->rect());
    window_->resize(window_->size() + QSize(100, 50));
    QCoreApplication::processEvents();
    EXPECT_EQ(addIn_.editor->geometry(), area->Container()->rect());

    addIn_.editor->hide();
    EXPECT_EQ(area->currentWidget(), empty);
    addIn_.editor->show();
    EXPECT_EQ(area->currentWidget(), area->Container());

    QLabel other(area->Container());  // of another add-in
    other.show();
    EXPECT_EQ(area->Container()->Current(), &other);
    other.setParent(nullptr);
    EXPECT_EQ(area->Container()->Current(), addIn_.editor);
    EXPECT_TRUE(window_->CloseProject());
    EXPECT_EQ(area->currentWidget(), empty);
}

// An editor behind another one is visible for Qt, so that its show() tells nobody.
TEST_F(StudioWindowTest, AnEditorThatIsRaisedComesToTheFront) {
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    window_->Tree().ClickAsUser(u"SMP0"_s);
    QCoreApplication::processEvents();
    EditorContainer& container = *window_->findChild<EditorArea*>()->Container();
    QLabel second(&container);
    QLabel third(&container);
    for (QLabel* other : {&second, &third}) other->show();
    ASSERT_EQ(container.Current(), &third);
    window_->resize(window_->size() + QSize(100, 50));
    QCoreApplication::processEvents();

    addIn_.editor->show();
    addIn_.editor->raise();
    EXPECT_EQ(container.Current(), addIn_.editor);
    EXPECT_EQ(container.children().last(), addIn_.editor);
    EXPECT_EQ(addIn_.editor->geometry(), container.rect());

    second.hide();  // though it is not in front
    addIn_.editor->hide();
    EXPECT_EQ(container.Current(), &third);
}

// A signal that came while an add-in was showing a box used to be lost.
TEST_F(StudioWindowTest, QuitClosesWhatAnAddInShowsAndThenTheWindow) {
    ASSERT_TRUE(window_->OpenProject(Path(u"Anlage.kvs"_s)));
    QStringList closed;
    addIn_.onClick = [&] {
        for (const auto buttons :
             {QMessageBox::StandardButtons(QMessageBox::Ok), QMessageBox::Yes | QMessageBox::No}) {
            QMessageBox box(QMessageBox::Question, u"Box"_s, u"?"_s, buttons);
            closed += u"box %1"_s.arg(box.exec());
        }
        QMenu menu;
        menu.addAction(u"entry"_s);
        if (menu.exec() == nullptr) closed += u"menu"_s;
        EXPECT_TRUE(window_->isVisible()) << "not while an add-in is at work";
    };
    QTimer::singleShot(0, window_.get(), [this] {
        window_->Quit();
        window_->Quit();
    });
    addIn_.Take();
    window_->Tree().ClickAsUser(u"SMP0"_s);
    EXPECT_THAT(closed, ElementsAre(u"box %1"_s.arg(QMessageBox::Ok),
                                    u"box %1"_s.arg(QMessageBox::No), u"menu"_s));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window_->isVisible(); }, 5000));
    EXPECT_FALSE(window_->HasProject());
    EXPECT_EQ(addIn_.events.last(), u"Terminate"_s);
}

TEST_F(StudioWindowTest, EverythingHasANameAndAnAccessKeyOfItsOwn) {
    for (const int lcid : {kGerman, kEnglish}) {
        Action(u"mnuSettingsLanguage(%1)"_s.arg(lcid))->trigger();
        for (const QMenu* menu : window_->menuBar()->findChildren<QMenu*>()) {
            if (menu->objectName() == u"mnuFileRecent"_s) continue;
            QStringList keys;
            for (const QAction* action : menu->actions()) {
                if (action->isSeparator()) continue;
                const QString name =
                    action->menu() != nullptr ? action->menu()->objectName() : action->objectName();
                EXPECT_TRUE(name.startsWith(menu->objectName())) << qPrintable(action->text());
                const qsizetype mark = action->text().indexOf(u'&');
                ASSERT_GE(mark, 0) << qPrintable(action->text());
                keys += action->text().mid(mark + 1, 1).toLower();
            }
            EXPECT_EQ(keys.removeDuplicates(), 0) << qPrintable(menu->objectName());
        }
    }
}

}  // namespace
}  // namespace studio
