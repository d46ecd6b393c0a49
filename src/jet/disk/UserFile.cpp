#include "jet/disk/UserFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <thread>

#include "jet/disk/AccessRights.h"

namespace jet {
namespace {

constexpr off_t kUserLock = 0x10000000;
constexpr off_t kPageLock = 0x20000000;
constexpr off_t kPageSpan = 0x200;
constexpr int kMostUsers = 255;
constexpr std::size_t kUserSize = 64;
constexpr std::size_t kNameSize = 32;
constexpr std::size_t kMostRuns = 512;  // the system's time for a lock grows with their number

constexpr auto kRetry = std::chrono::milliseconds(2);

std::string PathFor(const std::string& database) {
    const std::size_t slash = database.rfind('/');
    const std::size_t dot = database.rfind('.');
    const bool hasExtension =
        dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    return database.substr(0, hasExtension ? dot : database.size()) + ".ldb";
}

off_t SlotOffset(int user) {
    return static_cast<off_t>(kUserSize) * static_cast<off_t>(user - 1);
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
    return a.st_ino == b.st_ino && a.st_dev == b.st_dev;
}

/// A text, the NUL at its end, and anything behind it.
bool IsName(std::string_view field) {
    const std::size_t end = field.find('\0');
    if (end == std::string_view::npos) return false;
    return std::all_of(field.begin(), field.begin() + static_cast<std::ptrdiff_t>(end),
                       [](char c) { return static_cast<unsigned char>(c) >= 0x20; });
}

/// Whether the content is that of a lock file: slots and nothing else. A new one is empty.
bool HasSlots(int descriptor) {
    std::string content((kMostUsers + 1) * kUserSize, '\0');
    const ssize_t size = ::pread(descriptor, content.data(), content.size(), 0);
    if (size < 0 || size > ssize_t{kMostUsers * kUserSize} || size % ssize_t{kUserSize} != 0) {
        return false;
    }
    const std::string_view slots(content.data(), static_cast<std::size_t>(size));
    for (std::size_t at = 0; at < slots.size(); at += kNameSize) {
        if (!IsName(slots.substr(at, kNameSize))) return false;
    }
    return true;
}

/// Opens the file, or makes it with the rights of the database. Negative, with the reason in
/// errno, when neither can be done.
int OpenOrMake(const std::string& path, const struct stat& database, bool forWriting) {
    constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    int descriptor = ::open(path.c_str(), O_RDWR | kFlags);
    if (descriptor < 0 && errno == ENOENT) {
        descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | kFlags, 0600);
        if (descriptor >= 0) GiveAccessOf(database, descriptor);
        // Somebody else was faster.
        if (descriptor < 0 && errno == EEXIST) descriptor = ::open(path.c_str(), O_RDWR | kFlags);
    }
    const bool mayNot = descriptor < 0 && (errno == EACCES || errno == EROFS || errno == EPERM);
    if (mayNot && !forWriting) {
        const int error = errno;
        descriptor = ::open(path.c_str(), O_RDONLY | kFlags);
        if (descriptor < 0) errno = error;
    }
    return descriptor;
}

}  // namespace

Result<std::unique_ptr<UserFile>> UserFile::Join(const std::string& database,
                                                 const struct stat& info, bool forWriting,
                                                 std::string& why) {
    constexpr int kTries = 100;
    const std::string path = PathFor(database);
    const auto notOurs = [&]() -> Result<std::unique_ptr<UserFile>> {
        why = "\"" + path + "\" is no lock file and is left alone; other programs will not see " +
              "that this one has the database open";
        return std::unique_ptr<UserFile>();
    };
    for (int i = 0; i < kTries; ++i) {
        const int descriptor = OpenOrMake(path, info, forWriting);
        if (descriptor < 0) {
            if (errno == ELOOP || errno == EISDIR || errno == ENXIO) return notOurs();
            if (!forWriting) return std::unique_ptr<UserFile>();
            return Status::FromErrno(errno, "its lock file \"" + path + "\" cannot be opened");
        }
        std::unique_ptr<UserFile> file(new UserFile(descriptor, path));
        struct stat own {};
        if (::fstat(descriptor, &own) != 0) return Status::FromErrno(errno, "its lock file");
        // A database may be called *.ldb itself.
        if (IsSameFile(own, info)) return std::unique_ptr<UserFile>();
        if (!S_ISREG(own.st_mode) || !HasSlots(descriptor)) return notOurs();
        const bool canWrite = (::fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_RDWR;
        if (!canWrite) return file;
        if (file->TakeSlot()) {
            if (file->HasName()) return file;
            continue;
        }
        // The last user holds all slots for a moment while it leaves.
        std::this_thread::sleep_for(kRetry);
    }
    return Status(StatusCode::Busy, "255 programs have the file open already");
}

UserFile::~UserFile() {
    // The last user removes the file. It holds every user's lock while it does, so that nobody can
    // have come in between; who comes now finds that the file has lost its name.
    if (user_ > 0 && HasName() && HasSlots(locks_.Descriptor()) && LockAllSlots()) {
        ::unlink(path_.c_str());
    }
}

bool UserFile::TakeSlot() {
    for (user_ = 1; user_ <= kMostUsers; ++user_) {
        if (locks_.Exclusive(kUserLock + user_, 1)) {
            WriteName();
            return true;
        }
    }
    user_ = 0;
    return false;
}

/// False when the last user has removed the file meanwhile.
bool UserFile::HasName() const {
    struct stat own {};
    struct stat named {};
    return ::fstat(locks_.Descriptor(), &own) == 0 && ::lstat(path_.c_str(), &named) == 0 &&
           IsSameFile(own, named);
}

/// The name is for people who look who is there; nothing depends on it.
void UserFile::WriteName() const {
    std::array<char, kUserSize> slot{};
    ::gethostname(slot.data(), kNameSize - 1);
    std::strcpy(slot.data() + kNameSize, "Admin");
    if (::pwrite(locks_.Descriptor(), slot.data(), slot.size(), SlotOffset(user_)) < 0) return;
}

std::vector<std::string> UserFile::OtherUsers() const {
    std::vector<std::string> users;
    for (int user = 1; user <= kMostUsers; ++user) {
        if (user == user_ || !locks_.IsHeldByOthers(kUserLock + user, 1)) continue;
        std::array<char, kNameSize + 1> name{};
        const ssize_t size = ::pread(locks_.Descriptor(), name.data(), kNameSize, SlotOffset(user));
        users.emplace_back(size > 0 ? name.data() : "?");
    }
    return users;
}

bool UserFile::LockAllSlots() const {
    return locks_.Exclusive(kUserLock + 1, kMostUsers);
}

void UserFile::UnlockOtherSlots() const {
    if (user_ > 1) locks_.Unlock(kUserLock + 1, user_ - 1);
    if (user_ < kMostUsers) locks_.Unlock(kUserLock + user_ + 1, kMostUsers - user_);
}

off_t UserFile::Length(const Run& run) const {
    return kPageSpan * off_t{run.last - run.first} + 0x100 + user_;
}

std::vector<UserFile::Run> UserFile::RunsOf(std::span<const PageNo> pages) {
    std::vector<Run> runs;
    for (std::uint32_t gap = 1;; gap *= 2) {
        runs.clear();
        for (const PageNo page : pages) {
            if (runs.empty() || Raw(page) - runs.back().last > gap) {
                runs.push_back({Raw(page), Raw(page)});
            }
            runs.back().last = Raw(page);
        }
        if (runs.size() <= kMostRuns) return runs;
    }
}

Status UserFile::LockPages(std::span<const PageNo> pages, std::chrono::milliseconds wait) {
    for (const Run& run : RunsOf(pages)) {
        std::string what = "another program has locked page " + std::to_string(run.first);
        if (run.last > run.first) what += " or one up to " + std::to_string(run.last);
        const off_t begin = kPageLock + kPageSpan * off_t{run.first} + 1;
        Status status =
            OfdLocks::Wait(wait, what, [&] { return locks_.Exclusive(begin, Length(run)); });
        if (!status.IsOk()) {
            UnlockPages();
            return status;
        }
        locked_.push_back(run);
    }
    return {};
}

void UserFile::UnlockPages() {
    for (const Run& run : locked_) {
        locks_.Unlock(kPageLock + kPageSpan * off_t{run.first} + 1, Length(run));
    }
    locked_.clear();
}

}  // namespace jet
