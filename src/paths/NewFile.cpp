#include "paths/NewFile.h"

#include <cerrno>
#include <filesystem>
#include <utility>

#include "paths/NativePath.h"

namespace paths {

NewFile::~NewFile() {
    if (stream_ != nullptr) std::fclose(stream_);
    std::error_code ignored;
    if (!temporary_.empty()) std::filesystem::remove(FileOf(temporary_), ignored);
}

std::error_code NewFile::Open(const std::string& path) {
    std::error_code none;
    const auto real = std::filesystem::canonical(FileOf(path), none);
    name_ = none ? path : TextOf(real);
    return Make();
}

std::error_code NewFile::TakeName() {
    const auto failed = [] { return std::error_code(errno, std::generic_category()); };
    std::FILE* stream = std::exchange(stream_, nullptr);
    const bool isSafe = std::fflush(stream) == 0 && SyncStream(stream);
    const std::error_code why = isSafe ? std::error_code() : failed();
    if (std::fclose(stream) != 0 && isSafe) return failed();
    if (why) return why;
    if (const std::error_code error = Replace(temporary_, name_)) return error;
    temporary_.clear();
    return {};
}

}  // namespace paths
