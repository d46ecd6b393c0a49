#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "jet/Disk.h"
#include "jet/Status.h"

namespace jet {

/// What a repair has saved.
struct RepairSums {
    std::uint64_t tables = 0;
    std::uint64_t rows = 0;
    std::uint64_t losses = 0;  // messages of the sink
};

/// Takes what could not be saved, or is still wrong in the new file: one line of UTF-8 each, which
/// names the table and the row.
using LossSink = std::function<void(const std::string&)>;

/// Writes what can be read of a damaged Jet 4 file into a new one: the rows of all tables, found by
/// the pages on which they stand and not by the maps of pages, with usage maps, indexes and
/// counters made anew. AutoNumbers go on behind the greatest number of a row; one that has come
/// near the end of the numbers without a row that holds it is set back.
///
/// The old file is only read, and nobody may write it meanwhile. What cannot be read is left out: a
/// value becomes Null, a row without its key or with the key of another, and a table without its
/// definition, are not in the new file.
///
/// Duplicate when there is something at `to`; Corrupt when the header or the catalog's definition
/// cannot be read. After a failure there is nothing at `to`.
[[nodiscard]] Result<RepairSums> Repair(Disk& disk, const std::string& from, const std::string& to,
                                        const LossSink& lost);

}  // namespace jet
