#pragma once

#include "jet/Check.h"
#include "jet/TableWriter.h"
#include "JetTesting.h"
#include "TestDisk.h"

namespace jet {

inline constexpr const char* kProject = "project.kvs";

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
