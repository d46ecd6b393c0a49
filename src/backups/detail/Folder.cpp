#include "backups/detail/Folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <tuple>
#include <utility>

namespace backups {
namespace {

using jet::Status;

// Ends in nothing that a file dialog shows as a project.
constexpr const char* kDraft = "unfinished";

Status MakeFolders(const std::string& path) {
    const std::filesystem::path folder(path);
    std::filesystem::path built;
    for (const auto& part : folder) {
        built /= part;
        if (::mkdir(built.c_str(), 0700) != 0 && errno != EEXIST && errno != EISDIR) {
            const int error = errno;
            struct stat info {};
            // Folders above may be there and refuse to be made, as on a read-only disk.
            if (::stat(built.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) continue;
            return Status::FromErrno(error, "\"" + built.string() + "\" cannot be made");
        }
    }
    return {};
}

}  // namespace

Descriptor::~Descriptor() {
    if (number_ >= 0) ::close(number_);
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
}

jet::Result<Descriptor> OpenToRead(const std::string& path) {
    const int number = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW);
    if (number < 0) return Status::FromErrno(errno, "\"" + path + "\" cannot be opened");
    return Descriptor(number);
}

jet::Result<Folder> Folder::Open(const std::string& path) {
    JET_TRY(MakeFolders(path));
    Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
    const auto failed = [&] { return Status::FromErrno(errno, "\"" + path + "\" cannot be used"); };
    if (folder.Number() < 0) return failed();
    struct stat info {};
    if (::fstat(folder.Number(), &info) != 0) return failed();
    if (info.st_uid != ::geteuid()) {
        return Status(jet::StatusCode::Permission, "\"" + path + "\" belongs to another user");
    }
    if ((info.st_mode & 077) != 0 && ::fchmod(folder.Number(), 0700) != 0) return failed();
    // A file system without locks has no second program to be kept out, or cannot do so.
    while (::flock(folder.Number(), LOCK_EX) != 0 && errno == EINTR) {
    }
    Folder opened(path, std::move(folder));
    opened.GiveUp();
    return opened;
}

jet::Result<Descriptor> Folder::Begin() {
    const int file = ::openat(folder_.Number(), kDraft,
                              O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0) return Status::FromErrno(errno, "nothing can be made in \"" + path_ + "\"");
    return Descriptor(file);
}

Status Folder::Finish(const Descriptor& file, const std::string& name) {
    const auto failed = [&] { return Status::FromErrno(errno, "writing in \"" + path_ + "\""); };
    if (::fsync(file.Number()) != 0) return failed();
    // Nobody else writes here, so that nothing gets this name meanwhile.
    if (::faccessat(folder_.Number(), name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
        return {jet::StatusCode::Duplicate, "\"" + path_ + "/" + name + "\" is there already"};
    }
    if (::renameat(folder_.Number(), kDraft, folder_.Number(), name.c_str()) != 0) return failed();
    // The backup is whole; where folders cannot be synced it is only a little later that it stays.
    std::ignore = ::fsync(folder_.Number());
    return {};
}

void Folder::GiveUp() {
    // Most often there is nothing to remove.
    std::ignore = ::unlinkat(folder_.Number(), kDraft, 0);
}

Status Folder::Remove(const std::string& name) {
    if (::unlinkat(folder_.Number(), name.c_str(), 0) == 0 || errno == ENOENT) return {};
    return Status::FromErrno(errno, "\"" + path_ + "/" + name + "\" cannot be removed");
}

std::vector<std::string> NamesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator at(folder, error), end; !error && at != end;
         at.increment(error)) {
        names.push_back(at->path().filename());
    }
    return names;
}

}  // namespace backups
