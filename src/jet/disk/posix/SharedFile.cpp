#include "jet/disk/SharedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <tuple>

#include "jet/disk/posix/AccessRights.h"
#include "jet/disk/posix/Descriptor.h"

namespace jet {
namespace {

constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;

struct flock Range(short type, std::uint64_t begin, std::uint64_t length) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(begin);
    lock.l_len = static_cast<off_t>(length);
    return lock;
}

FileId IdOf(const struct stat& info) {
    return {info.st_dev, info.st_ino};
}

/// The locks are open-file-description locks: unlike the older kind they are not lost when some
/// other code in this process closes the same file. A shared lock needs a descriptor for reading,
/// an exclusive one a descriptor for writing.
class PosixSharedFile final : public SharedFile {
public:
    PosixSharedFile(int descriptor, OpenMode mode) : descriptor_(descriptor), mode_(mode) {}
    ~PosixSharedFile() override { ::close(descriptor_); }
    PosixSharedFile(const PosixSharedFile&) = delete;
    PosixSharedFile& operator=(const PosixSharedFile&) = delete;

    Status Look() {
        if (::fstat(descriptor_, &info_) == 0) return {};
        return Status::FromErrno(errno, "it cannot be looked at");
    }
    [[nodiscard]] int Descriptor() const { return descriptor_; }
    [[nodiscard]] const struct stat& Info() const { return info_; }

    OpenMode Mode() const override { return mode_; }
    FileId Id() const override { return IdOf(info_); }
    bool IsRegular() const override { return S_ISREG(info_.st_mode); }
    bool HasName(const std::string& path) const override {
        struct stat named {};
        return ::lstat(path.c_str(), &named) == 0 && IdOf(named) == Id();
    }
    void RemoveName(const std::string& path) override { ::unlink(path.c_str()); }

    Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> into) const override {
        return ReadAt(descriptor_, offset, into);
    }
    Status Write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        return WriteAt(descriptor_, offset, bytes);
    }

    Status Shared(std::uint64_t begin, std::uint64_t length) override {
        return Set(Range(F_RDLCK, begin, length));
    }
    Status Exclusive(std::uint64_t begin, std::uint64_t length) override {
        return Set(Range(F_WRLCK, begin, length));
    }
    void Unlock(std::uint64_t begin, std::uint64_t length) override {
        std::ignore = Set(Range(F_UNLCK, begin, length));  // this does not fail
    }
    bool IsHeldByOthers(std::uint64_t begin, std::uint64_t length) override {
        struct flock lock = Range(F_RDLCK, begin, length);
        return ::fcntl(descriptor_, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    }

private:
    [[nodiscard]] Status Set(struct flock lock) const {
        if (::fcntl(descriptor_, F_OFD_SETLK, &lock) == 0) return {};
        if (errno == EAGAIN || errno == EACCES || errno == EINTR) {
            return {StatusCode::Busy, "another program holds a lock"};
        }
        return Status::FromErrno(errno, "locking the file");
    }

    int descriptor_;
    OpenMode mode_;
    struct stat info_ {};
};

Result<std::unique_ptr<SharedFile>> Take(int descriptor, OpenMode mode) {
    auto file = std::make_unique<PosixSharedFile>(descriptor, mode);
    JET_TRY(file->Look());
    return std::unique_ptr<SharedFile>(std::move(file));
}

}  // namespace

Result<std::unique_ptr<SharedFile>> SharedFile::Open(const std::string& path, OpenMode mode) {
    const int access = mode == OpenMode::ReadWrite ? O_RDWR : O_RDONLY;
    const int descriptor = ::open(path.c_str(), access | kFlags);
    if (descriptor < 0) return Status::FromErrno(errno, "it cannot be opened");
    return Take(descriptor, mode);
}

Result<std::unique_ptr<SharedFile>> SharedFile::OpenOrMake(const std::string& path,
                                                           const SharedFile& database,
                                                           OpenMode mode) {
    OpenMode opened = OpenMode::ReadWrite;
    int descriptor = ::open(path.c_str(), O_RDWR | kFlags);
    if (descriptor < 0 && errno == ENOENT) {
        descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | kFlags, 0600);
        if (descriptor >= 0) {
            GiveAccessOf(static_cast<const PosixSharedFile&>(database).Info(), descriptor);
        }
        // Somebody else was faster.
        if (descriptor < 0 && errno == EEXIST) descriptor = ::open(path.c_str(), O_RDWR | kFlags);
    }
    const bool mayNot = descriptor < 0 && (errno == EACCES || errno == EROFS || errno == EPERM);
    if (mayNot && mode == OpenMode::Read) {
        const int error = errno;
        descriptor = ::open(path.c_str(), O_RDONLY | kFlags);
        opened = OpenMode::Read;
        if (descriptor < 0) errno = error;
    }
    if (descriptor >= 0) return Take(descriptor, opened);
    if (errno == ELOOP || errno == EISDIR || errno == ENXIO) {
        return Status::BadArgument("it is no regular file");
    }
    return Status::FromErrno(errno, "it cannot be opened");
}

}  // namespace jet
