#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>

#include "jet/Status.h"

namespace jet {

/// An open file and the locks on ranges of its bytes. They are open-file-description locks: unlike
/// the older kind they are not lost when some other code in this process closes the same file.
/// A shared lock needs a descriptor for reading, an exclusive one a descriptor for writing.
class OfdLocks {
public:
    /// Takes over `descriptor`, which is closed, and its locks given up, at the end.
    explicit OfdLocks(int descriptor) : descriptor_(descriptor) {}
    ~OfdLocks();
    OfdLocks(const OfdLocks&) = delete;
    OfdLocks& operator=(const OfdLocks&) = delete;

    [[nodiscard]] int Descriptor() const { return descriptor_; }

    // False, with the reason in errno, when it cannot be had now.
    [[nodiscard]] bool Shared(off_t begin, off_t length) const;
    [[nodiscard]] bool Exclusive(off_t begin, off_t length) const;
    void Unlock(off_t begin, off_t length) const;
    /// True when others hold a lock that keeps an exclusive one from being taken.
    [[nodiscard]] bool IsHeldByOthers(off_t begin, off_t length) const;

    /// Tries until it succeeds; Busy, with `what`, when it has not in time.
    static Status Wait(std::chrono::milliseconds wait, const std::string& what,
                       const std::function<bool()>& tryOnce);

private:
    [[nodiscard]] bool Set(short type, off_t begin, off_t length) const;

    int descriptor_;
};

}  // namespace jet
