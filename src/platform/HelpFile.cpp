#include "platform/HelpFile.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

#include "paths/NativePath.h"

namespace platform {
namespace {

bool OpenWithDesktop(const QString& path, int /*topic*/, QWidget* /*owner*/) {
    const QString native = QString::fromStdString(paths::ToNative(path.toStdString()));
    return QFileInfo(native).isFile() && QDesktopServices::openUrl(QUrl::fromLocalFile(native));
}

}  // namespace

HelpFile::HelpFile() : viewer_(OpenWithDesktop) {}

void HelpFile::SetViewer(Viewer viewer) {
    viewer_ = viewer ? std::move(viewer) : Viewer(OpenWithDesktop);
}

bool HelpFile::ShowTopic(int topic, QWidget* owner) const {
    return !path_.isEmpty() && viewer_(path_, topic, owner);
}

}  // namespace platform
