#pragma once

#include <string>
#include <string_view>

// Texts of a workbook have characters that XML does not as _xHHHH_, a UTF-16 unit; a text that
// looks like that has its first character so. Libxlsxwriter sees to the control characters alone.
namespace spreadsheet {

/// UTF-8 as a text of a workbook.
[[nodiscard]] std::string Escaped(std::string_view text);
/// And back.
void Unescape(std::string& text);

}  // namespace spreadsheet
