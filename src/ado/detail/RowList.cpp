#include "ado/detail/RowList.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "ado/detail/ProviderError.h"

namespace ado {
namespace {

constexpr std::size_t kSortedUnits = 255;  // UTF-16 units

}  // namespace

void RowList::Restart(const Expression* filter, std::vector<SortColumn> sort) {
    Clear();
    sort_ = std::move(sort);
    stream_ = OpenStream(rows_, filter, reader_);
}

bool RowList::Has(std::size_t position) {
    if (!stream_) AppendAdded();
    if (position < keys_.Size() || !stream_) return position < keys_.Size();
    if (!sort_.empty()) Sort();
    RowKey key = 0;
    while (position >= keys_.Size() && stream_) {
        // One look at the file for some rows; not for all, since nobody can write meanwhile.
        constexpr std::size_t kRows = 64;
        const jet::ReadScope scope = rows_.Table(0).Hold();
        Check(scope.GetStatus(), rows_.File());
        const std::size_t until = std::min(position, keys_.Size() + kRows);
        while (until >= keys_.Size() && stream_) {
            if (!stream_->Next(key)) {
                stream_.reset();
                break;
            }
            // The stream may come upon rows that have been added since it began.
            if (std::find(added_.begin(), added_.end(), key) == added_.end()) keys_.Append(key);
        }
    }
    if (!stream_) AppendAdded();
    return position < keys_.Size();
}

void RowList::AppendAdded() {
    for (const RowKey key : added_) keys_.Append(key);
    added_.clear();
}

void RowList::Remove(std::size_t position) {
    keys_.Erase(position);
    lastFound_ = 0;
}

std::size_t RowList::Count() {
    if (!stream_) AppendAdded();
    if (!stream_) return keys_.Size();
    // All rows are one answer.
    const jet::ReadScope scope = rows_.Table(0).Hold(jet::ReadScope::Length::Long);
    Check(scope.GetStatus(), rows_.File());
    std::ignore = Has(SIZE_MAX);  // fetches to the end; there is no such row
    return keys_.Size();
}

void RowList::Clear() {
    stream_.reset();
    keys_.Clear();
    added_.clear();
    lastFound_ = 0;
}

std::optional<std::size_t> RowList::Find(RowKey key) {
    // Who looks for rows mostly looks for them in their order.
    const auto found = [&](std::size_t i) { return keys_[i] == key; };
    std::size_t i = lastFound_;
    while (Has(i) && !found(i)) ++i;
    if (i >= keys_.Size()) {
        i = 0;
        while (i < lastFound_ && !found(i)) ++i;
        if (i >= lastFound_) return std::nullopt;
    }
    lastFound_ = i;
    return i;
}

void RowList::Sort() {
    const jet::ReadScope scope = rows_.Table(0).Hold(jet::ReadScope::Length::Long);
    Check(scope.GetStatus(), rows_.File());
    std::vector<RowKey> keys;
    std::vector<std::vector<Value>> values;
    for (RowKey key = 0; stream_->Next(key);) {
        if (!reader_.Load(key)) continue;
        keys.push_back(key);
        std::vector<Value>& row = values.emplace_back();
        for (const SortColumn& column : sort_) {
            row.push_back(reader_.Get(column.origin.table, column.origin.column));
            if (auto* text = std::get_if<std::u16string>(&row.back())) {
                // What the text indexes of the file order by; a memo may be very long.
                if (text->size() > kSortedUnits) text->assign(*text, 0, kSortedUnits);
            }
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
    keys_.Clear();
    for (const std::size_t i : order) keys_.Append(keys[i]);
    stream_.reset();
}

}  // namespace ado
