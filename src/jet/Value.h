#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "jet/Types.h"

namespace jet {

using Null = std::monostate;

/// Money in ten-thousandths.
struct Currency {
    std::int64_t tenThousandths = 0;
    [[nodiscard]] auto operator<=>(const Currency&) const = default;
};

/// Days since 1899-12-30 00:00, local time without zone. Before that day the fraction still
/// counts forward: -1.25 is 1899-12-29 06:00.
struct Date {
    double days = 0;
    [[nodiscard]] auto operator<=>(const Date&) const = default;
};

/// The sixteen bytes in the order in which they are written as text.
struct Guid {
    std::array<std::byte, 16> bytes{};
    [[nodiscard]] auto operator<=>(const Guid&) const = default;
};

/// magnitude / 10^scale, the magnitude as 128 bits, most significant byte first.
struct Decimal {
    bool negative = false;
    std::uint8_t scale = 0;
    std::array<std::byte, 16> magnitude{};
    [[nodiscard]] bool operator==(const Decimal&) const = default;
};

/// Where a memo or OLE value lies. Its bytes are read piece by piece with Table::OpenLongValue.
struct LongValue {
    enum class Kind { Inline, SingleRow, Chain };
    Kind kind = Kind::Inline;
    bool isText = false;
    std::uint32_t length = 0;  // bytes, as stored (compressed text counts its compressed bytes)
    RowId first{};             // not for Inline
    std::uint32_t stamp = 0;   // chain: equals the stamp of the first data page
    std::vector<std::byte> inlineBytes;
    [[nodiscard]] bool operator==(const LongValue&) const = default;
};

using Binary = std::vector<std::byte>;

/// One column's value in a row. Byte, Integer and Long are int32_t; text is UTF-16 as stored.
using Value = std::variant<Null, bool, std::int32_t, Currency, float, double, Date, std::u16string,
                           Binary, Guid, Decimal, LongValue>;

}  // namespace jet
