#include "jet/UnnamedFile.h"

#include <array>
#include <atomic>
#include <string>

#include "jet/disk/SystemName.h"
#include "jet/disk/windows/SystemError.h"
#include "jet/disk/windows/SystemFile.h"

namespace jet {
namespace {

class UnnamedFile final : public File {
public:
    UnnamedFile(SystemFile file, std::string folder)
        : file_(std::move(file)), folder_(std::move(folder)) {}

    Result<std::size_t> Read(std::uint64_t offset, std::span<std::byte> into) const override {
        return file_.Read(offset, into);
    }
    Result<FileStamp> Stamp() const override {
        LARGE_INTEGER size{};
        if (::GetFileSizeEx(file_.Handle(), &size) == 0) return LastFailure("looking at it");
        // Nobody else can change it.
        return FileStamp{static_cast<std::uint64_t>(size.QuadPart), 0, 0, true};
    }
    Status Write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        return file_.Write(offset, bytes).In("a temporary file in \"" + folder_ + "\"");
    }
    Status Sync() override { return {}; }
    Status Resize(std::uint64_t size) override { return file_.Resize(size); }

private:
    SystemFile file_;
    std::string folder_;
};

}  // namespace

Result<std::unique_ptr<File>> OpenUnnamedFile() {
    static std::atomic<unsigned> count = 0;
    std::array<wchar_t, MAX_PATH + 2> wide{};
    if (::GetTempPathW(static_cast<DWORD>(wide.size()), wide.data()) == 0) {
        return LastFailure("there is no folder for temporary files");
    }
    const std::string folder = NarrowName(wide.data());
    const auto failed = [&](const Status& status) {
        return status.In("a temporary file cannot be made in \"" + folder + "\"");
    };
    const std::string path =
        folder + "kvs-" + std::to_string(ProcessNumber()) + "-" + std::to_string(++count);
    // What a program with this number has left is of no use to anybody.
    auto file = SystemFile::Open(path, GENERIC_READ | GENERIC_WRITE | DELETE, CREATE_ALWAYS,
                                 SystemFile::Links::NotFollowed);
    if (!file.IsOk()) return failed(file.GetStatus());
    if (Status status = file->GoWhenClosed(true); !status.IsOk()) return failed(status);
    return std::unique_ptr<File>(std::make_unique<UnnamedFile>(std::move(*file), folder));
}

}  // namespace jet
