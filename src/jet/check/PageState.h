#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jet/page/PageCache.h"

namespace jet {

/// What else matters for whoever writes a sound file.
struct PageState {
    /// Row pointers of maps with bits that are left over behind the end of the file: they are to be
    /// removed before the file grows.
    std::vector<std::uint32_t> leftOvers;
    /// What cannot be stored in it although most changes are possible, a sentence each.
    std::vector<std::string> limits;
};

/// The part of a check that must hold before anything is written (Jet 4): every page belongs to one
/// thing, or is free, the trees of indexes consist of their own pages, and no two columns share a
/// place. Reads definitions, usage maps and the nodes of indexes only. Corrupt with the first
/// fault.
[[nodiscard]] Result<PageState> CheckPages(PageCache& cache);

}  // namespace jet
