#pragma once

#include <vector>

#include "jet/check/IndexKeys.h"
#include "jet/check/LongValueCheck.h"
#include "jet/check/RowWalker.h"

namespace jet::check {

/// What the rows of a table tell about its indexes.
struct RowSums {
    std::vector<IndexSum> indexes;  // by real index; what they ought to hold
    Unreadable unreadable;
};

/// The frame of a row: counts, offsets and null mask, for dropped columns too.
[[nodiscard]] Status CheckRowLayout(const TableDef& def, Bytes row);
/// By column: whether an index or the primary key forbids Null in it.
[[nodiscard]] std::vector<bool> ColumnsWithoutNull(const TableDef& def);

/// Checks all rows of one table with their values, and sums up the keys that its indexes ought to
/// hold. Borrows its arguments.
class RowCheck {
public:
    RowCheck(PageCache& cache, Reporter& report, const PageLedger& pages,
             const CheckedTable& table);

    [[nodiscard]] RowSums Run();

private:
    void CheckRow();
    Status CheckValue(std::size_t column, const RowView& view);
    void AddKeys(const RowView& view);
    void CheckCounters();
    void Error(const std::string& what);

    PageCache& cache_;
    Reporter& report_;
    const CheckedTable& table_;
    RowWalker rows_;
    LongValueCheck longValues_;
    RowSums sums_;
    std::vector<bool> canMakeKeys_;  // by real index
    std::vector<bool> mustHave_;     // by column: an index requires a value
    std::size_t autoNumber_;         // column; columns.size() = none
    std::int32_t greatest_ = 0;      // of the automatic numbers
    Value value_;
    IndexKey key_;
    std::u16string text_;
};

}  // namespace jet::check
