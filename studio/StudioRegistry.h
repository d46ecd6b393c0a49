#pragma once

#include <QString>

#include "platform/Registry.h"

namespace studio {

/// What the studio reads and writes below its key of the station's registry. Reading never fails:
/// where the registry cannot be read the defaults hold, and the cause is logged.
class StudioRegistry {
public:
    /// Locale identifier of the interface language; German when none is set.
    [[nodiscard]] int InterfaceLanguage();
    /// Returns an empty string, or why it could not be saved.
    [[nodiscard]] QString SetInterfaceLanguage(int lcid);
    /// The folder of a registered project; empty when there is none of this name.
    [[nodiscard]] QString ProjectFolder(const QString& projectName);

private:
    platform::Registry registry_;
};

}  // namespace studio
