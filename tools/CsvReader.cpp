#include "tools/CsvReader.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace tools {
namespace {

std::size_t CountLines(std::string_view text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

std::string CsvReader::PlaceOf(std::size_t line) const {
    return in_.Name() + ": Line " + std::to_string(line);
}

void CsvReader::Fail(std::size_t line, const std::string& what) {
    error_ = PlaceOf(line) + ": " + what;
}

/// False at the end, and after a failure of the file.
bool CsvReader::HasMore() {
    if (at_ != end_) return true;
    if (!error_.empty()) return false;
    const jet::Result<std::string_view> block = in_.Next();
    if (!block.IsOk()) {
        error_ = block.GetStatus().Text();
        return false;
    }
    at_ = block->data();
    end_ = at_ + block->size();
    return at_ != end_;
}

/// False when there is a mark that belies the encoding.
bool CsvReader::PassMark() {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    hasBegun_ = true;
    if (!HasMore() || !std::string_view(at_, end_).starts_with(kMark)) return true;
    at_ += kMark.size();
    if (encoding_ == Encoding::Utf8) return true;
    Fail(1, "the file begins with the mark of UTF-8; leave out --encoding");
    return false;
}

/// The opening quote has been read.
bool CsvReader::ReadQuoted(std::string& text) {
    const std::size_t begin = nextLine_;
    while (HasMore()) {
        const char* quote = std::find(at_, end_, '"');
        text.append(at_, quote);
        nextLine_ += CountLines({at_, quote});
        at_ = quote;
        if (at_ == end_) continue;
        ++at_;
        if (!HasMore() || *at_ != '"') return true;
        text += *at_++;
    }
    if (error_.empty()) Fail(begin, "a closing quote is missing");
    return false;
}

void CsvReader::ReadPlain(std::string& text) {
    while (HasMore()) {
        const char* stop =
            std::find_if(at_, end_, [](char c) { return c == ',' || c == '\n' || c == '\r'; });
        text.append(at_, stop);
        at_ = stop;
        if (at_ == end_) continue;
        if (*at_ != '\r') return;
        ++at_;
        if (HasMore() && *at_ == '\n') return;
        text += '\r';
    }
}

CsvReader::End CsvReader::ReadEnd() {
    const bool isReturn = HasMore() && *at_ == '\r';
    if (isReturn) ++at_;
    if (!HasMore()) return error_.empty() ? End::Record : End::Failure;
    const char c = *at_++;
    if (c == '\n') {
        ++nextLine_;
        return End::Record;
    }
    if (c == ',' && !isReturn) return End::Field;
    Fail(nextLine_, "something stands between a closing quote and the next comma");
    return End::Failure;
}

CsvReader::End CsvReader::ReadField(CsvField& field) {
    std::string text = field ? std::move(*field) : std::string();
    text.clear();
    field.reset();
    if (HasMore() && *at_ == '"') {
        ++at_;
        if (!ReadQuoted(text)) return End::Failure;
        field = std::move(text);
    } else {
        ReadPlain(text);
        if (!text.empty()) field = std::move(text);
    }
    return ReadEnd();
}

/// Makes UTF-8 of a field that began on `line`; `column` is counted from 0.
bool CsvReader::Decode(std::string& text, std::size_t column, std::size_t line) {
    if (const auto bad = FirstBadByte(text, encoding_)) {
        const std::string_view before = std::string_view(text).substr(0, *bad);
        std::array<char, 3> byte{};
        std::snprintf(byte.data(), byte.size(), "%02X",
                      static_cast<unsigned>(static_cast<unsigned char>(text[*bad])));
        std::string what = "column " + std::to_string(column + 1);
        if (column < names_.size()) what += " (\"" + names_[column] + "\")";
        what += ", character " + std::to_string(CountCharacters(before, encoding_) + 1) +
                ": the byte " + byte.data();
        what += encoding_ == Encoding::Utf8
                    ? " is no UTF-8; --encoding windows-1252 reads what older spreadsheets write"
                    : " is no character of windows-1252";
        Fail(line + CountLines(before), what);
        return false;
    }
    ToUtf8(text, encoding_);
    return true;
}

bool CsvReader::Next(std::vector<CsvField>& record) {
    std::size_t count = 0;
    line_ = nextLine_;
    if (!hasBegun_ && !PassMark()) return false;
    if (!error_.empty() || !HasMore()) return false;
    for (End end = End::Field; end == End::Field; ++count) {
        if (count == record.size()) record.emplace_back();
        const std::size_t line = nextLine_;
        end = ReadField(record[count]);
        if (end == End::Failure) return false;
        if (record[count] && !Decode(*record[count], count, line)) return false;
    }
    record.resize(count);
    if (names_.empty()) {
        for (const CsvField& name : record) names_.push_back(name.value_or(""));
    }
    return true;
}

}  // namespace tools
