#pragma once

#include <vector>

#include "jet/page/PageCache.h"
#include "jet/row/CodePage.h"
#include "jet/TableDef.h"

namespace jet {

/// Reads the table definition that begins on `page`. `codePage` is null for Jet 4.
[[nodiscard]] Result<TableDef> ReadTableDef(PageCache& cache, Format format,
                                            const CodePage* codePage, PageNo page);

/// The same as the bytes of its pages, joined to one stream of the length that it states.
[[nodiscard]] Result<std::vector<std::byte>> ReadTableDefStream(PageCache& cache, Format format,
                                                                PageNo page);

}  // namespace jet
