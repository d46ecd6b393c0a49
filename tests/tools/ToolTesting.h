#pragma once

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "support/NewFolder.h"
#include "tools/Commands.h"

namespace tools {

/// What `write` puts into the stream that it gets.
[[nodiscard]] inline std::string Written(const std::function<void(std::FILE*)>& write) {
    std::FILE* stream = std::tmpfile();
    write(stream);
    std::string result(static_cast<std::size_t>(std::ftell(stream)), '\0');
    std::rewind(stream);
    result.resize(std::fread(result.data(), 1, result.size(), stream));
    std::fclose(stream);
    return result;
}

struct Outcome {
    ExitStatus status = kSuccess;
    std::string out;
    std::string err;
};

/// Runs the program with these arguments.
[[nodiscard]] inline Outcome RunTool(std::vector<std::string> words) {
    words.insert(words.begin(), "kvs");
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);  // as main gets them
    Outcome outcome;
    outcome.err = Written([&](std::FILE* err) {
        outcome.out = Written([&](std::FILE* out) {
            outcome.status = Run(static_cast<int>(words.size()), arguments.data(), out, err);
        });
    });
    return outcome;
}

inline const std::string kBrewery = std::string(KV_EXAMPLES "/Brauerei.kvs");

/// A copy of a project that goes with the test.
class ProjectCopy {
public:
    explicit ProjectCopy(const std::string& original) {
        folder_ = NewFolder("kvs");
        std::filesystem::copy_file(original, Path());
    }
    ~ProjectCopy() { std::filesystem::remove_all(folder_); }
    ProjectCopy(const ProjectCopy&) = delete;
    ProjectCopy& operator=(const ProjectCopy&) = delete;

    [[nodiscard]] std::string Path(const std::string& name = "project.kvs") const {
        return (folder_ / "").string() + name;
    }

private:
    std::filesystem::path folder_;
};

}  // namespace tools
