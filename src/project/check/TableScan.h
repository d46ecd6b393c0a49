#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ado/Recordset.h"
#include "project/Schema.h"

namespace project {

/// A column that the table of a file has and the schema knows, or one of texts in a language.
struct ScannedColumn {
    std::string name;
    const Column* known = nullptr;  // null: texts in a language
    std::size_t limit = 0;          // of a text, in UTF-16 units; 0: none
};

/// Where a row holds a column's value; nothing when the table lacks the column.
using ScanPlace = std::optional<std::size_t>;

/// One row while it is being looked at.
class ScannedRow {
public:
    explicit ScannedRow(const std::vector<ado::Value>& values) : values_(values) {}

    [[nodiscard]] std::int32_t Id() const { return Long(0).value_or(0); }
    [[nodiscard]] const ado::Value& At(std::size_t place) const { return values_[place]; }
    /// Empty for what is no number, Null included.
    [[nodiscard]] std::optional<double> Number(ScanPlace place) const;
    [[nodiscard]] std::optional<std::int32_t> Long(ScanPlace place) const;
    /// Empty for what is no text, Null included, and for blanks and what stands for nothing.
    [[nodiscard]] std::u16string_view Text(ScanPlace place) const;

private:
    const std::vector<ado::Value>& values_;
};

/// The rows of one table with the columns that are known, one after another as they are stored.
class TableScan {
public:
    /// `table` is the schema's. Throws when the file does not have it.
    TableScan(ado::Connection& connection, const Table& table);

    /// By their places, which begin with 1: at 0 stands the key.
    [[nodiscard]] std::span<const ScannedColumn> Columns() const { return columns_; }
    [[nodiscard]] ScanPlace Find(std::string_view name) const;
    /// Gives the number of rows that could not be read.
    std::size_t Run(const std::function<void(const ScannedRow& row)>& look) const;
    /// The keys of all rows that can be read, ascending.
    [[nodiscard]] std::vector<std::int32_t> Keys() const;

private:
    ado::Recordset rows_;
    std::vector<ScannedColumn> columns_;
    std::vector<std::size_t> fields_;
};

/// The schema's table of that name.
[[nodiscard]] const Table& TableOf(std::string_view name);

/// Without the blanks at its ends; what columns hold that forbid empty texts is nothing.
[[nodiscard]] std::u16string_view Content(std::u16string_view text);

}  // namespace project
