#pragma once

#include <string>

namespace jet {

/// What may stand between the folders of a native path.
extern const char* const kSeparators;

/// Whether it leads to the same place from every folder.
[[nodiscard]] bool IsWholePath(const std::string& path);

/// What the system calls this computer; for people.
[[nodiscard]] std::string ComputerName();

/// A number that no other program on this computer has at the same time.
[[nodiscard]] unsigned long ProcessNumber();

}  // namespace jet
