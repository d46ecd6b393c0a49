#include "tools/JsonWriter.h"

#include <cmath>

#include "jet/Unicode.h"
#include "tools/ValueText.h"

namespace tools {
namespace {

void AppendEscaped(std::string_view text, TextBuffer& out) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out.Append('\\');
            out.Append(c);
        } else if (c == '\n') {
            out.Append("\\n");
        } else if (byte < 0x20) {
            out.Append("\\u00");
            out.Append(kDigits[byte >> 4]);
            out.Append(kDigits[byte & 15]);
        } else {
            out.Append(c);
        }
    }
}

struct Appender {
    TextBuffer& out;

    void operator()(jet::Null) const { out.Append("null"); }
    void operator()(bool value) const { out.Append(value ? "true" : "false"); }
    void operator()(std::int32_t value) const { AppendNumber(value, out); }
    void operator()(float value) const { Real(value); }
    void operator()(double value) const { Real(value); }
    void operator()(const jet::Currency& value) const { AppendNumber(value, out); }
    void operator()(const jet::Decimal& value) const { AppendNumber(value, out); }
    void operator()(const jet::Date& value) const {
        Quoted([&] { AppendDate(value, out); });
    }
    void operator()(const jet::Guid& value) const {
        Quoted([&] { AppendGuid(value, out); });
    }
    void operator()(const jet::Binary& value) const {
        Quoted([&] { AppendHex(value, out); });
    }
    void operator()(const std::u16string& value) const {
        Quoted([&] { AppendEscaped(jet::ToUtf8(value), out); });
    }
    void operator()(const jet::LongValue&) const {}

private:
    template <typename Append>
    void Quoted(Append append) const {
        out.Append('"');
        append();
        out.Append('"');
    }
    template <typename T>
    void Real(T value) const {
        if (std::isfinite(value)) return AppendNumber(value, out);
        Quoted([&] { AppendNumber(value, out); });
    }
};

}  // namespace

void JsonWriter::Begin(const jet::TableDef& def) {
    for (const jet::Column& column : def.columns) names_.push_back(column.name);
    out_.Append('[');
}

void JsonWriter::BeginRow() {
    out_.Append(first_ ? "\n{" : ",\n{");
    first_ = false;
}

void JsonWriter::BeginValue(std::size_t column) {
    if (column > 0) out_.Append(',');
    out_.Append('"');
    AppendEscaped(names_[column], out_);
    out_.Append("\":");
}

void JsonWriter::Put(std::size_t column, const jet::Value& value) {
    BeginValue(column);
    std::visit(Appender{out_}, value);
}

void JsonWriter::PutDamaged(std::size_t column) {
    BeginValue(column);
    out_.Append("null");
}

jet::Status JsonWriter::PutMemo(std::size_t column, jet::MemoReader& text) {
    BeginValue(column);
    out_.Append('"');
    for (;;) {
        jet::Result<std::u16string_view> piece = text.Next();
        if (!piece.IsOk() || piece->empty()) {
            out_.Append('"');
            return piece.IsOk() ? jet::Status() : piece.GetStatus();
        }
        AppendEscaped(jet::ToUtf8(*piece), out_);
    }
}

jet::Status JsonWriter::PutOle(std::size_t column, jet::LongValueReader& bytes) {
    BeginValue(column);
    out_.Append('"');
    for (;;) {
        jet::Result<jet::Bytes> piece = bytes.Next();
        if (!piece.IsOk() || piece->empty()) {
            out_.Append('"');
            return piece.IsOk() ? jet::Status() : piece.GetStatus();
        }
        AppendHex(*piece, out_);
    }
}

}  // namespace tools
