#include "tools/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace tools {

OutputFile::~OutputFile() {
    if (isOwn_) std::fclose(stream_);
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

std::string OutputFile::Failure(const char* what) const {
    return "\"" + name_ + "\" cannot be " + what + ": " + std::generic_category().message(errno);
}

std::string OutputFile::Open(const std::string& name) {
    if (name.empty() || name == "-") return {};
    name_ = name;
    struct stat info {};
    const bool isThere = ::stat(name.c_str(), &info) == 0;
    std::FILE* stream = nullptr;
    if (isThere && !S_ISREG(info.st_mode)) {
        stream = std::fopen(name.c_str(), "we");
    } else {
        // Where a link leads, or rename would replace the link.
        if (isThere) {
            char* real = ::realpath(name.c_str(), nullptr);
            if (real != nullptr) name_ = real;
            std::free(real);
        }
        std::string temporary = name_ + ".XXXXXX";
        const int file = ::mkostemp(temporary.data(), O_CLOEXEC);
        if (file < 0) return Failure("written");
        temporary_ = std::move(temporary);
        const mode_t mask = ::umask(0);
        ::umask(mask);
        ::fchmod(file, isThere ? info.st_mode & 0777 : 0666 & ~mask);
        stream = ::fdopen(file, "w");
    }
    if (stream == nullptr) return Failure("written");
    stream_ = stream;
    isOwn_ = true;
    return {};
}

std::string OutputFile::Keep() {
    if (!isOwn_) return {};
    isOwn_ = false;
    const bool isSafe =
        std::fflush(stream_) == 0 && (temporary_.empty() || ::fsync(::fileno(stream_)) == 0);
    if (std::fclose(stream_) != 0 || !isSafe) return Failure("written");
    if (temporary_.empty()) return {};
    if (::rename(temporary_.c_str(), name_.c_str()) != 0) return Failure("replaced");
    temporary_.clear();
    return {};
}

}  // namespace tools
