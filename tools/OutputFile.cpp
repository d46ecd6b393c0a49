#include "tools/OutputFile.h"

#include <cerrno>
#include <filesystem>

#include "paths/NativePath.h"
#include "tools/TextBuffer.h"

namespace tools {
namespace {

std::error_code LastError() {
    return {errno, std::generic_category()};
}

}  // namespace

OutputFile::~OutputFile() {
    if (isOwn_) std::fclose(stream_);
}

std::string OutputFile::Failure(const std::error_code& error) const {
    return NotWritten(name_, error.message());
}

std::string OutputFile::Open(const std::string& name) {
    if (name.empty() || name == "-") return {};
    name_ = name;
    std::error_code none;
    const auto there = std::filesystem::status(paths::FileOf(name), none);
    if (std::filesystem::exists(there) && !std::filesystem::is_regular_file(there)) {
        std::FILE* stream = paths::OpenStream(name, 'w');
        if (stream == nullptr) return Failure(LastError());
        stream_ = stream;
        isOwn_ = true;
        return {};
    }
    if (const std::error_code error = file_.Open(name)) return Failure(error);
    stream_ = file_.Stream();
    return {};
}

std::string OutputFile::Keep() {
    if (file_.Stream() != nullptr) {
        const std::error_code error = file_.TakeName();
        return error ? Failure(error) : std::string();
    }
    if (!isOwn_) return {};
    isOwn_ = false;
    const bool isWritten = std::fflush(stream_) == 0;
    const std::error_code error = isWritten ? std::error_code() : LastError();
    if (std::fclose(stream_) != 0 && isWritten) return Failure(LastError());
    return error ? Failure(error) : std::string();
}

}  // namespace tools
