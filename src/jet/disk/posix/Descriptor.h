#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "jet/Status.h"

namespace jet {

// Reading and writing an open file at a place, with the interrupted and the partial calls that the
// system may make of it.

/// How many bytes were there: fewer than asked only at the end.
[[nodiscard]] Result<std::size_t> ReadAt(int descriptor, std::uint64_t offset,
                                         std::span<std::byte> into);
/// Writes all of `bytes`, or fails and may have written a part.
[[nodiscard]] Status WriteAt(int descriptor, std::uint64_t offset,
                             std::span<const std::byte> bytes);

}  // namespace jet
