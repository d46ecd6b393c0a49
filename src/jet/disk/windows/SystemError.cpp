#include "jet/disk/windows/SystemError.h"

#include <windows.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace jet {
namespace {

StatusCode CodeOf(std::uint32_t error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
        case ERROR_BAD_NETPATH:
        case ERROR_BAD_NET_NAME:
            return StatusCode::NotFound;
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
        case ERROR_PRIVILEGE_NOT_HELD:
            return StatusCode::Permission;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
        case ERROR_FILE_TOO_LARGE:
            return StatusCode::Full;
        // Another program has it open and shares it with nobody, or locks what is asked for.
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_IO_PENDING:
            return StatusCode::Busy;
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS:
            return StatusCode::Duplicate;
        default:
            return StatusCode::Io;
    }
}

}  // namespace

Status FailureOf(std::uint32_t error, std::string_view action) {
    const std::string reason = std::system_category().message(static_cast<int>(error));
    return {CodeOf(error), std::string(action) + ": " + reason};
}

Status LastFailure(std::string_view action) {
    return FailureOf(::GetLastError(), action);
}

Status Status::FromErrno(int error, std::string_view action) {
    StatusCode code = StatusCode::Io;
    if (error == ENOENT || error == ENOTDIR) code = StatusCode::NotFound;
    if (error == EACCES || error == EPERM || error == EROFS) code = StatusCode::Permission;
    if (error == ENOSPC || error == EFBIG) code = StatusCode::Full;
    return {code, std::string(action) + ": " + std::generic_category().message(error)};
}

}  // namespace jet
