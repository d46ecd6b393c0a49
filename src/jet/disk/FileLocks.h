#pragma once

#include <memory>
#include <string>

#include "jet/Disk.h"

namespace jet {

/// The engine's own locks lie on the file at `database` itself, behind every byte that it can have,
/// so that they are the same through each of its names, and who may only read it has them too. What
/// other programs look at is the lock file beside it. Where that one cannot be made, as on
/// read-only media, reading goes on without it.
[[nodiscard]] Result<std::unique_ptr<Locks>> OpenFileLocks(const std::string& database,
                                                           OpenMode mode);

}  // namespace jet
