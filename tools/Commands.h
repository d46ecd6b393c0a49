#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "csv/Encoding.h"
#include "project/CheckRules.h"
#include "tools/FindingWriter.h"
#include "words/Words.h"

namespace tools {

/// Exit statuses of the tool.
enum ExitStatus : int {
    kSuccess = 0,
    kFailure = 1,
    kUsage = 2,
    // Of commands that compare, as diff has them.
    kDiffers = 1,
    kTrouble = 2,
};

// The commands. They write their result to `out` and messages, a line each, to `err`; both are
// borrowed. Damage concerns single rows or values: the rest is written all the same, the messages
// name the places, and the status is kFailure.

/// Makes a new project file with texts in these languages, decimal locale ids; in German and
/// English when there are none. Prints nothing. kUsage for what is no language.
[[nodiscard]] ExitStatus New(const std::string& file, const std::vector<std::string>& lcids,
                             std::FILE* err);

/// A line for each user table: name, tab, number of rows.
[[nodiscard]] ExitStatus Tables(const std::string& file, std::FILE* out, std::FILE* err);

enum class DumpFormat { Csv, Json };

/// What of a table is dumped.
struct DumpWish {
    DumpFormat format = DumpFormat::Csv;
    std::string where{};                 // criteria that the rows meet; empty: all rows
    std::vector<std::string> columns{};  // in this order; none: all of the table's
    bool isByKey = false;                // in the order of the primary key, else as they are stored
};
/// The rows of a table.
[[nodiscard]] ExitStatus Dump(const std::string& file, const std::string& table,
                              const DumpWish& wish, std::FILE* out, std::FILE* err);

/// A line for each fault of a Jet 4 file, "error: ..." or "warning: ...". kSuccess when there are
/// no errors.
[[nodiscard]] ExitStatus Check(const std::string& file, std::FILE* out, std::FILE* err);

struct LintOptions {
    FindingFormat format = FindingFormat::Text;
    project::Severity failOn = project::Severity::Note;
    std::string rules;  // "a,b": these alone; "-a,-b": all but these; empty: all
    // To accept findings instead of telling of them: a rule, or a place or the beginning of one.
    std::string accept;
    std::string reason;
    std::string by;     // empty: the user's name
    std::string until;  // the last day; empty: for ever
    // To cure findings instead.
    enum class Cure { None, Safe, All };
    Cure cure = Cure::None;
    bool isDryRun = false;  // what a cure would do is told and not done
};

/// What the rules find in a project but for what is accepted beside it (see
/// project::CheckSettings), or accepts findings and writes how many, or cures them and writes what
/// it does. kFailure when a finding is as
/// severe as `failOn`, or rows cannot be read; kUsage for a rule that there is not, or an
/// acceptance without a reason.
[[nodiscard]] ExitStatus Lint(const std::string& file, const LintOptions& options, std::FILE* out,
                              std::FILE* err);

/// Rewrites a Jet 4 file without the room that nothing uses and writes both sizes to `out`. Refused
/// while other programs have the file open.
[[nodiscard]] ExitStatus Compact(const std::string& file, std::FILE* out, std::FILE* err);

/// Writes what can be read of a Jet 4 file into a new one: `to`, or when that is empty a name
/// beside the old one, "FILE-repaired". The old file is only read. Writes the name of the new file
/// with the numbers of its tables and rows to `out`, and a line to `err` for all that could not be
/// saved; the status is kFailure then.
[[nodiscard]] ExitStatus Repair(const std::string& file, const std::string& to, std::FILE* out,
                                std::FILE* err);

// The commands that change a table, through recordsets: all of it in one transaction or nothing.
// They write the number of rows to `out`. A dry run does the same in a transaction that is taken
// back, and writes what would have come of it.
enum class Mode { Change, DryRun };

/// How the rows of a CSV file are loaded.
struct LoadWish {
    csv::Encoding encoding = csv::Encoding::Utf8;
    char separator = 0;  // 0: found out
    /// A row changes the one of the table that has the same value in this column, to the letter,
    /// and is a new one where there is none. Empty: all are new.
    std::string key{};
};
/// Appends the rows of a CSV file (- = standard input) with a heading row, in the form of Dump.
/// Columns that it does not name are Null, an AutoNumber gets the next number. What comes through a
/// pipe is read to its end before anything is locked. Rows that the table holds already, as far as
/// the columns go that are named, are loaded and told of. A dry run names each line that would be
/// refused; the status is kFailure then.
[[nodiscard]] ExitStatus Load(const std::string& file, const std::string& table,
                              const std::string& input, const LoadWish& wish, Mode mode,
                              std::FILE* out, std::FILE* err);
/// Assigns columns in all rows that meet the criteria; an assignment is COLUMN=VALUE, the value in
/// the form of Dump. A dry run counts the rows whose values differ.
[[nodiscard]] ExitStatus Set(const std::string& file, const std::string& table,
                             const std::string& criteria,
                             const std::vector<std::string>& assignments, Mode mode, std::FILE* out,
                             std::FILE* err);
/// Deletes all rows that meet the criteria. A dry run counts those of other tables too that would
/// go with them.
[[nodiscard]] ExitStatus Delete(const std::string& file, const std::string& table,
                                const std::string& criteria, Mode mode, std::FILE* out,
                                std::FILE* err);

/// Forms of what is told of several files.
enum class TextFormat { Text, Json };

struct DiffWish {
    TextFormat format = TextFormat::Text;
    const words::Language* language = nullptr;  // of captions and codes in sentences
};
/// Writes how two project files differ, by ID and whatever the order in which their rows are
/// stored. kDiffers when they do, kTrouble when one of them cannot be read.
[[nodiscard]] ExitStatus Diff(const std::string& before, const std::string& after,
                              const DiffWish& wish, std::FILE* out, std::FILE* err);

struct MergeFiles {
    std::string base;  // an empty file: they have none in common
    std::string mine;
    std::string theirs;
    std::string result;
};
/// Writes a project with what has been changed from `base` to `mine` and from `base` to `theirs`.
/// The result gets its name when it is whole and checked; it may take the place of `mine`, and of
/// nothing else. kDiffers when there are conflicts, which are written to `out`; kTrouble when there
/// is no result.
[[nodiscard]] ExitStatus Merge(const MergeFiles& files, TextFormat format, std::FILE* out,
                               std::FILE* err);

/// Registers this program in the git repository of a folder ("": the one that is current) for
/// project files, as text view, diff and merge driver. First they have to show in a repository of
/// their own that they run; when they do not, nothing is registered.
[[nodiscard]] ExitStatus GitSetup(const std::string& folder, std::FILE* out, std::FILE* err);

/// Runs the program: argument 0 is its name.
[[nodiscard]] ExitStatus Run(int argc, char** argv, std::FILE* out, std::FILE* err);

}  // namespace tools
