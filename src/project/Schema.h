#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <variant>

#include "ado/Recordset.h"

/// The tables of a project and what their columns mean, each fact once.
namespace project {

inline constexpr std::string_view kArchiveTable = "TchrArchives";
inline constexpr std::string_view kTrendTable = "TchrTrends";
inline constexpr std::string_view kTextTable = "TidxTexts";
inline constexpr std::string_view kGroupTable = "TidxGroups";

/// Type of the text groups that belong to archives, as it is stored; other editors have others.
inline constexpr std::int32_t kArchiveGroup = -2;

enum class Kind {
    Text,
    Number,
    Listed,    // a number that stands for a text
    Colour,    // 0x00BBGGRR, or 0x80000000 and the index of a colour of the system's scheme
    Variable,  // name of a process variable
    Key,       // ID of a row of another table
};

/// One stored code and what it means everywhere: in dialogs, in the grid, when it is pasted.
struct Code {
    std::int32_t code;
    int text;              // number of the interface's text
    bool inDialog = true;  // dialogs offer it
};

/// What a column of a new row holds; nothing: Null.
using Default = std::variant<std::monostate, std::int32_t, std::u16string_view>;

struct Column {
    std::string_view name;
    Kind kind = Kind::Text;
    Default initial{};
    std::span<const Code> codes{};  // of a Listed one, in the order in which the grid lists them
    int caption = 0;  // number of the interface's text over the grid's column; 0: none
};

/// Columns of an archive's row but for its key. Files may lack some, and have others.
[[nodiscard]] std::span<const Column> ArchiveColumns();
/// Settings of a trend, which are the columns of the grid, in the order of their captions.
[[nodiscard]] std::span<const Column> TrendColumns();
/// The column of that exact name; null when there is none.
[[nodiscard]] const Column* FindArchiveColumn(std::string_view name);
[[nodiscard]] const Column* FindTrendColumn(std::string_view name);

/// The code whose text has no amount beside it: the trend has no hysteresis.
inline constexpr std::int32_t kNoHysteresis = 3;
/// What a trend with this amount and this stored mode does: without an amount it has no hysteresis,
/// and a mode beyond the list counts as the nearest one.
[[nodiscard]] std::int32_t HysteresisMode(bool hasAmount, std::int32_t stored);

/// Whether an editor can give a field of this type a number, or a text. Fields of other types are
/// left as they are.
[[nodiscard]] bool IsNumber(ado::DataType type);
[[nodiscard]] bool IsText(ado::DataType type);

/// Gives the fields of a new row their defaults. A column that the table does not have, or has as
/// another type or too short, is left alone.
void AssignDefaults(ado::Recordset& row, std::span<const Column> columns);

}  // namespace project
