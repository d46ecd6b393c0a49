#pragma once

#include <charconv>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "tools/Spool.h"

namespace tools {

/// What users are told; `name` is empty for a stream that has none.
[[nodiscard]] std::string NotWritten(const std::string& name, const std::string& why);

/// Text on its way to a stream: gathered in one block, handed on when the block is full. A file
/// gets it at once, everything else through a Spool, so that nobody is kept waiting by a slow
/// reader. Remembers the first failed write and drops everything behind it.
class TextBuffer {
public:
    /// `stream` is borrowed; `name` is that of its file, where it has one.
    explicit TextBuffer(std::FILE* stream, std::string name = {});

    void Append(char c) {
        if (end_ == limit_) Flush();
        *end_++ = c;
    }
    void Append(std::string_view text);
    /// A number in the shortest form that reads back as the same number.
    template <typename Number>
    void AppendNumber(Number value) {
        end_ = std::to_chars(Reserve(kMostDigits), limit_, value).ptr;
    }

    /// Room for `size` bytes in a row, at most kBlock; Commit(end) says how far it was used.
    [[nodiscard]] char* Reserve(std::size_t size) {
        if (static_cast<std::size_t>(limit_ - end_) < size) Flush();
        return end_;
    }
    void Commit(char* end) { end_ = end; }

    void Flush();
    /// What is written from now on is dropped: there is no use in making more of it.
    [[nodiscard]] bool HasFailed() const { return hasFailed_; }

    /// Waits until everything has been written, or writing has failed. Nothing follows.
    void Finish();
    // To be asked after Finish().
    /// Why a write failed, with the file's name; empty when none has, or when the reader has closed
    /// the pipe, as `head` does when it has enough: that is no failure to speak of.
    [[nodiscard]] const std::string& Error() const { return error_; }

    static constexpr std::size_t kBlock = std::size_t{64} << 10;  // bytes

private:
    static constexpr std::size_t kMostDigits = 40;

    std::FILE* stream_;
    std::string name_;
    std::unique_ptr<Spool> spool_;  // null for a file
    std::unique_ptr<char[]> block_;
    char* end_;
    char* limit_;
    bool hasFailed_ = false;
    std::string error_;
};

}  // namespace tools
