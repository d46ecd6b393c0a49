#include "jet/disk/posix/Descriptor.h"

#include <unistd.h>

#include <cerrno>
#include <string>

namespace jet {

Result<std::size_t> ReadAt(int descriptor, std::uint64_t offset, std::span<std::byte> into) {
    std::size_t done = 0;
    while (done < into.size()) {
        const ssize_t count = ::pread(descriptor, into.data() + done, into.size() - done,
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

Status WriteAt(int descriptor, std::uint64_t offset, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t count =
            ::pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) {
            return Status::FromErrno(errno, "writing at offset " + std::to_string(offset));
        }
        offset += static_cast<std::uint64_t>(count);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return {};
}

}  // namespace jet
