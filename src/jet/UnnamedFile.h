#pragma once

#include <memory>

#include "jet/File.h"

namespace jet {

/// A new, empty file without a name, in the folder that TMPDIR names, else in /tmp (on Windows in
/// the user's for such files): a place for what is too much for memory. It can be written, nobody
/// else can reach it, and it goes when it is closed, however the program ends. The messages name
/// the folder.
[[nodiscard]] Result<std::unique_ptr<File>> OpenUnnamedFile();

/// All bytes of a file in a new one without a name.
[[nodiscard]] Result<std::unique_ptr<File>> CopyToUnnamedFile(const File& file);

}  // namespace jet
