#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ado/detail/Expression.h"
#include "ado/Recordset.h"
#include "jet/Database.h"

namespace ado {

/// One row of a recordset: the row pointers of the row of each table, the first in the upper half.
using RowKey = std::uint64_t;

/// What a recordset was opened on: its tables, its columns, and the condition of its statement,
/// all names resolved. Borrows the database.
class RowSet {
public:
    static constexpr std::size_t kMostTables = 2;

    /// Where a field's value lies.
    struct Origin {
        std::size_t table = 0;
        std::size_t column = 0;
    };

    /// Throws when the table, a column or a parameter is missing. `file` is for messages.
    static RowSet OfTable(jet::Database& database, const std::string& file, std::string_view name);
    static RowSet OfQuery(jet::Database& database, const std::string& file,
                          std::string_view statement,
                          const std::vector<std::u16string>& parameters);

    [[nodiscard]] const std::string& File() const { return file_; }
    [[nodiscard]] std::size_t TableCount() const { return tables_.size(); }
    [[nodiscard]] jet::Table& Table(std::size_t i) const { return *tables_[i].table; }
    [[nodiscard]] const std::vector<Field>& Fields() const { return fields_; }
    [[nodiscard]] Origin OriginOf(std::size_t field) const { return origins_[field]; }
    [[nodiscard]] const Expression* Where() const { return where_.get(); }

    /// Position of a field by its name or "table.name"; throws kItemNotFound.
    [[nodiscard]] std::size_t FieldIndex(std::string_view name) const;
    /// Resolves the columns of a filter or search criterion, which are names of fields.
    void Bind(Expression& expression) const;

private:
    struct Source {
        std::unique_ptr<jet::Table> table;
        std::string alias;
    };

    RowSet() = default;
    void AddTable(jet::Database& database, const std::string& name, std::string alias);
    void AddField(std::size_t table, std::size_t column, std::string name);
    [[nodiscard]] std::optional<Origin> FindColumn(const ColumnRef& ref) const;
    void QualifyDoubles(const std::vector<bool>& hasAlias);

    std::string file_;
    std::vector<Source> tables_;
    std::vector<Field> fields_;
    std::vector<Origin> origins_;
    std::unique_ptr<Expression> where_;
};

/// Reads the values of one row at a time.
class RowReader {
public:
    /// `rows` is borrowed and must outlive the reader.
    explicit RowReader(const RowSet& rows) : rows_(rows) {}

    /// Reads the row; false when it does not exist (any more).
    [[nodiscard]] bool Load(RowKey key) { return key_ == key || LoadNow(key); }
    /// Reads the row of one table, for whoever looks for the other by it. A Load with this row that
    /// follows at once does not read it again.
    [[nodiscard]] bool LoadOne(std::size_t table, jet::RowId row);
    void Forget() {
        key_.reset();
        loadedFirst_.reset();
    }
    /// The row of one table as it was read. REQUIRES: Load has returned true.
    [[nodiscard]] const jet::Row& Current(std::size_t table) const { return current_.at(table); }
    [[nodiscard]] Value Get(std::size_t table, std::size_t column) const;
    [[nodiscard]] bool Holds(const Expression& condition) const;

private:
    [[nodiscard]] bool LoadNow(RowKey key);
    [[nodiscard]] bool Fetch(std::size_t table, jet::RowId row);

    const RowSet& rows_;
    std::optional<RowKey> key_;
    std::array<jet::Row, RowSet::kMostTables> current_;
    std::optional<std::size_t> loadedFirst_;  // the table of LoadOne, until the next Load
    mutable jet::Value stored_;               // of the last Get, whose memory is used again
};

}  // namespace ado
