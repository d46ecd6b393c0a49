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
/// A string of UTF-8, with its quotes.
void AppendJson(std::string_view text, TextBuffer& out);
/// A part of a string, without quotes.
void AppendJsonEscaped(std::string_view text, TextBuffer& out);

}  // namespace tools
