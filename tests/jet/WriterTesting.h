#pragma once

#include <algorithm>
#include <string_view>

#include "jet/Check.h"
#include "jet/TableWriter.h"
#include "JetTesting.h"
#include "TestDisk.h"

namespace jet {

inline constexpr const char* kProject = "project.kvs";

// Warnings that a test may expect.
/// An index states how many different keys there have been, not how many there are.
inline constexpr std::string_view kKeysThatWere = "different keys and has";
/// What other programs leave in pages they have freed, and in rows they have deleted.
inline constexpr std::string_view kFormerPages = "free, and still of type";
inline constexpr std::string_view kFormerRows = "is deleted and still takes";
inline const std::vector<std::string_view> kOfOtherPrograms = {kKeysThatWere, kFormerPages,
                                                               kFormerRows};

/// The errors that a check finds in the file.
[[nodiscard]] inline std::vector<std::string> ErrorsIn(TestDisk& disk) {
    std::vector<std::string> errors;
    auto file = Must(disk.Open(kProject, OpenMode::Read));
    const Status status = Check(*file, [&](const Finding& finding) {
        if (finding.severity == Finding::Severity::Error) errors.push_back(finding.text);
        return errors.size() < 20;
    });
    if (!status.IsOk()) errors.push_back(status.Text());
    return errors;
}

/// All that a check finds in the file, without the warnings that hold one of these texts.
[[nodiscard]] inline std::vector<std::string> UnexpectedIn(
    TestDisk& disk, const std::vector<std::string_view>& expected = {}) {
    std::vector<std::string> findings;
    auto file = Must(disk.Open(kProject, OpenMode::Read));
    const Status status = Check(*file, [&](const Finding& finding) {
        const bool isExpected =
            finding.severity == Finding::Severity::Warning &&
            std::any_of(expected.begin(), expected.end(), [&](std::string_view text) {
                return finding.text.find(text) != std::string::npos;
            });
        if (!isExpected) findings.push_back(finding.text);
        return findings.size() < 20;
    });
    if (!status.IsOk()) findings.push_back(status.Text());
    return findings;
}

/// All rows of a table with their long values read, in the order in which they are stored.
[[nodiscard]] inline std::vector<std::vector<Value>> RowsOf(Database& database,
                                                            std::string_view name) {
    std::vector<std::vector<Value>> rows;
    auto table = Must(database.OpenTable(name));
    for (const Row& row : AllRows(*table)) {
        std::vector<Value>& values = rows.emplace_back();
        for (std::size_t i = 0; i < table->Definition().columns.size(); ++i) {
            Value value = Must(row.Get(i));
            if (const auto* longValue = std::get_if<LongValue>(&value)) {
                value = longValue->isText ? Value(Must(table->ReadMemo(*longValue)))
                                          : Value(Must(table->ReadBinary(*longValue)));
            }
            values.push_back(std::move(value));
        }
    }
    return rows;
}

}  // namespace jet
