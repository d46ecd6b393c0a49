#pragma once

#include <vector>

#include "tools/RowWriter.h"

namespace tools {

/// A JSON array with one object a row, a line each. Dates, GUIDs and binaries are strings, money
/// and decimals numbers; a number that JSON cannot express (infinite, not a number) is a string.
class JsonWriter final : public RowWriter {
public:
    explicit JsonWriter(TextBuffer& out) : out_(out) {}

    void Begin(const std::vector<std::string>& columns) override;
    void BeginRow() override;
    void Put(std::size_t column, const jet::Value& value) override;
    jet::Status PutMemo(std::size_t column, jet::MemoReader& text) override;
    jet::Status PutOle(std::size_t column, jet::LongValueReader& bytes) override;
    void PutMemo(std::size_t column, std::u16string_view text) override;
    void PutDamaged(std::size_t column) override;
    void EndRow() override { out_.Append('}'); }
    void End() override { out_.Append(first_ ? "]\n" : "\n]\n"); }

private:
    void BeginValue(std::size_t column);

    TextBuffer& out_;
    std::vector<std::string> names_;
    bool first_ = true;
};

}  // namespace tools
