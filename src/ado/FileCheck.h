#pragma once

#include <string>
#include <vector>

namespace ado {

/// What a check of a whole file has found: a line each, English, as `kvs check` prints them.
struct FileCheck {
    std::vector<std::string> errors;
    std::vector<std::string> warnings;  // untidy, but every program reads the file correctly
};

/// Checks a project file, native path or one with backslashes, and changes nothing. Takes as long
/// as reading the file. Throws AdoError when it cannot be checked at all.
[[nodiscard]] FileCheck CheckFile(const std::string& path);

}  // namespace ado
