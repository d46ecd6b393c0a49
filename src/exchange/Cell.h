#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ado/Value.h"
#include "exchange/Sheet.h"
#include "project/FieldText.h"

namespace exchange {

/// What stands in a cell.
enum class CellKind : std::uint8_t {
    Null,    // nothing at all
    Text,    // words of codes are texts too; an empty one is not Null
    Number,  // with '.', to all of its digits
    Colour,  // "#RRGGBB"
    // What spreadsheets have besides; no sheet of ours has any.
    Date,     // as its text says it
    Boolean,  // "TRUE", "FALSE"
    Unknown,  // an error, or a formula without its result
};
struct Cell {
    CellKind kind = CellKind::Null;
    std::u16string text;
};
/// The same where somebody else keeps the text.
struct CellView {
    CellKind kind = CellKind::Null;
    std::u16string_view text;
};

/// A stored value as it stands in its cell, codes as words of the language. Of an archive's number
/// the value is the archive's name. `cell` is used again.
void WriteCell(const SheetColumn& column, const ado::Value& value, const words::Language& language,
               Cell& cell);

/// Whether a cell says what is stored already: as it would be written, or, of a number, as a
/// spreadsheet shows it, which is to 15 digits. `written` is the stored value's cell in any
/// language.
[[nodiscard]] bool IsSame(const SheetColumn& column, const ado::Value& stored, const Cell& written,
                          const CellView& given);

/// What a cell means for its column. Null, the character U+0000 for an empty text. Words are
/// understood in all languages; codes and colours outside their list are a problem.
[[nodiscard]] project::Reading ReadCell(const SheetColumn& column, const CellView& cell);

/// What a spreadsheet does to texts that look like something else.
enum class Suspicion : std::uint8_t {
    None,
    Date,
    Rounded,
    NoText,  // it is a number, or a truth, where a text is meant
};
/// Whether a text may have become what it is by itself.
[[nodiscard]] Suspicion SuspicionOf(const SheetColumn& column, const ado::Value& was,
                                    const CellView& given);

}  // namespace exchange
