#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>

#include "jet/Types.h"

// Numbers as the file holds them: little-endian. The caller has checked that they lie inside.
static_assert(std::endian::native == std::endian::little, "loads copy the file's byte order");

namespace jet {

template <typename T>
[[nodiscard]] inline T Load(Bytes bytes, std::size_t offset) {
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

[[nodiscard]] inline std::uint8_t LoadU8(Bytes bytes, std::size_t offset) {
    return static_cast<std::uint8_t>(bytes[offset]);
}
[[nodiscard]] inline std::uint16_t LoadU16(Bytes bytes, std::size_t offset) {
    return Load<std::uint16_t>(bytes, offset);
}
[[nodiscard]] inline std::uint32_t LoadU32(Bytes bytes, std::size_t offset) {
    return Load<std::uint32_t>(bytes, offset);
}
/// Three bytes, most significant first: the page number inside an index entry.
[[nodiscard]] inline std::uint32_t LoadU24BigEndian(Bytes bytes, std::size_t offset) {
    return static_cast<std::uint32_t>(LoadU8(bytes, offset)) << 16 |
           static_cast<std::uint32_t>(LoadU8(bytes, offset + 1)) << 8 | LoadU8(bytes, offset + 2);
}
[[nodiscard]] inline std::uint32_t LoadU32BigEndian(Bytes bytes, std::size_t offset) {
    return __builtin_bswap32(LoadU32(bytes, offset));
}

using MutableBytes = std::span<std::byte>;

template <typename T>
inline void Store(MutableBytes bytes, std::size_t offset, T value) {
    std::memcpy(bytes.data() + offset, &value, sizeof value);
}
inline void StoreU16(MutableBytes bytes, std::size_t offset, std::size_t value) {
    Store(bytes, offset, static_cast<std::uint16_t>(value));
}
inline void StoreU32(MutableBytes bytes, std::size_t offset, std::size_t value) {
    Store(bytes, offset, static_cast<std::uint32_t>(value));
}

[[nodiscard]] inline std::string PageText(PageNo page) {
    return "page " + std::to_string(Raw(page));
}

}  // namespace jet
