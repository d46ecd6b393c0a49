#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "jet/CreateTable.h"

namespace projectfile {

/// The tables of a project with texts in these languages, in the order in which projects have them.
[[nodiscard]] std::vector<jet::TableSpec> ProjectTables(std::span<const std::uint32_t> lcids);

}  // namespace projectfile
