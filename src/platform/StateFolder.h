#pragma once

#include <QString>

namespace platform {

/// Where the programs keep what outlives them but is no setting: $XDG_STATE_HOME/korvala, by
/// default ~/.local/state/korvala. A native path; the folder may not be there yet.
[[nodiscard]] QString StateFolder();

}  // namespace platform
