#pragma once

#include <QString>

namespace studio {

class StudioRegistry;
class StudioWindow;

/// Opens a copy of `project` (empty: none), opens the first add-in's branch and its first node as a
/// user would, and writes a picture of the window as PNG. Messages go to standard error, and none
/// waits for an answer. Returns the program's exit status: 0, or 1 when the project could not be
/// opened or the picture not be written.
[[nodiscard]] int TakeScreenshot(StudioWindow& window, StudioRegistry& registry,
                                 const QString& project, const QString& pngFile);

}  // namespace studio
