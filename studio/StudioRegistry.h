#pragma once

#include <optional>
#include <QString>

#include "platform/Error.h"
#include "platform/Registry.h"

namespace studio {

/// What the studio reads and writes below its key of the station's registry. Reading never fails:
/// where the registry cannot be read the defaults hold, and the cause is logged.
class StudioRegistry {
public:
    /// Locale identifier of the interface language; German when none is set.
    [[nodiscard]] int InterfaceLanguage();
    /// Returns why it could not be saved, if so.
    [[nodiscard]] std::optional<platform::Error> SetInterfaceLanguage(int lcid);
    /// The folder of a registered project; empty when there is none of this name.
    [[nodiscard]] QString ProjectFolder(const QString& projectName);
    /// Where the station's help file would be installed, with backslashes.
    [[nodiscard]] QString HelpFile();

private:
    platform::Registry registry_;
};

}  // namespace studio
