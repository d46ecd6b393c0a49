#include "jet/Status.h"

#include <cerrno>
#include <system_error>

namespace jet {

Status Status::In(std::string_view where) const {
    if (IsOk()) return {};
    return {Code(), std::string(where) + ": " + Text()};
}

Status Status::FromErrno(int error, std::string_view action) {
    StatusCode code = StatusCode::Io;
    if (error == ENOENT || error == ENOTDIR) code = StatusCode::NotFound;
    if (error == EACCES || error == EPERM || error == EROFS) code = StatusCode::Permission;
    if (error == ENOSPC || error == EDQUOT || error == EFBIG) code = StatusCode::Full;
    return {code, std::string(action) + ": " + std::generic_category().message(error)};
}

}  // namespace jet
