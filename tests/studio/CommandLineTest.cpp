#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

namespace {

using namespace Qt::Literals::StringLiterals;

struct Outcome {
    int status;
    QString out;
    QString err;
};

/// The real program with the sample add-in.
Outcome RunStudio(const QStringList& arguments, const QString& stateFolder = {},
                  const QString& extraVariable = {}) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"KV_ADDINS"_s, QStringLiteral(KV_SAMPLE_FOLDER));
    environment.insert(u"XDG_STATE_HOME"_s, stateFolder);
    if (!extraVariable.isEmpty()) environment.insert(extraVariable, u"1"_s);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KV_STUDIO), arguments);
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return {-1, {}, u"did not end by itself"_s};
    }
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

/// The program's status where Qt finds no display: it ends by a signal once it asks for one.
int RunWithoutDisplay(const QStringList& arguments) {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const auto& name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s}) environment.remove(name);
    environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KV_STUDIO), arguments);
    const bool isEnded = process.waitForFinished(60000);
    return isEnded && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

TEST(CommandLineTest, TextAnswersAndWrongUsage) {
    struct Row {
        QStringList arguments;
        int status;
        QString out;
        QString err;
    };
    const Row rows[] = {
        {{u"--help"_s}, 0, u"Usage: kvstudio"_s, {}},
        {{u"--version"_s}, 0, u"kvstudio "_s, {}},
        {{u"--nonsense"_s}, 2, {}, u"nonsense"_s},
        {{u"--platform"_s, u"offscreen"_s, u"-style=fusion"_s, u"-bla"_s}, 2, {}, u"'-b'"_s},
        {{u"--completion=bash"_s}, 0, u"--screenshot"_s, {}},
        {{u"--registry"_s}, 2, {}, u"registry"_s},
        {{u"a.kvs"_s, u"b.kvs"_s}, 2, {}, u"more than one"_s},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(qPrintable(row.arguments.join(u' ')));
        const Outcome outcome = RunStudio(row.arguments);
        EXPECT_EQ(outcome.status, row.status);
        EXPECT_EQ(RunWithoutDisplay(row.arguments), row.status);
        EXPECT_TRUE(outcome.out.contains(row.out)) << qPrintable(outcome.out);
        EXPECT_TRUE(outcome.err.contains(row.err)) << qPrintable(outcome.err);
    }
}

TEST(CommandLineTest, ScreenshotShowsTheFirstNodeOpenedAndLeavesNothingBehind) {
    const QTemporaryDir folder;
    const QString png = folder.filePath(u"studio.png"_s);
    const Outcome outcome =
        RunStudio({u"--screenshot"_s, png, QStringLiteral(KV_TEST_DATA "/Leer.kvs")},
                  folder.filePath(u"state"_s));
    EXPECT_EQ(outcome.status, 0) << qPrintable(outcome.err);
    EXPECT_EQ(QImage(png).size(), QSize(1280, 800));
    EXPECT_FALSE(QFile::exists(folder.filePath(u"state"_s)));
    EXPECT_FALSE(QFile::exists(QStringLiteral(KV_TEST_DATA "/KVEditors.ini")));
}

TEST(CommandLineTest, ScreenshotFailsWithAMessage) {
    const QTemporaryDir folder;
    const QString png = folder.filePath(u"studio.png"_s);
    const QString project = QStringLiteral(KV_TEST_DATA "/Leer.kvs");
    const Outcome noProject = RunStudio({u"--screenshot"_s, png, u"fehlt.kvs"_s});
    EXPECT_EQ(noProject.status, 1);
    EXPECT_TRUE(noProject.err.contains(u"fehlt.kvs"_s));
    EXPECT_FALSE(QFile::exists(png));
    const Outcome noFolder =
        RunStudio({u"--screenshot"_s, folder.filePath(u"none/x.png"_s), project});
    EXPECT_EQ(noFolder.status, 1);
    EXPECT_TRUE(noFolder.err.contains(u"cannot write"_s));
}

TEST(CommandLineTest, RegistryOptionChoosesTheLanguageAndTheProject) {
    const QTemporaryDir folder;
    ASSERT_TRUE(
        QFile::copy(QStringLiteral(KV_TEST_DATA "/Leer.kvs"), folder.filePath(u"Anlage.kvs"_s)));
    QFile registry(folder.filePath(u"machine.reg"_s));
    ASSERT_TRUE(registry.open(QIODevice::WriteOnly));
    registry.write(
        u"Windows Registry Editor Version 5.00\r\n\r\n"
        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Brantor GmbH\\Korvala\\4.0]\r\n"
        "\"LCID\"=dword:00000409\r\n\r\n"
        "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Brantor GmbH\\Korvala\\4.0\\Projects\\Anlage]\r\n"
        "\"Path\"=\"%1\"\r\n"_s.arg(folder.path().replace(u'/', u"\\\\"_s))
            .toUtf8());
    registry.close();
    const QString png = folder.filePath(u"studio.png"_s);
    const QStringList options{u"--registry"_s, registry.fileName(), u"--screenshot"_s, png};
    const Outcome known = RunStudio(options + QStringList{u"Anlage"_s});
    EXPECT_EQ(known.status, 0) << qPrintable(known.err);
    const Outcome unknown = RunStudio(options + QStringList{u"Nord"_s});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_TRUE(unknown.err.contains(u"No project named \"Nord\""_s)) << qPrintable(unknown.err);
}

TEST(CommandLineTest, AddInsThatFailAreReportedAndTheStudioGoesOn) {
    const QTemporaryDir folder;
    const QString png = folder.filePath(u"studio.png"_s);
    const Outcome outcome =
        RunStudio({u"--screenshot"_s, png, QStringLiteral(KV_TEST_DATA "/Leer.kvs")}, {},
                  u"KV_SAMPLE_THROWS"_s);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.err.contains(u"KVSample.Connect"_s)) << qPrintable(outcome.err);
    EXPECT_TRUE(QFile::exists(png));
}

// Ctrl+C in the terminal and the end of a session close the window; nothing the user had is lost.
TEST(CommandLineTest, TerminationClosesTheWindowProperly) {
    const QTemporaryDir folder;
    const QString state = folder.filePath(u"korvala/kvstudio.ini"_s);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_STATE_HOME"_s, folder.path());
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KV_STUDIO), {QStringLiteral(KV_TEST_DATA "/Leer.kvs")});
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(state); }, 20000));
    process.terminate();
    ASSERT_TRUE(process.waitForFinished(20000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 0);
    const QSettings kept(state, QSettings::IniFormat);
    EXPECT_TRUE(kept.contains(u"Window/Geometry"_s));
    EXPECT_EQ(kept.value(u"RecentProjects"_s).toStringList().size(), 1);
}

}  // namespace
