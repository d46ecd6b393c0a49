#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "jet/Disk.h"
#include "jet/Status.h"

namespace jet {

/// Tells one file from all others on this machine, whatever it is called.
struct FileId {
    std::uint64_t device = 0;
    std::uint64_t node = 0;
    [[nodiscard]] bool operator==(const FileId&) const = default;
};

/// A file that programs share by locks on ranges of its bytes, which may lie behind its end. The
/// locks belong to this object: closing the file elsewhere in this process does not lose them.
/// A range is given up as it has been taken. They are advisory for this engine, and may be
/// mandatory on the system, so that no range covers bytes that anybody reads.
class SharedFile {
public:
    /// Opens a file that is there, and follows no link in the last part of `path`.
    [[nodiscard]] static Result<std::unique_ptr<SharedFile>> Open(const std::string& path,
                                                                  OpenMode mode);
    /// Opens a file for reading and writing, or makes it with the rights of the database that
    /// `database` has open. Where this program may not write, and OpenMode::Read will do, it is
    /// opened for reading. BadArgument when there is something that is no such file.
    [[nodiscard]] static Result<std::unique_ptr<SharedFile>> OpenOrMake(const std::string& path,
                                                                        const SharedFile& database,
                                                                        OpenMode mode);
    virtual ~SharedFile() = default;

    [[nodiscard]] virtual OpenMode Mode() const = 0;
    [[nodiscard]] virtual FileId Id() const = 0;
    [[nodiscard]] virtual bool IsRegular() const = 0;
    /// Whether `path`, which is followed to no other place, is a name of the file.
    [[nodiscard]] virtual bool HasName(const std::string& path) const = 0;
    /// Takes a name of the file away at once, while it is open; as far as that can be done.
    virtual void RemoveName(const std::string& path) = 0;

    /// How many bytes were there: fewer than asked only at the end.
    [[nodiscard]] virtual Result<std::size_t> Read(std::uint64_t offset,
                                                   std::span<std::byte> into) const = 0;
    [[nodiscard]] virtual Status Write(std::uint64_t offset, std::span<const std::byte> bytes) = 0;

    // Busy when it cannot be had now. Taking a range again that is held turns it into the other
    // kind; when it cannot, it stays as it is.
    [[nodiscard]] virtual Status Shared(std::uint64_t begin, std::uint64_t length) = 0;
    [[nodiscard]] virtual Status Exclusive(std::uint64_t begin, std::uint64_t length) = 0;
    /// Of what is not held nothing is given up.
    virtual void Unlock(std::uint64_t begin, std::uint64_t length) = 0;
    /// Whether others have the range, or a part of it, for themselves alone.
    [[nodiscard]] virtual bool IsHeldByOthers(std::uint64_t begin, std::uint64_t length) = 0;

    /// Tries until it is not Busy; Busy, with `what`, when it was to the end.
    [[nodiscard]] static Status Wait(std::chrono::milliseconds wait, const std::string& what,
                                     const std::function<Status()>& tryOnce);
};

}  // namespace jet
