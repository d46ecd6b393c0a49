#pragma once

#include "platform/HelpFile.h"
#include "texts/MResources.h"

namespace help {

/// Shows help in a window of ours: the pages of the installed help file, the built-in ones where
/// there is none or it has no page for a number. For platform::HelpFile::SetViewer:
///
///     helpFile_.SetViewer(help::MakeViewer(texts_));
///
/// `texts` is borrowed and outlives the viewer; its language is the one that counts when a topic
/// is shown. The window is made at the first topic and goes with the last copy of the viewer, or
/// when the application quits.
[[nodiscard]] platform::HelpFile::Viewer MakeViewer(const MResources::TextTable& texts);

}  // namespace help
