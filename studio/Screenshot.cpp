#include "studio/Screenshot.h"

#include <cstdio>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QPixmap>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QWindow>

#include "messages/MessageBox.h"
#include "studio/ProjectLocation.h"
#include "studio/ProjectTree.h"
#include "studio/StudioHost.h"
#include "studio/StudioTexts.h"
#include "studio/StudioWindow.h"

namespace studio {
namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 800;
constexpr int kExposeMs = 5000;
constexpr int kSettleRounds = 5;  // layouts that are put off to the next round of events

void WaitUntilPainted(const QWidget& window) {
    QElapsedTimer waiting;
    waiting.start();
    while (!window.windowHandle()->isExposed() && waiting.elapsed() < kExposeMs) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    for (int round = 0; round < kSettleRounds; ++round) QCoreApplication::processEvents();
}

/// Copies the file of a project into `folder` and returns the copy's path. What cannot be copied is
/// returned as it is: opening it tells why it cannot be opened either.
QString CopyOf(const QString& project, StudioRegistry& registry, const QTemporaryDir& folder) {
    const auto located = Locate(project, registry, StudioTexts());
    const auto* location = std::get_if<ProjectLocation>(&located);
    if (location == nullptr) return project;
    const QString copy = folder.filePath(QFileInfo(location->nativePath).fileName());
    if (!QFile::copy(location->nativePath, copy)) return project;
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
    return copy;
}

}  // namespace

int TakeScreenshot(StudioWindow& window, StudioRegistry& registry, const QString& project,
                   const QString& pngFile) {
    // Editors keep their layout beside the project; nothing is to be left there.
    const QTemporaryDir folder;
    const auto closed = qScopeGuard([&window] { window.CloseProject(); });
    bool failed = false;
    const messages::MessageAnswer answer([&failed](const messages::Message& message) {
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(message.title),
                     qUtf8Printable(message.text));
        failed = true;
        return messages::MessageResult::Cancel;
    });
    window.resize(kWidth, kHeight);
    window.show();
    WaitUntilPainted(window);
    if (!project.isEmpty()) {
        if (!window.OpenProject(CopyOf(project, registry, folder))) return 1;
        const QString root = window.FirstAddInNode();
        if (root.isEmpty()) {
            std::fputs("kvstudio: no add-in shows anything of the project\n", stderr);
        } else {
            window.Tree().ExpandAsUser(root);
            WaitUntilPainted(window);
            const auto children = window.Host().ChildKeys(root);
            if (children) window.Tree().ClickAsUser(children->front());
        }
        if (failed) return 1;
    }
    WaitUntilPainted(window);
    if (window.grab().save(pngFile, "PNG")) return 0;
    std::fprintf(stderr, "kvstudio: cannot write '%s'\n", qUtf8Printable(pngFile));
    return 1;
}

}  // namespace studio
