#pragma once

#include <cstdint>
#include <QString>

/// Keys of the add-in's nodes in the host's tree: a kind of four characters, followed for archives
/// by the archive's ID in decimal ("ARC0", "ARCH17").
namespace projectdb {

inline constexpr QStringView kRootKind = u"ARC0";  // the root node's kind, and its whole key
inline constexpr QStringView kArchiveKind = u"ARCH";

/// The first four characters; a shorter key is its own kind.
[[nodiscard]] QStringView NodeKind(QStringView key);

/// The number that the key's rest begins with; 0 when there is none or it is no 32-bit number.
[[nodiscard]] std::int32_t NodeId(QStringView key);

[[nodiscard]] bool IsOwnNode(QStringView key);
[[nodiscard]] QString ArchiveNodeKey(std::int32_t archiveId);

}  // namespace projectdb
