#include "jet/File.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

Status OpenForReading() {
    return {StatusCode::Permission, "the file is open for reading only"};
}

}  // namespace

Result<std::uint64_t> File::Length() const {
    FileStamp stamp;
    JET_ASSIGN(stamp, Stamp());
    return stamp.size;
}

Status File::Write(std::uint64_t /*offset*/, std::span<const std::byte> /*bytes*/) {
    return OpenForReading();
}
Status File::Sync() {
    return OpenForReading();
}
Status File::Resize(std::uint64_t /*size*/) {
    return OpenForReading();
}

Result<std::size_t> MemoryFile::Read(std::uint64_t offset, std::span<std::byte> into) const {
    if (offset >= content_.size()) return std::size_t{0};
    const std::size_t count = std::min<std::size_t>(into.size(), content_.size() - offset);
    std::memcpy(into.data(), content_.data() + offset, count);
    return count;
}

Result<FileStamp> MemoryFile::Stamp() const {
    return FileStamp{content_.size(), 0, 0, true};
}

}  // namespace jet
