#pragma once

#include <vector>

#include "jet/check/DefinitionCheck.h"

namespace jet::check {

/// Reads the catalog and checks what it says: names are unique, what every file must have is
/// there. Returns all tables, each page at most once; the catalog itself is always among them.
[[nodiscard]] std::vector<TableEntry> CheckCatalog(PageCache& cache, Reporter& report);

}  // namespace jet::check
