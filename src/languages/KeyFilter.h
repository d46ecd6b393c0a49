#pragma once

class QComboBox;
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

/// Lets only what KeyFilter passes get into `field` by the user's hand: typed, pasted by key, menu
/// or middle click, dropped, or sent by an input method. Of a longer text the passing characters
/// come in. What stands in the field already and what the program sets is left alone, whatever it
/// is. Control characters never come in; they are keys, not text.
///
/// May be called again with another mode. The restriction ends with the field.
void RestrictInput(QLineEdit& field, int mode);
/// The same for the text field of a combo box. REQUIRES: `field` is editable, and stays so.
void RestrictInput(QComboBox& field, int mode);

}  // namespace MResources
