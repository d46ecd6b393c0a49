#pragma once

#include "jet/detail/CodePage.h"
#include "jet/detail/PageCache.h"
#include "jet/TableDef.h"

namespace jet {

/// Reads the table definition that begins on `page`. `codePage` is null for Jet 4.
[[nodiscard]] Result<TableDef> ReadTableDef(PageCache& cache, Format format,
                                            const CodePage* codePage, PageNo page);

}  // namespace jet
