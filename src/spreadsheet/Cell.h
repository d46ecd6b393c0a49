#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace spreadsheet {

/// What stands in a cell. One with nothing in it is none.
enum class CellKind : std::uint8_t {
    Text,     // may be empty
    Number,   // as a decimal number with '.', in the fewest digits that are the same number
    Boolean,  // "TRUE", "FALSE"
    Date,     // a number that is shown as a date or time: "2026-05-01", "12:30:00", or both
    Unknown,  // an error value, or a formula whose result is not in the file: as it is shown
};

struct Cell {
    std::size_t column = 0;  // from 0
    CellKind kind = CellKind::Text;
    std::string text{};                   // UTF-8
    std::optional<std::uint32_t> fill{};  // 0xRRGGBB; of what is written
};

/// The cells of a row that hold something, from left to right.
struct Row {
    std::size_t number = 0;  // from 1
    std::vector<Cell> cells{};
};

/// What the file format has room for.
inline constexpr std::size_t kMostRows = 1048576;
inline constexpr std::size_t kMostColumns = 16384;
inline constexpr std::size_t kMostCharacters = 32767;  // in a cell

/// "A", "XFD".
[[nodiscard]] std::string ColumnName(std::size_t column);
/// "C5" is column 2, row 5.
[[nodiscard]] std::string CellName(std::size_t column, std::size_t row);

}  // namespace spreadsheet
