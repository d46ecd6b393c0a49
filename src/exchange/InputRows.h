#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/Input.h"
#include "exchange/Sheet.h"

namespace exchange {

/// What a heading stands for, where somebody says it. Both are known in any case of ASCII letters.
struct ColumnChoice {
    std::u16string heading;
    std::u16string column;  // a heading of the sheet in any language; empty: it is left out
};

/// Hears, again and again, how many rows have been done; false gives it up, by the exception
/// GivenUp. May be empty.
using GoOn = std::function<bool(std::size_t rows)>;
struct GivenUp {};

/// How an input is taken.
struct ReadOptions {
    std::optional<SheetKind> kind{};      // none: as the headings tell
    std::vector<ColumnChoice> columns{};  // what is chosen goes before what a heading says
    // Headings that no column has, or that stand twice, are left out, for somebody to assign them.
    bool isOpen = false;
    GoOn goOn{};
};
/// What is to be taken for a heading: what is chosen for it, where the sheet has that column, or
/// the heading itself.
[[nodiscard]] std::u16string_view MeaningOf(const Sheet& sheet, std::u16string_view heading,
                                            const ReadOptions& options);

/// All rows of an input, by columns of a sheet. They are kept close together: a project of a
/// hundred thousand trends has millions of cells.
class InputRows {
public:
    /// Reads to the end. Throws ado::AdoError and GivenUp.
    InputRows(ado::Connection& connection, Input& input, const ReadOptions& options);

    [[nodiscard]] const Sheet& Columns() const noexcept { return *sheet_; }
    /// Of an input that is one among several.
    [[nodiscard]] const std::u16string& SheetName() const noexcept { return name_; }
    /// As they stand in the input.
    [[nodiscard]] std::span<const std::u16string> Headings() const noexcept { return headings_; }
    /// Where each column of the sheet stands: a position among the headings.
    [[nodiscard]] std::span<const std::optional<std::size_t>> Places() const noexcept {
        return places_;
    }
    /// The column of the sheet that a heading is taken for.
    [[nodiscard]] std::optional<std::size_t> ColumnOf(std::size_t heading) const;
    /// Takes a heading for a column, or for none; no other one is taken for that column any more.
    void Assign(std::size_t heading, std::optional<std::size_t> column);
    /// Takes the rows for those of another sheet, as far as its headings are there.
    void SetKind(ado::Connection& connection, SheetKind kind);
    /// Whether the columns are there by which rows are known. Throws ado::AdoError when not.
    void RequireKey() const;
    [[nodiscard]] bool HasKey() const;

    [[nodiscard]] std::size_t Count() const noexcept { return lines_.size(); }
    /// Where a row stood.
    [[nodiscard]] std::size_t Line(std::size_t row) const { return lines_[row]; }
    /// Whether it had more cells than the heading; what it lacks at the end is Null.
    [[nodiscard]] bool IsTooLong(std::size_t row) const { return tooLong_[row]; }
    /// Nothing where the input has no such column.
    [[nodiscard]] std::optional<CellView> Get(std::size_t row, std::size_t column) const;
    /// What stands below a heading.
    [[nodiscard]] CellView At(std::size_t row, std::size_t heading) const;
    [[nodiscard]] bool Has(std::size_t column) const { return places_[column].has_value(); }

private:
    void TakeHeadings(const ReadOptions& options);
    void Add(const std::vector<Cell>& record, std::size_t line);
    [[noreturn]] void Fail(const std::string& what) const;

    std::optional<Sheet> sheet_;
    std::u16string name_;
    std::vector<std::u16string> headings_;
    std::vector<std::optional<std::size_t>> places_;  // by column of the sheet: among the headings
    std::u16string texts_;
    std::vector<std::size_t> ends_;  // in texts_, by row and heading; one more in front
    std::vector<CellKind> kinds_;
    std::vector<std::size_t> lines_;
    std::vector<bool> tooLong_;
};

/// Throws ado::AdoError when something is chosen for a heading that none of the sheets has, or a
/// column that its sheet has not.
void RequireChoices(std::span<const InputRows> sheets, const ReadOptions& options);

}  // namespace exchange
