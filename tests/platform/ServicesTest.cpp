#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

#include "platform/ComponentRegistry.h"
#include "platform/HelpFile.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using platform::ComponentRegistry;

TEST(ComponentRegistryTest, FindsByProgIdAndSaysWhyNot) {
    const QTemporaryDir folder;
    const QString sample = QStringLiteral(KV_SAMPLE_ADDIN);
    ASSERT_TRUE(QFile::copy(sample, folder.filePath(u"a.so"_s)));
    ASSERT_TRUE(QFile::copy(sample, folder.filePath(u"b.so"_s)));
    QFile broken(folder.filePath(u"broken.so"_s));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    QFile whole(sample);
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    broken.write(whole.read(whole.size() / 3));
    broken.close();
    QFile(folder.filePath(u"notes.txt"_s)).open(QIODevice::WriteOnly);

    const ComponentRegistry registry({folder.path(), u"/no/such/folder"_s, folder.path()});
    ASSERT_EQ(registry.Components().size(), 1);
    EXPECT_TRUE(registry.Components()[0].file.endsWith(u"/a.so"_s));
    EXPECT_NE(registry.Find(u"sample.connect"_s), nullptr);
    ASSERT_EQ(registry.Problems().size(), 2);
    EXPECT_TRUE(registry.Problems()[0].file.endsWith(u"/b.so"_s));
    EXPECT_TRUE(registry.Problems()[1].file.endsWith(u"/broken.so"_s));
    EXPECT_FALSE(registry.Problems()[1].reason.isEmpty());

    const ComponentRegistry::Instance loaded = registry.Load(u"Sample.Connect"_s);
    ASSERT_NE(loaded.root, nullptr) << loaded.reason.toStdString();
    EXPECT_EQ(loaded.root, registry.Load(u"SAMPLE.CONNECT"_s).root);

    const ComponentRegistry::Instance missing = registry.Load(u"Other.Connect"_s);
    EXPECT_EQ(missing.root, nullptr);
    EXPECT_TRUE(missing.reason.contains(u"Other.Connect"_s));

    // A library that was good when the folder was looked through.
    ASSERT_TRUE(QFile::remove(folder.filePath(u"a.so"_s)));
    ComponentRegistry second({folder.path()});
    ASSERT_NE(second.Find(u"Sample.Connect"_s), nullptr);
    ASSERT_TRUE(QFile::remove(folder.filePath(u"b.so"_s)));
    EXPECT_FALSE(second.Load(u"Sample.Connect"_s).reason.isEmpty());
}

TEST(ComponentRegistryTest, EnvironmentComesBeforeTheProgramsFolder) {
    qputenv("KV_ADDINS", "/first:/second");
    const QStringList folders = ComponentRegistry::DefaultFolders();
    qunsetenv("KV_ADDINS");
    ASSERT_GE(folders.size(), 4);
    EXPECT_EQ(folders[0], u"/first"_s);
    EXPECT_EQ(folders[1], u"/second"_s);
    EXPECT_EQ(folders[2], QCoreApplication::applicationDirPath() + u"/addins"_s);
}

TEST(HelpFileTest, HandsTheTopicToTheViewer) {
    platform::HelpFile help;
    EXPECT_FALSE(help.ShowTopic(1, nullptr)) << "no file is set";
    help.SetPath(u"\\no\\such\\Archivsystem.chm"_s);
    EXPECT_FALSE(help.ShowTopic(1, nullptr));
    QString shown;
    help.SetViewer([&](const QString& path, int topic, QWidget*) {
        shown = path + u'#' + QString::number(topic);
        return true;
    });
    EXPECT_TRUE(help.ShowTopic(30002, nullptr));
    EXPECT_EQ(shown, u"\\no\\such\\Archivsystem.chm#30002"_s);
}

}  // namespace
