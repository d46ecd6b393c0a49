#pragma once

#include <cstdint>
#include <string_view>

#include "jet/Status.h"

namespace jet {

/// What the system's last call in this thread has failed with, as a Status; the only place that
/// turns the system's numbers into codes.
[[nodiscard]] Status LastFailure(std::string_view action);
[[nodiscard]] Status FailureOf(std::uint32_t error, std::string_view action);

}  // namespace jet
