#include "drafts/DraftKeeper.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>
#include <QDateTime>
#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "support/PrintQt.h"
#include "support/SmallDisk.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using drafts::Draft;
using drafts::DraftKeeper;
using drafts::Place;

class DraftKeeperTest : public testing::Test {
protected:
    [[nodiscard]] QString Folder() const { return folder_.filePath(u"state/drafts"_s); }
    [[nodiscard]] QStringList Files() const {
        return QDir(Folder()).entryList({u"*.json"_s}, QDir::Files);
    }
    static void Hurry(DraftKeeper& keeper) {
        keeper.findChild<QTimer*>(u"tmrDraft"_s)->setInterval(0);
    }
    /// A program that types this and is killed.
    void CrashWith(const Draft& draft) {
        const pid_t child = fork();
        if (child == 0) {
            DraftKeeper keeper(Folder(), u"C:\\a.kvs"_s);
            Hurry(keeper);
            keeper.SetPlace(draft.place);
            keeper.Watch([&] { return draft.fields; });
            while (Files().isEmpty()) QCoreApplication::processEvents();
            _exit(0);
        }
        waitpid(child, nullptr, 0);
    }

    QTemporaryDir folder_;
    const Draft draft_{{Place::Kind::Trend, 3, 228, u"Druck"_s},
                       {{u"txtUnit"_s, u"Einheit"_s, u"b\"a\nr"_s, u"b\"a\nr"_s},
                        {u"cmbFilter"_s, u"Filter"_s, u"keiner"_s, 0},
                        {u"clrLine"_s, u"Farbe"_s, {}, {}},
                        {u"chkIt"_s, u"Es"_s, u"ja"_s, true}}};
};

TEST_F(DraftKeeperTest, WhatACrashHasLeftIsFoundWholeAndByItsOwnProjectOnly) {
    CrashWith(draft_);
    EXPECT_FALSE(DraftKeeper(Folder(), u"C:\\b.kvs"_s).TakeAbandoned());
    {
        // Whoever edits before the question is answered has a file of his own.
        DraftKeeper other(Folder(), u"C:\\a.kvs"_s);
        Hurry(other);
        other.Watch([&] { return draft_.fields.first(1); });
        EXPECT_TRUE(QTest::qWaitFor([&] { return Files().size() == 2; }));
    }
    {
        DraftKeeper keeper(Folder(), u"C:\\a.kvs"_s);
        const auto found = keeper.TakeAbandoned();
        ASSERT_TRUE(found);
        EXPECT_EQ(drafts::ToFile(*found), drafts::ToFile(draft_));
        EXPECT_EQ(found->place.trend, 228);
        ASSERT_EQ(found->fields.size(), 4);
        EXPECT_EQ(found->fields[0].content, draft_.fields[0].content);
        EXPECT_TRUE(found->fields[2].content.isNull());
        EXPECT_TRUE(found->fields[3].content.toBool());
        EXPECT_EQ(Files().size(), 1) << "it stays until it has been answered";
        // A second program is not offered what the first is just asking about.
        EXPECT_FALSE(DraftKeeper(Folder(), u"C:\\a.kvs"_s).TakeAbandoned());
    }
    EXPECT_TRUE(Files().isEmpty());
}

TEST_F(DraftKeeperTest, AnEditIsOnTheDiskOnlyWhileItLasts) {
    DraftKeeper keeper(Folder(), u"C:\\a.kvs"_s);
    EXPECT_FALSE(keeper.TakeAbandoned());
    keeper.Watch([&] { return draft_.fields; });
    keeper.Forget();
    EXPECT_FALSE(QDir(Folder()).exists()) << "a short edit leaves no trace";

    Hurry(keeper);
    QList<drafts::Field> typed = draft_.fields;
    keeper.Watch([&] { return typed; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return Files().size() == 1; }));
    EXPECT_EQ(QFile::permissions(Folder() + u'/' + Files().front()) & ~QFile::Permissions(0x6600),
              QFile::Permissions());
    DraftKeeper second(Folder(), u"C:\\a.kvs"_s);
    Hurry(second);
    QFile lock(Folder() + u'/' + Files().front() + u".lock"_s);
    ASSERT_TRUE(lock.open(QIODevice::ReadWrite));
    ASSERT_TRUE(lock.setFileTime(QDateTime::currentDateTime().addDays(-1),
                                 QFileDevice::FileModificationTime));
    lock.close();
    EXPECT_FALSE(second.TakeAbandoned()) << "its program lives, however long the edit lasts";
    second.Watch([&] { return draft_.fields; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return Files().size() == 2; }));
    typed.clear();
    EXPECT_TRUE(QTest::qWaitFor([&] { return Files().size() == 1; })) << "all is as it was";
    second.Forget();
    EXPECT_TRUE(QDir(Folder()).isEmpty());
}

TEST_F(DraftKeeperTest, WhatCannotBeWrittenIsToldOnceAndWhatCannotBeReadIsNoDraft) {
    DraftKeeper keeper(Folder(), u"C:\\a.kvs"_s);
    Hurry(keeper);
    QSignalSpy failed(&keeper, &DraftKeeper::Failed);
    QFile inTheWay(folder_.filePath(u"state"_s));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    int asked = 0;
    keeper.Watch([&] {
        ++asked;
        return draft_.fields;
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return asked > 3; }));
    EXPECT_EQ(failed.size(), 1);
    keeper.Forget();
    ASSERT_TRUE(inTheWay.remove());

    {
        const SmallDisk disk(300);  // which has room for the lock
        keeper.Watch([&] { return draft_.fields; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return failed.size() == 2; }));
        EXPECT_TRUE(Files().isEmpty());
        keeper.Forget();
    }
    CrashWith(draft_);
    ASSERT_EQ(Files().size(), 1);
    for (const QByteArray& content : {QByteArray(), QByteArray("{\"kind\":\"trend\"}"),
                                      QByteArray("[1]"), QByteArray("\xff\xfe")}) {
        QFile file(Folder() + u'/' + Files().front());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        EXPECT_FALSE(drafts::FromFile(content)) << content.toStdString();
    }
    EXPECT_FALSE(keeper.TakeAbandoned());
}

}  // namespace
