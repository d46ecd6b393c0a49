#pragma once

#include "studio/DayPlan.h"

/// What is chosen in the archive's dialog, and what has to be stored for it.
struct ArchiveKind {
    const char16_t* name;
    /// Controls and what they are filled with, in this order; see User::Fill.
    std::vector<std::pair<const char16_t*, const char16_t*>> controls;
    DayPlan::Fields fields;
};

/// Ten archives, no two of a kind.
[[nodiscard]] const std::vector<ArchiveKind>& TenKinds();
