#include <algorithm>
#include <cstdio>
#include <memory>
#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QSettings>

#include "platform/ComponentRegistry.h"
#include "platform/StateFolder.h"
#include "studio/AddInLoader.h"
#include "studio/AddInSet.h"
#include "studio/QuitSignals.h"
#include "studio/Screenshot.h"
#include "studio/StudioRegistry.h"
#include "studio/StudioWindow.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kUsageError = 2;

constexpr char kHelp[] =
    "Usage: kvstudio [--registry FILE] [--screenshot PNG] [PROJECT]\n"
    "Opens process visualisation projects and runs their editors.\n"
    "\n"
    "  PROJECT            a project file (.kvs), or the name of a registered project\n"
    "  --registry FILE    use this registry file (exported text form, .reg)\n"
    "  --screenshot PNG   open the project, write a picture of the window and exit\n"
    "  --help             show this help\n"
    "  --version          show the version\n"
    "\n"
    "Exit status: 0 done, 1 the project or picture failed, 2 wrong usage.\n";

int WrongUsage(const QString& message) {
    std::fprintf(stderr, "kvstudio: %s\nTry 'kvstudio --help'.\n", qUtf8Printable(message));
    return kUsageError;
}

/// --help and --version must work where there is no display, so before Qt looks for one.
bool AnswersWithText(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const QByteArrayView argument(argv[i]);
        if (argument == "--") return false;
        if (argument == "--help" || argument == "-h") {
            std::fputs(kHelp, stdout);
            return true;
        }
        if (argument == "--version") {
            std::puts("kvstudio " KV_VERSION);
            return true;
        }
    }
    return false;
}

QString StateFile() {
    return platform::StateFolder() + u"/kvstudio.ini"_s;
}

}  // namespace

int main(int argc, char** argv) {
    if (AnswersWithText(argc, argv)) return 0;
    const QApplication app(argc, argv);
    QApplication::setApplicationName(u"kvstudio"_s);
    QApplication::setApplicationDisplayName(QString());
    QApplication::setApplicationVersion(QStringLiteral(KV_VERSION));
    QApplication::setDesktopFileName(u"kvstudio"_s);

    QCommandLineParser parser;
    const QCommandLineOption registryOption(u"registry"_s, {}, u"FILE"_s);
    const QCommandLineOption screenshotOption(u"screenshot"_s, {}, u"PNG"_s);
    parser.addOptions({registryOption, screenshotOption});
    if (!parser.parse(QApplication::arguments())) return WrongUsage(parser.errorText());
    const QStringList projects = parser.positionalArguments();
    if (projects.size() > 1) return WrongUsage(u"more than one project was given"_s);
    const QString project = projects.value(0);

    if (parser.isSet(registryOption)) {
        const QString file = QFileInfo(parser.value(registryOption)).absoluteFilePath();
        if (!QFileInfo::exists(file)) {
            std::fprintf(stderr, "kvstudio: the registry file does not exist yet: '%s'\n",
                         qUtf8Printable(file));
        }
        qputenv("KV_REGISTRY", QFile::encodeName(file));
    }

    const bool screenshot = parser.isSet(screenshotOption);
    // A picture shows the same window wherever it is taken, and leaves nothing behind.
    std::unique_ptr<QSettings> state;
    if (!screenshot) state = std::make_unique<QSettings>(StateFile(), QSettings::IniFormat);

    studio::StudioRegistry registry;
    platform::ComponentRegistry components;
    studio::AddInSet addIns;
    const QList<studio::AddInReport> reports = studio::LoadAddIns(components, addIns);
    studio::StudioWindow window(registry, addIns, reports, state.get());
    if (screenshot) {
        return studio::TakeScreenshot(window, registry, project, parser.value(screenshotOption));
    }
    const studio::QuitSignals quitSignals([&window] { window.Quit(); });
    window.show();
    if (!project.isEmpty()) window.OpenProject(project);
    return QApplication::exec();
}
