#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/Encoding.h"
#include "tools/InputFile.h"

namespace tools {

/// One field of a CSV file, as UTF-8: nothing at all is Null, "" is an empty text.
using CsvField = std::optional<std::string>;

/// Reads CSV after RFC 4180, record by record; the first is the heading. Lines may end with LF
/// alone. A mark of UTF-8 at the beginning is passed over.
class CsvReader {
public:
    /// `in` is borrowed.
    CsvReader(InputFile& in, Encoding encoding) : in_(in), encoding_(encoding) {}

    /// False at the end, and after an error. The strings in `record` are used again.
    [[nodiscard]] bool Next(std::vector<CsvField>& record);
    /// Where the last record began, for messages: the file, and the line counted from 1.
    [[nodiscard]] std::string Place() const { return PlaceOf(line_); }
    /// What is wrong, and where; empty when nothing is.
    [[nodiscard]] const std::string& Error() const { return error_; }

private:
    enum class End { Field, Record, Failure };

    [[nodiscard]] bool HasMore();
    [[nodiscard]] bool PassMark();
    [[nodiscard]] End ReadField(CsvField& field);
    [[nodiscard]] bool ReadQuoted(std::string& text);
    void ReadPlain(std::string& text);
    [[nodiscard]] End ReadEnd();
    [[nodiscard]] bool Decode(std::string& text, std::size_t column, std::size_t line);
    [[nodiscard]] std::string PlaceOf(std::size_t line) const;
    void Fail(std::size_t line, const std::string& what);

    InputFile& in_;
    Encoding encoding_;
    const char* at_ = nullptr;  // the bytes that have been read and not been used
    const char* end_ = nullptr;
    bool hasBegun_ = false;
    std::vector<std::string> names_;  // of the columns
    std::size_t line_ = 0;
    std::size_t nextLine_ = 1;
    std::string error_;
};

}  // namespace tools
