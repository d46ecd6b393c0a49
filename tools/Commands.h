#pragma once

#include <cstdio>
#include <string>

namespace tools {

/// Exit statuses of the tool.
enum ExitStatus : int { kSuccess = 0, kFailure = 1, kUsage = 2 };

// The commands. They write their result to `out` and messages, a line each, to `err`; both are
// borrowed. Damage concerns single rows or values: the rest is written all the same, the messages
// name the places, and the status is kFailure.

/// A line for each user table: name, tab, number of rows.
[[nodiscard]] ExitStatus Tables(const std::string& file, std::FILE* out, std::FILE* err);

enum class DumpFormat { Csv, Json };

/// All rows of a table with all its columns.
[[nodiscard]] ExitStatus Dump(const std::string& file, const std::string& table, DumpFormat format,
                              std::FILE* out, std::FILE* err);

/// A line for each fault of a Jet 4 file, "error: ..." or "warning: ...". kSuccess when there are
/// no errors.
[[nodiscard]] ExitStatus Check(const std::string& file, std::FILE* out, std::FILE* err);

/// Runs the program: argument 0 is its name.
[[nodiscard]] ExitStatus Run(int argc, char** argv, std::FILE* out, std::FILE* err);

}  // namespace tools
