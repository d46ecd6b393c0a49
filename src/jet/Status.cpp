#include "jet/Status.h"

namespace jet {

Status Status::In(std::string_view where) const {
    if (IsOk()) return {};
    return {Code(), std::string(where) + ": " + Text()};
}

}  // namespace jet
