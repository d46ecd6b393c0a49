#pragma once

#include <QString>

#include "reasons/Reason.h"

namespace texts {

/// The reason as sentences in the language of the interface: what has happened, to what, why, and
/// what can be done. For an unknown cause it says where more is to be found.
[[nodiscard]] QString ReasonText(const reasons::Reason& reason);

}  // namespace texts
