#include "ado/detail/ChangeCollector.h"

#include <algorithm>
#include <utility>

#include "ado/detail/Convert.h"

namespace ado {

std::vector<RowChange> ChangeCollector::TakeCommitted() {
    return std::exchange(committed_, {});
}

ChangeCollector::Columns ChangeCollector::ColumnsOf(const jet::Table& table) {
    Columns& columns = columns_[table.Name()];
    if (columns == nullptr) {
        std::vector<std::string> names;
        for (const jet::Column& column : table.Definition().columns) names.push_back(column.name);
        columns = std::make_shared<const std::vector<std::string>>(std::move(names));
    }
    return columns;
}

std::vector<Value> ChangeCollector::ValuesOf(const jet::Table& table, const jet::Row& row,
                                             bool& isWhole) {
    std::vector<Value> values(table.Definition().columns.size());
    jet::Value stored;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!row.Read(i, stored).IsOk()) {
            isWhole = false;
            continue;
        }
        auto value = FromStored(table, stored);
        if (value.IsOk()) {
            values[i] = std::move(*value);
        } else {
            isWhole = false;
        }
    }
    return values;
}

std::size_t ChangeCollector::Changing(jet::Table& table, const jet::Row* before) {
    Entry& entry = entries_.emplace_back();
    entry.change.table = table.Name();
    entry.change.columns = ColumnsOf(table);
    if (before != nullptr) {
        entry.change.before = ValuesOf(table, *before, entry.change.isWhole);
    }
    return entries_.size() - 1;
}

void ChangeCollector::Changed(std::size_t number, jet::Table& table, const jet::Row* after) {
    Entry& entry = entries_.at(number);
    entry.isDone = true;
    if (after != nullptr) entry.change.after = ValuesOf(table, *after, entry.change.isWhole);
}

void ChangeCollector::StepEnded(bool done) {
    if (done) {
        // Of this step alone: a transaction may have as many steps as rows.
        const auto step = entries_.begin() + static_cast<std::ptrdiff_t>(stepBegin_);
        entries_.erase(
            std::remove_if(step, entries_.end(), [](const Entry& entry) { return !entry.isDone; }),
            entries_.end());
    } else {
        entries_.resize(stepBegin_);
    }
    stepBegin_ = entries_.size();
}

void ChangeCollector::TransactionEnded(bool committed) {
    if (committed) {
        for (Entry& entry : entries_) committed_.push_back(std::move(entry.change));
    }
    entries_.clear();
    columns_.clear();
    stepBegin_ = 0;
}

}  // namespace ado
