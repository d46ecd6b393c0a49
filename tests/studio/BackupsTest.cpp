#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "messages/MessageBox.h"
#include "studio/AddInSet.h"
#include "studio/BackupsDialog.h"
#include "studio/BackupService.h"
#include "studio/RecordingAddIn.h"
#include "studio/StudioRegistry.h"
#include "studio/StudioWindow.h"
#include "support/User.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;
using testing::IsEmpty;

QByteArray BytesOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

class BackupsTest : public testing::Test {
protected:
    BackupsTest() {
        QFile::remove(qEnvironmentVariable("KV_REGISTRY"));
        QFile::copy(QStringLiteral(KV_EXAMPLES "/Brauerei.kvs"), project_);
        QFile::setPermissions(project_, QFile::ReadOwner | QFile::WriteOwner);
        addIns_.Add(u"Sample"_s, addIn_);
        window_ = std::make_unique<StudioWindow>(registry_, addIns_, QList<AddInReport>(), &state_);
        window_->show();
    }
    /// Opens the project; its backup has been taken, or given up, on return.
    void Open() {
        ASSERT_TRUE(window_->OpenProject(project_));
        WaitForBackup();
    }
    void WaitForBackup() {
        auto* service = window_->findChild<BackupService*>();
        ASSERT_NE(service, nullptr);
        service->Wait();
        QCoreApplication::processEvents();
    }
    void Change(const char16_t* text) const {
        ado::Connection connection;
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + project_.toStdString());
        ado::Recordset rows;
        rows.Open("TchrArchives", connection, ado::CommandType::Table);
        rows.Set("Comment", std::u16string(text));
        rows.Update();
    }
    QStringList Files() const {
        QStringList files;
        const QDir root(folder_.filePath(u"backups"_s));
        for (const QString& folder : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            files += QDir(root.filePath(folder)).entryList(QDir::Files);
        }
        return files;
    }
    void InBackups(const User::Step& step) {
        user_.InDialog(u"frmBackups"_s, step, [this] {
            User::ChooseFromMenu(*window_, u"mnuFile"_s, u"mnuFileBackups"_s);
        });
    }

    QTemporaryDir folder_;
    QString project_ = folder_.filePath(u"Anlage.kvs"_s);
    QSettings state_{folder_.filePath(u"kvstudio.ini"_s), QSettings::IniFormat};
    StudioRegistry registry_;
    RecordingAddIn addIn_;
    AddInSet addIns_;
    User user_;
    QStringList messages_;
    messages::MessageResult answerTo_ = messages::MessageResult::Ok;
    messages::MessageAnswer answer_{[this](const messages::Message& message) {
        messages_ += message.text;
        return answerTo_;
    }};
    std::unique_ptr<StudioWindow> window_;
};

TEST_F(BackupsTest, OpeningKeepsTheStateAndRestoringBringsItBack) {
    const QByteArray before = BytesOf(project_);
    Open();
    ASSERT_EQ(Files().size(), 1);
    Change(u"wrong");
    const QByteArray wrong = BytesOf(project_);
    addIn_.Take();

    answerTo_ = messages::MessageResult::Cancel;
    InBackups([&](QWidget& shown) {
        auto* list = shown.findChild<QTreeWidget*>(u"lstBackups"_s);
        ASSERT_EQ(list->topLevelItemCount(), 1);
        const QTreeWidgetItem* item = list->topLevelItem(0);
        EXPECT_EQ(item->text(1), u"404,0 kB"_s);
        EXPECT_EQ(item->text(2), u"14"_s);
        EXPECT_EQ(item->text(3), u"228"_s);
        User::Click(*shown.findChild<QPushButton*>(u"cmdRestore"_s));
        EXPECT_TRUE(shown.isVisible()) << "the question was answered with no";
        User::Press(Qt::Key_Escape);
    });
    EXPECT_TRUE(BytesOf(project_) == wrong);
    EXPECT_FALSE(addIn_.Take().contains(u"Terminate"_s));

    answerTo_ = messages::MessageResult::Ok;
    messages_.clear();
    InBackups([](QWidget& shown) { User::Click(*shown.findChild<QPushButton*>(u"cmdRestore"_s)); });
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_TRUE(messages_[0].contains(u"zurückbringen"_s)) << qUtf8Printable(messages_[0]);
    EXPECT_TRUE(BytesOf(project_) == before);
    const QStringList events = addIn_.Take();
    EXPECT_GT(events.indexOf(u"StartupComplete"_s), events.indexOf(u"Terminate"_s));
    EXPECT_TRUE(events.contains(u"Terminate"_s));
    EXPECT_TRUE(window_->statusBar()->currentMessage().contains(u"hat wieder den Stand"_s));
    WaitForBackup();
    EXPECT_EQ(Files().size(), 2) << "the state before, and none of the one that came back";
}

TEST_F(BackupsTest, TheDifferencesOfABackupAreTheAddInsToShow) {
    Open();
    addIn_.Take();
    QString date;
    const auto compare = [&] {
        InBackups([&](QWidget& shown) {
            date = shown.findChild<QTreeWidget*>(u"lstBackups"_s)->topLevelItem(0)->text(0);
            User::Click(*shown.findChild<QPushButton*>(u"cmdCompare"_s));
        });
    };
    compare();
    const QStringList asked = addIn_.Take().filter(u"Compare"_s);
    ASSERT_EQ(asked.size(), 1);
    EXPECT_TRUE(asked[0].startsWith(u"Host Compare "_s + folder_.filePath(u"backups"_s)))
        << asked[0].toStdString();
    EXPECT_TRUE(asked[0].endsWith(u"|Anlage, "_s + date)) << asked[0].toStdString();
    EXPECT_THAT(messages_, IsEmpty());

    addIn_.comparesProjects = false;
    compare();
    EXPECT_EQ(messages_, QStringList{u"Zurzeit kann keines der Add-Ins Projekte vergleichen."_s});
}

TEST_F(BackupsTest, WhatCannotBeRestoredIsToldAndTheProjectIsOpenAgain) {
    Open();
    Change(u"now");
    const QByteArray now = BytesOf(project_);
    {
        ado::Connection other;
        other.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + project_.toStdString());
        InBackups(
            [](QWidget& shown) { User::Click(*shown.findChild<QPushButton*>(u"cmdRestore"_s)); });
    }
    ASSERT_EQ(messages_.size(), 2);
    EXPECT_TRUE(messages_[1].contains(u"in anderen Programmen"_s)) << qUtf8Printable(messages_[1]);
    EXPECT_TRUE(messages_[1].contains(u"Rechner: "_s)) << qUtf8Printable(messages_[1]);
    EXPECT_TRUE(BytesOf(project_) == now);
    EXPECT_TRUE(window_->HasProject());
}

TEST_F(BackupsTest, NumberAndFolderAreTheUsersChoice) {
    state_.setValue(u"Backups/Most"_s, 0);
    Open();
    EXPECT_THAT(Files(), IsEmpty());
    const QString elsewhere = folder_.filePath(u"elsewhere"_s);
    InBackups([&](QWidget& shown) {
        EXPECT_TRUE(shown.findChild<QLabel*>(u"lblNone"_s)->isVisible());
        EXPECT_FALSE(shown.findChild<QPushButton*>(u"cmdRestore"_s)->isEnabled());
        EXPECT_EQ(shown.findChild<QSpinBox*>(u"numMost"_s)->text(), u"keine"_s);
        shown.findChild<QSpinBox*>(u"numMost"_s)->setFocus();
        User::Press(Qt::Key_Up);
        User::Press(Qt::Key_Up);
        auto* folder = shown.findChild<QLineEdit*>(u"txtFolder"_s);
        EXPECT_EQ(folder->placeholderText(), folder_.filePath(u"backups"_s));
        folder->setFocus();
        User::Type(elsewhere);
        User::Press(Qt::Key_Tab);
        User::Press(Qt::Key_Escape);
    });
    for (const char16_t* text : {u"1", u"2", u"3"}) {
        Change(text);
        ASSERT_TRUE(window_->CloseProject());
        Open();
    }
    EXPECT_THAT(Files(), IsEmpty());
    const QDir root(elsewhere);
    const QStringList folders = root.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    ASSERT_EQ(folders.size(), 1);
    EXPECT_TRUE(folders[0].startsWith(u"Anlage-"_s));
    EXPECT_EQ(QDir(root.filePath(folders[0])).entryList(QDir::Files).size(), 2);
}

// A backup that cannot be made is a line at the bottom, and nothing to be answered.
TEST_F(BackupsTest, ABackupThatFailsIsALine) {
    QFile file(folder_.filePath(u"backups"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    Open();
    EXPECT_TRUE(
        window_->statusBar()->currentMessage().startsWith(u"Keine Sicherung von Anlage: "_s))
        << qUtf8Printable(window_->statusBar()->currentMessage());
    EXPECT_THAT(messages_, IsEmpty());
}

TEST_F(BackupsTest, ASwitchOfTheLanguageIsNoOpening) {
    Open();
    Change(u"in between");
    window_->findChild<QAction*>(u"mnuSettingsLanguage(1033)"_s)->trigger();
    WaitForBackup();
    EXPECT_EQ(Files().size(), 1);
}

}  // namespace
}  // namespace studio
