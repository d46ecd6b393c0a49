#include "project/compare/NewNumbers.h"

#include <algorithm>

#include "project/Changes.h"
#include "project/Differences.h"
#include "project/Schema.h"

namespace project {
namespace {

bool HoldTheSame(const ado::RowChange& mine, const ado::RowChange& theirs, bool hasBase) {
    if (!hasBase) {
        const ado::Value* name = mine.ValueIn(mine.after, "Name");
        if (name != nullptr && IsSame(*name, *theirs.ValueIn(theirs.after, "Name"))) return true;
    }
    return std::ranges::equal(mine.after, theirs.after, IsSame);
}

}  // namespace

std::set<RowKey> FindTaken(const RowChanges& mine, const RowChanges& theirs, bool hasBase) {
    std::set<RowKey> both;  // new in both
    std::vector<RowKey> open;
    std::multimap<RowKey, RowKey> namedBy;  // of rows that are new in theirs
    for (const auto& [key, row] : theirs) {
        if (!row.before.empty()) continue;
        const auto own = mine.find(key);
        if (own == mine.end() || !own->second.before.empty()) continue;
        both.insert(key);
        if (!HoldTheSame(own->second, row, hasBase)) open.push_back(key);
    }
    for (const RowKey& key : both) {
        const ado::RowChange& row = theirs.at(key);
        for (std::size_t i = 0; i < row.after.size(); ++i) {
            const auto* id = std::get_if<std::int32_t>(&row.after[i]);
            const std::string& column = (*row.columns)[i];
            const std::string_view target = TargetOf(row, column);
            if (id == nullptr || target.empty() || column == kKeyColumn) continue;
            const RowKey named(target, *id);
            namedBy.emplace(named, key);
            // A text is one row's own, which takes it along.
            if (target == kTextTable) namedBy.emplace(key, named);
        }
    }
    std::set<RowKey> taken;
    while (!open.empty()) {
        const RowKey key = open.back();
        open.pop_back();
        if (!both.contains(key) || !taken.insert(key).second) continue;
        const auto [begin, end] = namedBy.equal_range(key);
        for (auto each = begin; each != end; ++each) open.push_back(each->second);
    }
    return taken;
}

void Renumber(RowChanges& theirs, const NewNumbers& numbers) {
    if (numbers.empty()) return;
    RowChanges changed;
    for (auto& [key, row] : theirs) {
        for (std::size_t i = 0; i < row.after.size(); ++i) {
            const auto* id = std::get_if<std::int32_t>(&row.after[i]);
            const std::string& column = (*row.columns)[i];
            // Before them, what had their IDs was no row.
            if (id == nullptr || (column == kKeyColumn && !row.before.empty())) continue;
            const auto found = numbers.find({std::string(TargetOf(row, column)), *id});
            if (found != numbers.end()) row.after[i] = found->second;
        }
        const auto number = numbers.find(key);
        const bool isOther = number != numbers.end() && row.before.empty();
        changed.emplace(isOther ? RowKey(key.first, number->second) : key, std::move(row));
    }
    theirs = std::move(changed);
}

}  // namespace project
