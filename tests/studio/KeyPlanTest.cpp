#include "studio/KeyPlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/PrintQt.h"

// Who has which key while keys are given away.
namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;
using commandset::Id;
using testing::ElementsAre;
using testing::IsEmpty;

class KeyPlanTest : public testing::Test {
protected:
    static KeyPlan::Entry Entry(Id id) {
        const commandset::Command& command = commandset::CommandOf(id);
        KeyPlan::Entry entry{command.name.toString(), {}, {}, {}, &command};
        for (const commandset::Key& key : command.keys) {
            if (!entry.given.contains(key.keys)) entry.given += key.keys;
        }
        return entry;
    }

    enum Entries { kOpen, kNewArchive, kNewTrend, kCopy, kFill, kDuplicate, kHelp };
    KeyPlan plan_{{{u"mnuFileOpen"_s, {}, {}, {Qt::CTRL | Qt::Key_O}},
                   Entry(Id::NewArchive),
                   Entry(Id::NewTrend),
                   Entry(Id::Copy),
                   Entry(Id::Fill),
                   Entry(Id::Duplicate),
                   Entry(Id::Help)},
                  {}};
};

TEST_F(KeyPlanTest, AKeyBelongsToWhoeverHasItAtTheSamePlace) {
    struct Case {
        int entry;
        QKeyCombination key;
        QList<int> owners;
    };
    const Case cases[] = {
        {kNewTrend, Qt::Key_F3, {}},
        {kNewTrend, Qt::CTRL | Qt::Key_O, {kOpen}},  // the studio's hold everywhere
        {kOpen, Qt::Key_F8, {kNewArchive, kNewTrend}},
        {kCopy, Qt::Key_F8, {kNewArchive, kNewTrend}},
        {kNewArchive, Qt::Key_F8, {}},           // both have it given, each where it is
        {kFill, Qt::CTRL | Qt::Key_C, {kCopy}},  // of the cells of trends, which are trends too
        {kFill, Qt::CTRL | Qt::Key_D, {}},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(plan_.Owners(each.entry, each.key), each.owners)
            << each.entry << ' ' << each.key.toCombined();
    }
}

TEST_F(KeyPlanTest, AKeyThatIsGivenAwayIsLostAndComesBack) {
    plan_.Give(kOpen, Qt::Key_F8);
    EXPECT_THAT(plan_.KeysOf(kOpen), ElementsAre(QKeyCombination(Qt::Key_F8)));
    EXPECT_THAT(plan_.KeysOf(kNewArchive), IsEmpty());
    EXPECT_THAT(plan_.KeysOf(kNewTrend), ElementsAre(QKeyCombination(Qt::Key_Insert)));
    EXPECT_EQ(plan_.OwnersOfGiven(kNewTrend), QList<int>{kOpen});
    plan_.Reset(kNewTrend);
    EXPECT_FALSE(plan_.IsOwn(kNewTrend));
    EXPECT_THAT(plan_.KeysOf(kOpen), IsEmpty());
    plan_.ResetAll();
    EXPECT_TRUE(plan_.Own().isEmpty());

    // The first key is another, the others stay; its own second one comes first.
    plan_.Give(kNewTrend, Qt::Key_F3);
    EXPECT_THAT(plan_.KeysOf(kNewTrend),
                ElementsAre(QKeyCombination(Qt::Key_F3), QKeyCombination(Qt::Key_Insert)));
    plan_.Give(kNewTrend, Qt::Key_Insert);
    EXPECT_THAT(plan_.KeysOf(kNewTrend),
                ElementsAre(QKeyCombination(Qt::Key_Insert), QKeyCombination(Qt::Key_F3)));
    // As it was given it is not the user's any more.
    plan_.TakeAway(kCopy);
    plan_.Give(kCopy, Qt::CTRL | Qt::Key_C);
    EXPECT_FALSE(plan_.IsOwn(kCopy));
    EXPECT_TRUE(plan_.CanHave(kOpen, Qt::CTRL | Qt::Key_O));
    EXPECT_TRUE(plan_.IsFixed(kHelp));
}

}  // namespace
}  // namespace studio
