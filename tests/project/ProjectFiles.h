#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include "ado/Connection.h"
#include "support/NewFolder.h"

/// A folder that goes with the test.
class TestFolder {
public:
    TestFolder() { folder_ = NewFolder("project"); }
    ~TestFolder() { std::filesystem::remove_all(folder_); }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    /// Path of a copy under this name.
    std::string Copy(const std::string& original, const std::string& name) const {
        std::filesystem::copy_file(original, Path(name));
        return Path(name);
    }
    [[nodiscard]] std::string Path(const std::string& name) const {
        return (folder_ / name).string();
    }

private:
    std::filesystem::path folder_;
};

inline void OpenProject(ado::Connection& connection, const std::string& path) {
    connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path + ";");
}
