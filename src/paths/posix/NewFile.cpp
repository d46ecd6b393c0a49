#include "paths/NewFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace paths {
namespace {

std::error_code LastError() {
    return {errno, std::generic_category()};
}

}  // namespace

std::FILE* OpenStream(const std::string& path, char mode) {
    return std::fopen(path.c_str(), mode == 'w' ? "we" : "re");
}

std::error_code NewFile::Make() {
    struct stat info {};
    const bool isThere = ::stat(name_.c_str(), &info) == 0;
    std::string temporary = name_ + ".XXXXXX";
    const int file = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (file < 0) return LastError();
    temporary_ = std::move(temporary);
    const mode_t mask = ::umask(0);
    ::umask(mask);
    const mode_t rights = isThere ? info.st_mode & 0777 : 0666 & ~mask;
    if (::fchmod(file, rights) == 0) stream_ = ::fdopen(file, "w");
    if (stream_ != nullptr) return {};
    const std::error_code error = LastError();
    ::close(file);
    return error;
}

bool NewFile::SyncStream(std::FILE* stream) {
    return ::fsync(::fileno(stream)) == 0;
}

std::error_code NewFile::Replace(const std::string& from, const std::string& to) {
    return std::rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : LastError();
}

}  // namespace paths
