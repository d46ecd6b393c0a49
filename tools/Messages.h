#pragma once

#include <cstdio>
#include <string>

#include "jet/Database.h"
#include "tools/Commands.h"
#include "tools/TextBuffer.h"

namespace tools {

/// Messages about one file: "kvs: FILE: ...". They end after a while, so that a file that is
/// damaged all over does not flood the terminal.
class Messages {
public:
    Messages(std::FILE* stream, std::string file) : stream_(stream), file_(std::move(file)) {}

    void Report(const jet::Status& status);
    /// The status with which the command ends; flushes `out` and reports when that fails.
    [[nodiscard]] ExitStatus Finish(TextBuffer& out);

private:
    static constexpr int kMost = 100;

    std::FILE* stream_;
    std::string file_;
    int count_ = 0;
};

/// Opens the project file that the user named, in either form of path. The messages name the file.
[[nodiscard]] jet::Result<std::unique_ptr<jet::Database>> OpenFile(const std::string& file);

}  // namespace tools
