#pragma once

#include <chrono>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "jet/disk/SharedFile.h"
#include "jet/Types.h"

namespace jet {

/// The lock file beside a database, NAME.ldb, in which other programs on such files see who is
/// there and which pages are being written. 64 bytes a user, with two texts of up to 31 bytes, a
/// NUL and rubbish behind it:
///   +0   32  computer name
///   +32  32  user name
/// The locks lie far behind its end:
///   0x10000000 + n               slot n (1..255) is in use
///   0x20000000 + 512 x page + 1  the page is being written: 256 + n bytes, which excludes the
///                                single byte of every other user
/// The first user makes it, the last one removes it. What is no lock file is neither written nor
/// removed, whoever has put it there.
class UserFile {
public:
    /// Joins the users of the database at `path`, which `database` has open. Null when there is
    /// no lock file to be used: `why` then says what lies in its place, or is empty when there is
    /// nothing to be told. Fails when all slots are taken, or when it cannot be opened and `mode`
    /// is for writing.
    [[nodiscard]] static Result<std::unique_ptr<UserFile>> Join(const std::string& path,
                                                                const SharedFile& database,
                                                                OpenMode mode, std::string& why);
    ~UserFile();
    UserFile(const UserFile&) = delete;
    UserFile& operator=(const UserFile&) = delete;

    /// This program's slot; 0 for one that may only read the file.
    [[nodiscard]] int User() const { return user_; }
    [[nodiscard]] std::vector<std::string> OtherUsers() const;
    /// Takes the slots of all users; false when others have theirs.
    [[nodiscard]] bool LockAllSlots() const;
    /// Gives up all of them but this program's own.
    void UnlockOtherSlots() const;

    /// Locks pages (ascending) as other programs do. Neighbours share one lock; when they lie far
    /// and wide, those between are locked too.
    Status LockPages(std::span<const PageNo> pages, std::chrono::milliseconds wait);
    void UnlockPages();

private:
    struct Run {
        std::uint32_t first = 0;
        std::uint32_t last = 0;
    };
    UserFile(std::unique_ptr<SharedFile> file, std::string path)
        : file_(std::move(file)), path_(std::move(path)) {}
    [[nodiscard]] static std::vector<Run> RunsOf(std::span<const PageNo> pages);
    [[nodiscard]] bool TakeSlot();
    [[nodiscard]] bool HasName() const { return file_->HasName(path_); }
    [[nodiscard]] std::uint64_t Length(const Run& run) const;
    [[nodiscard]] std::uint64_t SlotsBefore() const;
    [[nodiscard]] std::uint64_t SlotsBehind() const;
    void WriteName() const;

    std::unique_ptr<SharedFile> file_;
    std::string path_;
    int user_ = 0;
    std::vector<Run> locked_;
};

}  // namespace jet
