#pragma once

#include "tools/RowWriter.h"

namespace tools {

/// CSV after RFC 4180 with a heading row: lines end with CR LF. Null is nothing, an empty text
/// or binary is ""; a text is put in quotes when it is empty or holds a comma, a quote or a line
/// break, a memo always.
class CsvWriter final : public RowWriter {
public:
    explicit CsvWriter(TextBuffer& out) : out_(out) {}

    void Begin(const std::vector<std::string>& columns) override;
    void BeginRow() override {}
    void Put(std::size_t column, const jet::Value& value) override;
    jet::Status PutMemo(std::size_t column, jet::MemoReader& text) override;
    jet::Status PutOle(std::size_t column, jet::LongValueReader& bytes) override;
    void PutMemo(std::size_t column, std::u16string_view text) override;
    void PutDamaged(std::size_t column) override { Separate(column); }
    void EndRow() override { out_.Append("\r\n"); }
    void End() override {}

private:
    void Separate(std::size_t column) {
        if (column > 0) out_.Append(',');
    }

    void PutText(std::u16string_view text);

    TextBuffer& out_;
    std::string utf8_;  // kept for its memory
};

}  // namespace tools
