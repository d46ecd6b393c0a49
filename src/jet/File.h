#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "jet/Status.h"

namespace jet {

/// Tells whether a file is still as it was: equal stamps that are settled mean that nobody has
/// changed it.
struct FileStamp {
    std::uint64_t size = 0;  // bytes
    std::int64_t modifiedNanoseconds = 0;
    std::int64_t changedNanoseconds = 0;  // of its data or anything about it
    /// False when the file was changed so short a time ago that a further change might leave the
    /// same stamp.
    bool isSettled = true;
    /// Whether they are settled does not matter.
    [[nodiscard]] bool operator==(const FileStamp& other) const {
        return size == other.size && modifiedNanoseconds == other.modifiedNanoseconds &&
               changedNanoseconds == other.changedNanoseconds;
    }
};

/// The one way in which the engine reaches a file. Not thread-safe.
class File {
public:
    virtual ~File() = default;

    /// Reads at `offset` and returns how many bytes were there: fewer than asked only at the end.
    [[nodiscard]] virtual Result<std::size_t> Read(std::uint64_t offset,
                                                   std::span<std::byte> into) const = 0;
    [[nodiscard]] virtual Result<FileStamp> Stamp() const = 0;

    /// Bytes; also of a file whose name is gone.
    [[nodiscard]] virtual Result<std::uint64_t> Length() const;

    /// A short text that belongs to the file itself, whatever it is called; empty when there is
    /// none, or when the file system keeps no such texts.
    [[nodiscard]] virtual std::string Note() const { return {}; }
    /// Unsupported when the text cannot be kept and the file has several names.
    virtual Status SetNote(const std::string& /*text*/) { return {}; }

    // A file that was opened for reading refuses these.
    /// Writes all of `bytes`, or fails and may have written a part.
    virtual Status Write(std::uint64_t offset, std::span<const std::byte> bytes);
    /// Makes everything written so far durable.
    virtual Status Sync();
    virtual Status Resize(std::uint64_t size);
};

/// SystemDisk().Open() for reading.
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
