#include "studio/StudioIcons.h"

#include <initializer_list>

// The linker drops the resources of a static library unless somebody names them; the macro works
// in the global namespace only.
static void InitStudioResources() {
    Q_INIT_RESOURCE(studio);
}

namespace studio {
namespace {

QIcon Load(const QString& name, std::initializer_list<int> sizes) {
    InitStudioResources();
    QIcon icon;
    for (const int size : sizes) {
        icon.addFile(QStringLiteral(":/studio/%1-%2.png").arg(name).arg(size));
    }
    return icon;
}

}  // namespace

QIcon StudioIcon() {
    return Load(QStringLiteral("kvstudio"), {16, 32, 48, 128});
}

QIcon ProjectIcon() {
    return Load(QStringLiteral("project"), {16, 32});
}

}  // namespace studio
