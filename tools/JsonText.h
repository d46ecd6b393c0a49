#pragma once

#include <string_view>

#include "ado/Value.h"
#include "jet/Value.h"
#include "tools/TextBuffer.h"

namespace tools {

// Values as JSON has them. Dates, GUIDs and binaries are strings, money and decimals numbers; a
// number that JSON cannot express (infinite, not a number) is a string.

/// REQUIRES: no memo or OLE value, which is written piece by piece.
void AppendJson(const jet::Value& value, TextBuffer& out);
void AppendJson(const ado::Value& value, TextBuffer& out);
/// The same value as the file engine has it.
[[nodiscard]] jet::Value StoredOf(const ado::Value& value);
/// A string of UTF-8, with its quotes.
void AppendJson(std::string_view text, TextBuffer& out);
/// A part of a string, without quotes.
void AppendJsonEscaped(std::string_view text, TextBuffer& out);

/// The objects of an array, a line each.
class JsonLines {
public:
    explicit JsonLines(TextBuffer& out) : out_(out) { out_.Append('['); }
    ~JsonLines() { out_.Append(isFirst_ ? "]\n" : "\n]\n"); }
    JsonLines(const JsonLines&) = delete;
    JsonLines& operator=(const JsonLines&) = delete;

    /// Begins an object; the caller ends it.
    void Begin(std::string_view table, std::string_view key, std::string_view value) {
        out_.Append(isFirst_ ? "\n{\"table\":" : ",\n{\"table\":");
        isFirst_ = false;
        AppendJson(table, out_);
        Put(key, value);
    }
    void Key(std::string_view key) {
        out_.Append(',');
        AppendJson(key, out_);
        out_.Append(':');
    }
    template <typename T>
    void Put(std::string_view key, const T& value) {
        Key(key);
        AppendJson(value, out_);
    }

private:
    TextBuffer& out_;
    bool isFirst_ = true;
};

}  // namespace tools
