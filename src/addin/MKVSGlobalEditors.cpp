#include "addin/MKVSGlobalEditors.h"

#include "guard/Guard.h"
#include "platform/Registry.h"

namespace MKVSGlobalEditors {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr QStringView kProjectsKey = u"SOFTWARE\\Brantor GmbH\\Korvala\\4.0\\Projects\\";
constexpr QStringView kExtension = u".kvs";

bool NamesAFile(QStringView project) {
    while (project.endsWith(u' ')) project.chop(1);
    return project.endsWith(kExtension, Qt::CaseInsensitive);
}

}  // namespace

bool ReadCurrentProject(platform::Registry& registry, QString& projectPath) {
    if (projectPath.isEmpty()) return false;
    if (NamesAFile(projectPath)) return true;
    try {
        const QString folder = registry.ReadString(kProjectsKey.toString() + projectPath, u"Path");
        projectPath = folder + u'\\' + projectPath + kExtension.toString();
        return true;
    } catch (...) {
        guard::ShowFailure(u"MKVSGlobalEditors: ReadCurrentProject"_s);
        return false;
    }
}

}  // namespace MKVSGlobalEditors
