#include "jet/Disk.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <tuple>
#include <utility>

#include "jet/disk/FileLocks.h"
#include "jet/disk/posix/AccessRights.h"
#include "jet/disk/posix/Descriptor.h"

namespace jet {
namespace {

class PosixFile final : public File {
public:
    /// `own` tells the file that is open.
    PosixFile(int descriptor, std::string path, const struct stat& own)
        : descriptor_(descriptor), path_(std::move(path)), device_(own.st_dev), node_(own.st_ino) {}
    ~PosixFile() override {
        if (isDraft_ && !path_.empty()) ::unlink(path_.c_str());
        ::close(descriptor_);
    }
    PosixFile(const PosixFile&) = delete;
    PosixFile& operator=(const PosixFile&) = delete;

    Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> into) const override {
        return ReadAt(descriptor_, offset, into);
    }

    Result<FileStamp> Stamp() const override {
        // By the path: a program that replaces the file leaves this one as it was, but nameless.
        struct stat named {};
        const int result =
            path_.empty() ? ::fstat(descriptor_, &named) : ::stat(path_.c_str(), &named);
        if (result != 0 || named.st_ino != node_ || named.st_dev != device_) {
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
        return WriteAt(descriptor_, offset, bytes);
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

    Result<std::uint64_t> Length() const override {
        struct stat info {};
        if (::fstat(descriptor_, &info) != 0) return Status::FromErrno(errno, "asking its size");
        return static_cast<std::uint64_t>(info.st_size);
    }

    std::string Note() const override {
        std::array<char, 4096> text{};
        const ssize_t size = ::fgetxattr(descriptor_, kNote, text.data(), text.size());
        return size > 0 ? std::string(text.data(), static_cast<std::size_t>(size)) : std::string();
    }

    Status SetNote(const std::string& text) override {
        if (Note() == text) return {};
        const bool isKept = ::fsetxattr(descriptor_, kNote, text.data(), text.size(), 0) == 0;
        struct stat info {};
        if (::fstat(descriptor_, &info) != 0) return Status::FromErrno(errno, "looking at it");
        if (info.st_nlink <= 1) return {};
        if (!isKept) {
            return Status::Unsupported(
                "it has several names, and the file system cannot keep what one of them has to "
                "know of the others; leave it one name");
        }
        if (::fsync(descriptor_) != 0) return Status::FromErrno(errno, "making it durable");
        return {};
    }

    [[nodiscard]] int Descriptor() const { return descriptor_; }
    [[nodiscard]] const std::string& Path() const { return path_; }
    [[nodiscard]] bool IsAt(const std::string& path) const {
        struct stat named {};
        return ::lstat(path.c_str(), &named) == 0 && named.st_ino == node_ &&
               named.st_dev == device_;
    }
    /// The name goes with the file, until it is published.
    void SetDraft() { isDraft_ = true; }
    void SetPublished(const std::string& path) {
        path_ = path;
        isDraft_ = false;
    }

private:
    static constexpr const char* kNote = "user.kv.journal";

    int descriptor_;
    std::string path_;
    dev_t device_;
    ino_t node_;
    bool isDraft_ = false;
};

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

/// Makes the names in the folder of `path` durable.
Status SyncFolder(const std::string& path) {
    const std::string folder = FolderOf(path);
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return Status::FromErrno(errno, "opening its folder");
    const int result = ::fsync(descriptor);
    const int error = errno;
    ::close(descriptor);
    // Some file systems have nothing to sync for a folder.
    if (result != 0 && error != EINVAL) return Status::FromErrno(error, "syncing its folder");
    return {};
}

/// Attributes that the system itself sets need not be copied.
bool IsOwnAttribute(const std::string& name) {
    return name.rfind("security.", 0) != 0 && name.rfind("trusted.", 0) != 0;
}

/// Owner, permissions and further attributes (such as lists of those who have access).
Status CopyAttributes(const std::string& from, const struct stat& info, int to) {
    const auto failed = [] {
        return Status::FromErrno(errno, "its owner and permissions cannot be kept");
    };
    struct stat made {};
    if (::fstat(to, &made) != 0) return failed();
    const bool isOwned = made.st_uid == info.st_uid && made.st_gid == info.st_gid;
    if (!isOwned && ::fchown(to, info.st_uid, info.st_gid) != 0) return failed();
    if (::fchmod(to, info.st_mode & 07777) != 0) return failed();
    const ssize_t size = ::listxattr(from.c_str(), nullptr, 0);
    if (size <= 0) return size == 0 || errno == ENOTSUP ? Status() : failed();
    std::string names(static_cast<std::size_t>(size), '\0');
    if (::listxattr(from.c_str(), names.data(), names.size()) != size) return failed();
    for (std::size_t at = 0; at < names.size(); at = names.find('\0', at) + 1) {
        const std::string name = names.c_str() + at;
        if (!IsOwnAttribute(name)) continue;
        std::array<char, 65536> value{};  // the most that there can be
        const ssize_t length = ::getxattr(from.c_str(), name.c_str(), value.data(), value.size());
        if (length < 0) return failed();
        const auto bytes = static_cast<std::size_t>(length);
        if (::fsetxattr(to, name.c_str(), value.data(), bytes, 0) != 0) return failed();
    }
    return {};
}

class PosixDisk final : public Disk {
public:
    Result<std::string> Resolve(const std::string& path) override {
        const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr),
                                                               &std::free);
        if (real == nullptr) return Status::FromErrno(errno, "it cannot be opened");
        return std::string(real.get());
    }

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
        std::unique_ptr<File> file;
        JET_ASSIGN(file, Make(path, 0666));
        return file;
    }

    Result<std::unique_ptr<File>> CreateLike(const std::string& path,
                                             const std::string& model) override {
        struct stat info {};
        JET_TRY(LookAtModel(model, info));
        // Nobody may see what is written before it has the permissions.
        std::unique_ptr<PosixFile> file;
        JET_ASSIGN(file, Make(path, 0600));
        Status status = CopyAttributes(model, info, file->Descriptor());
        if (!status.IsOk()) {
            std::ignore = Remove(path);  // the failure to be told is the first one
            return status;
        }
        return std::unique_ptr<File>(std::move(file));
    }

    Result<std::unique_ptr<File>> CreateReplacement(const std::string& model) override {
        struct stat info {};
        JET_TRY(LookAtModel(model, info));
        std::unique_ptr<File> file;
        JET_ASSIGN(file, CreateDraft(model));
        JET_TRY(CopyAttributes(model, info, static_cast<PosixFile&>(*file).Descriptor()));
        return file;
    }

    Status Replace(const std::string& from, const std::string& to) override {
        if (::rename(from.c_str(), to.c_str()) != 0) {
            return Status::FromErrno(errno, "it cannot be put in the old file's place");
        }
        return SyncFolder(to);
    }

    Result<std::unique_ptr<File>> CreateDraft(const std::string& database) override {
        struct stat model {};
        if (::stat(database.c_str(), &model) != 0) {
            return Status::FromErrno(errno, "\"" + database + "\" cannot be looked at");
        }
        const std::string folder = FolderOf(database);
        const int descriptor = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
        std::unique_ptr<PosixFile> file;
        if (descriptor >= 0) {
            JET_ASSIGN(file, Take(descriptor, ""));
        } else {
            // Not every file system knows files without a name.
            const bool mayNot = errno == EACCES || errno == EROFS || errno == EPERM;
            if (mayNot) return Status::FromErrno(errno, "nothing can be made in its folder");
            static int count = 0;
            JET_ASSIGN(file, Make(database + ".draft" + std::to_string(::getpid()) + "-" +
                                      std::to_string(++count),
                                  0600));
        }
        file->SetDraft();
        GiveAccessOf(model, file->Descriptor());
        return std::unique_ptr<File>(std::move(file));
    }

    Status Publish(File& draft, const std::string& path) override {
        auto& file = static_cast<PosixFile&>(draft);
        if (!file.Path().empty()) {
            JET_TRY(GiveName(file.Path(), path));
        } else {
            const std::string own = "/proc/self/fd/" + std::to_string(file.Descriptor());
            if (::linkat(AT_FDCWD, own.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) != 0) {
                if (errno == EEXIST) return IsThere(path);
                return Status::FromErrno(errno, "\"" + path + "\" cannot be made");
            }
            if (Status status = SyncFolder(path); !status.IsOk()) {
                ::unlink(path.c_str());
                return status;
            }
        }
        file.SetPublished(path);
        return {};
    }

    bool HasName(const File& file, const std::string& path) override {
        return static_cast<const PosixFile&>(file).IsAt(path);
    }

    Result<std::unique_ptr<File>> OpenLeftOver(const std::string& path,
                                               const std::string& database) override {
        const int descriptor =
            ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        if (descriptor < 0 && errno == ELOOP) return Status(StatusCode::Conflict, "it is a link");
        // What cannot be opened for such a reason is a socket or a device.
        if (descriptor < 0 && errno == ENXIO) return IsNoFile();
        if (descriptor < 0) return Status::FromErrno(errno, "it cannot be opened");
        std::unique_ptr<PosixFile> file;
        JET_ASSIGN(file, Take(descriptor, path));
        struct stat info {};
        struct stat owner {};
        if (::fstat(descriptor, &info) != 0 || ::stat(database.c_str(), &owner) != 0) {
            return Status::FromErrno(errno, "it cannot be looked at");
        }
        if (!S_ISREG(info.st_mode)) return IsNoFile();
        if (!MayOwnerWrite(info, owner)) {
            return Status(StatusCode::Conflict, "its owner may not write the database");
        }
        return std::unique_ptr<File>(std::move(file));
    }

    Result<std::unique_ptr<Locks>> OpenLocks(const std::string& database, OpenMode mode) override {
        return OpenFileLocks(database, mode);
    }

    Status GiveName(const std::string& from, const std::string& to) override {
        // Where the file system cannot refuse to overwrite while it renames, it can while it links.
        if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) != 0) {
            const bool canNot = errno == EINVAL || errno == ENOSYS;
            if (!canNot || ::link(from.c_str(), to.c_str()) != 0) {
                if (errno != EEXIST) return Status::FromErrno(errno, "it cannot be given its name");
                return IsThere(to);
            }
            ::unlink(from.c_str());
        }
        Status status = SyncFolder(to);
        if (!status.IsOk()) ::rename(to.c_str(), from.c_str());
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
    static Result<std::unique_ptr<PosixFile>> Make(const std::string& path, mode_t mode) {
        const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (descriptor < 0) return Status::FromErrno(errno, "\"" + path + "\" cannot be made");
        std::unique_ptr<PosixFile> file;
        JET_ASSIGN(file, Take(descriptor, path));
        if (Status status = SyncFolder(path); !status.IsOk()) return status;
        return file;
    }

    /// Refuses what Replace cannot replace.
    static Status LookAtModel(const std::string& model, struct stat& info) {
        if (::lstat(model.c_str(), &info) != 0) {
            return Status::FromErrno(errno, "\"" + model + "\" cannot be looked at");
        }
        if (S_ISREG(info.st_mode) && info.st_nlink == 1) return {};
        return Status::Unsupported(S_ISLNK(info.st_mode)
                                       ? "it is a link; name the file itself"
                                       : "it has several names, of which one would be lost");
    }

    static Result<std::unique_ptr<PosixFile>> Take(int descriptor, const std::string& path) {
        struct stat info {};
        if (::fstat(descriptor, &info) != 0) {
            ::close(descriptor);
            return Status::FromErrno(errno, "it cannot be opened");
        }
        return std::make_unique<PosixFile>(descriptor, path, info);
    }

    static Status IsThere(const std::string& path) {
        return {StatusCode::Duplicate, "there is something called \"" + path + "\" already"};
    }
    static Status IsNoFile() { return {StatusCode::BadArgument, "it is not a regular file"}; }
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
