#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "ado/AdoError.h"
#include "ado/Connection.h"
#include "jet/Database.h"
#include "tools/Commands.h"
#include "tools/TextBuffer.h"

namespace tools {

/// Messages about one file: "kvs: FILE: ...". They end after a while, so that a file that is
/// damaged all over does not flood the terminal, and are kept until the end, since the terminal may
/// take its time while the file is held.
class Messages {
public:
    Messages(std::FILE* stream, std::string file) : stream_(stream), file_(std::move(file)) {}

    void Report(const jet::Status& status);
    void Report(const ado::AdoError& error);
    /// What the user should know, and no failure.
    void Warn(const std::vector<std::string>& notices);
    /// Waits for `out` and shows the messages, also what has become of `out`. The status with which
    /// the command ends. REQUIRES: the file is no longer held.
    [[nodiscard]] ExitStatus Finish(TextBuffer& out);

private:
    static constexpr std::size_t kMost = 100;

    void Report(const std::string& text);

    std::FILE* stream_;
    std::string file_;
    std::size_t count_ = 0;
    std::vector<std::string> texts_;  // the first kMost
};

/// Says at once why a command on the file has failed, and gives the status with which it ends.
ExitStatus Fail(const std::string& file, const ado::AdoError& error, std::FILE* err);

/// Opens the file that the user named for its rows; what he should know of it is told. Throws
/// ado::AdoError.
void Connect(ado::Connection& connection, const std::string& file, Messages& messages);
/// The same without a word.
void Connect(ado::Connection& connection, const std::string& file);

/// Opens the project file that the user named, in either form of path. The messages name the file.
[[nodiscard]] jet::Result<std::unique_ptr<jet::Database>> OpenFile(const std::string& file);

}  // namespace tools
