#include "tools/CsvWriter.h"

#include <algorithm>

#include "csv/Quoted.h"
#include "jet/Unicode.h"
#include "tools/ValueText.h"

namespace tools {
namespace {

constexpr char kSeparator = ',';

constexpr bool IsSpecial(char c) {
    return c == kSeparator || csv::IsSpecial(c);
}

/// Appends every kind of value but text and long values.
struct Appender {
    TextBuffer& out;

    void operator()(jet::Null) const {}
    void operator()(bool value) const { out.Append(value ? "true" : "false"); }
    void operator()(std::int32_t value) const { AppendNumber(value, out); }
    void operator()(float value) const { AppendNumber(value, out); }
    void operator()(double value) const { AppendNumber(value, out); }
    void operator()(const jet::Currency& value) const { AppendNumber(value, out); }
    void operator()(const jet::Decimal& value) const { AppendNumber(value, out); }
    void operator()(const jet::Date& value) const { AppendDate(value, out); }
    void operator()(const jet::Guid& value) const { AppendGuid(value, out); }
    void operator()(const jet::Binary& value) const {
        if (value.empty()) out.Append(csv::kEmpty);
        AppendHex(value, out);
    }
    void operator()(const std::u16string&) const {}
    void operator()(const jet::LongValue&) const {}
};

}  // namespace

void CsvWriter::Begin(const std::vector<std::string>& columns) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        Separate(i);
        csv::AppendText(columns[i], kSeparator, out_);
    }
    EndRow();
}

void CsvWriter::Put(std::size_t column, const jet::Value& value) {
    Separate(column);
    // The kinds that most columns have, first.
    if (const auto* text = std::get_if<std::u16string>(&value)) {
        PutText(*text);
    } else if (const auto* number = std::get_if<std::int32_t>(&value)) {
        AppendNumber(*number, out_);
    } else if (!std::holds_alternative<jet::Null>(value)) {
        std::visit(Appender{out_}, value);
    }
}

void CsvWriter::PutText(std::u16string_view text) {
    // Nearly all texts are of one or two bytes a character and need no quotes: they go straight to
    // the output. A text in a row is shorter than a page, so there is always room for it.
    char* end = out_.Reserve(2 * text.size());
    std::size_t plain = 0;
    for (; plain < text.size() && text[plain] < 0x800; ++plain) {
        const char16_t unit = text[plain];
        if (unit >= 0x80) {
            *end++ = static_cast<char>(0xC0 | unit >> 6);
            *end++ = static_cast<char>(0x80 | (unit & 0x3F));
        } else if (IsSpecial(static_cast<char>(unit))) {
            break;
        } else {
            *end++ = static_cast<char>(unit);
        }
    }
    if (plain == text.size() && plain > 0) return out_.Commit(end);
    utf8_.clear();
    jet::AppendUtf8(text, utf8_);
    csv::AppendText(utf8_, kSeparator, out_);
}

jet::Status CsvWriter::PutMemo(std::size_t column, jet::MemoReader& text) {
    Separate(column);
    out_.Append('"');
    for (;;) {
        jet::Result<std::u16string_view> piece = text.Next();
        if (!piece.IsOk() || piece->empty()) {
            out_.Append('"');
            return piece.IsOk() ? jet::Status() : piece.GetStatus();
        }
        utf8_.clear();
        jet::AppendUtf8(*piece, utf8_);
        csv::AppendDoublingQuotes(utf8_, out_);
    }
}

void CsvWriter::PutMemo(std::size_t column, std::u16string_view text) {
    Separate(column);
    out_.Append('"');
    csv::AppendDoublingQuotes(jet::ToUtf8(text), out_);
    out_.Append('"');
}

jet::Status CsvWriter::PutOle(std::size_t column, jet::LongValueReader& bytes) {
    Separate(column);
    for (bool isEmpty = true;; isEmpty = false) {
        jet::Result<jet::Bytes> piece = bytes.Next();
        if (!piece.IsOk()) return piece.GetStatus();
        if (piece->empty()) {
            if (isEmpty) out_.Append(csv::kEmpty);
            return {};
        }
        AppendHex(*piece, out_);
    }
}

}  // namespace tools
