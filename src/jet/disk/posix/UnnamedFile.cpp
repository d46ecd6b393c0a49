#include "jet/UnnamedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <span>
#include <string>

#include "jet/disk/posix/Descriptor.h"

namespace jet {
namespace {

class UnnamedFile final : public File {
public:
    UnnamedFile(int descriptor, std::string folder)
        : descriptor_(descriptor), folder_(std::move(folder)) {}
    ~UnnamedFile() override { ::close(descriptor_); }
    UnnamedFile(const UnnamedFile&) = delete;
    UnnamedFile& operator=(const UnnamedFile&) = delete;

    Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> into) const override {
        return ReadAt(descriptor_, offset, into);
    }
    Result<FileStamp> Stamp() const override {
        struct stat own {};
        if (::fstat(descriptor_, &own) != 0) return Status::FromErrno(errno, "looking at it");
        // Nobody else can change it.
        return FileStamp{static_cast<std::uint64_t>(own.st_size), 0, 0, true};
    }
    Status Write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        return WriteAt(descriptor_, offset, bytes).In("a temporary file in \"" + folder_ + "\"");
    }
    Status Sync() override { return {}; }
    Status Resize(std::uint64_t size) override {
        if (::ftruncate(descriptor_, static_cast<off_t>(size)) == 0) return {};
        return Status::FromErrno(errno, "changing the size of a temporary file");
    }

private:
    int descriptor_;
    std::string folder_;
};

}  // namespace

Result<std::unique_ptr<File>> OpenUnnamedFile() {
    const char* wanted = std::getenv("TMPDIR");
    const std::string folder = wanted != nullptr && *wanted != '\0' ? wanted : "/tmp";
    int descriptor = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        // Not every file system can make a file without a name.
        std::string path = folder + "/kvs-XXXXXX";
        descriptor = ::mkostemp(path.data(), O_CLOEXEC);
        if (descriptor >= 0) ::unlink(path.c_str());
    }
    if (descriptor < 0) {
        return Status::FromErrno(errno, "a temporary file cannot be made in \"" + folder + "\"");
    }
    return std::unique_ptr<File>(std::make_unique<UnnamedFile>(descriptor, folder));
}

}  // namespace jet
