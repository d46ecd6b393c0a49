#pragma once

class QLineEdit;

namespace MResources {

/// What may be typed into a field, by mode:
///
///   0  all but " and #                  5  a floating number: the user's decimal separator,
///   1  all but blank, " and #              + - 0-9 e E
///   2  0-9                              6  an identifier: a-z A-Z _ 0-9
///   3  0-9 a-f, lower case only         7  identifiers joined by "."
///   4  + - 0-9                          8  a file name: all but \ / : * ? " < > | and blank
///                                       9  a path: all but / * ? < > | " and blank
///
/// Returns `keyCode`, a UTF-16 code unit, or 0 when the key is to be swallowed. Backspace passes
/// in every mode, everything passes in a mode that is not listed.
[[nodiscard]] int KeyFilter(int mode, int keyCode);

class TextTable;

/// No filter: everything may be typed.
inline constexpr int kEveryKey = -1;

/// Holds the user's hand to what `field` takes: the keys that KeyFilter passes, and no more
/// characters than its length. A key that it does not take is swallowed. What is pasted, by key,
/// menu or middle click, or dropped comes in whole or not at all; only the line end that
/// spreadsheets put behind a cell is no part of it. In each case a tool tip at the field says why;
/// without `texts` nothing is said. Control characters are keys, not text: a filter passes none.
///
/// What stands in the field already and what the program sets is left alone, whatever it is. May
/// be called again with another mode. The restriction ends with the field. `texts` is borrowed and
/// outlives the field.
void RestrictInput(QLineEdit& field, int mode, const TextTable* texts = nullptr);
/// Whether RestrictInput has been called for the field.
[[nodiscard]] bool IsRestricted(const QLineEdit& field);

}  // namespace MResources
