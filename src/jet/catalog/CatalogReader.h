#pragma once

#include <vector>

#include "jet/Database.h"
#include "jet/open/FileContext.h"

namespace jet {

/// All tables in the order of the catalog. Rows of the catalog that cannot be read are left out and
/// reported in `damage` when it is given.
[[nodiscard]] Result<std::vector<CatalogEntry>> ReadCatalog(const FileContext& file,
                                                            std::vector<Status>* damage);

}  // namespace jet
