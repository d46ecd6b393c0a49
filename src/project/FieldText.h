#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "ado/Recordset.h"
#include "project/Number.h"
#include "project/Schema.h"

/// What a text means that somebody types or pastes for a field.
namespace project {

/// What columns hold that forbid empty texts: the one character U+0000.
inline constexpr std::u16string_view kEmptyText(u"\0", 1);

/// A value as people are shown it: numbers as by FormatNumber, Null and kEmptyText as nothing.
[[nodiscard]] std::u16string ValueText(const ado::Value& value, char16_t point = u'.');

/// The numbers that a field can hold.
struct NumberRange {
    bool integral = false;
    double smallest = 0;
    double largest = 0;
};
/// Empty for fields that hold no numbers.
[[nodiscard]] std::optional<NumberRange> RangeOf(ado::DataType type);

/// Why a text is no value for a field.
enum class Problem {
    None,
    NoNumber,    // or goes on behind it
    NotWhole,    // decimals for a field that has none
    OutOfRange,  // too large or too small for the field
    TooLong,
    NotListed,  // none of the codes
    NoColour,
    NotEditable,  // fields of this type cannot be typed
};

struct Reading {
    ado::Value value;
    Problem problem = Problem::None;
};

/// What a dialog stores for a field's text, whether it is right or not: the leading number, 0 where
/// there is none; for an empty text the one character U+0000, which columns accept that forbid
/// empty ones. `problem` says what the user should know before. A value that is OutOfRange or
/// TooLong is refused by the field.
[[nodiscard]] Reading ReadDialogText(std::u16string_view text, const NumberRange& range);
[[nodiscard]] Reading ReadDialogText(std::u16string_view text, const ado::Field& field);

/// How a cell is read.
struct CellRules {
    const Column* column = nullptr;  // null: nothing is known but the field
    /// The code that a text of the interface stands for.
    std::function<std::optional<std::int32_t>(std::u16string_view text)> codeOf;
    /// Codes and colours that no list has are taken: the text has been copied from a stored value.
    bool asStored = false;
};
/// What is typed into a cell or pasted, for fields that hold a text or a number: taken whole or not
/// at all. `value` is to be stored when there is no `problem`. An empty text is Null; for a number
/// so is a blank one.
[[nodiscard]] Reading ReadCell(std::u16string_view text, const ado::Field& field,
                               const CellRules& rules);

}  // namespace project
