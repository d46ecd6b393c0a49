#include "paths/NewFile.h"

#include <cerrno>
#include <filesystem>
#include <utility>

#include "paths/NativePath.h"

namespace paths {
namespace {

std::error_code LastError() {
    return {errno, std::generic_category()};
}

}  // namespace

reasons::Cause NewFile::CauseOf(const std::error_code& error) {
    using reasons::Cause;
    constexpr struct {
        std::errc error;
        Cause cause;
    } kCauses[] = {
        {std::errc::no_space_on_device, Cause::DiskFull},
        {std::errc::file_too_large, Cause::DiskFull},
        {std::errc::permission_denied, Cause::FileReadOnly},
        {std::errc::operation_not_permitted, Cause::FileReadOnly},
        {std::errc::read_only_file_system, Cause::FileReadOnly},
        {std::errc::no_such_file_or_directory, Cause::PathUnusable},
        {std::errc::not_a_directory, Cause::PathUnusable},
        {std::errc::is_a_directory, Cause::PathUnusable},
        {std::errc::filename_too_long, Cause::PathUnusable},
        {std::errc::too_many_symbolic_link_levels, Cause::PathUnusable},
        {std::errc::not_enough_memory, Cause::OutOfMemory},
    };
    for (const auto& known : kCauses) {
        if (error == known.error) return known.cause;
    }
    return IsQuota(error) ? Cause::DiskFull : Cause::DeviceFault;
}

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

bool NewFile::Write(std::string_view bytes) {
    if (error_) return false;
    if (std::fwrite(bytes.data(), 1, bytes.size(), stream_) == bytes.size()) return true;
    error_ = LastError();
    return false;
}

std::error_code NewFile::TakeName() {
    std::FILE* stream = std::exchange(stream_, nullptr);
    const bool hadFault = std::ferror(stream) != 0;
    std::error_code why = error_;
    const auto require = [&](bool isDone) {
        if (!isDone && !why) why = LastError();
    };
    require(std::fflush(stream) == 0);
    require(SyncStream(stream));
    require(std::fclose(stream) == 0);
    // What has been lost before may find room now, but not at its place.
    if (hadFault && !why) why = std::make_error_code(std::errc::io_error);
    if (why) return why;
    if (const std::error_code error = Replace(temporary_, name_)) return error;
    temporary_.clear();
    return {};
}

}  // namespace paths
