#pragma once

#include <optional>
#include <string>
#include <vector>

#include "csv/Encoding.h"
#include "csv/Source.h"

namespace csv {

/// One field of a CSV file, as UTF-8: nothing at all is Null, "" is an empty text.
using Field = std::optional<std::string>;

/// How a file is written.
struct Form {
    Encoding encoding = Encoding::Utf8;
    char separator = ',';  // 0: the one of kSeparators that the first line has most of
};
inline constexpr std::string_view kSeparators = ",;\t";

/// Where a byte stands that is no character of the encoding; all counted from 1.
struct BadByte {
    std::size_t line = 0;
    std::size_t column = 0;
    std::size_t character = 0;  // of the field
};

/// Reads CSV after RFC 4180, record by record; the first is the heading. Lines may end with LF
/// alone. A mark of UTF-8 at the beginning is passed over.
class Reader {
public:
    /// `in` is borrowed.
    Reader(Source& in, Form form) : in_(in), encoding_(form.encoding), separator_(form.separator) {}

    /// False at the end, and after an error. The strings in `record` are used again.
    [[nodiscard]] bool Next(std::vector<Field>& record);
    /// Where the last record began, for messages: the file, and the line counted from 1.
    [[nodiscard]] std::string Place() const { return PlaceOf(line_); }
    [[nodiscard]] std::size_t Line() const { return line_; }
    /// 0 before the first record where it is to be found out.
    [[nodiscard]] char Separator() const { return separator_; }
    /// What is wrong, and where; empty when nothing is.
    [[nodiscard]] const std::string& Error() const { return error_; }
    /// Of an error that is about the encoding.
    [[nodiscard]] const std::optional<BadByte>& Bad() const { return bad_; }

private:
    enum class End { Value, Record, Failure };

    [[nodiscard]] bool HasMore();
    [[nodiscard]] bool PassMark();
    void FindSeparator();
    [[nodiscard]] End ReadField(Field& field);
    [[nodiscard]] bool ReadQuoted(std::string& text);
    void ReadPlain(std::string& text);
    [[nodiscard]] End ReadEnd();
    [[nodiscard]] bool Decode(std::string& text, std::size_t column, std::size_t line);
    [[nodiscard]] std::string PlaceOf(std::size_t line) const;
    void Fail(std::size_t line, const std::string& what);

    Source& in_;
    Encoding encoding_;
    char separator_;
    const char* at_ = nullptr;  // the bytes that have been read and not been used
    const char* end_ = nullptr;
    bool hasBegun_ = false;
    std::vector<std::string> names_;  // of the columns
    std::size_t line_ = 0;
    std::size_t nextLine_ = 1;
    std::string error_;
    std::optional<BadByte> bad_;
};

}  // namespace csv
