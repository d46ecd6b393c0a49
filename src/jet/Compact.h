#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jet/Disk.h"
#include "jet/Status.h"

namespace jet {

struct CompactSizes {
    std::uint64_t before = 0;          // bytes of the file
    std::uint64_t after = 0;           // likewise
    std::vector<std::string> notices;  // see Database
};

/// Writes what a Jet 4 file holds into a new one without the room that nothing uses, makes sure
/// that it holds the same, and puts it in the old one's place with its owner and permissions.
///
/// Everything survives: the tables of all programs with rows in their order, the system's own with
/// queries, relationships, rights and properties, collations, numbers handed out. Only places
/// change: pages, addresses of rows, and the numbers of tables whose page lay far behind the new
/// end.
///
/// The old file stays as it is until the moment of the swap, and after any failure. Busy, naming
/// them, while other programs have the file open; Corrupt for a file that a check finds errors in,
/// since something might be lost; Unsupported for what cannot be kept.
[[nodiscard]] Result<CompactSizes> Compact(Disk& disk, const std::string& path);

}  // namespace jet
