#pragma once

#include "ado/Connection.h"
#include "tools/TextBuffer.h"

namespace tools {

/// Writes a project's own tables as JSON that is the same for the same content, however the file
/// stores it: rows in the order of their IDs, columns in that in which new projects have them,
/// those of languages by their number and others by name behind them, a field a line. For version
/// control. Throws ado::AdoError.
void WriteProjectJson(ado::Connection& connection, TextBuffer& out);

}  // namespace tools
