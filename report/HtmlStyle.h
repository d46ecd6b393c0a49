#pragma once

#include <QPalette>
#include <QString>

namespace report {

/// The style sheet of a page that a text document shows, in the colours of a palette.
[[nodiscard]] QString DocumentStyle(const QPalette& palette);
/// That of a file, which a browser shows.
[[nodiscard]] QString FileStyle();

}  // namespace report
