#pragma once

#include <QString>

namespace studio {

/// The example that comes with the program, which nobody can change; empty when there is none.
[[nodiscard]] QString DemoProject();
/// The user's own copy of it, to try things out on; made when there is none yet. Empty when it can
/// neither be found nor made.
[[nodiscard]] QString OwnDemoProject();

}  // namespace studio
