#include <gmock/gmock.h>

#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QTabWidget>
#include <QTimer>

#include "addin/EditorTest.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using testing::Contains;
using testing::Eq;
using testing::HasSubstr;

/// What was being typed when the program ended, and the window that comes after it.
class EditorDraftsTest : public EditorTest {
protected:
    [[nodiscard]] QDir Folder() const { return folder_.filePath(u"state/korvala/drafts"_s); }
    [[nodiscard]] QStringList Files() const {
        return Folder().entryList({u"*.json"_s}, QDir::Files);
    }
    /// Keeps what a crash would leave now: the window itself cleans up.
    void KeepAside() {
        Editor()->findChild<QTimer*>(u"tmrDraft"_s)->setInterval(0);
        ASSERT_TRUE(QTest::qWaitFor([this] { return !Files().isEmpty(); }));
        const QString file = Files().front();
        kept_ = file.left(file.lastIndexOf(u'-')) + u"-9.json"_s;
        ASSERT_TRUE(QFile::copy(Folder().filePath(file), folder_.filePath(kept_)));
    }
    /// The same project again, as after a crash; the editor opens by itself.
    void Reopen() {
        messages_.clear();
        CloseProject();
        EXPECT_EQ(Files(), QStringList());
        ASSERT_TRUE(QFile::rename(folder_.filePath(kept_), Folder().filePath(kept_)));
        Initialize(project_);
        TurnTo();
    }

    QString kept_;
};

TEST_F(EditorDraftsTest, ATypedCellIsOfferedAndGoneOnWith) {
    Open();
    const QString trend = Text(1, u"Name"_s);
    ClickCell(1, u"Unit"_s);
    Type(u"mbar"_s);
    KeepAside();
    Key(Qt::Key_Escape);
    EXPECT_EQ(Files(), QStringList());

    Reopen();
    ASSERT_TRUE(QTest::qWaitFor([this] { return CellEditor() != nullptr; }));
    EXPECT_THAT(MessageTexts().join(u'\n').toStdString(),
                HasSubstr("Trend " + trend.toStdString() + "\nUnit: mbar"));
    EXPECT_EQ(TypedText(), u"mbar"_s);
    EXPECT_EQ(CurrentName(), trend);
    Key(Qt::Key_Return);
    EXPECT_EQ(Stored(trend, "Unit"), u"mbar"_s);
    EXPECT_EQ(Files(), QStringList());
}

TEST_F(EditorDraftsTest, WhatIsNotWantedIsGoneAndSoIsWhatHasNoRowAnyMore) {
    Open();
    ClickCell(1, u"Unit"_s);
    Type(u"mbar"_s);
    KeepAside();
    Key(Qt::Key_Escape);
    yesOrNo_ = messages::MessageResult::No;
    Reopen();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !messages_.isEmpty() && Files().isEmpty(); }));
    EXPECT_EQ(CellEditor(), nullptr);

    yesOrNo_ = messages::MessageResult::Yes;
    Click(u"ARCH1"_s);
    TurnTo();
    ClickCell(1, u"Unit"_s);
    Type(u"mbar"_s);
    KeepAside();
    Key(Qt::Key_Escape);
    Elsewhere([](projectdb::ProjectRows& rows) {
        ASSERT_TRUE(rows.SeekArchive(1));
        rows.Archives().Delete();
    });
    Reopen();
    ASSERT_TRUE(QTest::qWaitFor([this] { return messages_.size() == 2 && Files().isEmpty(); }));
    EXPECT_THAT(MessageTexts().back().toStdString(), HasSubstr("Unit: mbar"));
}

/// In both dialogs: fields, lists, colours and what hangs together with them.
TEST_F(EditorDraftsTest, ADialogOpensAgainWithAllThatStoodInIt) {
    Open();
    const QString trend = Text(1, u"Name"_s);
    const auto type = [this](QDialog& dialog) {
        dialog.findChild<QLineEdit*>(u"txtName"_s)->setText(u"Kessel 7"_s);
        auto* list = dialog.findChild<QComboBox*>(
            dialog.objectName() == u"FTrend"_s ? u"cmbFilter"_s : u"cmbType"_s);
        list->setCurrentIndex(list->currentIndex() == 1 ? 2 : 1);
        KeepAside();
        dialog.reject();
    };
    const auto accept = [](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLineEdit*>(u"txtName"_s)->text(), u"Kessel 7"_s);
        dialog.accept();
    };
    const auto reopen = [this] {
        Reopen();
        EXPECT_TRUE(QTest::qWaitFor([this] { return Files().isEmpty() && !messages_.isEmpty(); }));
    };
    const auto goOn = [&] {
        AnswerDialog(reopen, accept);
        EXPECT_THAT(MessageTexts().front().toStdString(), HasSubstr("Name: Kessel 7"));
    };
    ClickCell(1, u"Name"_s);
    AnswerDialog([this] { Key(Qt::Key_F9); }, type);
    goOn();

    Click(u"ARCH1"_s);
    TurnTo(0);
    AnswerDialog([this] { Action(u"mnuArchiv(1)"_s)->trigger(); }, type);
    goOn();
    EXPECT_EQ(Files(), QStringList());
}

}  // namespace
