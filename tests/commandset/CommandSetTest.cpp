#include "commandset/CommandSet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QMap>
#include <QSet>

#include "texts/MResourceTable.h"

namespace {

using namespace commandset;
using namespace MResourceTable;
using namespace Qt::Literals::StringLiterals;

TEST(CommandSetTest, EachCommandStandsOnceAndEachKeyMeansOneThing) {
    QSet<QString> names;
    QMap<std::pair<Place, int>, Id> keys;
    int place = 0;
    for (const Command& command : Commands()) {
        EXPECT_EQ(static_cast<int>(command.id), place++);
        EXPECT_FALSE(names.contains(command.name.toString())) << command.name.toUtf8().data();
        names += command.name.toString();
        for (const Key& key : command.keys) {
            const auto where = std::pair(key.place, key.keys.toCombined());
            EXPECT_FALSE(keys.contains(where)) << command.name.toUtf8().data();
            keys.insert(where, command.id);
            EXPECT_EQ(CommandOf(key.place, key.keys)->id, command.id);
        }
    }
    EXPECT_EQ(CommandOf(Place::Tree, Qt::CTRL | Qt::Key_V), nullptr) << "not a key of the tree";
    // The items of the bar's menus bear the names that are given by menu and place.
    for (const Menu& menu : Menus()) {
        if (menu.item.isEmpty()) continue;
        for (std::size_t i = 0; i < menu.commands.size(); ++i) {
            if (menu.commands[i] == Id::Separator) continue;
            EXPECT_EQ(CommandOf(menu.commands[i]).name, u"%1(%2)"_s.arg(menu.item).arg(i));
        }
    }
}

TEST(CommandSetTest, WhatACommandLacksIsSaid) {
    const Situation root{.isRoot = true};
    const Situation archive{.isArchive = true};
    Situation list = archive;
    list.isInArchives = true;
    Situation trend = archive;
    trend.hasTrend = true;
    Situation selected = trend;
    selected.hasSelection = true;
    Situation locked = selected;
    locked.canWrite = false;
    const Situation changed{.isRoot = true, .hasDone = true};
    struct Case {
        Id command;
        Situation situation;
        int obstacle;
    };
    const Case cases[] = {
        {Id::NewArchive, root, 0},
        {Id::NewArchive, archive, kTextHintNewArchive},
        {Id::NewArchive, list, 0},
        {Id::EditArchive, root, kTextHintNoArchive},
        {Id::EditArchive, locked, 0},
        {Id::DeleteArchive, archive, 0},
        {Id::DeleteArchive, locked, kTextHintReadOnly},
        {Id::NewTrend, root, kTextHintNoArchive},
        {Id::EditTrend, archive, kTextHintNoTrend},
        {Id::EditTrend, trend, 0},
        {Id::DeleteTrend, archive, kTextHintNoTrend},
        {Id::DeleteTrend, trend, kTextHintNoSelection},
        {Id::DeleteTrend, selected, 0},
        {Id::DeleteTrend, locked, kTextHintReadOnly},
        {Id::Paste, root, kTextHintNoArchive},
        {Id::Copy, locked, 0},
        {Id::Options, locked, 0},
        {Id::Undo, root, kTextHintNothingToUndo},
        {Id::Redo, root, kTextHintNothingToRedo},
        {Id::Undo, changed, 0},
        {Id::Redo, changed, kTextHintNothingToRedo},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Obstacle(CommandOf(c.command), c.situation), c.obstacle)
            << CommandOf(c.command).name.toUtf8().data();
    }
}

TEST(CommandSetTest, TextsBearTheKeysInTheLanguageOfTheInterface) {
    struct Case {
        std::uint32_t language;
        QString deleteTip;
        QString copyItem;
        QString newTrendItem;
        QString newTrendKeys;
    };
    const Case cases[] = {
        {MResources::kGerman, u"Trends: Löschen (Strg+Entf)"_s, u"&Kopieren\tStrg+C"_s,
         u"&Neu\tF8"_s, u"F8, Einfg"_s},
        {MResources::kEnglish, u"Trends: Delete (Ctrl+Del)"_s, u"&Copy\tCtrl+C"_s, u"&New\tF8"_s,
         u"F8, Ins"_s},
    };
    for (const Case& c : cases) {
        MResources::TextTable texts;
        texts.SetLanguage(c.language);
        EXPECT_EQ(ToolTip(CommandOf(Id::DeleteTrend), texts), c.deleteTip);
        EXPECT_EQ(MenuText(CommandOf(Id::Copy), texts), c.copyItem);
        // Behind blanks in the given text; in menus in the column of the keys.
        EXPECT_EQ(MenuText(CommandOf(Id::NewTrend), texts), c.newTrendItem);
        QStringList keys;
        for (const KeyLine& line : KeyLines(Place::Trends, texts)) keys += line.keys;
        EXPECT_TRUE(keys.contains(c.newTrendKeys)) << keys.join(u'/').toUtf8().data();
    }
}

}  // namespace
