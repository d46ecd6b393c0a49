#include "jet/CauseOf.h"

namespace jet {

using reasons::Cause;

Cause CauseOf(StatusCode code) {
    switch (code) {
        case StatusCode::NotFound:
            return Cause::RowChanged;
        case StatusCode::Corrupt:
            return Cause::FileDamaged;
        case StatusCode::Io:
            return Cause::DeviceFault;
        case StatusCode::Permission:
            return Cause::FileReadOnly;
        case StatusCode::BadArgument:
            return Cause::WrongType;
        case StatusCode::Unsupported:
            return Cause::Unsupported;
        case StatusCode::Full:
            return Cause::FileFull;
        case StatusCode::UsedUp:
            return Cause::NumbersUsedUp;
        case StatusCode::Busy:
            return Cause::FileInUse;
        case StatusCode::Conflict:
            return Cause::FileReplaced;
        case StatusCode::Duplicate:
            return Cause::ValueDouble;
        case StatusCode::Required:
            return Cause::ValueRequired;
        case StatusCode::Related:
            return Cause::RowsRelated;
        case StatusCode::TooLong:
            return Cause::ValueTooLarge;
        case StatusCode::Ok:
            break;
    }
    return Cause::Unknown;
}

Cause CauseOfOpening(StatusCode code) {
    switch (code) {
        case StatusCode::NotFound:
            return Cause::FileMissing;
        case StatusCode::Permission:
            return Cause::FileUnreadable;
        case StatusCode::BadArgument:
            return Cause::NotAProject;
        default:
            return CauseOf(code);
    }
}

Cause CauseOfMaking(StatusCode code) {
    switch (code) {
        case StatusCode::NotFound:
            return Cause::PathUnusable;
        case StatusCode::Duplicate:
            return Cause::FileExists;
        default:
            return CauseOf(code);
    }
}

}  // namespace jet
