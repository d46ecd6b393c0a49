#include "studio/NewProject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "messages/MessageBox.h"
#include "studio/AddInSet.h"
#include "studio/StudioRegistry.h"
#include "studio/StudioWindow.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;

class NewProjectTest : public testing::Test {
protected:
    template <typename Widget>
    Widget* Find(const QString& name) {
        return dialog_.findChild<Widget*>(name);
    }
    void Type(const QString& file) {
        auto* txtFile = Find<QLineEdit>(u"txtFile"_s);
        txtFile->clear();
        QTest::keyClicks(txtFile, file);
    }
    QPushButton* Ok() { return Find<QPushButton>(u"cmdOk"_s); }
    void Tick(const QString& language, bool ticked) {
        const auto found =
            Find<QListWidget>(u"lstLanguages"_s)->findItems(language, Qt::MatchStartsWith);
        ASSERT_EQ(found.size(), 1) << qUtf8Printable(language);
        found.front()->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
    }
    QString Path(const QString& name) const { return folder_.filePath(name); }
    /// The locale ids that a project lists.
    static std::vector<int> LanguagesOf(const QString& project) {
        std::vector<int> lcids;
        ado::Connection connection;
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + project.toStdString());
        ado::Recordset rows;
        rows.Open("TcfgLanguages", connection, ado::CommandType::Table);
        for (; !rows.IsEOF(); rows.MoveNext()) {
            lcids.push_back(std::get<std::int32_t>(rows.Get("LCID")));
        }
        return lcids;
    }

    QTemporaryDir folder_;
    NewProjectDialog dialog_{StudioTexts(kEnglish), folder_.path()};
};

TEST_F(NewProjectTest, MakesAProjectWithTheLanguagesTicked) {
    EXPECT_FALSE(Ok()->isEnabled()) << "there is no name yet";
    Type(u"Brewery"_s);
    Tick(u"French"_s, true);
    Tick(u"English"_s, false);
    EXPECT_TRUE(Ok()->isEnabled());
    Ok()->click();
    EXPECT_EQ(dialog_.result(), QDialog::Accepted);
    EXPECT_EQ(dialog_.File(), Path(u"Brewery.kvs"_s));
    EXPECT_THAT(LanguagesOf(dialog_.File()), ElementsAre(1031, 1036));
}

TEST_F(NewProjectTest, AProjectNeedsALanguage) {
    Type(u"Brewery.kvs"_s);
    Tick(u"German"_s, false);
    Tick(u"English"_s, false);
    EXPECT_FALSE(Ok()->isEnabled());
    Tick(u"Polish"_s, true);
    EXPECT_TRUE(Ok()->isEnabled());
}

TEST_F(NewProjectTest, WhatCannotBeMadeIsToldAndTheDialogStays) {
    QFile old(Path(u"Old.kvs"_s));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("not to be lost");
    old.close();
    const std::pair<QString, QString> rows[] = {{u"Old.kvs"_s, u"will not be overwritten"_s},
                                                {u"old/../Old"_s, u"will not be overwritten"_s},
                                                {u"nowhere/New.kvs"_s, u"could not be created"_s},
                                                {u"a\\b.kvs"_s, u"backslash"_s}};
    QString shown;
    const messages::MessageAnswer answer([&shown](const messages::Message& message) {
        shown = message.text;
        return messages::MessageResult::Ok;
    });
    for (const auto& [file, expected] : rows) {
        shown.clear();
        Type(file);
        Ok()->click();
        EXPECT_TRUE(shown.contains(expected)) << qUtf8Printable(file + u": "_s + shown);
        EXPECT_NE(dialog_.result(), QDialog::Accepted);
    }
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    EXPECT_EQ(old.readAll(), "not to be lost");
}

TEST_F(NewProjectTest, TheStudioOpensIt) {
    QFile::remove(qEnvironmentVariable("KV_REGISTRY"));
    QSettings state(Path(u"kvstudio.ini"_s), QSettings::IniFormat);
    state.setValue(u"OpenFolder"_s, folder_.path());
    StudioRegistry registry;
    AddInSet addIns;
    StudioWindow window(registry, addIns, {}, &state);
    window.show();
    QTimer::singleShot(0, &window, [] {
        QWidget* dialog = QApplication::activeModalWidget();
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->windowTitle(), u"Neues Projekt"_s);
        QTest::keyClicks(dialog->findChild<QLineEdit*>(u"txtFile"_s), u"Anlage"_s);
        QTest::keyClick(dialog, Qt::Key_Return);
    });
    window.findChild<QAction*>(u"mnuFileNew"_s)->trigger();
    EXPECT_TRUE(window.HasProject());
    EXPECT_EQ(window.windowTitle(), u"Anlage - Korvala Studio"_s);
    EXPECT_THAT(LanguagesOf(Path(u"Anlage.kvs"_s)), ElementsAre(1031, 1033));
}

}  // namespace
}  // namespace studio
