#pragma once

#include <QString>

#include "manual/ManualPages.h"

namespace manual {

/// Writes a manual for paper: a title, the table of contents, the chapters, and an index, both with
/// the numbers of pages; and bookmarks. A4. Needs an application with fonts. `pictures` as in
/// ReadFile.
void WritePdf(const Manual& manual, const QString& pictures, const QString& file);

}  // namespace manual
