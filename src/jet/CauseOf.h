#pragma once

#include "jet/Status.h"
#include "reasons/Reason.h"

namespace jet {

/// What the outcome of an operation on an open file means to a user.
[[nodiscard]] reasons::Cause CauseOf(StatusCode code);
/// The same for the opening of a file, which has no values and no rows yet that could be wrong.
[[nodiscard]] reasons::Cause CauseOfOpening(StatusCode code);
/// The same for the making of one: what is not found is its folder.
[[nodiscard]] reasons::Cause CauseOfMaking(StatusCode code);

}  // namespace jet
