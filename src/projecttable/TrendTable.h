#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "ado/Connection.h"
#include "ado/Recordset.h"
#include "project/Schema.h"

/// All trends of a project with their archives' names and their texts in all languages, in memory.
///
/// Each column keeps a value once, however many rows have it: filters and orders are worked out
/// for values, not for rows, and a hundred thousand trends fit into some tens of megabytes.
class TrendTable {
public:
    /// Number of a value within its column; 0 is Null.
    using ValueNumber = std::uint32_t;

    struct Column {
        ado::Field field;                        // names table and column where it is stored
        const project::Column* known = nullptr;  // null: texts in a language
        bool isArchive = false;                  // the archive's name
        std::vector<ado::Value> values;          // each once
        std::vector<ValueNumber> cells;          // a row each
    };

    /// Reads all trends in one committed state of the file. The columns are the archive's name, the
    /// settings of trends that the file has, in the order of the grid, and the languages of its
    /// texts. Rows that cannot be read are left out. Throws ado::AdoError. `connection` is borrowed
    /// while it reads. `most`: the first rows only, to be shown while the others are read; then a
    /// row that cannot be read throws.
    static constexpr std::size_t kAll = static_cast<std::size_t>(-1);
    [[nodiscard]] static TrendTable Read(ado::Connection& connection, std::size_t most = kAll);

    [[nodiscard]] std::size_t RowCount() const { return ids_.size(); }
    [[nodiscard]] std::span<const Column> Columns() const { return columns_; }
    [[nodiscard]] std::int32_t IdOf(std::size_t row) const { return ids_[row]; }
    [[nodiscard]] std::int32_t ArchiveOf(std::size_t row) const { return archives_[row]; }
    /// -1: there is no such trend.
    [[nodiscard]] std::int64_t RowOf(std::int32_t id) const;
    [[nodiscard]] ValueNumber NumberAt(std::size_t row, std::size_t column) const {
        return columns_[column].cells[row];
    }
    [[nodiscard]] const ado::Value& ValueAt(std::size_t row, std::size_t column) const {
        return columns_[column].values[NumberAt(row, column)];
    }
    /// The row of a table that holds the cell's value; 0: there is none, a trend without a text.
    [[nodiscard]] std::int32_t StoredIn(std::size_t row, std::size_t column) const;
    /// The rows that show something of a row of the table of trends, or of texts, which several
    /// trends may share.
    [[nodiscard]] std::vector<std::size_t> RowsStoredIn(std::string_view table,
                                                        std::int32_t id) const;
    void Set(std::size_t row, std::size_t column, const ado::Value& value);

    /// Whether the project has a variable of that name. Always, where it lists none.
    [[nodiscard]] bool IsVariable(std::u16string_view name) const;
    [[nodiscard]] bool HasVariables() const { return !variables_.empty(); }
    /// Trends that could not be read.
    [[nodiscard]] std::size_t Unread() const { return unread_; }
    /// ado::Connection::ContentNumber of what has been read.
    [[nodiscard]] std::uint64_t ContentNumber() const { return contentNumber_; }
    void SetContentNumber(std::uint64_t number) { contentNumber_ = number; }

private:
    struct ValueHash {
        std::size_t operator()(const ado::Value& value) const;
    };
    using Numbers = std::unordered_map<ado::Value, ValueNumber, ValueHash>;

    ValueNumber NumberOf(std::size_t column, const ado::Value& value);
    void ReadTexts(ado::Connection& connection, std::size_t most);
    void ReadTrends(ado::Connection& connection, std::size_t most);
    void ReadVariables(ado::Connection& connection);

    std::vector<Column> columns_;
    std::vector<Numbers> numbers_;   // of each column's values
    std::vector<ValueNumber> last_;  // looked up in each column
    std::vector<std::int32_t> ids_;
    std::vector<std::int32_t> archives_;
    std::vector<std::int32_t> texts_;                              // rows of texts; 0: none
    std::unordered_multimap<std::int32_t, std::uint32_t> owners_;  // of texts, by their IDs
    std::unordered_map<std::int32_t, std::uint32_t> rows_;         // by ID
    std::size_t firstText_ = 0;                                    // column
    std::unordered_set<std::u16string> variables_;                 // folded
    std::size_t unread_ = 0;
    std::uint64_t contentNumber_ = 0;
};
