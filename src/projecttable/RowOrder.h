#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <QList>
#include <QLocale>
#include <set>
#include <vector>

#include "projecttable/RowFilter.h"
#include "projecttable/TrendTable.h"
#include "texts/MResources.h"

/// Which rows of a TrendTable are shown, and in what order. Both are worked out for the values that
/// there are in a column; rows only look theirs up.
class RowOrder {
public:
    struct Key {
        std::size_t column = 0;
        Qt::SortOrder order = Qt::AscendingOrder;
    };

    /// Both are borrowed; the table may be given other values.
    RowOrder(const TrendTable& table, const MResources::TextTable& texts)
        : table_(table), texts_(texts), columns_(table.Columns().size()) {}

    /// What all columns must meet that are named, and any column that is shown `anywhere`.
    void SetFilters(std::map<std::size_t, RowFilter> filters, RowFilter anywhere,
                    std::vector<bool> shownColumns);
    /// The first key leads. None: by ID, as the rows are stored.
    void SetKeys(QList<Key> keys) { keys_ = std::move(keys); }
    [[nodiscard]] const QList<Key>& Keys() const { return keys_; }

    struct Rows {
        std::vector<std::uint32_t> shown;
        std::map<std::int32_t, std::size_t> byArchive;  // how many the filters leave, by ID
    };
    /// `archives`: only their trends are shown; empty: all.
    [[nodiscard]] Rows Compute(const std::set<std::int32_t>& archives);

    /// A value of a column as it is shown.
    [[nodiscard]] const QString& TextOf(std::size_t column, TrendTable::ValueNumber value);

private:
    /// What is known of a column's values, as far as somebody has asked.
    struct ColumnFacts {
        std::vector<QString> texts;
        std::vector<std::uint32_t> ranks;  // of the values in ascending order
    };
    [[nodiscard]] RowFilter::Subject SubjectOf(std::size_t column, TrendTable::ValueNumber value);
    /// Which values a filter lets through.
    [[nodiscard]] std::vector<bool> Passed(std::size_t column, const RowFilter& filter);
    const std::vector<std::uint32_t>& RanksOf(std::size_t column);
    void Sort(std::vector<std::uint32_t>& rows);

    const TrendTable& table_;
    const MResources::TextTable& texts_;
    QLocale locale_;
    std::vector<ColumnFacts> columns_;
    std::map<std::size_t, RowFilter> filters_;
    RowFilter anywhere_;
    std::vector<bool> shownColumns_;
    QList<Key> keys_;
};
