#include "project/Changes.h"

#include <algorithm>
#include <optional>

#include "project/Schema.h"

namespace project {
namespace {

/// The number of a row; nothing in a table without one.
std::optional<std::int32_t> NumberOf(const ado::RowChange& row) {
    const auto key = std::find(row.columns->begin(), row.columns->end(), kKeyColumn);
    if (key == row.columns->end()) return std::nullopt;
    const std::vector<ado::Value>& values = row.before.empty() ? row.after : row.before;
    const auto* number =
        std::get_if<std::int32_t>(&values.at(static_cast<std::size_t>(key - row.columns->begin())));
    return number != nullptr ? std::optional(*number) : std::nullopt;
}

}  // namespace

void ChangeSet::Add(std::vector<ado::RowChange> changes) {
    for (ado::RowChange& change : changes) {
        const auto number = NumberOf(change);
        if (!number) {
            rows_.push_back(std::move(change));
            continue;
        }
        const auto [place, isNew] = places_.try_emplace({change.table, *number}, rows_.size());
        if (isNew) {
            rows_.push_back(std::move(change));
        } else {
            ado::RowChange& row = rows_[place->second];
            row.after = std::move(change.after);
            row.isWhole = row.isWhole && change.isWhole;
        }
    }
    RemoveUnchanged();
}

void ChangeSet::RemoveUnchanged() {
    const auto removed = std::erase_if(
        rows_, [](const ado::RowChange& row) { return row.isWhole && row.before == row.after; });
    if (removed == 0) return;
    places_.clear();
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (const auto number = NumberOf(rows_[i])) places_[{rows_[i].table, *number}] = i;
    }
}

bool ChangeSet::IsWhole() const {
    return std::all_of(rows_.begin(), rows_.end(),
                       [](const ado::RowChange& row) { return row.isWhole; });
}

ChangeRecorder::ChangeRecorder(ado::Connection& connection) : connection_(connection) {
    connection_.SetChangeListener(
        [this](std::vector<ado::RowChange> changes) { step_.Add(std::move(changes)); });
}

ChangeRecorder::~ChangeRecorder() {
    connection_.SetChangeListener({});
}

ChangeSet ChangeRecorder::Take() {
    return std::exchange(step_, {});
}

}  // namespace project
