#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ado {

/// Data types of fields by their ADO numbers.
enum class DataType : int {
    SmallInt = 2,  // 16 bits
    Integer = 3,   // 32 bits
    Single = 4,
    Double = 5,
    Currency = 6,
    Date = 7,
    Boolean = 11,
    UnsignedTinyInt = 17,  // 8 bits
    Guid = 72,
    Numeric = 131,
    VarBinary = 204,
    VarWChar = 202,       // text up to 255 characters
    LongVarWChar = 203,   // memo
    LongVarBinary = 205,  // OLE
};

using Null = std::monostate;

/// Amount of money in ten-thousandths.
struct Currency {
    std::int64_t tenThousandths = 0;
    [[nodiscard]] auto operator<=>(const Currency&) const = default;
};

/// Point in time as days since 1899-12-30 00:00, local time. Before that day the fraction still
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

/// Fixed-point number: magnitude / 10^scale. `magnitude` is 128 bits, most significant byte first.
struct Decimal {
    bool negative = false;
    std::uint8_t scale = 0;  // 0..28
    std::array<std::byte, 16> magnitude{};
    [[nodiscard]] bool operator==(const Decimal&) const = default;
};

using Binary = std::vector<std::byte>;

/// One field's value. Integers of 8, 16 and 32 bits are int32_t; text is UTF-16 as it is stored.
using Value = std::variant<Null, bool, std::int32_t, float, double, Currency, Date, std::u16string,
                           Binary, Guid, Decimal>;

[[nodiscard]] inline bool IsNull(const Value& value) {
    return value.index() == 0;
}

/// The number that a text as a whole stands for, with '.', blanks around it aside. Empty for what
/// is none, and for "inf" and "nan".
[[nodiscard]] std::optional<double> ToNumber(std::u16string_view text);
/// An amount as a decimal number, to the last of its four places. Places beyond are rounded, halves
/// to the even digit. Empty for what is no plain decimal number and for what is too great.
[[nodiscard]] std::optional<Currency> ToCurrency(std::u16string_view text);

/// A name in the form in which names compare that do not tell capitals apart: character by
/// character, blanks at the end included.
[[nodiscard]] std::u16string FoldName(std::u16string_view name);

// Conversions that every reader of a field needs. Null gives the stated default.
[[nodiscard]] std::u16string ToText(const Value& value);  // Null: empty; numbers with '.'
[[nodiscard]] std::int32_t ToLong(const Value& value,
                                  std::int32_t ifNull = 0);  // may throw AdoError

}  // namespace ado
