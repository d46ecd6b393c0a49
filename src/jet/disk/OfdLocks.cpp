#include "jet/disk/OfdLocks.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <thread>
#include <tuple>

namespace jet {
namespace {

constexpr auto kRetry = std::chrono::milliseconds(2);

struct flock Range(short type, off_t begin, off_t length) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = begin;
    lock.l_len = length;
    return lock;
}

}  // namespace

OfdLocks::~OfdLocks() {
    ::close(descriptor_);
}

bool OfdLocks::Set(short type, off_t begin, off_t length) const {
    struct flock lock = Range(type, begin, length);
    return ::fcntl(descriptor_, F_OFD_SETLK, &lock) == 0;
}

bool OfdLocks::Shared(off_t begin, off_t length) const {
    return Set(F_RDLCK, begin, length);
}

bool OfdLocks::Exclusive(off_t begin, off_t length) const {
    return Set(F_WRLCK, begin, length);
}

void OfdLocks::Unlock(off_t begin, off_t length) const {
    std::ignore = Set(F_UNLCK, begin, length);  // giving up what one holds does not fail
}

bool OfdLocks::IsHeldByOthers(off_t begin, off_t length) const {
    struct flock lock = Range(F_WRLCK, begin, length);
    return ::fcntl(descriptor_, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

Status OfdLocks::Wait(std::chrono::milliseconds wait, const std::string& what,
                      const std::function<bool()>& tryOnce) {
    const auto end = std::chrono::steady_clock::now() + wait;
    while (!tryOnce()) {
        if (errno != EAGAIN && errno != EACCES && errno != EINTR) {
            return Status::FromErrno(errno, "locking the file");
        }
        if (std::chrono::steady_clock::now() >= end) {
            return {StatusCode::Busy, what + "; try again in a moment"};
        }
        std::this_thread::sleep_for(kRetry);
    }
    return {};
}

}  // namespace jet
