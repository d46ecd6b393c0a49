#pragma once

#include <sys/stat.h>

namespace jet {

/// Gives a new file, open as `file`, the owner, the group and the permissions of the database that
/// `database` tells about, as far as this program may: nobody gets to see more of it than of the
/// database, and who shares the database can use it.
void GiveAccessOf(const struct stat& database, int file);

/// Whether the owner of a file may write the database, by the permissions of the two; this
/// program's own user and the system's are taken for such.
[[nodiscard]] bool MayOwnerWrite(const struct stat& file, const struct stat& database);

}  // namespace jet
