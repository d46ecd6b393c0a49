#pragma once

#include <cstdio>
#include <string>

namespace tools {

// What the operating system answers for, in its own folder.

/// Streams carry bytes as they are, and one whose reader has gone is a failed write, not the end of
/// the program. To be called first.
void PrepareStreams();

/// Whether a stream is a file on a disk, or memory, which take everything at once.
[[nodiscard]] bool IsFile(std::FILE* stream);
[[nodiscard]] bool IsTerminal(std::FILE* stream);
/// Whether a terminal takes a text now, without waiting for who has stopped it.
[[nodiscard]] bool TakesText(std::FILE* terminal);

/// Who runs the program; empty when that is not known.
[[nodiscard]] std::string UserName();

/// While it is there, new files are for their maker alone, unless they are given other permissions.
class PrivateFiles {
public:
    PrivateFiles();
    ~PrivateFiles();
    PrivateFiles(const PrivateFiles&) = delete;
    PrivateFiles& operator=(const PrivateFiles&) = delete;

private:
    unsigned before_ = 0;
};

}  // namespace tools
