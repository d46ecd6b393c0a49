#pragma once

#include <memory>
#include <span>
#include <string>

#include "jet/IndexCursor.h"
#include "jet/LongValueReader.h"
#include "jet/ReadScope.h"
#include "jet/Row.h"
#include "jet/RowCursor.h"
#include "jet/Status.h"
#include "jet/TableDef.h"
#include "jet/Value.h"

namespace jet {

/// How messages name a table.
[[nodiscard]] std::string TableText(const std::string& name);

/// An open table. Made by Database::OpenTable; the database must outlive it. Not thread-safe.
/// Failures name the table, the page and the row.
class Table {
public:
    struct Rep;  // the library's own
    explicit Table(std::unique_ptr<Rep> rep);
    ~Table();
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    [[nodiscard]] const std::string& Name() const;
    /// As of the last Refresh().
    [[nodiscard]] const TableDef& Definition() const;

    /// Reads the definition again when another program has changed the file. Fetch, Scan and Seek
    /// do this first. Conflict when columns or indexes are no longer what they were.
    Status Refresh();

    /// While it is there, several operations see one committed state; see ReadScope.
    [[nodiscard]] ReadScope Hold(ReadScope::Length length = ReadScope::Length::Short) const;

    /// NotFound when there is no row at this address (any more).
    [[nodiscard]] Result<Row> Fetch(RowId id);
    [[nodiscard]] Result<RowCursor> Scan();

    /// True when this engine can make keys for the index. Jet 3 indexes cannot be used.
    [[nodiscard]] bool CanSeek(std::size_t realIndex) const;
    /// Key bytes for values of the first columns of an index, in its order. An entry whose key
    /// starts with them is equal in these columns. REQUIRES: CanSeek(realIndex).
    [[nodiscard]] Result<std::string> MakeKey(std::size_t realIndex,
                                              std::span<const Value> values) const;
    /// Stands in front of the first entry that is not below `from` (key bytes; empty = the first
    /// entry). REQUIRES: CanSeek(realIndex).
    [[nodiscard]] Result<IndexCursor> Seek(std::size_t realIndex, const std::string& from);
    /// Moves a cursor that Seek has made, for many look-ups in one index.
    Status SeekAgain(IndexCursor& cursor, const std::string& from);

    // A long value's place is only good as long as nobody changes its row: fetch the row again
    // before reading a value from it after a while.
    [[nodiscard]] LongValueReader OpenLongValue(const LongValue& value) const;
    [[nodiscard]] MemoReader OpenMemo(const LongValue& value) const;
    /// The whole text of a memo.
    [[nodiscard]] Result<std::u16string> ReadMemo(const LongValue& value) const;
    /// The whole bytes of an OLE value.
    [[nodiscard]] Result<Binary> ReadBinary(const LongValue& value) const;

private:
    friend struct Inside;
    std::unique_ptr<Rep> rep_;
};

}  // namespace jet
