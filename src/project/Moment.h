#pragma once

#include <optional>

#include "ado/Value.h"

namespace project {

/// A stored point in time by the calendar.
struct Moment {
    int year = 0;
    int month = 0;         // 1 to 12
    int day = 0;           // 1 to 31
    int milliseconds = 0;  // since midnight
};

/// Years 100 to 9999; what lies outside is no date.
[[nodiscard]] std::optional<Moment> MomentOf(ado::Date date);
/// REQUIRES: a day of the calendar.
[[nodiscard]] ado::Date DateOf(const Moment& moment);

}  // namespace project
