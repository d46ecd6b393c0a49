#pragma once

#include <map>
#include <string>

namespace spreadsheet {

/// Parts of a zip archive by their names.
using Parts = std::map<std::string, std::string>;

// Both throw std::runtime_error.
[[nodiscard]] std::string Zipped(const Parts& parts);
[[nodiscard]] Parts Unzipped(const std::string& bytes);

/// The parts of a workbook with one sheet "S" that holds these rows (XML).
[[nodiscard]] Parts WorkbookWith(const std::string& rows);

}  // namespace spreadsheet
