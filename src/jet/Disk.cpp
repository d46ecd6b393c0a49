#include "jet/Disk.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <utility>

namespace jet {
namespace {

class PosixFile final : public File {
public:
    /// `own` tells the file that is open.
    PosixFile(int descriptor, std::string path, const struct stat& own)
        : descriptor_(descriptor), path_(std::move(path)), device_(own.st_dev), node_(own.st_ino) {}
    ~PosixFile() override { ::close(descriptor_); }
    PosixFile(const PosixFile&) = delete;
    PosixFile& operator=(const PosixFile&) = delete;

    Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> into) const override {
        std::size_t done = 0;
        while (done < into.size()) {
            const ssize_t count = ::pread(descriptor_, into.data() + done, into.size() - done,
                                          static_cast<off_t>(offset + done));
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) {
                return Status::FromErrno(errno, "reading at offset " + std::to_string(offset));
            }
            if (count == 0) break;
            done += static_cast<std::size_t>(count);
        }
        return done;
    }

    Result<FileStamp> Stamp() const override {
        // By the path: a program that replaces the file leaves this one as it was, but nameless.
        struct stat named {};
        if (::stat(path_.c_str(), &named) != 0 || named.st_ino != node_ ||
            named.st_dev != device_) {
            return Status(StatusCode::Conflict,
                          "another program has replaced or removed the file; open it again");
        }
        const auto nanoseconds = [](const timespec& time) {
            return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
        };
        timespec now{};
        ::clock_gettime(CLOCK_REALTIME, &now);
        // The clock by which files are stamped may stand still for some milliseconds.
        constexpr std::int64_t kSettled = 20'000'000;
        const std::int64_t changed = nanoseconds(named.st_ctim);
        return FileStamp{static_cast<std::uint64_t>(named.st_size), nanoseconds(named.st_mtim),
                         changed, nanoseconds(now) - changed > kSettled};
    }

    Status Write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        while (!bytes.empty()) {
            const ssize_t count =
                ::pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) {
                return Status::FromErrno(errno, "writing at offset " + std::to_string(offset));
            }
            offset += static_cast<std::uint64_t>(count);
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
        return {};
    }

    Status Sync() override {
        if (::fdatasync(descriptor_) != 0) return Status::FromErrno(errno, "making it durable");
        return {};
    }

    Status Resize(std::uint64_t size) override {
        if (::ftruncate(descriptor_, static_cast<off_t>(size)) != 0) {
            return Status::FromErrno(errno, "changing its size");
        }
        return {};
    }

private:
    int descriptor_;
    std::string path_;
    dev_t device_;
    ino_t node_;
};

/// Makes the names in the folder of `path` durable.
Status SyncFolder(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "."
                               : slash == 0               ? "/"
                                                          : path.substr(0, slash);
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return Status::FromErrno(errno, "opening its folder");
    const int result = ::fsync(descriptor);
    const int error = errno;
    ::close(descriptor);
    // Some file systems have nothing to sync for a folder.
    if (result != 0 && error != EINVAL) return Status::FromErrno(error, "syncing its folder");
    return {};
}

class PosixDisk final : public Disk {
public:
    Result<std::unique_ptr<File>> Open(const std::string& path, OpenMode mode) override {
        // Without O_NONBLOCK opening a pipe would wait for its other end.
        const int access = mode == OpenMode::Read ? O_RDONLY : O_RDWR;
        const int descriptor = ::open(path.c_str(), access | O_CLOEXEC | O_NONBLOCK);
        if (descriptor < 0 && errno == EISDIR) return IsFolder();
        if (descriptor < 0) return Status::FromErrno(errno, "it cannot be opened");
        struct stat info {};
        if (::fstat(descriptor, &info) != 0) {
            ::close(descriptor);
            return Status::FromErrno(errno, "it cannot be opened");
        }
        auto file = std::make_unique<PosixFile>(descriptor, path, info);
        if (S_ISDIR(info.st_mode)) return IsFolder();
        if (!S_ISREG(info.st_mode)) {
            return Status(StatusCode::BadArgument, "it is not a regular file");
        }
        return std::unique_ptr<File>(std::move(file));
    }

    Result<std::unique_ptr<File>> Create(const std::string& path) override {
        const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor < 0) return Status::FromErrno(errno, "\"" + path + "\" cannot be made");
        struct stat info {};
        if (::fstat(descriptor, &info) != 0) {
            ::close(descriptor);
            return Status::FromErrno(errno, "\"" + path + "\" cannot be made");
        }
        auto file = std::make_unique<PosixFile>(descriptor, path, info);
        if (Status status = SyncFolder(path); !status.IsOk()) return status;
        return std::unique_ptr<File>(std::move(file));
    }

    Result<std::unique_ptr<Locks>> OpenLocks(const std::string& database, OpenMode mode) override {
        return OpenLockFile(database, mode == OpenMode::ReadWrite);
    }

    Status GiveName(const std::string& from, const std::string& to) override {
        // Where the file system cannot refuse to overwrite while it renames, it can while it links.
        if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) != 0) {
            const bool canNot = errno == EINVAL || errno == ENOSYS;
            if (!canNot || ::link(from.c_str(), to.c_str()) != 0) {
                if (errno != EEXIST) return Status::FromErrno(errno, "it cannot be given its name");
                return {StatusCode::Duplicate, "there is something of this name already"};
            }
            ::unlink(from.c_str());
        }
        Status status = SyncFolder(to);
        if (!status.IsOk()) ::unlink(to.c_str());
        return status;
    }

    Status Remove(const std::string& path) override {
        if (::unlink(path.c_str()) != 0) {
            if (errno == ENOENT) return {};
            return Status::FromErrno(errno, "\"" + path + "\" cannot be removed");
        }
        return SyncFolder(path);
    }

private:
    static Status IsFolder() {
        return {StatusCode::BadArgument, "it is a folder, not a database file"};
    }
};

}  // namespace

Disk& SystemDisk() {
    static PosixDisk disk;
    return disk;
}

Result<std::unique_ptr<File>> OpenFile(const std::string& path) {
    return SystemDisk().Open(path, OpenMode::Read);
}

}  // namespace jet
