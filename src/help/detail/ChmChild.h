#pragma once

#include <cstdint>

namespace help {

// What the child process writes for each file of the archive: u32 length of the path, u64 length
// of the data, both in the machine's order, the path without a slash in front, the data. Behind
// the last one comes kEndOfFiles in place of a length.
inline constexpr std::uint32_t kEndOfFiles = 0xFFFFFFFF;
inline constexpr std::uint32_t kMaximumPath = 512;
inline constexpr std::uint64_t kMaximumFile = 16 << 20;    // bytes; larger ones are left out
inline constexpr std::uint64_t kMaximumTotal = 128 << 20;  // bytes of one help file
inline constexpr std::uint32_t kMaximumFiles = 20000;

/// Writes all files of the archive `path` to `pipe` and ends the process. For a child process.
[[noreturn]] void RunChmChild(const char* path, int pipe);

}  // namespace help
