#pragma once

#include <sys/resource.h>

#include <csignal>

/// No file may grow beyond a size while it lives; what is written behind it fails, as on a full
/// disk.
class SmallDisk {
public:
    explicit SmallDisk(rlim_t bytes) : before_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &limit_);
        rlimit small = limit_;
        small.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk() {
        setrlimit(RLIMIT_FSIZE, &limit_);
        std::signal(SIGXFSZ, before_);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

private:
    void (*before_)(int);
    rlimit limit_{};
};
