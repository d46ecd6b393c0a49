#pragma once

#include <string>
#include <vector>

namespace tools {

/// What another program has said and how it has ended.
struct ProgramResult {
    int status = 0;      // of its exit; 127: it cannot be run, or has been killed
    std::string output;  // what it has written, messages included
};

/// Runs a program, found by PATH, in a folder, and waits for it. It reads nothing, and
/// knows of no repository but that of the folder.
[[nodiscard]] ProgramResult RunProgram(const std::string& folder,
                                       const std::vector<std::string>& words);

/// The path of the program that is running.
[[nodiscard]] std::string OwnPath();

}  // namespace tools
