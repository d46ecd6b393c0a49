#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "tools/Commands.h"

namespace tools {

/// What has been done to a table, or would be.
struct Done {
    std::string text;                   // the line for the output
    std::vector<std::string> warnings;  // sentences for the user
    bool isRefused = false;             // a dry run has found what the change would fail at
};

/// What is done to a table; the input is read before anybody else has to wait.
struct TableChange {
    std::function<void(ado::Recordset&)> prepare;
    std::function<Done(ado::Connection&, ado::Recordset&)> run;
};

/// Runs `change` on a table in one transaction, which a dry run takes back. What fails leaves the
/// file as it was, and says so.
[[nodiscard]] ExitStatus Edit(const std::string& file, const std::string& table, Mode mode,
                              std::FILE* out, std::FILE* err, const TableChange& change);

/// "1 row", "2 rows".
[[nodiscard]] std::string RowCount(std::size_t count);

/// Throws what tells of wrong words or input: `what` is a sentence.
[[noreturn]] void FailInput(const std::string& what);

}  // namespace tools
