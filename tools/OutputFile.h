#pragma once

#include <cstdio>
#include <string>

#include "paths/NewFile.h"

namespace tools {

/// A file that a command makes: under its name there is the whole of it or what was there before.
/// Without a name it is a stream that is there already; a device or a pipe is written directly.
class OutputFile {
public:
    /// `standard` is borrowed.
    explicit OutputFile(std::FILE* standard) : stream_(standard) {}
    ~OutputFile();  // what has not been kept is gone
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // They say what has gone wrong; empty: nothing.
    [[nodiscard]] std::string Open(const std::string& name);
    /// To be called when all has been written.
    [[nodiscard]] std::string Keep();

    [[nodiscard]] std::FILE* Stream() const { return stream_; }

private:
    [[nodiscard]] std::string Failure(const std::error_code& error) const;

    std::FILE* stream_;
    std::string name_;
    paths::NewFile file_;  // without a stream: written directly
    bool isOwn_ = false;   // a device or a pipe that has been opened
};

}  // namespace tools
