#include "dialogs/FolderChoice.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

#include "paths/NativePath.h"

namespace {

QString ToNative(const QString& path) {
    return QString::fromStdString(paths::ToNative(path.toStdString()));
}

QString StartOf(const QString& fieldText, const QString& projectFolder) {
    QString path = fieldText;
    if (path.startsWith(kProjectDir)) path.replace(0, kProjectDir.size(), projectFolder);
    const QString native = ToNative(path);
    return !path.isEmpty() && QFileInfo(native).isDir() ? native : ToNative(projectFolder);
}

QString FieldTextOf(const QString& chosen, const QString& projectFolder) {
    // Links may lead to the same folder by two names.
    const QString project = QFileInfo(ToNative(projectFolder)).canonicalFilePath();
    QString folder = QFileInfo(chosen).canonicalFilePath();
    if (folder.isEmpty()) folder = QDir::cleanPath(chosen);
    if (!project.isEmpty() && folder == project) return kProjectDir.toString();
    if (!project.isEmpty() && folder.startsWith(project + u'/')) {
        const QString inside = folder.mid(project.size());
        return kProjectDir.toString() +
               QString::fromStdString(paths::ToProject(inside.toStdString()));
    }
    return QString::fromStdString(paths::ToProject(QDir::cleanPath(chosen).toStdString()));
}

}  // namespace

std::optional<QString> ChooseFolder(const DialogServices& services, QWidget* owner,
                                    const QString& title, const QString& fieldText) {
    const QString start = StartOf(fieldText, services.projectFolder);
    QString chosen;
    if (services.chooseFolder) {
        chosen = services.chooseFolder(owner, title, start).value_or(QString());
    } else {
        chosen = QFileDialog::getExistingDirectory(owner, title, start);
    }
    if (chosen.isEmpty()) return std::nullopt;
    return FieldTextOf(chosen, services.projectFolder);
}
