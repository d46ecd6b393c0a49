#include "tools/JsonWriter.h"

#include "jet/Unicode.h"
#include "tools/JsonText.h"
#include "tools/ValueText.h"

namespace tools {

void JsonWriter::Begin(const std::vector<std::string>& columns) {
    names_ = columns;
    out_.Append('[');
}

void JsonWriter::BeginRow() {
    out_.Append(first_ ? "\n{" : ",\n{");
    first_ = false;
}

void JsonWriter::BeginValue(std::size_t column) {
    if (column > 0) out_.Append(',');
    out_.Append('"');
    AppendJsonEscaped(names_[column], out_);
    out_.Append("\":");
}

void JsonWriter::Put(std::size_t column, const jet::Value& value) {
    BeginValue(column);
    AppendJson(value, out_);
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
        AppendJsonEscaped(jet::ToUtf8(*piece), out_);
    }
}

void JsonWriter::PutMemo(std::size_t column, std::u16string_view text) {
    BeginValue(column);
    AppendJson(jet::ToUtf8(text), out_);
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
