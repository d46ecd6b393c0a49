#include "tools/CsvWriter.h"

#include "jet/Unicode.h"
#include "tools/ValueText.h"

namespace tools {
namespace {

void AppendDoublingQuotes(std::string_view text, std::string& out) {
    for (const char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
}

void AppendText(std::string_view text, std::string& out) {
    if (!text.empty() && text.find_first_of(",\"\r\n") == std::string_view::npos) {
        out += text;
        return;
    }
    out += '"';
    AppendDoublingQuotes(text, out);
    out += '"';
}

/// Appends every kind of value but text and long values.
struct Appender {
    std::string& out;

    void operator()(jet::Null) const {}
    void operator()(bool value) const { out += value ? "true" : "false"; }
    void operator()(std::int32_t value) const { AppendNumber(value, out); }
    void operator()(float value) const { AppendNumber(value, out); }
    void operator()(double value) const { AppendNumber(value, out); }
    void operator()(const jet::Currency& value) const { AppendNumber(value, out); }
    void operator()(const jet::Decimal& value) const { AppendNumber(value, out); }
    void operator()(const jet::Date& value) const { AppendDate(value, out); }
    void operator()(const jet::Guid& value) const { AppendGuid(value, out); }
    void operator()(const jet::Binary& value) const { AppendHex(value, out); }
    void operator()(const std::u16string&) const {}
    void operator()(const jet::LongValue&) const {}
};

}  // namespace

void CsvWriter::Begin(const jet::TableDef& def) {
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        Separate(i);
        AppendText(def.columns[i].name, out_.Buffer());
    }
    EndRow();
}

void CsvWriter::Put(std::size_t column, const jet::Value& value) {
    Separate(column);
    if (const auto* text = std::get_if<std::u16string>(&value)) {
        utf8_.clear();
        jet::AppendUtf8(*text, utf8_);
        AppendText(utf8_, out_.Buffer());
    } else {
        std::visit(Appender{out_.Buffer()}, value);
    }
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
        AppendDoublingQuotes(utf8_, out_.Buffer());
        out_.MayFlush();
    }
}

jet::Status CsvWriter::PutOle(std::size_t column, jet::LongValueReader& bytes) {
    Separate(column);
    for (;;) {
        jet::Result<jet::Bytes> piece = bytes.Next();
        if (!piece.IsOk()) return piece.GetStatus();
        if (piece->empty()) return {};
        AppendHex(*piece, out_.Buffer());
        out_.MayFlush();
    }
}

}  // namespace tools
