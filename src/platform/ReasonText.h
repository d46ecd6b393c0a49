#pragma once

#include <QString>

#include "platform/Locale.h"
#include "reasons/Reason.h"

namespace platform {

/// The language of the interface for the whole process, add-ins included: German until it is set.
/// Whoever reads it from the registry sets it; a number that is neither German nor English leaves
/// it as it is.
void SetInterfaceLanguage(Lcid lcid);
[[nodiscard]] Lcid InterfaceLanguage();

/// The reason as sentences in the language of the interface: what has happened, to what, why, and
/// what can be done. For an unknown cause it says where more is to be found.
[[nodiscard]] QString ReasonText(const reasons::Reason& reason);

/// What stands around the check of a damaged file.
enum class CheckText {
    Caption,  // of the button that begins it
    Title,
    Sound,   // <file>
    Faults,  // <file>, <n>
};
/// In the language of the interface; what stands in <> is replaced by the caller.
[[nodiscard]] QString TextOf(CheckText text);

}  // namespace platform
