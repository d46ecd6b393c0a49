#pragma once

#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "jet/File.h"

namespace tools {

/// Text on its way to a reader who may be slow or stuck, such as a pipe or a terminal. Put never
/// waits for him: a thread writes, and what he has not taken yet stays in memory or, beyond
/// kMostInMemory, in a temporary file. So nothing is held, in the program or in the database, while
/// somebody else makes up his mind.
class Spool {
public:
    /// `stream` is borrowed, and written by nobody else before Finish has returned.
    explicit Spool(std::FILE* stream);
    ~Spool();  // as Finish
    Spool(const Spool&) = delete;
    Spool& operator=(const Spool&) = delete;

    /// False when writing has failed; everything is dropped from then on.
    bool Put(std::string text);
    /// Waits until everything has been written, or writing has failed.
    void Finish();

    // To be asked when Finish has returned.
    /// Why writing failed; empty when it has not, or when the reader has closed the pipe.
    [[nodiscard]] const std::string& Error() const { return error_; }
    [[nodiscard]] bool IsClosedByReader() const { return isClosedByReader_; }

    static constexpr std::size_t kMostInMemory = std::size_t{16} << 20;  // bytes

private:
    void Write();
    [[nodiscard]] bool HasMore() const { return !blocks_.empty() || spillBegin_ < spillEnd_; }
    [[nodiscard]] jet::Status Spill(const std::string& text);
    [[nodiscard]] jet::Result<std::string> TakeBlock();

    std::FILE* stream_;
    std::mutex mutex_;  // guards everything below
    std::condition_variable changed_;
    std::deque<std::string> blocks_;  // the oldest first, and older than what has been spilled
    std::size_t inMemory_ = 0;        // bytes in them
    std::unique_ptr<jet::File> spill_;
    std::uint64_t spillBegin_ = 0;  // where in it the bytes lie that are still to be written
    std::uint64_t spillEnd_ = 0;
    bool isEnded_ = false;
    bool hasFailed_ = false;
    bool isClosedByReader_ = false;
    std::string error_;
    std::thread writer_;  // last, since it uses the rest
};

}  // namespace tools
