#pragma once

#include <string>

#include "jet/Value.h"

namespace tools {

// Values as the tool's text forms write them: the same in CSV and JSON.

/// Appends a number in the shortest form that reads back as the same number.
void AppendNumber(double value, std::string& out);
void AppendNumber(float value, std::string& out);
void AppendNumber(std::int32_t value, std::string& out);
/// As a decimal number without trailing zeros.
void AppendNumber(const jet::Currency& value, std::string& out);
void AppendNumber(const jet::Decimal& value, std::string& out);

/// ISO 8601 local time: 2026-11-21T10:20:30, with milliseconds when there are any. A date outside
/// the years 0001 to 9999 is written as its number of days.
void AppendDate(const jet::Date& value, std::string& out);

/// {8-4-4-4-12 upper-case hex digits}
void AppendGuid(const jet::Guid& value, std::string& out);

/// Two lower-case hex digits a byte.
void AppendHex(jet::Bytes bytes, std::string& out);

}  // namespace tools
