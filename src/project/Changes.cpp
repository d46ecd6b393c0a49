#include "project/Changes.h"

#include <algorithm>

#include "project/Schema.h"

namespace project {
namespace {

bool IsUnchanged(const ado::RowChange& row) {
    return row.isWhole && row.before == row.after;
}

/// What a value holds beside itself.
std::size_t OutsideOf(const ado::Value& value) {
    if (const auto* text = std::get_if<std::u16string>(&value)) {
        return text->capacity() * sizeof(char16_t);
    }
    if (const auto* binary = std::get_if<ado::Binary>(&value)) return binary->capacity();
    return 0;
}

}  // namespace

std::optional<std::int32_t> NumberOf(const ado::RowChange& row) {
    const ado::Value* id = row.KnownIn(kKeyColumn);
    const auto* number = id != nullptr ? std::get_if<std::int32_t>(id) : nullptr;
    return number != nullptr ? std::optional(*number) : std::nullopt;
}

std::string_view TargetOf(const ado::RowChange& row, std::string_view column) {
    if (column == kKeyColumn) return row.table;
    for (const Reference& reference : References()) {
        if (reference.table != row.table || reference.column != column) continue;
        const ado::Value* type = reference.onlyType ? row.KnownIn("Type") : nullptr;
        const bool applies =
            !reference.onlyType || (type != nullptr && *type == ado::Value(*reference.onlyType));
        if (applies) return reference.target;
    }
    return {};
}

void ChangeSet::Add(std::vector<ado::RowChange> changes) {
    bool anyUnchanged = false;
    for (ado::RowChange& change : changes) {
        std::size_t at = rows_.size();
        if (const auto number = NumberOf(change)) {
            at = places_.try_emplace({change.table, *number}, at).first->second;
        }
        if (at == rows_.size()) {
            rows_.push_back(std::move(change));
        } else {
            rows_[at].after = std::move(change.after);
            rows_[at].isWhole = rows_[at].isWhole && change.isWhole;
        }
        anyUnchanged = anyUnchanged || IsUnchanged(rows_[at]);
    }
    // Not at each change: a step of many would look through all of it again and again.
    if (anyUnchanged) RemoveUnchanged();
}

void ChangeSet::RemoveUnchanged() {
    std::erase_if(rows_, IsUnchanged);
    FindPlaces();
}

void ChangeSet::FindPlaces() {
    places_.clear();
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (const auto number = NumberOf(rows_[i])) places_[{rows_[i].table, *number}] = i;
    }
}

bool ChangeSet::IsWhole() const {
    return std::all_of(rows_.begin(), rows_.end(), [](const ado::RowChange& row) {
        return row.isWhole && NumberOf(row).has_value();
    });
}

std::size_t ChangeSet::Bytes() const {
    std::size_t bytes = 0;
    for (const ado::RowChange& row : rows_) {
        bytes += sizeof(row);
        for (const std::vector<ado::Value>* values : {&row.before, &row.after}) {
            bytes += values->capacity() * sizeof(ado::Value);
            for (const ado::Value& value : *values) bytes += OutsideOf(value);
        }
    }
    return bytes;
}

void ChangeSet::Renumber(std::string_view table, std::int32_t was, std::int32_t is) {
    for (ado::RowChange& row : rows_) {
        for (std::size_t i = 0; i < row.columns->size(); ++i) {
            const std::string& column = (*row.columns)[i];
            if (TargetOf(row, column) != table) continue;
            for (std::vector<ado::Value>* values : {&row.before, &row.after}) {
                if (!values->empty() && (*values)[i] == ado::Value(was)) (*values)[i] = is;
            }
        }
    }
    FindPlaces();
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
