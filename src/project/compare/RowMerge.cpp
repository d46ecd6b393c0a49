#include "project/compare/RowMerge.h"

#include <algorithm>
#include <optional>

#include "project/Changes.h"
#include "project/Differences.h"
#include "project/Number.h"
#include "project/Schema.h"

namespace project {
namespace {

bool IsGone(const RowChanges& changes, const RowKey& key) {
    const auto found = changes.find(key);
    return found != changes.end() && found->second.after.empty();
}

const ado::RowChange* Find(const RowChanges& changes, const RowKey& key) {
    const auto found = changes.find(key);
    return found == changes.end() ? nullptr : &found->second;
}

/// The rows that `side` of a row names; those alone of columns that meet the condition.
template <typename Condition>
std::vector<RowKey> NamedBy(const ado::RowChange& row, const std::vector<ado::Value>& side,
                            Condition condition) {
    std::vector<RowKey> named;
    for (std::size_t i = 0; i < side.size(); ++i) {
        const auto* id = std::get_if<std::int32_t>(&side[i]);
        const std::string& column = (*row.columns)[i];
        if (id == nullptr || column == kKeyColumn) continue;
        const std::string_view target = TargetOf(row, column);
        if (!target.empty() && condition(i)) named.emplace_back(target, *id);
    }
    return named;
}

/// The rows that one side has deleted and that the other has changed or newly named, with all that
/// these name in turn.
std::set<RowKey> Needed(const RowChanges& deleting, const RowChanges& other) {
    const auto isGone = [&](const RowKey& key) {
        return IsGone(deleting, key) && !IsGone(other, key);
    };
    std::vector<RowKey> open;
    for (const auto& [key, row] : other) {
        if (row.after.empty()) continue;
        if (isGone(key)) open.push_back(key);
        const auto isNew = [&](std::size_t i) {
            return row.before.empty() || !IsSame(row.before[i], row.after[i]);
        };
        for (const RowKey& named : NamedBy(row, row.after, isNew)) {
            if (isGone(named)) open.push_back(named);
        }
    }
    std::set<RowKey> needed;
    while (!open.empty()) {
        const RowKey key = open.back();
        open.pop_back();
        if (!needed.insert(key).second) continue;
        const ado::RowChange* changed = Find(other, key);
        const ado::RowChange& row = changed != nullptr ? *changed : deleting.at(key);
        const auto& values = changed != nullptr ? row.after : row.before;
        for (const RowKey& named : NamedBy(row, values, [](std::size_t) { return true; })) {
            if (isGone(named)) open.push_back(named);
        }
    }
    return needed;
}

std::optional<std::size_t> PlaceOf(const ado::RowChange& row, std::string_view column) {
    const auto found = std::ranges::find(*row.columns, column);
    if (found == row.columns->end()) return std::nullopt;
    return static_cast<std::size_t>(found - row.columns->begin());
}

std::optional<double> LimitOf(const ado::Value& value) {
    const NumberText read = ReadNumber(ado::ToText(value));
    return read.whole ? std::optional(read.number) : std::nullopt;
}

bool AreCrossed(const ado::Value& lower, const ado::Value& upper) {
    const auto low = LimitOf(lower);
    const auto high = LimitOf(upper);
    return low && high && *low > *high;
}

}  // namespace

RowChanges ByKey(std::vector<ado::RowChange> rows) {
    RowChanges changes;
    for (ado::RowChange& row : rows) {
        if (const auto id = NumberOf(row)) changes.emplace(RowKey(row.table, *id), std::move(row));
    }
    return changes;
}

void RowMerge::Run() {
    neededByMine_ = Needed(theirs_, mine_);
    neededByTheirs_ = Needed(mine_, theirs_);
    for (const auto& [key, theirs] : theirs_) MergeRow(key, Find(mine_, key), &theirs);
    for (const auto& [key, mine] : mine_) {
        if (!theirs_.contains(key)) MergeRow(key, &mine, nullptr);
    }
}

void RowMerge::MergeRow(const RowKey& key, const ado::RowChange* mine,
                        const ado::RowChange* theirs) {
    const bool isMineGone = mine != nullptr && mine->after.empty();
    const bool isTheirsGone = theirs != nullptr && theirs->after.empty();
    if (isMineGone && isTheirsGone) return;
    if (isTheirsGone) {
        if (!neededByMine_.contains(key)) return AddStep(*theirs, theirs->before, {});
        return AddConflict(Kind::DeletedTheirs, mine != nullptr ? *mine : *theirs);
    }
    if (isMineGone) {
        if (!neededByTheirs_.contains(key)) return;
        AddStep(*mine, {}, theirs != nullptr ? theirs->after : mine->before);
        return AddConflict(Kind::DeletedMine, theirs != nullptr ? *theirs : *mine);
    }
    if (theirs == nullptr) return;
    if (mine == nullptr) return AddStep(*theirs, theirs->before, theirs->after);
    MergeFields(*mine, *theirs);
}

void RowMerge::MergeFields(const ado::RowChange& mine, const ado::RowChange& theirs) {
    Values merged = mine.after;
    for (std::size_t i = 0; i < merged.size(); ++i) {
        const ado::Value base = mine.before.empty() ? ado::Value() : mine.before[i];
        const ado::Value& their = theirs.after[i];
        if (IsSame(their, base) || IsSame(their, merged[i])) continue;
        if (IsSame(merged[i], base)) {
            merged[i] = their;
        } else {
            AddField(Kind::Field, mine, theirs, i);
        }
    }
    if (mine.table == kTrendTable) KeepLimits(mine, theirs, merged);
    AddStep(mine, mine.after, std::move(merged));
}

void RowMerge::KeepLimits(const ado::RowChange& mine, const ado::RowChange& theirs,
                          Values& merged) {
    for (const Limits& limits : TrendLimits()) {
        const auto lower = PlaceOf(mine, limits.lower);
        const auto upper = PlaceOf(mine, limits.upper);
        if (!lower || !upper) continue;
        const auto areCrossed = [&](const Values& side) {
            return AreCrossed(side[*lower], side[*upper]);
        };
        if (!areCrossed(merged) || areCrossed(mine.after) || areCrossed(theirs.after)) continue;
        for (const std::size_t column : {*lower, *upper}) {
            if (IsSame(merged[column], mine.after[column])) continue;
            AddField(Kind::Limits, mine, theirs, column);
            merged[column] = mine.after[column];
        }
    }
}

void RowMerge::AddStep(const ado::RowChange& row, Values before, Values after) {
    bool isSame = !before.empty() && !after.empty();
    for (std::size_t i = 0; isSame && i < before.size(); ++i) isSame = IsSame(before[i], after[i]);
    if (isSame) return;
    ado::RowChange step;
    step.table = row.table;
    step.columns = row.columns;
    step.before = std::move(before);
    step.after = std::move(after);
    steps.push_back(std::move(step));
}

void RowMerge::AddConflict(Kind kind, const ado::RowChange& row) {
    MergeConflict conflict;
    conflict.kind = kind;
    conflict.table = row.table;
    conflict.id = NumberOf(row).value_or(0);
    if (const ado::Value* name = row.KnownIn("Name")) conflict.name = ado::ToText(*name);
    conflicts.push_back(std::move(conflict));
}

void RowMerge::AddField(Kind kind, const ado::RowChange& mine, const ado::RowChange& theirs,
                        std::size_t column) {
    AddConflict(kind, mine);
    MergeConflict& conflict = conflicts.back();
    conflict.column = (*mine.columns)[column];
    if (!mine.before.empty()) conflict.base = mine.before[column];
    conflict.mine = mine.after[column];
    conflict.theirs = theirs.after[column];
}

}  // namespace project
