#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>

namespace jet {

using Bytes = std::span<const std::byte>;

/// Number of a page; the page begins at number x page size. 24 bits in the file.
enum class PageNo : std::uint32_t {};
[[nodiscard]] constexpr std::uint32_t Raw(PageNo page) {
    return static_cast<std::uint32_t>(page);
}

/// Address of a row: a page and a slot on it.
struct RowId {
    PageNo page{};
    std::uint8_t row = 0;

    /// From a row pointer as the file holds it: page << 8 | row.
    [[nodiscard]] static constexpr RowId FromPointer(std::uint32_t pointer) {
        return {PageNo{pointer >> 8}, static_cast<std::uint8_t>(pointer & 0xFF)};
    }
    [[nodiscard]] constexpr std::uint32_t Pointer() const { return Raw(page) << 8 | row; }
    [[nodiscard]] auto operator<=>(const RowId&) const = default;
};

/// Generation of the file format.
enum class Format { Jet3, Jet4 };

/// Types of columns by their stored codes.
enum class ColumnType : std::uint8_t {
    Boolean = 0x01,
    Byte = 0x02,
    Integer = 0x03,
    Long = 0x04,
    Currency = 0x05,
    Single = 0x06,
    Double = 0x07,
    DateTime = 0x08,
    Binary = 0x09,
    Text = 0x0A,
    Ole = 0x0B,
    Memo = 0x0C,
    Guid = 0x0F,
    Numeric = 0x10,
    LongBinary = 0x11,  // fixed 3992 bytes, internal tables only
};

inline constexpr std::size_t kPageSizeJet4 = 4096;
inline constexpr std::size_t kPageSizeJet3 = 2048;
inline constexpr std::size_t kMaxPageSize = kPageSizeJet4;

[[nodiscard]] constexpr std::size_t PageSize(Format format) {
    return format == Format::Jet3 ? kPageSizeJet3 : kPageSizeJet4;
}

/// Definition of the system catalog, on the same page in every file.
inline constexpr PageNo kCatalogPage{2};

}  // namespace jet
