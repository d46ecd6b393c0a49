#include "studio/Screenshot.h"

#include <cstdio>
#include <QApplication>
#include <QElapsedTimer>
#include <QPixmap>
#include <QWindow>

#include "platform/MessageBox.h"
#include "studio/ProjectTree.h"
#include "studio/StudioHost.h"
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

}  // namespace

int TakeScreenshot(StudioWindow& window, const QString& project, const QString& pngFile) {
    bool failed = false;
    const platform::MessageAnswer answer([&failed](const platform::Message& message) {
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(message.title),
                     qUtf8Printable(message.text));
        failed = true;
        return platform::MessageResult::Cancel;
    });
    window.resize(kWidth, kHeight);
    window.show();
    WaitUntilPainted(window);
    if (!project.isEmpty()) {
        if (!window.OpenProject(project)) return 1;
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
