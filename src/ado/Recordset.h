#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ado/Connection.h"
#include "ado/Value.h"

namespace ado {

/// One column of a recordset. Valid as long as the recordset stays open.
struct Field {
    std::string name;  // as the table or the query has it; qualified where it would stand twice
    DataType type = DataType::Integer;
    int definedSize = 0;    // text: characters; binary: bytes; else bytes of the number
    std::string baseTable;  // where its value is stored
    std::string baseColumn;
    bool autoNumber = false;
};

enum class EditMode : int { None = 0, InProgress = 1, Add = 2 };
enum class CommandType { Table, Text };
enum class SearchDirection : int { Forward = 1, Backward = -1 };

/// A row to come back to. Valid until the recordset is closed or requeried.
struct Bookmark {
    std::uint64_t row = 0;
    [[nodiscard]] auto operator<=>(const Bookmark&) const = default;
};

/// The rows of a table, or of a query, with one current row. Not thread-safe. Every failure is an
/// AdoError; a recordset that failed to open is closed.
///
/// Opening reads no row. Rows come as they are asked for: in the order of the primary key where a
/// table has one, else in the order in which they are stored; a query's in the order of the table
/// that drives it. An equality in a filter, a search or a query uses an index where one fits; rows
/// found through it come in its order.
///
/// A row that cannot be read fails alone: the recordset stays usable and the next move goes on.
class Recordset {
public:
    Recordset();
    ~Recordset();  // closes
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    /// `source` is a table's name (CommandType::Table) or a SELECT statement. A name in the
    /// statement that is no column is a parameter, in the order of first appearance; `parameters`
    /// holds their values, as text.
    void Open(std::string_view source, Connection& connection, CommandType type,
              const std::vector<std::u16string>& parameters = {});
    void Close();
    [[nodiscard]] ObjectState State() const noexcept;

    [[nodiscard]] const std::vector<Field>& Fields() const;
    /// Position of a column in Fields(); throws kItemNotFound. Names compare without case.
    [[nodiscard]] std::size_t FieldIndex(std::string_view name) const;
    /// The current row's value; kNoCurrentRecord when there is no current row.
    [[nodiscard]] Value Get(std::size_t field) const;
    [[nodiscard]] Value Get(std::string_view name) const;

    // Before the first row, after the last. Both true: no row.
    [[nodiscard]] bool IsBOF() const;
    [[nodiscard]] bool IsEOF() const;

    void MoveFirst();
    void MoveLast();
    void MoveNext();      // fails at EOF
    void MovePrevious();  // fails at BOF
    [[nodiscard]] Bookmark GetBookmark() const;
    void SetBookmark(Bookmark bookmark);

    /// Number of rows that the filter lets through. Counts by the index where it can.
    [[nodiscard]] std::size_t RecordCount() const;

    /// The numbers in a field of all rows of the table, whatever the filter, in the order in which
    /// they are stored: one pass over the pages, much quicker than moving through the rows. Null
    /// and what cannot be read is left out. Tables only.
    [[nodiscard]] std::vector<std::int32_t> NumbersOf(std::size_t field) const;
    /// Calls `row` with the values of these fields, in their order, for all rows of the table in
    /// the same way. The values are valid during the call. A row of which one of them cannot be
    /// read is left out; gives how many those are.
    std::size_t Scan(const std::vector<std::size_t>& fields,
                     const std::function<void(const std::vector<Value>& values)>& row) const;

    /// A criterion such as "Parameter= 5 AND Type = -2"; empty: no filter. Moves to the first row
    /// that matches, or to EOF. Operators = <> < <= > >= LIKE, IS NULL; numbers, texts in
    /// single quotes, Null, True, False, #dates#; AND, OR, NOT, parentheses. In a LIKE pattern *
    /// stands for any text. Columns by the names of Fields().
    void SetFilter(std::string_view criteria);
    [[nodiscard]] const std::string& Filter() const;

    /// Columns with an optional ASC or DESC, separated by commas; empty: the natural order. Moves
    /// to the first row.
    void SetSort(std::string_view columns);
    [[nodiscard]] const std::string& Sort() const;

    /// Moves to the first row at or behind the current one (or `skip` rows further on) that meets
    /// one criterion on one column; to EOF (searching backward: BOF) when there is none. From BOF
    /// a search forward begins with the first row, from EOF one backward with the last.
    void Find(std::string_view criterion, int skip = 0,
              SearchDirection direction = SearchDirection::Forward);

    // Editing. A row is edited by assigning its fields; nothing is stored before Update. Moving
    // to another row, searching, filtering and sorting store a pending edit first; Close refuses
    // while there is one. Assigning converts as the provider does: kWrongType for what cannot be
    // converted, kDoesNotFit for a text that is too long and a number out of range.

    /// Throws when rows of the table can be changed in no way. Tables only.
    void RequireWritable() const;
    /// Begins a new row, which becomes the current one. Tables only.
    void AddNew();
    /// Assigns a field of the current row. Null is a value like any other.
    void Set(std::size_t field, const Value& value);
    void Set(std::string_view name, const Value& value);
    /// Stores the pending edit; each field goes to the table it came from. Afterwards a new row is
    /// the current row, the last one until the next Requery. kRowNotLocated when another program
    /// has changed or deleted the row since it was read; kIntegrity for a key that exists already,
    /// a value that must not be Null or empty, and what a relationship forbids. When it fails
    /// nothing is stored and the edit is pending.
    void Update();
    /// Drops the pending edit, a new row with it. Does nothing when there is none.
    void CancelUpdate();
    [[nodiscard]] ado::EditMode EditMode() const;
    /// Deletes the current row. There is then no current row until the next move. Tables only;
    /// kRowNotLocated as for Update.
    void Delete();

    /// Runs the source again and moves to the first row. Filter and sort stay; a pending edit is
    /// dropped.
    void Requery();
    /// Drops a pending edit and reads the current row again; kRowNotLocated when it has been
    /// deleted.
    void Resync();

private:
    friend class Connection;
    friend class OneState;
    struct Rep;
    /// Throws when the recordset is closed.
    [[nodiscard]] Rep& Opened() const;
    void StorePending();

    std::unique_ptr<Rep> rep_;  // null while closed
};

}  // namespace ado
