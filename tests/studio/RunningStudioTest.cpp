#include "studio/RunningStudio.h"

#include <gtest/gtest.h>

#include <signal.h>

#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <vector>

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kWaitMs = 60000;

/// Real programs and this one, in folders of their own.
class RunningStudioTest : public testing::Test {
protected:
    RunningStudioTest() {
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder_.path()));
        qputenv("XDG_STATE_HOME", QFile::encodeName(folder_.path()));
        qputenv("KV_ADDINS", KV_SAMPLE_FOLDER);
        for (const auto& name : {u"A.kvs"_s, u"B.kvs"_s}) {
            QFile::copy(QStringLiteral(KV_TEST_DATA "/Leer.kvs"), folder_.filePath(name));
        }
    }
    ~RunningStudioTest() override {
        for (const char* name : {"XDG_RUNTIME_DIR", "XDG_STATE_HOME", "KV_ADDINS"}) qunsetenv(name);
    }

    /// Starts the program in the folder; its files may be named without it.
    void Start(QProcess& process, const QStringList& arguments) const {
        process.setWorkingDirectory(folder_.path());
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral(KV_STUDIO), arguments);
    }
    [[nodiscard]] bool IsLastOpened(const QString& name) const {
        const QSettings state(folder_.filePath(u"korvala/kvstudio.ini"_s), QSettings::IniFormat);
        const QStringList recent = state.value(u"RecentProjects"_s).toStringList();
        return !recent.isEmpty() && recent.front() == folder_.filePath(name);
    }
    [[nodiscard]] bool WaitUntilOpened(const QString& name) const {
        return QTest::qWaitFor([&] { return IsLastOpened(name); }, kWaitMs);
    }
    static void End(QProcess& process) {
        process.terminate();
        EXPECT_TRUE(process.waitForFinished(kWaitMs));
        EXPECT_EQ(process.exitCode(), 0);
    }

    QTemporaryDir folder_;
};

TEST_F(RunningStudioTest, ASecondStartHandsItsProjectOver) {
    QProcess first;
    Start(first, {u"A.kvs"_s});
    ASSERT_TRUE(WaitUntilOpened(u"A.kvs"_s));
    QProcess second;
    Start(second, {u"B.kvs"_s});
    ASSERT_TRUE(second.waitForFinished(kWaitMs));
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_TRUE(WaitUntilOpened(u"B.kvs"_s));

    QProcess beside;
    Start(beside, {u"--new-window"_s, u"A.kvs"_s});
    EXPECT_TRUE(WaitUntilOpened(u"A.kvs"_s));
    EXPECT_EQ(beside.state(), QProcess::Running);
    End(beside);
    End(first);
}

TEST_F(RunningStudioTest, AKilledStudioIsInNobodysWay) {
    QProcess killed;
    Start(killed, {u"A.kvs"_s});
    ASSERT_TRUE(WaitUntilOpened(u"A.kvs"_s));
    killed.kill();
    ASSERT_TRUE(killed.waitForFinished(kWaitMs));
    QProcess next;
    Start(next, {u"B.kvs"_s});
    EXPECT_TRUE(WaitUntilOpened(u"B.kvs"_s));
    EXPECT_EQ(next.state(), QProcess::Running);
    End(next);
}

TEST_F(RunningStudioTest, WhoIsTurnedAwayHasAWindowOfItsOwn) {
    studio::RunningStudio running({});
    ASSERT_FALSE(running.HandOver({}));
    std::vector<QString> asked;
    bool isBusy = false;
    running.SetHandler([&](const QString& project) {
        asked.push_back(project);
        return !isBusy;
    });
    const auto isEnded = [](const QProcess& process) {
        return process.state() == QProcess::NotRunning;
    };
    QProcess taken;
    Start(taken, {u"./A.kvs"_s});
    ASSERT_TRUE(QTest::qWaitFor([&] { return isEnded(taken); }, kWaitMs));
    EXPECT_EQ(asked, std::vector{folder_.filePath(u"A.kvs"_s)});
    EXPECT_FALSE(IsLastOpened(u"A.kvs"_s));

    isBusy = true;
    QProcess refused;
    Start(refused, {u"B.kvs"_s});
    ASSERT_TRUE(WaitUntilOpened(u"B.kvs"_s));
    EXPECT_EQ(asked.size(), 2U);
    EXPECT_FALSE(isEnded(refused));
    End(refused);
}

}  // namespace
