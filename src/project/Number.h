#pragma once

#include <string>
#include <string_view>

/// Numbers as the fields of a project hold them, and as people write them.
namespace project {

/// The number that a text begins with. Blanks around it do not count.
struct NumberText {
    double number = 0;
    bool any = false;       // there is one
    bool whole = false;     // the text is nothing else
    bool tooLarge = false;  // beyond the range of a double: `number` is the largest
};
/// A text without the blanks at its ends, tabs, line ends and no-break spaces among them.
[[nodiscard]] std::u16string_view WithoutBlanks(std::u16string_view text);

/// Sign, digits, one ".", more digits, an exponent. `comma`: "," counts as the point, too; there is
/// never more than one of both.
[[nodiscard]] NumberText ReadNumber(std::u16string_view text, bool comma = true);

/// As people are shown it: as many of 15 significant digits as the number has, no thousands
/// separators, "E" with a signed exponent below 0.0001 and from 1E+15 on. `point` stands before the
/// fraction. What a person has not changed in it is not to be read back: it may have had more
/// digits.
[[nodiscard]] std::u16string FormatNumber(double number, char16_t point = u'.');
/// As many digits as tell one such number from the next.
[[nodiscard]] std::u16string FormatNumber(float number, char16_t point = u'.');

}  // namespace project
