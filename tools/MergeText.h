#pragma once

#include "project/Merge.h"
#include "tools/TextBuffer.h"

namespace tools {

// What a merge has not been able to do by itself, and what it has given other IDs, as text.

/// A line for each of them, with the values of a field on lines of their own below.
void AppendMerged(const project::Merged& merged, TextBuffer& out);
/// An array with an object for each, in a line of its own.
void AppendJson(const project::Merged& merged, TextBuffer& out);

}  // namespace tools
