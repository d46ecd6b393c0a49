#include "ado/detail/RowList.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace ado {

void RowList::Restart(const Expression* filter, std::vector<SortColumn> sort) {
    keys_.clear();
    sort_ = std::move(sort);
    stream_ = OpenStream(rows_, filter);
}

bool RowList::Has(std::size_t position) {
    if (!sort_.empty() && stream_) Sort();
    RowKey key = 0;
    while (position >= keys_.size() && stream_) {
        if (stream_->Next(key)) {
            keys_.push_back(key);
        } else {
            stream_.reset();
        }
    }
    return position < keys_.size();
}

std::size_t RowList::Count() {
    std::ignore = Has(SIZE_MAX);  // fetches to the end; there is no such row
    return keys_.size();
}

std::optional<std::size_t> RowList::Find(RowKey key) {
    for (std::size_t i = 0; Has(i); ++i) {
        if (keys_[i] == key) return i;
    }
    return std::nullopt;
}

void RowList::Sort() {
    std::vector<RowKey> keys;
    std::vector<std::vector<Value>> values;
    RowReader reader(rows_);
    for (RowKey key = 0; stream_->Next(key);) {
        if (!reader.Load(key)) continue;
        keys.push_back(key);
        std::vector<Value>& row = values.emplace_back();
        for (const SortColumn& column : sort_) {
            row.push_back(reader.Get(column.origin.table, column.origin.column));
        }
    }
    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        for (std::size_t i = 0; i < sort_.size(); ++i) {
            const int compared = CompareValues(values[a][i], values[b][i]);
            if (compared != 0) return sort_[i].descending ? compared > 0 : compared < 0;
        }
        return false;
    });
    keys_.clear();
    for (const std::size_t i : order) keys_.push_back(keys[i]);
    stream_.reset();
}

}  // namespace ado
