#include "csv/Reader.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace csv {
namespace {

std::size_t CountLines(std::string_view text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

std::string Reader::PlaceOf(std::size_t line) const {
    return in_.Name() + ": Line " + std::to_string(line);
}

void Reader::Fail(std::size_t line, const std::string& what) {
    error_ = PlaceOf(line) + ": " + what;
}

/// False at the end, and after a failure of the file.
bool Reader::HasMore() {
    if (at_ != end_) return true;
    if (!error_.empty()) return false;
    const std::string_view block = in_.Next();
    error_ = in_.Error();
    at_ = block.data();
    end_ = at_ + block.size();
    return at_ != end_;
}

/// False when there is a mark that belies the encoding.
bool Reader::PassMark() {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    hasBegun_ = true;
    const bool hasMark = HasMore() && std::string_view(at_, end_).starts_with(kMark);
    if (hasMark) at_ += kMark.size();
    if (separator_ == 0) FindSeparator();
    if (!hasMark || encoding_ == Encoding::Utf8) return true;
    Fail(1, "the file begins with the mark of UTF-8; leave out --encoding");
    return false;
}

/// The first line is taken to lie within the first block.
void Reader::FindSeparator() {
    std::array<std::size_t, kSeparators.size()> counts{};
    bool isQuoted = false;
    for (const char* at = at_; at != end_ && (isQuoted || *at != '\n'); ++at) {
        if (*at == '"') isQuoted = !isQuoted;
        const std::size_t which = kSeparators.find(*at);
        if (!isQuoted && which != std::string_view::npos) ++counts.at(which);
    }
    const auto most = std::max_element(counts.begin(), counts.end()) - counts.begin();
    separator_ = kSeparators[static_cast<std::size_t>(most)];
}

/// The opening quote has been read.
bool Reader::ReadQuoted(std::string& text) {
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

void Reader::ReadPlain(std::string& text) {
    while (HasMore()) {
        const char* stop = std::find_if(
            at_, end_, [this](char c) { return c == separator_ || c == '\n' || c == '\r'; });
        text.append(at_, stop);
        at_ = stop;
        if (at_ == end_) continue;
        if (*at_ != '\r') return;
        ++at_;
        if (HasMore() && *at_ == '\n') return;
        text += '\r';
    }
}

Reader::End Reader::ReadEnd() {
    const bool isReturn = HasMore() && *at_ == '\r';
    if (isReturn) ++at_;
    if (!HasMore()) return error_.empty() ? End::Record : End::Failure;
    const char c = *at_++;
    if (c == '\n') {
        ++nextLine_;
        return End::Record;
    }
    if (c == separator_ && !isReturn) return End::Value;
    Fail(nextLine_, "something stands between a closing quote and the next separator");
    return End::Failure;
}

Reader::End Reader::ReadField(Field& field) {
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
bool Reader::Decode(std::string& text, std::size_t column, std::size_t line) {
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
        bad_ = {line + CountLines(before), column + 1, CountCharacters(before, encoding_) + 1};
        Fail(bad_->line, what);
        return false;
    }
    ToUtf8(text, encoding_);
    return true;
}

bool Reader::Next(std::vector<Field>& record) {
    std::size_t count = 0;
    line_ = nextLine_;
    if (!hasBegun_ && !PassMark()) return false;
    if (!error_.empty() || !HasMore()) return false;
    for (End end = End::Value; end == End::Value; ++count) {
        if (count == record.size()) record.emplace_back();
        const std::size_t line = nextLine_;
        end = ReadField(record[count]);
        if (end == End::Failure) return false;
        if (record[count] && !Decode(*record[count], count, line)) return false;
    }
    record.resize(count);
    if (names_.empty()) {
        for (const Field& name : record) names_.push_back(name.value_or(""));
    }
    return true;
}

}  // namespace csv
