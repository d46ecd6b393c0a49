#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "jet/IndexCursor.h"
#include "jet/LongValueReader.h"
#include "jet/page/DataPage.h"
#include "jet/page/UsageMap.h"
#include "jet/row/CodePage.h"
#include "jet/row/RowView.h"
#include "jet/Status.h"
#include "jet/TableDef.h"
#include "jet/Value.h"

namespace jet {

struct TableRules;

/// How messages name a table.
[[nodiscard]] std::string TableText(const std::string& name);

/// One row as it was when it was read. Keeps its page and its table's definition alive; whatever
/// happens to the file or the table later, it does not change.
class Row {
public:
    Row() = default;

    /// Where the row is known to be: its address in every index, also when it has moved.
    [[nodiscard]] RowId Id() const { return id_; }
    /// The value of a column by its position in TableDef::columns. Memo and OLE values come as
    /// LongValue. Corrupt when the value does not fit the row.
    [[nodiscard]] Result<Value> Get(std::size_t column) const;
    /// The same into `value`, whose memory is used again: for loops over many rows. BadArgument
    /// when there is no such column.
    Status Read(std::size_t column, Value& value) const;

    // The row as it is stored, for code that copies it. Valid as long as the row.
    [[nodiscard]] Bytes Stored() const { return view_.Stored(); }
    /// The part of it that holds a value; empty for Null and for Booleans.
    [[nodiscard]] Result<Bytes> StoredValue(std::size_t column) const;

private:
    friend class Table;
    friend class TableWriter;
    friend class RowCursor;
    RowId id_;
    std::shared_ptr<const TableDef> def_;
    const CodePage* codePage_ = nullptr;
    DataPage page_;
    RowView view_;
};

class RowObserver;

/// What the parts of one open file share. Lives in Database.
struct FileContext {
    PageCache& cache;
    Format format;
    const CodePage* codePage;         // null for Jet 4
    RowObserver* observer = nullptr;  // of changes; null: nobody listens
};

/// Walks the rows of a table in the order in which they are stored. The database must outlive it.
class RowCursor {
public:
    /// Steps to the next row; false at the end. After a failure, which concerns one row or one
    /// page, the next call goes on behind the damaged place.
    [[nodiscard]] Result<bool> Next();
    /// REQUIRES: Next() has returned true.
    [[nodiscard]] const Row& Current() const { return row_; }

private:
    friend class Table;
    [[nodiscard]] Result<bool> NextPage();
    Status ReadAhead();
    Status Reopen();
    [[nodiscard]] Result<Bytes> MovedBytes(int number);

    const FileContext* file_ = nullptr;
    std::string tableName_;
    UsageMap pages_;
    std::uint64_t generation_ = 0;  // of the page cache when pages_ was read; 0: not yet
    PageNo nextPage_{};
    std::vector<Result<DataPage>> ahead_;  // pages that have been read and not been used yet
    std::size_t nextAhead_ = 0;
    DataPage page_;
    int nextSlot_ = 0;
    bool atEnd_ = false;  // there are no pages behind those read ahead
    Row row_;
};

/// An open table. Made by Database::OpenTable; the database must outlive it. Not thread-safe.
/// Failures name the table, the page and the row.
class Table {
public:
    /// Of a table that is not for users nothing is changed, whatever its definition says of it.
    [[nodiscard]] static Result<std::unique_ptr<Table>> Open(const FileContext& file, PageNo page,
                                                             std::string name,
                                                             bool isForUsers = true);

    /// The same with a definition that has been read already, while the file's state is held.
    [[nodiscard]] static std::unique_ptr<Table> OpenKnown(const FileContext& file,
                                                          const std::string& name,
                                                          std::shared_ptr<const TableDef> def,
                                                          bool isForUsers);

    [[nodiscard]] const std::string& Name() const { return name_; }
    /// As of the last Refresh().
    [[nodiscard]] const TableDef& Definition() const { return *def_; }
    [[nodiscard]] const std::shared_ptr<const TableDef>& SharedDefinition() const { return def_; }

    /// Reads the definition again when another program has changed the file. Fetch, Scan and Seek
    /// do this first. Conflict when columns or indexes are no longer what they were.
    Status Refresh();

    /// While it is there, several operations see one committed state; see ReadScope.
    [[nodiscard]] ReadScope Hold(ReadScope::Length length = ReadScope::Length::Short) const {
        return ReadScope(file_.cache, length);
    }

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
    friend class TableWriter;
    // For writing. Both are borrowed, and good until another program has changed the file.
    [[nodiscard]] Result<const TableRules*> Rules();
    /// The table whose definition begins on `page`; this one when it is its own.
    [[nodiscard]] Result<Table*> Related(PageNo page);
    Table(const FileContext& file, PageNo page, std::string name);
    [[nodiscard]] Status Named(const Status& status) const;

    const FileContext& file_;
    PageNo page_;
    std::string name_;
    std::shared_ptr<const TableDef> def_;
    std::uint64_t generation_ = 0;  // of the page cache when def_ was read
    std::shared_ptr<const TableRules> rules_;
    std::map<PageNo, std::unique_ptr<Table>> related_;
    std::uint64_t changes_ = 0;  // of the page cache when the two were read
    bool isForUsers_ = true;
};

}  // namespace jet
