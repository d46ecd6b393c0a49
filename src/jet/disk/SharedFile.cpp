#include "jet/disk/SharedFile.h"

#include <thread>

namespace jet {
namespace {

constexpr auto kRetry = std::chrono::milliseconds(2);

}  // namespace

Status SharedFile::Wait(std::chrono::milliseconds wait, const std::string& what,
                        const std::function<Status()>& tryOnce) {
    const auto end = std::chrono::steady_clock::now() + wait;
    for (;;) {
        Status status = tryOnce();
        if (status.Code() != StatusCode::Busy) return status;
        if (std::chrono::steady_clock::now() >= end) {
            return {StatusCode::Busy, what + "; try again in a moment"};
        }
        std::this_thread::sleep_for(kRetry);
    }
}

}  // namespace jet
