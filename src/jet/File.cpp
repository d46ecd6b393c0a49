#include "jet/File.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace jet {
namespace {

class PosixFile final : public File {
public:
    explicit PosixFile(int descriptor) : descriptor_(descriptor) {}
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
        struct stat info {};
        if (::fstat(descriptor_, &info) != 0) return Status::FromErrno(errno, "reading its size");
        return FileStamp{static_cast<std::uint64_t>(info.st_size),
                         std::int64_t{info.st_mtim.tv_sec} * 1'000'000'000 + info.st_mtim.tv_nsec};
    }

private:
    int descriptor_;
};

}  // namespace

Result<std::unique_ptr<File>> OpenFile(const std::string& path) {
    // Without O_NONBLOCK opening a pipe would wait for its other end.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return Status::FromErrno(errno, "it cannot be opened");
    auto file = std::make_unique<PosixFile>(descriptor);
    struct stat info {};
    if (::fstat(descriptor, &info) != 0) return Status::FromErrno(errno, "it cannot be opened");
    if (S_ISDIR(info.st_mode)) {
        return Status(StatusCode::BadArgument, "it is a folder, not a database file");
    }
    if (!S_ISREG(info.st_mode)) return Status(StatusCode::BadArgument, "it is not a regular file");
    return std::unique_ptr<File>(std::move(file));
}

Result<std::size_t> MemoryFile::Read(std::uint64_t offset, std::span<std::byte> into) const {
    if (offset >= content_.size()) return std::size_t{0};
    const std::size_t count = std::min<std::size_t>(into.size(), content_.size() - offset);
    std::memcpy(into.data(), content_.data() + offset, count);
    return count;
}

Result<FileStamp> MemoryFile::Stamp() const {
    return FileStamp{content_.size(), 0};
}

}  // namespace jet
