#pragma once

#include <filesystem>
#include <random>
#include <string>

/// A new, empty folder for what a test makes; whoever asks for it removes it.
[[nodiscard]] inline std::filesystem::path NewFolder(const std::string& name) {
    std::random_device random;
    for (;;) {
        const auto folder =
            std::filesystem::temp_directory_path() / (name + "-" + std::to_string(random()));
        if (std::filesystem::create_directory(folder)) return folder;
    }
}
