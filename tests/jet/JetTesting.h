#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "jet/Database.h"
#include "jet/Unicode.h"

#define ASSERT_OK(expression)                                    \
    do {                                                         \
        const auto assertStatus = jet::StatusOf(expression);     \
        ASSERT_TRUE(assertStatus.IsOk()) << assertStatus.Text(); \
    } while (false)

namespace jet {

[[nodiscard]] inline Status StatusOf(const Status& status) {
    return status;
}
template <typename T>
[[nodiscard]] Status StatusOf(const Result<T>& result) {
    return result.IsOk() ? Status() : result.GetStatus();
}

/// The value, or a failed test and a thrown exception.
template <typename T>
[[nodiscard]] T Must(Result<T> result) {
    if (!result.IsOk()) throw std::runtime_error(result.GetStatus().Text());
    return std::move(*result);
}

/// All database files that other programs have made.
[[nodiscard]] inline std::vector<std::string> SampleFiles() {
    std::vector<std::string> files;
    for (const char* folder : {KV_TEST_DATA, KV_EXAMPLES}) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            const std::string extension = entry.path().extension().string();
            if (extension == ".mdb" || extension == ".kvs") files.push_back(entry.path().string());
        }
    }
    return files;
}

[[nodiscard]] inline std::string TestData(const std::string& name) {
    return std::string(KV_TEST_DATA "/") + name;
}
[[nodiscard]] inline std::string Example(const std::string& name) {
    return std::string(KV_EXAMPLES "/") + name;
}

[[nodiscard]] inline std::vector<std::byte> ReadWhole(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<char> chars{std::istreambuf_iterator<char>(in), {}};
    const auto bytes = std::as_bytes(std::span(chars));
    return {bytes.begin(), bytes.end()};
}

[[nodiscard]] inline std::unique_ptr<Database> OpenBytes(std::vector<std::byte> content) {
    return Must(Database::Open(std::make_unique<MemoryFile>(std::move(content))));
}

[[nodiscard]] inline std::vector<Row> AllRows(Table& table) {
    std::vector<Row> rows;
    RowCursor cursor = Must(table.Scan());
    while (Must(cursor.Next())) rows.push_back(cursor.Current());
    return rows;
}

}  // namespace jet
