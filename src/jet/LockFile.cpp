#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <thread>

#include "jet/Locks.h"

namespace jet {
namespace {

// The lock file of this format: 64 bytes a user (computer name, user name), and locks far behind
// its end. Byte kUserLock + n is held by user n; a page's exclusive lock covers kPageLock +
// 512 x page + 1 and 256 + n bytes from there, which excludes every other user's byte.
constexpr off_t kUserLock = 0x10000000;
constexpr off_t kPageLock = 0x20000000;
constexpr off_t kPageSpan = 0x200;
constexpr int kMostUsers = 255;
constexpr std::size_t kUserSize = 64;
constexpr std::size_t kNameSize = 32;
// Behind the highest byte that the format uses: what only this engine's programs know.
constexpr off_t kWriterLock = 0x6FFF0000;
constexpr off_t kPagesLock = 0x6FFF0001;

constexpr auto kRetry = std::chrono::milliseconds(2);

std::string LockFilePath(const std::string& database) {
    const std::size_t slash = database.rfind('/');
    const std::size_t dot = database.rfind('.');
    const bool hasExtension =
        dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    return database.substr(0, hasExtension ? dot : database.size()) + ".ldb";
}

/// Open-file-description locks: unlike the older kind they are not lost when some other code in
/// this process opens and closes the same file.
class LockFile final : public Locks {
public:
    LockFile(int descriptor, std::string path) : descriptor_(descriptor), path_(std::move(path)) {}
    ~LockFile() override {
        if (user_ > 0) Leave();
        ::close(descriptor_);
    }
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    /// False when every slot is taken.
    bool TakeSlot() {
        for (user_ = 1; user_ <= kMostUsers; ++user_) {
            if (Lock(F_WRLCK, kUserLock + user_, 1)) {
                WriteName();
                return true;
            }
        }
        user_ = 0;
        return false;
    }

    /// True while the file still has its name: the last user may have removed it meanwhile.
    [[nodiscard]] bool HasName() const {
        struct stat own {};
        struct stat named {};
        return ::fstat(descriptor_, &own) == 0 && ::stat(path_.c_str(), &named) == 0 &&
               own.st_ino == named.st_ino && own.st_dev == named.st_dev;
    }

    Status LockWriter(std::chrono::milliseconds wait) override {
        return Wait(wait, "another program is changing the file",
                    [&] { return Lock(F_WRLCK, kWriterLock, 1); });
    }
    void UnlockWriter() override { Lock(F_UNLCK, kWriterLock, 1); }

    bool IsWriterAtWork() override {
        struct flock lock = Range(F_WRLCK, kWriterLock, 1);
        return ::fcntl(descriptor_, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    }

    Status LockPagesShared(std::chrono::milliseconds wait) override {
        return Wait(wait, "another program is writing its changes",
                    [&] { return Lock(F_RDLCK, kPagesLock, 1); });
    }

    Status LockPages(std::span<const PageNo> changed, std::chrono::milliseconds wait) override {
        Status status = Wait(wait, "another program goes on reading",
                             [&] { return Lock(F_WRLCK, kPagesLock, 1); });
        for (const PageNo page : changed) {
            if (!status.IsOk()) break;
            status = Wait(wait, "another program has locked page " + std::to_string(Raw(page)),
                          [&] { return Lock(F_WRLCK, PageBegin(page), PageLength()); });
            if (status.IsOk()) locked_.push_back(page);
        }
        if (!status.IsOk()) UnlockPages();
        return status;
    }

    void UnlockPages() override {
        for (const PageNo page : locked_) Lock(F_UNLCK, PageBegin(page), PageLength());
        locked_.clear();
        Lock(F_UNLCK, kPagesLock, 1);
    }

    int User() const override { return user_; }

    std::vector<std::string> OtherUsers() override {
        std::vector<std::string> users;
        for (int user = 1; user <= kMostUsers; ++user) {
            if (user == user_) continue;
            struct flock lock = Range(F_WRLCK, kUserLock + user, 1);
            if (::fcntl(descriptor_, F_OFD_GETLK, &lock) != 0 || lock.l_type == F_UNLCK) continue;
            std::array<char, kNameSize + 1> name{};
            const ssize_t size = ::pread(descriptor_, name.data(), kNameSize, SlotOffset(user));
            users.emplace_back(size > 0 ? name.data() : "?");
        }
        return users;
    }

    Status LockAlone() override {
        if (Lock(F_WRLCK, kUserLock + 1, kMostUsers)) return {};
        return OthersAreThere(OtherUsers());
    }

private:
    static struct flock Range(short type, off_t begin, off_t length) {
        struct flock lock {};
        lock.l_type = type;
        lock.l_whence = SEEK_SET;
        lock.l_start = begin;
        lock.l_len = length;
        return lock;
    }
    bool Lock(short type, off_t begin, off_t length) {
        struct flock lock = Range(type, begin, length);
        return ::fcntl(descriptor_, F_OFD_SETLK, &lock) == 0;
    }
    static off_t PageBegin(PageNo page) { return kPageLock + kPageSpan * off_t{Raw(page)} + 1; }
    [[nodiscard]] off_t PageLength() const { return 0x100 + user_; }
    static off_t SlotOffset(int user) {
        return static_cast<off_t>(kUserSize) * static_cast<off_t>(user - 1);
    }

    template <typename Try>
    static Status Wait(std::chrono::milliseconds wait, const std::string& what, Try tryOnce) {
        const auto end = std::chrono::steady_clock::now() + wait;
        while (!tryOnce()) {
            if (errno != EAGAIN && errno != EACCES && errno != EINTR) {
                return Status::FromErrno(errno, "locking the file");
            }
            if (std::chrono::steady_clock::now() >= end) {
                return {StatusCode::Busy, what + "; try again in a moment"};
            }
            std::this_thread::sleep_for(kRetry);
        }
        return {};
    }

    /// The name is for people who look who is there; nothing depends on it.
    void WriteName() {
        std::array<char, kUserSize> slot{};
        ::gethostname(slot.data(), kNameSize - 1);
        std::strcpy(slot.data() + kNameSize, "Admin");
        if (::pwrite(descriptor_, slot.data(), slot.size(), SlotOffset(user_)) < 0) return;
    }

    /// The last user removes the file. It holds every user's lock while it does, so that nobody
    /// can have come in between; who comes now finds that the file has lost its name.
    void Leave() {
        if (Lock(F_WRLCK, kUserLock + 1, kMostUsers)) ::unlink(path_.c_str());
    }

    int descriptor_;
    std::string path_;
    int user_ = 0;  // slot; 0: none
    std::vector<PageNo> locked_;
};

/// For a place where nothing can be written.
class NoLocks final : public Locks {
public:
    Status LockWriter(std::chrono::milliseconds) override {
        return {StatusCode::Permission, "the file cannot be written here"};
    }
    void UnlockWriter() override {}
    bool IsWriterAtWork() override { return false; }
    Status LockPagesShared(std::chrono::milliseconds) override { return {}; }
    Status LockPages(std::span<const PageNo>, std::chrono::milliseconds) override { return {}; }
    void UnlockPages() override {}
    int User() const override { return 1; }
    std::vector<std::string> OtherUsers() override { return {}; }
    Status LockAlone() override {
        return {StatusCode::Permission, "the file cannot be locked here"};
    }
};

}  // namespace

Status OthersAreThere(const std::vector<std::string>& computers) {
    std::string names;
    for (const std::string& name : computers) names += (names.empty() ? "" : ", ") + name;
    return {StatusCode::Busy, "other programs have the file open (on " + names + ")"};
}

Result<std::unique_ptr<Locks>> OpenLockFile(const std::string& database, bool forWriting) {
    constexpr int kTries = 100;
    const std::string path = LockFilePath(database);
    for (int i = 0; i < kTries; ++i) {
        const int descriptor =
            ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
        if (descriptor < 0) {
            const bool mayNot = errno == EACCES || errno == EROFS || errno == EPERM;
            if (mayNot && !forWriting) return std::unique_ptr<Locks>(std::make_unique<NoLocks>());
            return Status::FromErrno(errno, "its lock file \"" + path + "\" cannot be opened");
        }
        auto locks = std::make_unique<LockFile>(descriptor, path);
        if (!locks->TakeSlot()) {
            // The last user holds all slots for a moment while it leaves.
            if (locks->HasName() && i + 1 == kTries) break;
            std::this_thread::sleep_for(kRetry);
            continue;
        }
        if (locks->HasName()) return std::unique_ptr<Locks>(std::move(locks));
    }
    return Status(StatusCode::Busy, "255 programs have the file open already");
}

}  // namespace jet
