#include "paths/NewFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

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
    if (isThere && ::access(name_.c_str(), W_OK) != 0) return LastError();
    constexpr int kTries = 100;
    constexpr mode_t kAnyNewFile = 0666;  // less what the user never gives
    int file = -1;
    for (int i = 0; i < kTries && file < 0; ++i) {
        temporary_ = name_ + '.' + std::to_string(::getpid()) + '-' + std::to_string(i);
        file = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kAnyNewFile);
        if (file >= 0 || errno == EEXIST) continue;
        temporary_.clear();
        return LastError();
    }
    if (file < 0) {
        temporary_.clear();
        return LastError();
    }
    if (!isThere || ::fchmod(file, info.st_mode & 0777) == 0) stream_ = ::fdopen(file, "w");
    if (stream_ != nullptr) return {};
    const std::error_code error = LastError();
    ::close(file);
    return error;
}

bool NewFile::IsQuota(const std::error_code& error) {
    return error == std::error_code(EDQUOT, std::generic_category());
}

bool NewFile::SyncStream(std::FILE* stream) {
    return ::fsync(::fileno(stream)) == 0;
}

std::error_code NewFile::Replace(const std::string& from, const std::string& to) {
    return std::rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : LastError();
}

}  // namespace paths
