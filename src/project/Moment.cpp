#include "project/Moment.h"

#include <chrono>
#include <cmath>

namespace project {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr double kMillisecondsPerDay = 24.0 * 60 * 60 * 1000;
constexpr sys_days kDayNothing = std::chrono::year(1899) / 12 / 30;
constexpr double kFirst = -657434;  // 1 January of the year 100
constexpr double kBehindLast = 2958466;

}  // namespace

std::optional<Moment> MomentOf(ado::Date date) {
    // Before day nothing the whole part counts backward and the fraction forward.
    if (!(date.days > kFirst - 1 && date.days < kBehindLast)) return std::nullopt;
    const double whole = std::trunc(date.days);
    const auto time =
        static_cast<int>(std::lround(std::abs(date.days - whole) * kMillisecondsPerDay));
    const year_month_day day(kDayNothing + std::chrono::days(static_cast<int>(whole)));
    return Moment{static_cast<int>(day.year()),
                  static_cast<int>(static_cast<unsigned>(day.month())),
                  static_cast<int>(static_cast<unsigned>(day.day())), time};
}

ado::Date DateOf(const Moment& moment) {
    const sys_days day = std::chrono::year(moment.year) / moment.month / moment.day;
    const double whole = static_cast<double>((day - kDayNothing).count());
    const double time = moment.milliseconds / kMillisecondsPerDay;
    return {whole < 0 ? whole - time : whole + time};
}

}  // namespace project
