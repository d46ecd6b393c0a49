#include "platform/ComponentRegistry.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>
#include <QPluginLoader>

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr auto kProgId = "ProgID"_L1;

}  // namespace

ComponentRegistry::ComponentRegistry(QStringList folders) : folders_(std::move(folders)) {
    Refresh();
}

QStringList ComponentRegistry::DefaultFolders() {
    QStringList folders =
        qEnvironmentVariable("KV_ADDINS").split(QDir::listSeparator(), Qt::SkipEmptyParts);
    const QDir programFolder(QCoreApplication::applicationDirPath());
    folders += programFolder.filePath(u"addins"_s);
    folders += QDir::cleanPath(programFolder.filePath(QStringLiteral(KV_ADDINS_FROM_PROGRAM)));
    return folders;
}

void ComponentRegistry::Refresh() {
    components_.clear();
    problems_.clear();
    QStringList seen;  // a folder may be named twice
    for (const QString& folder : folders_) {
        const QString path = QDir(folder).canonicalPath();
        if (path.isEmpty() || seen.contains(path)) continue;
        seen += path;
        for (const QFileInfo& entry : QDir(path).entryInfoList(QDir::Files, QDir::Name)) {
            if (QLibrary::isLibrary(entry.fileName())) Examine(entry.filePath());
        }
    }
}

void ComponentRegistry::Examine(const QString& file) {
    const QPluginLoader loader(file);
    const QJsonObject metaData = loader.metaData().value("MetaData"_L1).toObject();
    const QString progId = metaData.value(kProgId).toString();
    if (progId.isEmpty()) {
        problems_ += loader.metaData().isEmpty()
                         ? Problem{Problem::Kind::NoLibrary, file, loader.errorString()}
                         : Problem{Problem::Kind::NoName, file, u"it names no ProgID"_s};
        return;
    }
    if (const Component* first = Find(progId)) {
        problems_ += Problem{Problem::Kind::NameTaken, file,
                             u"its ProgID %1 is that of '%2'"_s.arg(progId, first->file)};
        return;
    }
    components_ += Component{progId, file, metaData};
}

const Component* ComponentRegistry::Find(const QString& progId) const {
    for (const Component& component : components_) {
        if (component.progId.compare(progId, Qt::CaseInsensitive) == 0) return &component;
    }
    return nullptr;
}

ComponentRegistry::Instance ComponentRegistry::Load(const QString& progId) const {
    const Component* component = Find(progId);
    if (component == nullptr) {
        return {nullptr, u"no add-in with the ProgID %1 in %2"_s.arg(
                             progId, folders_.join(QDir::listSeparator()))};
    }
    QPluginLoader loader(component->file);
    // Unloading would pull the code from under queued events and icons that the host still holds.
    loader.setLoadHints(loader.loadHints() | QLibrary::PreventUnloadHint);
    QObject* root = loader.instance();
    if (root == nullptr) return {nullptr, loader.errorString()};
    return {root, {}};
}

}  // namespace platform
