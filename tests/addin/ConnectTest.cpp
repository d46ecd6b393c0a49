#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QMenu>
#include <QTextBrowser>
#include <QTimer>

#include "addin/AddInTest.h"
#include "addin/DamagedRow.h"
#include "support/DamagedMap.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

const QString kRoot = u"ARC0"_s;

class ConnectTest : public AddInTest {
protected:
    /// The page that the help window shows; empty when there is no such window.
    static QString HelpPage() {
        for (const QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() != u"frmHelp"_s || !window->isVisible()) continue;
            return window->findChild<QTextBrowser*>(u"txtPage"_s)->source().path();
        }
        return {};
    }
};

TEST_F(ConnectTest, StartUpAddsTheRootNodeAndOpensNothing) {
    Initialize(folder_.filePath(u"not there.kvs"_s));
    EXPECT_THAT(host_.calls, ElementsAre(u"icon icoArchiv"_s, u"add ARC0"_s));
    const FakeHost::Entry* root = host_.Find(kRoot);
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->node.text, u"Archive"_s);
    EXPECT_EQ(root->node.parentKey, QString());
    EXPECT_EQ(root->position, u"0"_s);
    EXPECT_EQ(root->iconKey, u"icoArchiv"_s);
    EXPECT_TRUE(root->flags.expandable && root->flags.ordered && root->flags.permanent);
    EXPECT_FALSE(root->flags.editable);
    EXPECT_THAT(messages_, IsEmpty());
    EXPECT_EQ(Editor(), nullptr);
}

TEST_F(ConnectTest, InterfaceLanguageComesFromTheRegistry) {
    struct Case {
        QString value;
        QString root;
    };
    // One language after the other in the same process: what is neither stays with the one before.
    const Case cases[] = {{u"dword:00000407"_s, u"Archive"_s},
                          {u"\"1033\""_s, u"Archives"_s},
                          {u"dword:0000040c"_s, u"Archives"_s},
                          {u"dword:00000407"_s, u"Archive"_s}};
    for (const Case& c : cases) {
        WriteRegistry(u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Brantor GmbH\\Korvala\\4.0]\r\n\"LCID\"="_s +
                      c.value);
        Initialize(u"/x.kvs"_s);
        EXPECT_EQ(host_.Find(kRoot)->node.text, c.root) << c.value.toStdString();
        addIn_->CKV4Extensibility_Terminate();
    }
}

TEST_F(ConnectTest, WithoutAProjectItStaysPassive) {
    InitializeByName({});
    Click(kRoot);
    Click(u"X"_s);
    addIn_->CKV4Extensibility_NodeExpand({{}, u"X"_s, {}});
    EXPECT_TRUE(KeyIsLeft(u"X"_s, 112, 0));
    addIn_->CKV4Extensibility_NodeMouseUp({{}, kRoot, {}}, KV4AddIn::kRightButton, 0, 1, 1);
    QMetaObject::invokeMethod(root_, "ActualizeConnection");
    addIn_->CKV4Extensibility_Terminate();
    EXPECT_EQ(host_.nodes.size(), 0);
    EXPECT_THAT(messages_, IsEmpty());
    addIn_->CKV4Extensibility_Initialize(u"x.kvs"_s, {}, nullptr, nullptr);
    Click(kRoot);
    EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(ConnectTest, FirstUseFillsTheArchivesAndShowsTheEditor) {
    Initialize(Brewery());
    host_.calls.clear();
    addIn_->CKV4Extensibility_NodeExpand(host_.Find(kRoot)->node);
    EXPECT_THAT(messages_, IsEmpty());
    EXPECT_THAT(host_.ChildTexts(kRoot),
                ElementsAre(u"Sudhaus"_s, u"Gärkeller"_s, u"Lagerkeller"_s, u"Filtration"_s,
                            u"Abfüllung"_s, u"KEG"_s, u"CIP"_s, u"Kälte"_s, u"Dampf"_s, u"Wasser"_s,
                            u"Energie"_s, u"Druckluft"_s, u"Labor"_s, u"Chargen"_s));
    EXPECT_EQ(host_.Find(u"ARCH2"_s)->node.text, u"Gärkeller"_s);
    EXPECT_EQ(host_.Find(u"ARCH2"_s)->iconKey, u"icoArchiv"_s);
    EXPECT_EQ(host_.Find(u"ARCH2"_s)->position, QString());
    EXPECT_THAT(host_.calls.mid(14), ElementsAre(u"expand ARC0"_s, u"select ARC0"_s));
    EXPECT_FALSE(Hourglass());

    ASSERT_NE(Editor(), nullptr);
    EXPECT_EQ(Editor()->parentWidget(), &host_.container);
    EXPECT_EQ(Editor()->windowTitle(), u"Archiv Editor"_s);
    EXPECT_EQ(RowCount(0), 14);
    EXPECT_EQ(RowCount(1), 0);

    host_.calls.clear();
    addIn_->CKV4Extensibility_NodeExpand(host_.Find(kRoot)->node);
    EXPECT_THAT(host_.calls, IsEmpty()) << "first use is done once";
}

TEST_F(ConnectTest, AClickShowsTheTrendsOfTheArchive) {
    Initialize(Brewery());
    Click(kRoot);
    struct Case {
        QString key;
        int trends;
        QString title;
    };
    const Case cases[] = {{u"ARCH1"_s, 24, u"Archiv Editor: Sudhaus"_s},
                          {u"ARCH14"_s, 6, u"Archiv Editor: Chargen"_s},
                          {kRoot, 0, u"Archiv Editor"_s},
                          {u"ARCH9"_s, 12, u"Archiv Editor: Dampf"_s}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.key.toStdString());
        Click(c.key);
        EXPECT_EQ(RowCount(1), c.trends);
        EXPECT_EQ(Editor()->windowTitle(), c.title);
        EXPECT_EQ(Split(0)->currentIndex().isValid(), c.key != kRoot);
    }
    Split(1)->setColumnWidth(10, 77);
    Click(u"ARCH1"_s);
    EXPECT_EQ(Split(1)->columnWidth(10), 77) << "the user's width outlives the archive";
    EXPECT_EQ(Cell(0, Split(0)->currentIndex().row(), u"Laufzeitname"_s), u"Sudhaus"_s);
    EXPECT_EQ(Cell(1, 0, u"Laufzeitname"_s), u"Maischbottich Temperatur"_s);
    EXPECT_EQ(Cell(1, 0, u"L1031"_s), u"Temperatur Maischbottich"_s);
    EXPECT_EQ(Cell(1, 0, u"L1033"_s), u"Temperature Maischbottich"_s);
    EXPECT_EQ(Cell(1, 0, u"Einheit"_s), u"°C"_s);
    EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(ConnectTest, TheArchiveSplitLeadsTheTree) {
    Initialize(Brewery());
    Click(kRoot);
    EXPECT_EQ(RowCount(0), 14);
    host_.calls.clear();
    Split(0)->setCurrentIndex(Split(0)->model()->index(2, 0));
    EXPECT_THAT(host_.calls, ElementsAre(u"select ARCH3"_s));
    EXPECT_EQ(RowCount(1), 18);
    EXPECT_EQ(Editor()->windowTitle(), u"Archiv Editor: Lagerkeller"_s);
}

TEST_F(ConnectTest, NodesOfOthersOnlyTriggerFirstUse) {
    Initialize(Brewery());
    EXPECT_TRUE(KeyIsLeft(kRoot, 119, 0));
    addIn_->CKV4Extensibility_NodeMouseUp({{}, kRoot, {}}, KV4AddIn::kRightButton, 0, 1, 1);
    EXPECT_EQ(Editor(), nullptr) << "keys and right clicks are no first use";

    Click(u"VARS"_s);
    EXPECT_EQ(host_.ChildTexts(kRoot).size(), 14);
    Click(u"ARCH1"_s);
    host_.calls.clear();
    Click(u"VARS12"_s);
    EXPECT_EQ(RowCount(1), 24);
    EXPECT_EQ(Editor()->windowTitle(), u"Archiv Editor: Sudhaus"_s);
    EXPECT_THAT(host_.calls, IsEmpty());
}

// Closes every dialog that opens: a key that runs Edit would wait for one for ever.
class DialogCloser {
public:
    DialogCloser() {
        QObject::connect(&timer_, &QTimer::timeout, [this] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr) return;
            names += dialog->objectName();
            dialog->reject();
        });
        timer_.start(5);
    }
    QStringList names;

private:
    QTimer timer_;
};

TEST_F(ConnectTest, KeysActOnTheirNodesOnly) {
    Initialize(Brewery());
    Click(kRoot);
    struct Case {
        QString node;
        int key;
        int shift;
        bool used;
    };
    const Case cases[] = {
        {kRoot, 119, 0, true},       {u"ARCH1"_s, 119, 0, false}, {u"VARS"_s, 119, 0, false},
        {kRoot, 119, 1, false},      {u"ARCH1"_s, 120, 0, true},  {kRoot, 120, 0, false},
        {u"ARCH1"_s, 120, 2, false}, {u"ARCH1"_s, 46, 2, true},   {u"ARCH2"_s, 46, 0, false},
        {kRoot, 46, 2, false},       {u"ARCH2"_s, 117, 4, true},  {kRoot, 117, 0, false},
        {kRoot, 117, 5, false},      {u"VARS"_s, 65, 0, false},
    };
    DialogCloser closer;
    for (const Case& c : cases) {
        Click(c.node);
        host_.selected = c.node;
        EXPECT_EQ(KeyIsLeft(c.node, c.key, c.shift), !c.used)
            << c.node.toStdString() << " key " << c.key << " shift " << c.shift;
    }
    EXPECT_THAT(closer.names, ElementsAre(u"FArchiv"_s));
    EXPECT_THAT(host_.ChildTexts(kRoot), testing::Contains(u"Neues Archiv"_s));
    EXPECT_EQ(host_.Find(u"ARCH1"_s), nullptr);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_EQ(messages_[0].buttons, messages::MessageButtons::OkCancelDefaultCancel);
    EXPECT_TRUE(messages_[0].text.contains(u"24 Trendobjekten"_s))
        << messages_[0].text.toStdString();
}

TEST_F(ConnectTest, AltF6ShowsTheEditorWithTheSelectedArchive) {
    Initialize(Brewery());
    Click(kRoot);
    Editor()->hide();
    host_.selected = u"VARS"_s;
    EXPECT_TRUE(KeyIsLeft(u"VARS"_s, 117, KV4AddIn::kAlt)) << "the key is another add-in's";
    EXPECT_TRUE(Editor()->isHidden());

    host_.selected = u"ARCH4"_s;
    Editor()->setWindowState(Qt::WindowMinimized);
    EXPECT_FALSE(KeyIsLeft(u"ARCH4"_s, 117, KV4AddIn::kAlt));
    EXPECT_FALSE(Editor()->isHidden());
    EXPECT_FALSE(Editor()->isMinimized());
    EXPECT_EQ(RowCount(1), 12);

    Editor()->hide();
    addIn_->CKV4Extensibility_NodeDblClick({{}, u"VARS"_s, {}});
    EXPECT_FALSE(Editor()->isHidden());
}

TEST_F(ConnectTest, F1ShowsTheTopicOfTheNode) {
    WriteRegistry(
        u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Brantor GmbH]\r\n\"Common\"=\"C:\\\\Korvala\""_s);
    Initialize(Brewery());
    struct Case {
        QString node;
        QString page;
    };
    for (const Case& c : {Case{kRoot, u"archives.html"_s},
                          {u"ARCH7"_s, u"archive.html"_s},
                          {u"VARS"_s, u"index.html"_s}}) {
        EXPECT_FALSE(KeyIsLeft(c.node, 112, KV4AddIn::kCtrl));
        EXPECT_THAT(messages_, IsEmpty());
        EXPECT_TRUE(HelpPage().endsWith(u'/' + c.page)) << HelpPage().toStdString();
    }
    EXPECT_EQ(Editor(), nullptr);
}

TEST_F(ConnectTest, TheArchiveMenuPopsUpOnTheRightButton) {
    Initialize(Brewery());
    Click(kRoot);
    auto* menu = Editor()->findChild<QMenu*>(u"mnuArchive"_s);
    auto* show = Editor()->findChild<QAction*>(u"mnuArchiv(4)"_s);
    ASSERT_TRUE(menu != nullptr && show != nullptr);
    struct Case {
        QString node;
        int button;
        bool popsUp;
    };
    const Case cases[] = {
        {kRoot, 2, true}, {u"ARCH1"_s, 2, true}, {u"VARS"_s, 2, false}, {kRoot, 1, false}};
    for (const Case& c : cases) {
        bool shown = false;
        QTimer::singleShot(0, menu, [&] {
            shown = menu->isVisible();
            EXPECT_EQ(show->isVisible(), c.popsUp);
            menu->close();
        });
        addIn_->CKV4Extensibility_NodeMouseUp({{}, c.node, {}}, c.button, 0, 1, 1);
        QApplication::processEvents();
        EXPECT_EQ(shown, c.popsUp) << c.node.toStdString();
        EXPECT_FALSE(show->isVisible());
    }
}

TEST_F(ConnectTest, AFailedConnectionIsTriedAgain) {
    const QString path = folder_.filePath(u"Brauerei.kvs"_s);
    Initialize(path);
    struct Turn {
        QString node;
        bool expands;
        bool told;
    };
    // Somebody else's node, and an own one that opens, try again without repeating the message.
    const Turn turns[] = {{u"VARS"_s, false, true}, {u"VARS"_s, false, false},
                          {kRoot, false, true},     {kRoot, true, false},
                          {kRoot, false, true},     {u"VARS"_s, true, false}};
    for (const Turn& turn : turns) {
        SCOPED_TRACE(turn.node.toStdString() + (turn.expands ? " opens" : " is clicked"));
        messages_.clear();
        if (turn.expands) {
            addIn_->CKV4Extensibility_NodeExpand({{}, turn.node, {}});
        } else {
            Click(turn.node);
        }
        EXPECT_EQ(Editor(), nullptr);
        EXPECT_TRUE(Hourglass());
        ASSERT_EQ(messages_.size(), turn.told ? 1 : 0);
        if (!turn.told) continue;
        EXPECT_EQ(messages_[0].title, u"ConnectToDataBase"_s);
        EXPECT_EQ(messages_[0].buttons, messages::MessageButtons::Ok);
        EXPECT_THAT(messages_[0].text.toStdString(),
                    AllOf(StartsWith("Die Datei '"), HasSubstr("Brauerei.kvs' wurde nicht gef")));
        EXPECT_THAT(messages_[0].details.toStdString(),
                    StartsWith("ConnectToDataBase\n-2147467259   Could not find file"));
    }
    // A failure that the user has not been told is no repetition.
    messages_.clear();
    QFile other(path);
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    other.write(QByteArray(8192, 'x'));
    other.close();
    Click(u"VARS"_s);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_TRUE(messages_[0].text.contains(u"ist keine Projektdatei"_s));

    messages_.clear();
    ASSERT_TRUE(other.remove());
    (void)Brewery();
    Click(u"VARS"_s);
    EXPECT_THAT(messages_, IsEmpty());
    EXPECT_FALSE(Hourglass());
    EXPECT_EQ(host_.ChildTexts(kRoot).size(), 14);
}

TEST_F(ConnectTest, TheHourglassGoesWithTheProject) {
    Initialize(folder_.filePath(u"none.kvs"_s));
    Click(kRoot);
    ASSERT_TRUE(Hourglass());
    addIn_->CKV4Extensibility_Terminate();
    EXPECT_FALSE(Hourglass());
}

// A database of something else: it opens, but the archives are not in it.
TEST_F(ConnectTest, AFailureBehindTheConnectionLeavesNothingHalfOpen) {
    Initialize(CopyProject(QStringLiteral(KV_TEST_DATA "/test2V2000.mdb"), u"Fremd.kvs"_s));
    for (int i = 0; i < 2; ++i) {
        messages_.clear();
        Click(kRoot);
        ASSERT_EQ(messages_.size(), 1);
        EXPECT_THAT(messages_[0].text.toStdString(), HasSubstr("fehlt die Tabelle 'TchrArchives'"));
        EXPECT_TRUE(messages_[0].details.startsWith(u"Connect: FirstUse\n-2147217865   "_s));
        EXPECT_EQ(Editor(), nullptr);
        EXPECT_FALSE(host_.ChildKeys(kRoot));
        EXPECT_FALSE(Hourglass());
    }
}

// One damaged row used to keep all archives from being opened.
TEST_F(ConnectTest, ArchivesThatCannotBeReadAreLeftOut) {
    const QString path = Brewery();
    DamageRow(path, ADOArchiv::Command::Archives, 3);
    Initialize(path);
    Click(kRoot);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_THAT(messages_[0].text.toStdString(),
                AllOf(HasSubstr("Brauerei.kvs' ist beschädigt"), HasSubstr("kvs check")));
    EXPECT_TRUE(messages_[0].details.contains(u"TchrArchives"_s));
    EXPECT_TRUE(messages_[0].text.endsWith(u"Nicht lesbare Zeilen: 1"_s));
    EXPECT_EQ(host_.ChildTexts(kRoot).size(), 13);
    EXPECT_EQ(host_.Find(u"ARCH4"_s), nullptr);
    EXPECT_FALSE(Hourglass());
    EXPECT_EQ(RowCount(0), 13);
    Click(u"ARCH5"_s);
    EXPECT_EQ(Cell(0, Split(0)->currentIndex().row(), u"Laufzeitname"_s), u"Abfüllung"_s);
    EXPECT_GT(RowCount(1), 0);
    QApplication::processEvents();
    EXPECT_EQ(messages_.size(), 1) << "told once";
    addIn_->CKV4Extensibility_Terminate();

    messages_.clear();
    for (const int position : {0, 13}) DamageRow(path, ADOArchiv::Command::Archives, position);
    Initialize(path);
    Click(kRoot);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_TRUE(messages_[0].text.endsWith(u"Nicht lesbare Zeilen: 3"_s))
        << messages_[0].text.toStdString();
    EXPECT_EQ(host_.ChildTexts(kRoot).size(), 11);
}

TEST_F(ConnectTest, WhatIsWrongWithTheFileIsToldWhenItIsOpened) {
    const QString path = Brewery();
    QFile foreign(path + u"-journal"_s);
    ASSERT_TRUE(foreign.open(QIODevice::WriteOnly));
    foreign.write("A letter that somebody keeps here.");
    foreign.close();
    Initialize(path);
    Click(kRoot);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_THAT(messages_[0].text.toStdString(),
                AllOf(HasSubstr("Brauerei.kvs' ist geöffnet"), HasSubstr("Details")));
    EXPECT_TRUE(messages_[0].details.contains(u"Brauerei.kvs-journal\""_s))
        << messages_[0].details.toStdString();
    EXPECT_EQ(messages_[0].actionCaption, u"Datei &prüfen"_s);
    Click(u"ARCH1"_s);
    Editor()->findChild<QAction*>(u"mnuExtra(2)"_s)->trigger();
    QCoreApplication::processEvents();
    EXPECT_EQ(messages_.size(), 1) << "told once";
}

TEST_F(ConnectTest, AFileThatNoChangeIsSafeForCanBeLookedAt) {
    const QString path = Brewery();
    ASSERT_NO_FATAL_FAILURE(FreeUsedPages(path));
    Initialize(path);
    Click(kRoot);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_TRUE(messages_[0].text.contains(u"kann nur gelesen werden"_s))
        << messages_[0].text.toStdString();
    EXPECT_THAT(messages_[0].details.toStdString(),
                AllOf(HasSubstr("can only be read"), HasSubstr("kvs repair")));
    EXPECT_EQ(messages_[0].actionCaption, u"Datei &prüfen"_s);
    Click(u"ARCH1"_s);
    EXPECT_EQ(RowCount(1), 24);
    for (const auto& [name, enabled] :
         {std::pair(u"mnuArchiv(1)"_s, true), std::pair(u"mnuArchiv(2)"_s, false),
          std::pair(u"mnuTrend(0)"_s, false), std::pair(u"mnuTrend(1)"_s, true)}) {
        EXPECT_EQ(Editor()->findChild<QAction*>(name)->isEnabled(), enabled) << name.toStdString();
    }
    EXPECT_EQ(messages_.size(), 1);
}

TEST_F(ConnectTest, TrendsThatCannotBeReadAreLeftOut) {
    const QString path = Brewery();
    for (const int position : {0, 5}) DamageRow(path, ADOArchiv::Command::Trends, position);
    Initialize(path);
    Click(kRoot);
    for (int i = 0; i < 2; ++i) {
        messages_.clear();
        Click(u"ARCH1"_s);
        EXPECT_EQ(RowCount(1), 22);
        EXPECT_THAT(messages_, IsEmpty()) << "a view may be in the middle of its layout";
        QApplication::processEvents();
        ASSERT_EQ(messages_.size(), 1);
        EXPECT_EQ(messages_[0].title, u"Archiv Editor"_s);
        EXPECT_TRUE(messages_[0].text.contains(u"beschädigt"_s)) << messages_[0].text.toStdString();
        EXPECT_TRUE(messages_[0].details.contains(u"TchrTrends"_s));
    }
    messages_.clear();
    Click(u"ARCH2"_s);
    EXPECT_GT(RowCount(1), 0);
    QApplication::processEvents();
    EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(ConnectTest, AProjectNameIsLookedUpInTheRegistry) {
    (void)Brewery();
    QString folder = folder_.path();
    folder.replace(u'/', u"\\\\"_s);
    WriteRegistry(
        u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Brantor GmbH\\Korvala\\4.0\\Projects\\Brauerei]\r\n"
        "\"Path\"=\"%1\""_s.arg(folder));
    InitializeByName(u"Brauerei"_s);
    Click(kRoot);
    EXPECT_THAT(messages_, IsEmpty());
    EXPECT_EQ(host_.ChildTexts(kRoot).size(), 14);
}

TEST_F(ConnectTest, AnUnknownProjectNameFailsAtOpening) {
    InitializeByName(u"Anlage"_s);
    ASSERT_NE(host_.Find(kRoot), nullptr);
    EXPECT_THAT(messages_, IsEmpty());
    Click(kRoot);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_EQ(messages_[0].title, u"ConnectToDataBase"_s);
    EXPECT_TRUE(messages_[0].text.contains(u"Anlage.kvs"_s));
}

TEST_F(ConnectTest, AnUnreadableRegistryIsShownOnceAndStopsOnlyALookUp) {
    qputenv("KV_REGISTRY", QFile::encodeName(folder_.path()));
    InitializeByName(u"Anlage"_s);
    EXPECT_EQ(host_.nodes.size(), 0);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_EQ(messages_[0].title, u"MKVSGlobalEditors: ReadCurrentProject"_s);
    EXPECT_TRUE(messages_[0].text.startsWith(u"Der Pfad '"_s)) << messages_[0].text.toStdString();
    EXPECT_TRUE(messages_[0].details.startsWith(u"MKVSGlobalEditors: ReadCurrentProject\n75   "_s));

    messages_.clear();
    Initialize(Brewery());
    Click(kRoot);
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_TRUE(messages_[0].details.startsWith(u"MResources\n75   "_s));
    EXPECT_EQ(host_.ChildTexts(kRoot).size(), 14);
    messages_.clear();
    EXPECT_FALSE(KeyIsLeft(kRoot, 112, 0));
    EXPECT_THAT(messages_, IsEmpty());
    EXPECT_TRUE(HelpPage().endsWith(u"/archives.html"_s)) << "help does without the registry";
}

TEST_F(ConnectTest, AnExtensionInCapitalsNamesAFile) {
    Initialize(CopyProject(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"), u"BRAUEREI.KVS"_s));
    Click(kRoot);
    EXPECT_THAT(messages_, IsEmpty());
    EXPECT_EQ(host_.ChildTexts(kRoot).size(), 14);
}

TEST_F(ConnectTest, AProjectWithoutArchives) {
    Initialize(CopyProject(QStringLiteral(KV_TEST_DATA "/Leer.kvs"), u"Leer.kvs"_s));
    host_.calls.clear();
    Click(kRoot);
    EXPECT_THAT(messages_, IsEmpty());
    EXPECT_THAT(host_.calls, ElementsAre(u"expand ARC0"_s, u"select ARC0"_s));
    EXPECT_EQ(RowCount(0), 0);
    EXPECT_EQ(RowCount(1), 0);

    host_.calls.clear();
    QMetaObject::invokeMethod(root_, "ActualizeConnection");
    EXPECT_THAT(host_.calls, ElementsAre(u"refresh ARC0"_s, u"expand ARC0"_s, u"select ARC0"_s));
}

TEST_F(ConnectTest, ActualizingClosesAndOpensAgain) {
    const QString path = Brewery();
    Initialize(path);
    Click(kRoot);
    Click(u"ARCH1"_s);
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_TRUE(CopyProject(QStringLiteral(KV_TEST_DATA "/Leer.kvs"), u"Brauerei.kvs"_s) == path);

    host_.calls.clear();
    auto* actualize = Editor()->findChild<QAction*>(u"mnuExtra(2)"_s);
    ASSERT_NE(actualize, nullptr);
    actualize->trigger();
    EXPECT_THAT(host_.calls, IsEmpty()) << "the window is still in its own event";
    QApplication::processEvents();
    EXPECT_THAT(host_.calls.mid(14),
                ElementsAre(u"refresh ARC0"_s, u"expand ARC0"_s, u"select ARC0"_s));
    EXPECT_FALSE(host_.ChildKeys(kRoot));
    EXPECT_EQ(RowCount(0), 0);
    EXPECT_EQ(host_.container.findChildren<QWidget*>(u"frmtabGrid"_s).size(), 1);
    EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(ConnectTest, AfterTerminateNothingIsLeftAndItCanStartAgain) {
    const QString path = Brewery();
    for (int i = 0; i < 2; ++i) {
        Initialize(path);
        Click(kRoot);
        Click(u"ARCH1"_s);
        EXPECT_EQ(RowCount(1), 24);
        host_.calls.clear();
        addIn_->CKV4Extensibility_Terminate();
        EXPECT_EQ(host_.calls.first(), u"remove ARC0"_s);
        EXPECT_EQ(host_.nodes.size(), 0);
        EXPECT_TRUE(host_.container.children().isEmpty());
        Click(kRoot);
        EXPECT_EQ(Editor(), nullptr);
    }
    EXPECT_THAT(messages_, IsEmpty());
}

/// Notes what the archive split holds when the editor leaves its parent.
class LeavingWatch : public QObject {
public:
    explicit LeavingWatch(QTableView* split) : split_(split) {}
    int rows = -1;

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::ChildRemoved) rows = split_->model()->rowCount();
        return false;
    }

private:
    QTableView* split_;
};

TEST_F(ConnectTest, TheEditorLeavesTheHostsWindowBeforeItIsUnloaded) {
    Initialize(Brewery());
    Click(kRoot);
    ASSERT_EQ(RowCount(0), 14);
    LeavingWatch watch(Split(0));
    host_.container.installEventFilter(&watch);
    addIn_->CKV4Extensibility_Terminate();
    EXPECT_EQ(watch.rows, 14);
}

TEST_F(ConnectTest, InitializedTwiceItLetsGoOfTheProjectBefore) {
    Initialize(Brewery());
    Click(kRoot);
    Click(u"ARCH1"_s);
    Initialize(CopyProject(QStringLiteral(KV_TEST_DATA "/Leer.kvs"), u"Leer.kvs"_s));
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(host_.nodes.size(), 1) << "the root node alone";
    Click(kRoot);
    EXPECT_EQ(RowCount(0), 0);
    EXPECT_FALSE(host_.ChildKeys(kRoot));
    EXPECT_THAT(messages_, IsEmpty());
}

}  // namespace
