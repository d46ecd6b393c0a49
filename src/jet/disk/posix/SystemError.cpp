#include <cerrno>
#include <system_error>

#include "jet/Status.h"

namespace jet {

Status Status::FromErrno(int error, std::string_view action) {
    StatusCode code = StatusCode::Io;
    if (error == ENOENT || error == ENOTDIR) code = StatusCode::NotFound;
    if (error == EACCES || error == EPERM || error == EROFS) code = StatusCode::Permission;
    if (error == ENOSPC || error == EDQUOT || error == EFBIG) code = StatusCode::Full;
    return {code, std::string(action) + ": " + std::generic_category().message(error)};
}

}  // namespace jet
