#pragma once

#include <istream>
#include <optional>
#include <string>
#include <vector>

namespace tools {

/// One field of a CSV file: nothing at all is Null, "" is an empty text.
using CsvField = std::optional<std::string>;

/// Reads CSV after RFC 4180, record by record. Lines may end with LF alone. A UTF-8 mark at the
/// beginning is passed over.
class CsvReader {
public:
    /// `in` is borrowed.
    explicit CsvReader(std::istream& in) : in_(in) {}

    /// False at the end, and after an error.
    [[nodiscard]] bool Next(std::vector<CsvField>& record);
    /// The line on which the last record began, counted from 1.
    [[nodiscard]] std::size_t Line() const { return line_; }
    /// What is wrong with the last record; empty when nothing is.
    [[nodiscard]] const std::string& Error() const { return error_; }

private:
    [[nodiscard]] bool ReadQuoted(std::string& text);

    std::istream& in_;
    std::size_t line_ = 0;
    std::size_t nextLine_ = 1;
    std::string error_;
};

}  // namespace tools
