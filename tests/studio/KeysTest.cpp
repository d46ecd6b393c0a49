#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include "commandset/OwnKeys.h"
#include "messages/MessageBox.h"
#include "studio/AddInSet.h"
#include "studio/StudioRegistry.h"
#include "studio/StudioWindow.h"
#include "support/PrintQt.h"

// The overview of all keys, and what becomes of those that the user gives.
namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

class KeysTest : public testing::Test {
protected:
    KeysTest() {
        QFile::remove(qEnvironmentVariable("KV_REGISTRY"));
        Start();
    }
    ~KeysTest() override {
        window_.reset();
        commandset::SetOwnKeys({});
    }
    void Start() {
        window_.reset();
        window_ = std::make_unique<StudioWindow>(registry_, addIns_, QList<AddInReport>(), &state_);
        window_->show();
    }
    QAction& Action(const QString& name) { return *window_->findChild<QAction*>(name); }

    /// Shows the overview; `work` closes it.
    void Show(const std::function<void(QDialog&)>& work) {
        bool isShown = false;
        QTimer::singleShot(0, window_.get(), [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            isShown = true;
            work(*dialog);
            if (dialog->isVisible()) dialog->reject();
        });
        Action(u"mnuHelpKeys"_s).trigger();
        EXPECT_TRUE(isShown);
    }
    static QTreeWidgetItem* Choose(QDialog& dialog, const QString& text, const QString& group) {
        auto* tree = dialog.findChild<QTreeWidget*>();
        for (QTreeWidgetItem* item : tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive)) {
            if (item->parent() == nullptr || item->parent()->text(0) != group) continue;
            tree->setCurrentItem(item);
            return item;
        }
        ADD_FAILURE() << text.toStdString();
        return nullptr;
    }
    static void Press(QDialog& dialog, Qt::Key key, Qt::KeyboardModifiers held = {}) {
        auto* field = dialog.findChild<QLineEdit*>(u"txtKey"_s);
        field->setFocus();
        ASSERT_TRUE(QTest::qWaitFor([field] { return field->hasFocus(); }));
        QTest::keyClick(field, key, held);
    }
    static void Click(QDialog& dialog, const QString& name) {
        auto* button = dialog.findChild<QPushButton*>(name);
        EXPECT_TRUE(button->isEnabled()) << name.toStdString();
        button->click();
    }
    static QString State(QDialog& dialog) {
        return dialog.findChild<QLabel*>(u"lblState"_s)->text();
    }

    QTemporaryDir folder_;
    QSettings state_{folder_.filePath(u"kvstudio.ini"_s), QSettings::IniFormat};
    StudioRegistry registry_;
    AddInSet addIns_;
    std::unique_ptr<StudioWindow> window_;
};

TEST_F(KeysTest, TheOverviewListsEveryCommandOnceAndIsNarrowed) {
    Show([](QDialog& dialog) {
        QSet<QString> seen;
        auto* tree = dialog.findChild<QTreeWidget*>();
        int count = 0;
        for (int group = 0; group < tree->topLevelItemCount(); ++group) {
            const QTreeWidgetItem* shown = tree->topLevelItem(group);
            for (int row = 0; row < shown->childCount(); ++row) {
                seen.insert(shown->text(0) + u'/' + shown->child(row)->text(0));
                ++count;
            }
        }
        EXPECT_GT(count, static_cast<int>(commandset::Commands().size()));
        EXPECT_EQ(seen.size(), count);
        EXPECT_TRUE(seen.contains(u"Studio: Datei/Öffnen..."_s));
        EXPECT_EQ(Choose(dialog, u"Öffnen..."_s, u"Studio: Datei"_s)->text(1), u"Strg+O"_s);
        EXPECT_EQ(Choose(dialog, u"Neu"_s, u"Archiveditor: Trends"_s)->text(1), u"F8, Einfg"_s);

        auto* filter = dialog.findChild<QLineEdit*>(u"txtFilter"_s);
        filter->setText(u"strg+o"_s);
        EXPECT_FALSE(Choose(dialog, u"Öffnen..."_s, u"Studio: Datei"_s)->isHidden());
        EXPECT_TRUE(Choose(dialog, u"Neu"_s, u"Archiveditor: Trends"_s)->isHidden());
        filter->setText(u"gibt es nicht"_s);
        EXPECT_TRUE(dialog.findChild<QLabel*>(u"lblNoHit"_s)->isVisible());
        filter->setFocus();
        ASSERT_TRUE(QTest::qWaitFor([filter] { return filter->hasFocus(); }));
        QTest::keyClick(filter, Qt::Key_Escape);
        EXPECT_TRUE(filter->text().isEmpty());
        EXPECT_TRUE(dialog.isVisible());
    });
}

TEST_F(KeysTest, AGivenKeyGoesOverOnlyAfterAQuestionAndStays) {
    QStringList questions;
    auto answer = messages::MessageResult::No;
    const messages::MessageAnswer answers([&](const messages::Message& message) {
        questions += message.text;
        return answer;
    });
    Show([&](QDialog& dialog) {
        Choose(dialog, u"Neu"_s, u"Archiveditor: Trends"_s);
        Press(dialog, Qt::Key_A);
        EXPECT_TRUE(State(dialog).contains(u"nicht zugewiesen"_s)) << State(dialog).toStdString();
        EXPECT_FALSE(dialog.findChild<QPushButton*>(u"cmdGive"_s)->isEnabled());
        Press(dialog, Qt::Key_N, Qt::ControlModifier);
        EXPECT_TRUE(State(dialog).contains(u"Neues Projekt..."_s)) << State(dialog).toStdString();
        Click(dialog, u"cmdGive"_s);
        EXPECT_EQ(questions.size(), 1);
        EXPECT_EQ(dialog.findChild<QTreeWidget*>()->currentItem()->text(1), u"F8, Einfg"_s);
        answer = messages::MessageResult::Yes;
        Click(dialog, u"cmdGive"_s);
        EXPECT_EQ(dialog.findChild<QTreeWidget*>()->currentItem()->text(1), u"Strg+N, Einfg"_s);
        EXPECT_EQ(dialog.findChild<QTreeWidget*>()->currentItem()->text(2), u"F8, Einfg"_s);
        Choose(dialog, u"Tastenübersicht..."_s, u"Studio: Hilfe"_s);
        Press(dialog, Qt::Key_F11);
        Press(dialog, Qt::Key_Return);
        EXPECT_EQ(questions.size(), 2) << "a key that is free needs none";
        Choose(dialog, u"Hilfe"_s, u"Archiveditor: Hilfe"_s);
        EXPECT_FALSE(dialog.findChild<QLineEdit*>(u"txtKey"_s)->isEnabled()) << "fixed";
        Click(dialog, u"cmdOk"_s);
    });
    const auto isInForce = [this] {
        EXPECT_TRUE(Action(u"mnuFileNew"_s).shortcut().isEmpty());
        EXPECT_EQ(Action(u"mnuHelpKeys"_s).shortcut(), QKeySequence(Qt::Key_F11));
        EXPECT_EQ(commandset::CommandOf(commandset::Place::Trends, Qt::CTRL | Qt::Key_N)->id,
                  commandset::Id::NewTrend);
    };
    isInForce();
    commandset::SetOwnKeys({});
    Start();
    isInForce();

    Show([](QDialog& dialog) {
        Click(dialog, u"cmdResetAll"_s);
        dialog.reject();
    });
    isInForce();
    Show([](QDialog& dialog) {
        Click(dialog, u"cmdResetAll"_s);
        Click(dialog, u"cmdOk"_s);
    });
    EXPECT_EQ(Action(u"mnuFileNew"_s).shortcut(), QKeySequence(Qt::CTRL | Qt::Key_N));
    EXPECT_TRUE(commandset::CurrentOwnKeys().isEmpty());
}

TEST_F(KeysTest, WhatIsWrittenByHandTakesNoLetters) {
    state_.setValue(u"Keys/mnuFileClose"_s, QStringList{u"A"_s, u"Return"_s, u"F3"_s});
    state_.setValue(u"Keys/mnuFileOpen"_s, QStringList{u"Ctrl+O"_s, u"nothing at all"_s});
    state_.setValue(u"Keys/mnuNobodys"_s, QStringList{u"F9"_s});
    Start();
    EXPECT_EQ(Action(u"mnuFileClose"_s).shortcuts(), QList<QKeySequence>{Qt::Key_F3});
    EXPECT_EQ(Action(u"mnuFileOpen"_s).shortcuts(),
              QList<QKeySequence>{QKeySequence(Qt::CTRL | Qt::Key_O)});
}

}  // namespace
}  // namespace studio
