#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "jet/Status.h"

namespace jet {

/// Tells whether a file is still as it was: equal stamps mean that nobody has changed it.
struct FileStamp {
    std::uint64_t size = 0;  // bytes
    std::int64_t modifiedNanoseconds = 0;
    [[nodiscard]] bool operator==(const FileStamp&) const = default;
};

/// The one way in which the engine reaches a file. Not thread-safe.
class File {
public:
    virtual ~File() = default;

    /// Reads at `offset` and returns how many bytes were there: fewer than asked only at the end.
    [[nodiscard]] virtual Result<std::size_t> Read(std::uint64_t offset,
                                                   std::span<std::byte> into) const = 0;
    [[nodiscard]] virtual Result<FileStamp> Stamp() const = 0;
};

/// A regular file of the operating system, opened for reading. Refuses a directory, a device and
/// a file that is not there or not readable, and changes nothing in any case.
[[nodiscard]] Result<std::unique_ptr<File>> OpenFile(const std::string& path);

/// A file that lives in memory.
class MemoryFile final : public File {
public:
    explicit MemoryFile(std::vector<std::byte> content) : content_(std::move(content)) {}

    Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> into) const override;
    Result<FileStamp> Stamp() const override;

private:
    std::vector<std::byte> content_;
};

}  // namespace jet
