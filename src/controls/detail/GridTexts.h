#pragma once

/// Numbers of the texts that the grid itself needs.
namespace gridtexts {

inline constexpr int kSortedUpwards = 1300;
inline constexpr int kSortedDownwards = 1301;
inline constexpr int kChoose = 1302;
inline constexpr int kCurrentRow = 1303;
inline constexpr int kEditedRow = 1304;
inline constexpr int kNewRow = 1305;

}  // namespace gridtexts
