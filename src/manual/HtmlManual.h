#pragma once

#include <QString>

#include "manual/ManualPages.h"

namespace manual {

/// Writes the manuals as pages for a browser into one folder: a page to choose the language, the
/// chapters of each, pictures, and a search that needs no network. What else is in the folder
/// stays. `pictures` as in ReadFile.
void WriteHtml(const QList<Manual>& manuals, const QString& pictures, const QString& target);

}  // namespace manual
