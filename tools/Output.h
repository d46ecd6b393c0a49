#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <tuple>

namespace tools {

/// Buffered text for standard output, or any stream. Remembers the first failed write.
class Output {
public:
    /// `stream` is borrowed.
    explicit Output(std::FILE* stream) : stream_(stream) { buffer_.reserve(kFlushAt * 2); }

    void Append(std::string_view text) { buffer_ += text; }
    void Append(char c) { buffer_ += c; }
    /// What has been appended and not been written yet; writers add to it directly.
    [[nodiscard]] std::string& Buffer() { return buffer_; }

    /// Writes when enough has gathered.
    void MayFlush() {
        if (buffer_.size() >= kFlushAt) std::ignore = Flush();
    }
    /// False when this or an earlier write failed; `Error()` then says why.
    [[nodiscard]] bool Flush();
    [[nodiscard]] const std::string& Error() const { return error_; }

private:
    static constexpr std::size_t kFlushAt = std::size_t{64} << 10;  // bytes

    std::FILE* stream_;
    std::string buffer_;
    std::string error_;
};

}  // namespace tools
