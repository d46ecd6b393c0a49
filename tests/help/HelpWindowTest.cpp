#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <QWindow>

#include "help/HelpPage.h"
#include "help/HelpViewer.h"
#include "help/HelpWindow.h"
#include "platform/HelpTopics.h"
#include "platform/Registry.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using help::HelpPage;
using help::HelpWindow;

class HelpWindowTest : public testing::Test {
protected:
    MResources::TextTable& Texts(unsigned lcid) {
        platform::Registry registry;
        registry.WriteDword(MResources::kStudioKey, u"LCID", lcid);
        texts_.Initialize(registry);
        return texts_;
    }
    static HelpPage& PageOf(QWidget& window) { return *window.findChild<HelpPage*>(u"txtPage"_s); }
    static void Wait(HelpWindow& window) {
        QSignalSpy shown(&window, &HelpWindow::TopicShown);
        if (!window.IsLoading()) return;
        EXPECT_TRUE(shown.wait(30000));
    }
    /// Keeps a picture of the window where the environment variable KV_SCREENSHOTS names a folder.
    static void KeepPicture(QWidget& window, const QString& name) {
        const QString folder = qEnvironmentVariable("KV_SCREENSHOTS");
        if (!folder.isEmpty()) window.grab().save(folder + u'/' + name);
    }

    MResources::TextTable texts_;
    QTemporaryDir folder_;
};

TEST_F(HelpWindowTest, ShowsEveryTopicWithItsPicturesInBothLanguages) {
    for (const unsigned lcid : {MResources::kGerman, MResources::kEnglish}) {
        const QString folder = lcid == MResources::kGerman ? u"de"_s : u"en"_s;
        HelpWindow window(Texts(lcid));
        window.show();
        for (const int topic : help::BuiltInHelp::Topics()) {
            window.ShowTopic(u"/no/such/file.chm"_s, topic);
            EXPECT_EQ(PageOf(window).ShownPage(),
                      help::BuiltInHelp(folder).TopicPage(topic).section(u'#', 0, 0));
            EXPECT_GT(PageOf(window).toPlainText().size(), 200) << topic;
        }
        window.ShowTopic({}, platform::kHelpSampleModes);
        const QVariant picture = PageOf(window).loadResource(
            QTextDocument::ImageResource, QUrl(u"../images/sample-trigger.svg"_s));
        EXPECT_GE(picture.value<QImage>().width(), 300);
        auto* tree = window.findChild<QTreeWidget*>(u"tvwContents"_s);
        ASSERT_NE(tree->currentItem(), nullptr);
        EXPECT_EQ(tree->currentItem()->text(0),
                  folder == u"de" ? u"Aufzeichnungsmodus"_s : u"Sample mode"_s);
        KeepPicture(window, u"help-%1.png"_s.arg(folder));
    }
}

TEST_F(HelpWindowTest, LinksHistoryAndSearch) {
    HelpWindow window(Texts(MResources::kEnglish));
    window.show();
    window.ShowTopic({}, platform::kHelpContents);
    HelpPage& page = PageOf(window);
    emit page.anchorClicked(QUrl(u"hysteresis.html"_s));
    EXPECT_EQ(page.ShownPage(), u"en/hysteresis.html"_s);
    auto* back = window.findChild<QAction*>(u"actBack"_s);
    ASSERT_TRUE(back->isEnabled());
    back->trigger();
    EXPECT_EQ(page.ShownPage(), u"en/index.html"_s);
    window.findChild<QAction*>(u"actForward"_s)->trigger();
    EXPECT_EQ(page.ShownPage(), u"en/hysteresis.html"_s);
    emit page.anchorClicked(QUrl(u"file:///etc/passwd"_s));
    emit page.anchorClicked(QUrl(u"../../../etc/passwd"_s));
    EXPECT_FALSE(page.toPlainText().contains(u"root:"_s));
    EXPECT_FALSE(
        page.loadResource(QTextDocument::ImageResource, QUrl(u"file:///etc/passwd"_s)).isValid());

    auto* field = window.findChild<QLineEdit*>(u"txtSearch"_s);
    QTest::keyClicks(field, u"VACUUM"_s);
    auto* matches = window.findChild<QListWidget*>(u"lstMatches"_s);
    ASSERT_EQ(matches->count(), 1);
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(page.ShownPage(), u"en/hysteresis.html"_s);
    EXPECT_EQ(page.textCursor().selectedText().toLower(), u"vacuum"_s);
    field->setText(u"hyst"_s);
    EXPECT_EQ(matches->item(0)->text(), u"Hysteresis"_s) << "the page of that name comes first";
    // Words of the index come first, and the arrow keys go through them; several words may stand
    // anywhere on a page.
    field->setText(u"scan t"_s);
    ASSERT_GT(matches->count(), 1);
    EXPECT_EQ(matches->item(0)->text(), u"Scan Time – Archive dialog"_s);
    QTest::keyClick(field, Qt::Key_Down);
    EXPECT_EQ(page.ShownPage(), u"en/archive-dialog.html"_s);
    QTest::keyClick(field, Qt::Key_Down);
    EXPECT_EQ(matches->currentRow(), 1);
    EXPECT_NE(page.ShownPage(), u"en/archive-dialog.html"_s);
    QTest::keyClick(field, Qt::Key_Up);
    EXPECT_EQ(page.ShownPage(), u"en/archive-dialog.html"_s);
    field->setText(u"orders magnitude VACUUM"_s);
    EXPECT_EQ(matches->count(), 1);
    field->setText(u"no such word anywhere"_s);
    EXPECT_EQ(matches->count(), 0);
    EXPECT_TRUE(window.findChild<QLabel*>(u"lblState"_s)->text().contains(u"no such word"_s));
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_TRUE(field->text().isEmpty());
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(HelpWindowTest, PrefersTheInstalledFileWhereItHasThePage) {
    const QString file = folder_.filePath(u"Archivsystem.chm"_s);
    ASSERT_TRUE(QFile::copy(QStringLiteral(KV_TEST_DATA "/Archivsystem.chm"), file));
    HelpWindow window(Texts(MResources::kGerman));
    window.show();
    window.ShowTopic(file, platform::kHelpArchive);
    Wait(window);
    HelpPage& page = PageOf(window);
    EXPECT_EQ(page.ShownPage(), u"sub/archiv.htm"_s);
    EXPECT_TRUE(page.toPlainText().contains(u"Der Ringpuffer."_s));
    EXPECT_TRUE(window.windowTitle().contains(u"Archivsystem"_s));
    EXPECT_TRUE(page.loadResource(QTextDocument::ImageResource, QUrl(u"../dot.gif"_s)).isValid());
    window.ShowTopic(file, platform::kHelpArchives);
    EXPECT_TRUE(page.toPlainText().contains(u"Übersicht"_s));
    emit page.anchorClicked(QUrl(u"mk:@MSITStore:Archivsystem.chm::/sub/archiv.htm"_s));
    EXPECT_EQ(page.ShownPage(), u"sub/archiv.htm"_s);

    // A number of ours that the file does not know.
    window.ShowTopic(file, platform::kHelpHysteresis);
    EXPECT_EQ(page.ShownPage(), u"de/hysteresis.html"_s);

    QFile broken(file);
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("ITSF, but nothing behind it");
    broken.close();
    window.ShowTopic(file, platform::kHelpArchive);
    Wait(window);
    EXPECT_EQ(page.ShownPage(), u"de/archive.html"_s);
    EXPECT_TRUE(window.findChild<QLabel*>(u"lblState"_s)->text().contains(file));
}

TEST_F(HelpWindowTest, CanBeUsedWhileADialogIsModal) {
    platform::HelpFile helpFile;
    helpFile.SetViewer(help::MakeViewer(Texts(MResources::kEnglish)));
    helpFile.SetPath(u"\\no\\such\\Archivsystem.chm"_s);
    QWidget editor;
    editor.show();
    ASSERT_TRUE(helpFile.ShowTopic(platform::kHelpArchives, &editor));
    const auto window = [] {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == u"frmHelp") return qobject_cast<HelpWindow*>(widget);
        }
        return static_cast<HelpWindow*>(nullptr);
    };
    ASSERT_NE(window(), nullptr);
    {
        QDialog dialog(&editor);
        dialog.open();
        ASSERT_TRUE(helpFile.ShowTopic(platform::kHelpArchiveFormat, &dialog));
        EXPECT_EQ(PageOf(*window()).ShownPage(), u"en/archive-dialog.html"_s);
        EXPECT_EQ(window()->windowHandle()->transientParent(), dialog.windowHandle());
        EXPECT_TRUE(window()->isVisible());
    }
    EXPECT_TRUE(window()->isVisible()) << "the page stays when its dialog is closed";

    // Another language: the next topic comes in it.
    Texts(MResources::kGerman);
    ASSERT_TRUE(helpFile.ShowTopic(platform::kHelpKeys, &editor));
    EXPECT_EQ(PageOf(*window()).ShownPage(), u"de/keys.html"_s);
    helpFile.SetViewer({});
    EXPECT_EQ(window(), nullptr);
}

TEST_F(HelpWindowTest, FollowsADarkDesktop) {
    const QPalette before = QApplication::palette();
    QPalette dark(QColor(0x2b, 0x2e, 0x31));
    dark.setColor(QPalette::Base, QColor(0x1e, 0x20, 0x22));
    dark.setColor(QPalette::Text, QColor(0xdc, 0xdc, 0xdc));
    dark.setColor(QPalette::WindowText, QColor(0xdc, 0xdc, 0xdc));
    QApplication::setPalette(dark);
    {
        HelpWindow window(Texts(MResources::kEnglish));
        window.show();
        window.ShowTopic({}, platform::kHelpArchiveTypes);
        const QImage picture = window.grab().toImage();
        EXPECT_LT(picture.pixelColor(picture.width() - 60, picture.height() / 2).lightness(), 100);
        KeepPicture(window, u"help-dark.png"_s);
    }
    QApplication::setPalette(before);
}

}  // namespace
