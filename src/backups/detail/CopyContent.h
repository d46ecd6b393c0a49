#pragma once

#include <sys/stat.h>

#include <array>
#include <cstdint>
#include <functional>

#include "backups/detail/Folder.h"
#include "jet/Status.h"

namespace backups {

/// What tells that a file has been changed: each commit of the engine counts itself on the first
/// page, and programs of all kinds leave other times.
class FileMark {
public:
    [[nodiscard]] static jet::Result<FileMark> Of(const Descriptor& file);

    [[nodiscard]] bool operator==(const FileMark& other) const;
    [[nodiscard]] std::uint64_t Size() const noexcept { return size_; }
    /// Gives a file the modification time of this one.
    jet::Status StampTo(const Descriptor& file) const;
    /// Whether a copy of this file's first page and of its size may be the same state, and whether
    /// its modification time says that it is.
    [[nodiscard]] bool LooksLike(const FileMark& copy) const;
    [[nodiscard]] bool HasTimeOf(const FileMark& copy) const;

private:
    std::uint64_t size_ = 0;
    timespec modified_{};
    timespec changed_{};
    std::array<std::byte, 4096> first_{};
};

/// Makes a file empty, for another attempt.
[[nodiscard]] jet::Status Clear(const Descriptor& file);

/// Copies all bytes of `from` to the empty file `to`, by sharing blocks where the file system can.
/// `pause` is called between pieces.
[[nodiscard]] jet::Status CopyContent(const Descriptor& from, const Descriptor& to,
                                      const std::function<void()>& pause);

/// Whether two files hold the same bytes.
[[nodiscard]] jet::Result<bool> HoldTheSame(const Descriptor& a, const Descriptor& b);

}  // namespace backups
