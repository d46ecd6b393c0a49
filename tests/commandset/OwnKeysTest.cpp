#include "commandset/OwnKeys.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include "texts/MResourceTable.h"

// What the user has given keys to, and what he cannot give.

namespace {

using namespace commandset;
using namespace Qt::Literals::StringLiterals;

TEST(OwnKeysTest, WhatTypesMovesOrOpensMenusStays) {
    const QKeyCombination free[] = {Qt::Key_F3,
                                    Qt::Key_F12,
                                    Qt::SHIFT | Qt::Key_F9,
                                    Qt::ALT | Qt::Key_F6,
                                    Qt::CTRL | Qt::Key_F2,
                                    Qt::Key_Insert,
                                    Qt::SHIFT | Qt::Key_Delete,
                                    Qt::CTRL | Qt::Key_K,
                                    Qt::CTRL | Qt::SHIFT | Qt::Key_A,
                                    Qt::CTRL | Qt::Key_3,
                                    Qt::ALT | Qt::Key_3};
    for (const QKeyCombination key : free) EXPECT_TRUE(CanBeGiven(key)) << key.toCombined();
    const QKeyCombination kept[] = {
        Qt::Key_A,
        Qt::SHIFT | Qt::Key_A,
        Qt::Key_5,
        Qt::Key_Space,
        Qt::Key_Return,
        Qt::CTRL | Qt::Key_Return,
        Qt::Key_Escape,
        Qt::Key_Tab,
        Qt::CTRL | Qt::Key_Tab,
        Qt::Key_Up,
        Qt::CTRL | Qt::Key_Left,
        Qt::Key_Home,
        Qt::CTRL | Qt::Key_PageUp,
        Qt::Key_Backspace,
        Qt::Key_Delete,
        Qt::Key_F1,
        Qt::CTRL | Qt::Key_F1,
        Qt::Key_F2,
        Qt::SHIFT | Qt::Key_F6,
        Qt::SHIFT | Qt::Key_F10,
        Qt::ALT | Qt::Key_F4,
        Qt::CTRL | Qt::Key_A,
        Qt::ALT | Qt::Key_D,             // menus
        Qt::CTRL | Qt::ALT | Qt::Key_Q,  // types "@" on some keyboards
        Qt::META | Qt::Key_F5,
        Qt::CTRL | Qt::Key_Odiaeresis,  // the tree has no number for it
    };
    for (const QKeyCombination key : kept) EXPECT_FALSE(CanBeGiven(key)) << key.toCombined();
}

TEST(OwnKeysTest, AnOwnKeyMeansTheCommandWhereTheGivenOneDid) {
    int count = 0;
    char name[] = "test";
    char* words[] = {name, nullptr};
    const QCoreApplication application(count, words);
    MResources::TextTable texts;
    texts.SetLanguage(MResources::kEnglish);
    const Command& create = CommandOf(Id::NewTrend);
    EXPECT_EQ(MenuText(create, texts), u"&New\tF8"_s);
    int changes = 0;
    const KeyWatch watch;
    QObject::connect(&watch, &KeyWatch::Changed, &watch, [&changes] { ++changes; });

    const QKeyCombination own = Qt::CTRL | Qt::Key_N;
    SetOwnKeys({{create.name.toString(), {own, Qt::Key_Insert}},
                {u"mnuExtra(2)"_s, {Qt::Key_F5}},
                {u"mnuUndo"_s, {}},
                {u"mnuHelp"_s, {Qt::Key_F3}}});
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(CommandOf(Place::Trends, own), &create);
    EXPECT_EQ(CommandOf(Place::Cells, own), &create);
    EXPECT_EQ(CommandOf(Place::Archives, own), nullptr) << "F8 means another command there";
    EXPECT_EQ(CommandOf(Place::Trends, Qt::Key_F8), nullptr);
    EXPECT_EQ(CommandOf(Place::Archives, Qt::Key_Insert), &create) << "it has kept this one";
    EXPECT_EQ(CommandOf(Place::Tree, Qt::Key_F8)->id, Id::NewArchive);
    EXPECT_EQ(MenuText(create, texts), u"&New\tCtrl+N"_s);
    EXPECT_EQ(ToolTip(create, texts), u"Trends: New (Ctrl+N)"_s);
    EXPECT_EQ(HintText(MResourceTable::kTextHintNoTrend, texts),
              u"There is no trend here. Ctrl+N makes a new one."_s);

    // One that had none has it everywhere.
    for (const Place place : {Place::Tree, Place::Archives, Place::Trends}) {
        EXPECT_EQ(CommandOf(place, Qt::Key_F5)->id, Id::Refresh);
    }
    EXPECT_EQ(CommandOf(Place::Trends, Qt::CTRL | Qt::Key_Z), nullptr);
    EXPECT_EQ(KeyText(Id::Undo, texts), QString());
    EXPECT_EQ(MenuText(CommandOf(Id::Undo), texts, u"New trend"_s), u"&Undo: New trend"_s);
    EXPECT_EQ(CommandOf(Place::Tree, Qt::Key_F1)->id, Id::Help) << "fixed";
    EXPECT_EQ(KeyLines(Place::Trends, texts).front().keys, u"F8, Ins"_s)
        << "the help names the given ones";

    SetOwnKeys({});
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(CommandOf(Place::Trends, Qt::Key_F8), &create);
}

}  // namespace
