#pragma once

#include <optional>
#include <string>

#include "backups/Backups.h"

namespace backups {

/// The name of a backup's file: the time in UTC, so that the order of names is that of times.
[[nodiscard]] std::string NameOf(Moment taken);
/// Empty for a name that is none of a backup.
[[nodiscard]] std::optional<Moment> TakenOf(const std::string& name);

/// The name of the folder of a project's backups: the project's name, for people, and a number made
/// of its path, which tells projects of the same name apart.
[[nodiscard]] std::string FolderNameOf(const std::string& project);

}  // namespace backups
