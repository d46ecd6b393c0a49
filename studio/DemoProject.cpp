#include "studio/DemoProject.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace studio {

using namespace Qt::Literals::StringLiterals;

QString DemoProject() {
    const QDir program(QCoreApplication::applicationDirPath());
    // Installed, or in the folder of a build.
    for (const QString& folder :
         {u"../share/doc/korvala-studio/examples"_s, u"../../../examples"_s}) {
        const QFileInfo file(program.filePath(folder + u"/Brauerei.kvs"_s));
        if (file.isReadable()) return file.canonicalFilePath();
    }
    return {};
}

QString OwnDemoProject() {
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    const QString copy = folder.filePath(u"Brauerei.kvs"_s);
    if (QFileInfo::exists(copy)) return copy;
    const QString demo = DemoProject();
    if (demo.isEmpty() || !folder.mkpath(u"."_s) || !QFile::copy(demo, copy)) return {};
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
    return copy;
}

}  // namespace studio
