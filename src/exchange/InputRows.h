#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "exchange/Input.h"
#include "exchange/Sheet.h"

namespace exchange {

/// All rows of an input, by columns of a sheet. They are kept close together: a project of a
/// hundred thousand trends has millions of cells.
class InputRows {
public:
    /// Reads to the end. Without a kind of sheet the headings tell. Throws ado::AdoError.
    InputRows(ado::Connection& connection, Input& input, std::optional<SheetKind> kind);

    [[nodiscard]] const Sheet& Columns() const noexcept { return *sheet_; }
    /// Of an input that is one among several.
    [[nodiscard]] const std::u16string& SheetName() const noexcept { return name_; }
    /// Where each column of the sheet stood.
    [[nodiscard]] std::vector<std::optional<std::size_t>> Places() const;
    [[nodiscard]] std::size_t Count() const noexcept { return lines_.size(); }
    /// Where a row stood.
    [[nodiscard]] std::size_t Line(std::size_t row) const { return lines_[row]; }
    /// Whether it had more cells than the heading; what it lacks at the end is Null.
    [[nodiscard]] bool IsTooLong(std::size_t row) const { return tooLong_[row]; }
    /// Nothing where the input has no such column.
    [[nodiscard]] std::optional<CellView> Get(std::size_t row, std::size_t column) const;
    [[nodiscard]] bool Has(std::size_t column) const { return places_[column].has_value(); }

private:
    void ReadHeading(const std::vector<Cell>& heading);
    void Add(const std::vector<Cell>& record, std::size_t line);
    [[noreturn]] void Fail(const std::string& what) const;

    std::optional<Sheet> sheet_;
    std::u16string name_;
    std::vector<std::size_t> taken_;                  // the cells of a record that are kept
    std::vector<std::optional<std::size_t>> places_;  // by column of the sheet: in taken_
    std::size_t width_ = 0;                           // of the heading
    std::u16string texts_;
    std::vector<std::size_t> ends_;  // in texts_, by row and kept cell; one more in front
    std::vector<CellKind> kinds_;
    std::vector<std::size_t> lines_;
    std::vector<bool> tooLong_;
};

}  // namespace exchange
