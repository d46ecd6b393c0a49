#include "studio/ProjectLocation.h"

#include <fcntl.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "ado/AdoError.h"
#include "ado/Connection.h"
#include "paths/NativePath.h"
#include "studio/StudioRegistry.h"
#include "studio/StudioTexts.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kExtension = u".kvs"_s;
constexpr qint64 kHeadBytes = 21;  // up to the format's version

QString ToNative(const QString& path) {
    return QString::fromStdString(paths::ToNative(path.toStdString()));
}

QString ToProject(const QString& nativePath) {
    return QString::fromStdString(paths::ToProject(nativePath.toStdString()));
}

bool IsPath(const QString& project) {
    return project.trimmed().endsWith(kExtension, Qt::CaseInsensitive);
}

bool HasDrive(const QString& path) {
    return path.size() > 1 && path[1] == u':' && path[0].isLetter() && path[0].unicode() < 128;
}

/// The file of a registered project, as the add-ins make it up; empty when none is registered.
QString FileOfName(const QString& name, StudioRegistry& registry) {
    const QString folder = registry.ProjectFolder(name);
    return folder.isEmpty() ? QString() : folder + u'\\' + name + kExtension;
}

/// Whether whoever runs this program can look at the project only. Rights are asked of the system
/// and not of Qt, which asks for the user who has started the program, as the file is opened;
/// version and damage of the file itself.
bool IsReadOnly(const QString& nativePath) {
    const auto mayWrite = [](const QString& path) {
        return ::faccessat(AT_FDCWD, QFile::encodeName(path).constData(), W_OK, AT_EACCESS) == 0;
    };
    // What a change needs beside the file is made in its folder.
    if (!mayWrite(nativePath) || !mayWrite(QFileInfo(nativePath).path())) return true;
    try {
        ado::Connection file;
        file.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + nativePath.toStdString() + ";");
        return !file.IsWritable();
    } catch (const ado::AdoError&) {
        return false;  // told by whoever opens it for its content
    }
}

/// A name may end with a blank; where it is none of a file, it has come along with the name.
QString WithoutStrayBlanks(const QString& project) {
    return QFileInfo(ToNative(project)).isFile() ? project : project.trimmed();
}

/// Empty, or why the file cannot be a project.
QString Refusal(const QString& nativePath, const StudioTexts& texts) {
    const QFileInfo info(nativePath);
    if (!info.exists()) return texts(Text::ErrorNotFound, {{u"file", nativePath}});
    if (!info.isFile()) return texts(Text::ErrorNoFile, {{u"file", nativePath}});
    QFile file(nativePath);
    if (!file.open(QIODevice::ReadOnly)) {
        return texts(Text::ErrorNotReadable,
                     {{u"file", nativePath}, {u"cause", file.errorString()}});
    }
    // Whether the database itself can be used is found out by whoever opens it; this tells a text
    // or picture from a database: 4 bytes 00 01 00 00, then the name of the format.
    const QByteArray start = file.read(kHeadBytes);
    if (file.error() != QFileDevice::NoError) {
        return texts(Text::ErrorNotReadable,
                     {{u"file", nativePath}, {u"cause", file.errorString()}});
    }
    if (start.isEmpty()) return texts(Text::ErrorEmptyFile, {{u"file", nativePath}});
    if (!start.startsWith(QByteArrayView("\x00\x01\x00\x00Standard ", 13))) {
        return texts(Text::ErrorNoDatabase, {{u"file", nativePath}});
    }
    return {};
}

}  // namespace

std::variant<ProjectLocation, QString> Locate(const QString& project, StudioRegistry& registry,
                                              const StudioTexts& texts) {
    ProjectLocation location;
    if (IsPath(project)) {
        const QString given = WithoutStrayBlanks(project);
        // A native name may hold a backslash, which the form with backslashes cannot express.
        if (!HasDrive(given) && given.contains(u'/') && given.contains(u'\\')) {
            return texts(Text::ErrorBackslash, {{u"file", given}});
        }
        const bool projectForm = HasDrive(given) || given.startsWith(u'\\');
        location.nativePath = QDir::cleanPath(QFileInfo(ToNative(given)).absoluteFilePath());
        if (!projectForm && location.nativePath.contains(u'\\')) {
            return texts(Text::ErrorBackslash, {{u"file", location.nativePath}});
        }
        location.forAddIns = projectForm ? given : ToProject(location.nativePath);
        location.remembered = location.nativePath;
    } else {
        const QString file = FileOfName(project, registry);
        if (file.isEmpty()) {
            const bool isFile = project.contains(u'/') || QFileInfo::exists(project);
            return texts(isFile ? Text::ErrorExtension : Text::ErrorUnknownName,
                         {{u"project", project}});
        }
        location.nativePath = ToNative(file);
        location.forAddIns = project;
        location.remembered = project;
    }
    location.shown = QFileInfo(location.nativePath).completeBaseName();
    const QString refusal = Refusal(location.nativePath, texts);
    if (!refusal.isEmpty()) return refusal;
    location.isReadOnly = IsReadOnly(location.nativePath);
    return location;
}

QString Absolute(const QString& project) {
    const bool isElsewhere = HasDrive(project) || project.startsWith(u'\\');
    if (!IsPath(project) || isElsewhere) return project;
    return QDir::cleanPath(QFileInfo(ToNative(WithoutStrayBlanks(project))).absoluteFilePath());
}

bool IsThere(const QString& project, StudioRegistry& registry) {
    const QString file = IsPath(project) ? project : FileOfName(project, registry);
    return !file.isEmpty() && QFileInfo(ToNative(file)).isFile();
}

}  // namespace studio
