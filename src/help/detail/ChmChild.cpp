#include "help/detail/ChmChild.h"

#include <chm_lib.h>
#include <sys/resource.h>
#include <unistd.h>
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <tuple>

// The compilers tell in different ways.
#if defined(__SANITIZE_ADDRESS__)
#define KV_SANITIZED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KV_SANITIZED
#endif
#endif

namespace help {

namespace {

constexpr rlim_t kCpuSeconds = 15;

struct Job {
    int pipe;
    std::uint32_t files = 0;
    std::uint64_t total = 0;
};

bool Write(int pipe, const void* data, std::size_t size) {
    const char* bytes = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = write(pipe, bytes, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

int WriteUnit(chmFile* archive, chmUnitInfo* unit, void* context) {
    Job& job = *static_cast<Job*>(context);
    unit->path[CHM_MAX_PATHLEN] = '\0';
    const char* path = unit->path;
    while (*path == '/') ++path;
    const std::uint64_t size = unit->length;
    if (*path == '\0' || size > kMaximumFile) return CHM_ENUMERATOR_CONTINUE;
    if (++job.files > kMaximumFiles || job.total + size > kMaximumTotal) {
        return CHM_ENUMERATOR_SUCCESS;
    }
    job.total += size;
    const std::unique_ptr<unsigned char[]> data(new (std::nothrow) unsigned char[size + 1]);
    if (!data) return CHM_ENUMERATOR_FAILURE;
    LONGINT64 read = 0;
    if (size > 0) {
        read = chm_retrieve_object(archive, unit, data.get(), 0, static_cast<LONGINT64>(size));
    }
    // A file of which a part can be unpacked is no page that anybody wants to read.
    if (read != static_cast<LONGINT64>(size)) return CHM_ENUMERATOR_CONTINUE;
    const std::uint32_t pathLength = static_cast<std::uint32_t>(std::strlen(path));
    const bool written = Write(job.pipe, &pathLength, sizeof pathLength) &&
                         Write(job.pipe, &size, sizeof size) && Write(job.pipe, path, pathLength) &&
                         Write(job.pipe, data.get(), size);
    return written ? CHM_ENUMERATOR_CONTINUE : CHM_ENUMERATOR_FAILURE;
}

void Limit(int resource, rlim_t value) {
    const rlimit limit = {value, value};
    setrlimit(static_cast<__rlimit_resource>(resource), &limit);
}

}  // namespace

void RunChmChild(const char* path, int pipe) {
    Limit(RLIMIT_CPU, kCpuSeconds);
    Limit(RLIMIT_CORE, 0);
    Limit(RLIMIT_FSIZE, 0);
#if !defined(KV_SANITIZED)
    // The address sanitizer reserves terabytes of addresses.
    constexpr rlim_t kMemory = rlim_t(1) << 30;
    Limit(RLIMIT_AS, kMemory);
#endif
    chmFile* archive = chm_open(path);
    if (archive == nullptr) _exit(1);
    Job job{pipe};
    const int done = chm_enumerate(archive, CHM_ENUMERATE_ALL, WriteUnit, &job);
    // What could be read up to a damaged place is worth showing.
    std::ignore = done;
    const bool ended = job.files > 0 && Write(pipe, &kEndOfFiles, sizeof kEndOfFiles);
    _exit(ended ? 0 : 1);
}

}  // namespace help
