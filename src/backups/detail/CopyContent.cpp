#include "backups/detail/CopyContent.h"

#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace backups {
namespace {

using jet::Status;

constexpr std::size_t kPiece = std::size_t{4} << 20;  // bytes

bool IsSameTime(const timespec& a, const timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

/// Reads until `size` bytes are there or the file ends; the number of bytes.
jet::Result<std::size_t> ReadFully(const Descriptor& file, std::byte* into, std::size_t size,
                                   std::uint64_t at) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count =
            ::pread(file.Number(), into + done, size - done, static_cast<off_t>(at + done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return Status::FromErrno(errno, "reading");
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

Status WriteFully(const Descriptor& file, const std::byte* from, std::size_t size) {
    while (size > 0) {
        const ssize_t count = ::write(file.Number(), from, size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return Status::FromErrno(errno, "writing the copy");
        from += count;
        size -= static_cast<std::size_t>(count);
    }
    return {};
}

/// From `at` on, by reading and writing.
Status CopyByHand(const Descriptor& from, const Descriptor& to, std::uint64_t at,
                  const std::function<void()>& pause) {
    std::vector<std::byte> piece(kPiece);
    for (;;) {
        std::size_t count = 0;
        JET_ASSIGN(count, ReadFully(from, piece.data(), piece.size(), at));
        if (count == 0) return {};
        JET_TRY(WriteFully(to, piece.data(), count));
        at += count;
        pause();
    }
}

}  // namespace

jet::Result<FileMark> FileMark::Of(const Descriptor& file) {
    FileMark mark;
    struct stat info {};
    if (::fstat(file.Number(), &info) != 0) return Status::FromErrno(errno, "looking at it");
    if (!S_ISREG(info.st_mode)) return Status::BadArgument("it is no regular file");
    mark.size_ = static_cast<std::uint64_t>(info.st_size);
    mark.modified_ = info.st_mtim;
    mark.changed_ = info.st_ctim;
    JET_TRY(ReadFully(file, mark.first_.data(), mark.first_.size(), 0).GetStatusOrOk());
    return mark;
}

bool FileMark::operator==(const FileMark& other) const {
    return LooksLike(other) && HasTimeOf(other) && IsSameTime(changed_, other.changed_);
}

bool FileMark::LooksLike(const FileMark& copy) const {
    return size_ == copy.size_ && first_ == copy.first_;
}

bool FileMark::HasTimeOf(const FileMark& copy) const {
    return IsSameTime(modified_, copy.modified_);
}

Status FileMark::StampTo(const Descriptor& file) const {
    const timespec times[] = {{0, UTIME_OMIT}, modified_};
    if (::futimens(file.Number(), times) == 0) return {};
    return Status::FromErrno(errno, "giving the copy its time");
}

Status Clear(const Descriptor& file) {
    if (::ftruncate(file.Number(), 0) == 0 && ::lseek(file.Number(), 0, SEEK_SET) == 0) return {};
    return Status::FromErrno(errno, "beginning the copy");
}

Status CopyContent(const Descriptor& from, const Descriptor& to,
                   const std::function<void()>& pause) {
    if (::ioctl(to.Number(), FICLONE, from.Number()) == 0) return {};
    off_t at = 0;
    for (;;) {
        const ssize_t count =
            ::copy_file_range(from.Number(), &at, to.Number(), nullptr, kPiece, 0);
        if (count < 0 && errno == EINTR) continue;
        // What the system cannot do for these two files it says at once; some file systems say
        // that they have copied nothing.
        const bool canNot = errno == EXDEV || errno == EINVAL || errno == ENOSYS ||
                            errno == EOPNOTSUPP || errno == EPERM;
        if (count == 0 || (count < 0 && canNot)) {
            return CopyByHand(from, to, static_cast<std::uint64_t>(at), pause);
        }
        if (count < 0) return Status::FromErrno(errno, "writing the copy");
        pause();
    }
}

jet::Result<bool> HoldTheSame(const Descriptor& a, const Descriptor& b) {
    std::vector<std::byte> mine(kPiece);
    std::vector<std::byte> other(kPiece);
    for (std::uint64_t at = 0;;) {
        std::size_t count = 0;
        std::size_t otherCount = 0;
        JET_ASSIGN(count, ReadFully(a, mine.data(), mine.size(), at));
        JET_ASSIGN(otherCount, ReadFully(b, other.data(), other.size(), at));
        if (count != otherCount ||
            !std::equal(mine.begin(), mine.begin() + static_cast<std::ptrdiff_t>(count),
                        other.begin())) {
            return false;
        }
        if (count == 0) return true;
        at += count;
    }
}

}  // namespace backups
