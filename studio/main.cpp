#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <QApplication>
#include <QFileInfo>
#include <QSettings>
#include <string_view>
#include <vector>

#include "commandline/CommandLine.h"
#include "messages/WindowsOnScreen.h"
#include "platform/ComponentRegistry.h"
#include "platform/StateFolder.h"
#include "studio/AddInLoader.h"
#include "studio/AddInSet.h"
#include "studio/ProjectLocation.h"
#include "studio/QuitSignals.h"
#include "studio/RunningStudio.h"
#include "studio/Screenshot.h"
#include "studio/StudioRegistry.h"
#include "studio/StudioWindow.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kUsageError = 2;

const commandline::Program kProgram{
    "kvstudio",
    KV_VERSION,
    "[OPTION]... [PROJECT]",
    "Opens process visualisation projects and runs their editors. PROJECT is a project file\n"
    "(.kvs), or the name of a registered project.",
    "Exit status: 0 done, 1 the project or picture failed, 2 wrong usage.",
    "[PROJECT]",
    {{"new-window", "", "open a window of its own where a studio is running already"},
     {"registry", "FILE", "use this registry file (exported text form, .reg)"},
     {"screenshot", "PNG", "open the project, write a picture of the window and exit"}}};

/// Whether Qt takes a word off the command line, with the one behind it when it holds no "=".
bool IsForQt(std::string_view word) {
    static constexpr std::array<std::string_view, 15> kWithValue = {
        "display",         "geometry",    "icon",          "name",
        "platform",        "plugin",      "platformtheme", "platformpluginpath",
        "qwindowgeometry", "qwindowicon", "qwindowtitle",  "session",
        "style",           "stylesheet",  "title"};
    if (!word.starts_with('-')) return false;
    word.remove_prefix(word.starts_with("--") ? 2 : 1);
    word = word.substr(0, word.find('='));
    return std::find(kWithValue.begin(), kWithValue.end(), word) != kWithValue.end();
}

/// The command line without what is meant for Qt. Qt itself takes that out only once there is a
/// display, and without one nobody would learn what is wrong with the rest.
std::vector<char*> OwnWords(int argc, char** argv) {
    std::vector<char*> words;
    bool isEnded = false;
    for (int i = 0; i < argc; ++i) {
        const std::string_view word = argv[i];
        isEnded = isEnded || word == "--";
        if (isEnded || i == 0 || !IsForQt(word)) {
            words.push_back(argv[i]);
        } else if (word.find('=') == std::string_view::npos) {
            ++i;
        }
    }
    return words;
}

QString FromShell(const std::string& word) {
    return QFile::decodeName(word.c_str());
}

QString StateFile() {
    return platform::StateFolder() + u"/kvstudio.ini"_s;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<char*> words = OwnWords(argc, argv);
    const auto parsed = commandline::Parse(kProgram, static_cast<int>(words.size()), words.data());
    if (const auto* mistake = std::get_if<commandline::Mistake>(&parsed)) {
        std::fprintf(stderr, "kvstudio: %s\nTry 'kvstudio --help'.\n", mistake->text.c_str());
        return kUsageError;
    }
    if (const auto* answer = std::get_if<commandline::Answer>(&parsed)) {
        return std::fputs(answer->text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0 ? 0 : 1;
    }
    const auto& call = std::get<commandline::Call>(parsed);
    const QString project = call.words.empty() ? QString() : FromShell(call.words[0]);

    // The platform takes them away.
    QByteArray activation = qgetenv("XDG_ACTIVATION_TOKEN");
    if (activation.isEmpty()) activation = qgetenv("DESKTOP_STARTUP_ID");
    const QApplication app(argc, argv);
    QApplication::setApplicationName(u"kvstudio"_s);
    QApplication::setApplicationDisplayName(QString());
    QApplication::setApplicationVersion(QStringLiteral(KV_VERSION));
    QApplication::setDesktopFileName(u"kvstudio"_s);

    if (call.Has("registry")) {
        const QString file = QFileInfo(FromShell(call.Value("registry"))).absoluteFilePath();
        if (!QFileInfo::exists(file)) {
            std::fprintf(stderr, "kvstudio: the registry file does not exist yet: '%s'\n",
                         qUtf8Printable(file));
        }
        qputenv("KV_REGISTRY", QFile::encodeName(file));
    }

    const bool screenshot = call.Has("screenshot");
    studio::RunningStudio running(activation);
    const bool isAlone = screenshot || call.Has("new-window");
    if (!isAlone && running.HandOver(studio::Absolute(project))) return 0;

    // A picture shows the same window wherever it is taken, and leaves nothing behind.
    std::unique_ptr<QSettings> state;
    if (!screenshot) state = std::make_unique<QSettings>(StateFile(), QSettings::IniFormat);

    studio::StudioRegistry registry;
    platform::ComponentRegistry components;
    studio::AddInSet addIns;
    const QList<studio::AddInReport> reports = studio::LoadAddIns(components, addIns);
    studio::StudioWindow window(registry, addIns, reports, state.get());
    if (screenshot) {
        return studio::TakeScreenshot(window, registry, project,
                                      FromShell(call.Value("screenshot")));
    }
    messages::KeepWindowsOnScreen();
    const studio::QuitSignals quitSignals([&window] { window.Quit(); });
    window.show();
    running.SetHandler([&window](const QString& other) { return window.ShowProject(other); });
    if (!project.isEmpty()) {
        window.OpenProject(project);
    } else if (!isAlone) {
        window.OpenLastSession();
    }
    return QApplication::exec();
}
