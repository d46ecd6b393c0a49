#pragma once

#include "project/Differences.h"
#include "tools/TextBuffer.h"
#include "words/Words.h"

namespace tools {

// How two projects differ, as text. Rows of tables that are no project's are only counted.

/// A line for each row, with its changed fields on lines of their own below, under their captions
/// and with words for codes.
void AppendDifferences(const project::Differences& differences, const words::Language& language,
                       TextBuffer& out);
/// An array with an object for each row, in a line of its own.
void AppendJson(const project::Differences& differences, TextBuffer& out);

/// Appends a value as people read it, a text in quotes.
void AppendWords(const ado::Value& value, TextBuffer& out);
/// Appends what a row is called: trend 7 "Temperature". Null is left out.
void AppendRow(const std::string& table, const ado::Value& id, const ado::Value& name,
               TextBuffer& out);

}  // namespace tools
