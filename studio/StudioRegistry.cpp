#include "studio/StudioRegistry.h"

#include <QtGlobal>

#include "studio/StudioTexts.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kStudioKey = u"SOFTWARE\\Brantor GmbH\\Korvala\\4.0"_s;
constexpr QStringView kLcid = u"LCID";

}  // namespace

int StudioRegistry::InterfaceLanguage() {
    try {
        return static_cast<int>(
            registry_.ReadDword(kStudioKey, kLcid, static_cast<std::uint32_t>(kGerman)));
    } catch (const platform::Error& error) {
        qWarning("%s", error.what());
        return kGerman;
    }
}

std::optional<platform::Error> StudioRegistry::SetInterfaceLanguage(int lcid) {
    try {
        registry_.WriteDword(kStudioKey, kLcid, static_cast<std::uint32_t>(lcid));
        return std::nullopt;
    } catch (const platform::Error& error) {
        return error;
    }
}

QString StudioRegistry::ProjectFolder(const QString& projectName) {
    try {
        return registry_.ReadString(kStudioKey + u"\\Projects\\"_s + projectName, u"Path");
    } catch (const platform::Error& error) {
        qWarning("%s", error.what());
        return {};
    }
}

QString StudioRegistry::HelpFile() {
    QString folder;
    try {
        folder = registry_.ReadString(u"SOFTWARE\\Brantor GmbH"_s, u"Common");
    } catch (const platform::Error& error) {
        qWarning("%s", error.what());
    }
    return folder + u"\\helpfiles\\Archivsystem.chm"_s;
}

}  // namespace studio
