#pragma once

#include "jet/Value.h"
#include "tools/TextBuffer.h"

namespace tools {

// Values as the tool's text forms write them: the same in CSV and JSON.

/// Appends a number in the shortest form that reads back as the same number.
void AppendNumber(double value, TextBuffer& out);
void AppendNumber(float value, TextBuffer& out);
void AppendNumber(std::int32_t value, TextBuffer& out);
/// As a decimal number without trailing zeros.
void AppendNumber(const jet::Currency& value, TextBuffer& out);
void AppendNumber(const jet::Decimal& value, TextBuffer& out);

/// ISO 8601 local time: 2026-11-21T10:20:30, with milliseconds when there are any. A date outside
/// the years 0001 to 9999 is written as its number of days.
void AppendDate(const jet::Date& value, TextBuffer& out);

/// {8-4-4-4-12 upper-case hex digits}
void AppendGuid(const jet::Guid& value, TextBuffer& out);

/// Two lower-case hex digits a byte.
void AppendHex(jet::Bytes bytes, TextBuffer& out);

}  // namespace tools
