#pragma once

#include <string>
#include <vector>

#include "jet/LongValueReader.h"
#include "jet/Status.h"
#include "jet/Value.h"
#include "tools/TextBuffer.h"

namespace tools {

/// Writes the rows of one table in some form. Values come column by column in the table's order;
/// a memo or OLE value comes as a reader, so that it is never whole in memory.
class RowWriter {
public:
    virtual ~RowWriter() = default;

    /// The names of the columns, UTF-8.
    virtual void Begin(const std::vector<std::string>& columns) = 0;
    virtual void BeginRow() = 0;
    virtual void Put(std::size_t column, const jet::Value& value) = 0;
    // A memo or OLE value that is not Null. They fail when the value cannot be read to its end;
    // what has been written of it then stays, and the row goes on.
    virtual jet::Status PutMemo(std::size_t column, jet::MemoReader& text) = 0;
    virtual jet::Status PutOle(std::size_t column, jet::LongValueReader& bytes) = 0;
    /// A memo that is in memory.
    virtual void PutMemo(std::size_t column, std::u16string_view text) = 0;
    /// For a value that cannot be read.
    virtual void PutDamaged(std::size_t column) = 0;
    virtual void EndRow() = 0;
    virtual void End() = 0;
};

}  // namespace tools
