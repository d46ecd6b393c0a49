#include "project/TakeOver.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "ado/Recordset.h"
#include "project/Changes.h"
#include "project/Schema.h"
#include "project/TakeBack.h"

namespace project {
namespace {

using Key = std::pair<std::string, std::int32_t>;  // table, ID
using Values = std::vector<ado::Value>;
using Rows = std::vector<ado::RowChange>;

constexpr std::array kOwnTables = {kArchiveTable, kTrendTable, kTextTable, kGroupTable};

bool Comes(const ado::RowChange& row) {
    return row.after.empty();
}
bool Goes(const ado::RowChange& row) {
    return row.before.empty();
}

class Planner {
public:
    explicit Planner(const Differences& differences) : differences_(differences) {
        for (std::size_t i = 0; i < differences.rows.size(); ++i) {
            const ado::RowChange& row = differences.rows[i];
            const auto number = NumberOf(row);
            if (!number || !IsTakenOver(differences, row.table)) continue;
            places_.emplace(Key(row.table, *number), i);
            for (const Values* side : {&row.before, &row.after}) {
                ForEachNamed(row, *side, [&](const Key& key) { naming_[key].insert(i); });
            }
        }
    }

    void Want(const Wanted& wanted) {
        const ado::RowChange& row = differences_.rows.at(wanted.row);
        const auto number = NumberOf(row);
        if (!number || !places_.contains({row.table, *number})) return;
        if (wanted.column.empty() || Comes(row) || Goes(row)) {
            AddWhole(wanted.row);
        } else {
            AddField(wanted.row, wanted.column);
        }
    }

    Rows Plan() {
        FollowAll();
        AddLeftBehind();
        Rows rows;
        for (const auto& [place, columns] : chosen_) {
            ado::RowChange row = differences_.rows[place];
            if (!columns.empty()) KeepOthers(row, columns);
            rows.push_back(std::move(row));
        }
        return rows;
    }

private:
    using Columns = std::set<std::string>;  // none: the row as a whole

    template <typename Visit>
    static void ForEachNamed(const ado::RowChange& row, const Values& side, Visit visit) {
        for (std::size_t i = 0; i < side.size(); ++i) {
            const std::string& column = (*row.columns)[i];
            const auto* id = std::get_if<std::int32_t>(&side[i]);
            if (id == nullptr || column == kKeyColumn) continue;
            const std::string_view target = TargetOf(row, column);
            if (!target.empty()) visit(Key(target, *id));
        }
    }
    [[nodiscard]] static Key KeyOf(const ado::RowChange& row) {
        return {row.table, NumberOf(row).value_or(0)};
    }

    void AddWhole(std::size_t place) {
        const auto [at, isNew] = chosen_.try_emplace(place);
        if (!isNew && at->second.empty()) return;
        at->second.clear();
        open_.push_back(place);
    }
    void AddField(std::size_t place, const std::string& column) {
        const auto [at, isNew] = chosen_.try_emplace(place);
        if (!isNew && at->second.empty()) return;
        at->second.insert(column);
        open_.push_back(place);
    }
    void AddIf(const Key& key, bool (*condition)(const ado::RowChange&)) {
        const auto at = places_.find(key);
        if (at != places_.end() && condition(differences_.rows[at->second])) AddWhole(at->second);
    }

    void FollowAll() {
        while (!open_.empty()) {
            const std::size_t place = open_.back();
            open_.pop_back();
            Follow(differences_.rows[place], chosen_.at(place));
        }
    }
    void Follow(const ado::RowChange& row, const Columns& columns) {
        ForEachNamed(row, row.before, [&](const Key& key) { AddIf(key, Comes); });
        if (row.table == kArchiveTable && (Comes(row) || Goes(row))) {
            const auto naming = naming_.find(KeyOf(row));
            if (naming == naming_.end()) return;
            for (const std::size_t other : naming->second) {
                const ado::RowChange& hanging = differences_.rows[other];
                if (Comes(row) ? Comes(hanging) : Goes(hanging)) AddWhole(other);
            }
        }
        if (Comes(row) || Goes(row)) return;
        const bool isArchive = row.table == kArchiveTable;
        if (!columns.empty() && !(isArchive && columns.contains("Name"))) return;
        if (!isArchive && row.table != kTrendTable) return;
        const auto isChanged = [](const ado::RowChange& own) { return !Comes(own) && !Goes(own); };
        const ado::Value* text = row.ValueIn(row.before, "TextID");
        const auto* id = text != nullptr ? std::get_if<std::int32_t>(text) : nullptr;
        if (id != nullptr) AddIf({std::string(kTextTable), *id}, isChanged);
        const auto naming = naming_.find(KeyOf(row));
        if (!isArchive || naming == naming_.end()) return;
        for (const std::size_t other : naming->second) {
            const ado::RowChange& group = differences_.rows[other];
            if (group.table == kGroupTable && isChanged(group)) AddWhole(other);
        }
    }

    /// Texts, and then groups, that nothing names any more when what is chosen has gone.
    void AddLeftBehind() {
        for (const std::string_view table : {kTextTable, kGroupTable}) {
            std::vector<std::size_t> unnamed;
            for (const auto& [key, place] : places_) {
                const auto naming = naming_.find(key);
                if (key.first != table || !Goes(differences_.rows[place])) continue;
                if (naming == naming_.end() || chosen_.contains(place)) continue;
                const bool isLeft = std::ranges::all_of(naming->second, [&](std::size_t other) {
                    const auto chosen = chosen_.find(other);
                    return chosen != chosen_.end() && chosen->second.empty() &&
                           Goes(differences_.rows[other]);
                });
                if (isLeft) unnamed.push_back(place);
            }
            for (const std::size_t place : unnamed) chosen_.try_emplace(place);
        }
    }

    static void KeepOthers(ado::RowChange& row, const Columns& columns) {
        for (std::size_t i = 0; i < row.columns->size(); ++i) {
            if (!columns.contains((*row.columns)[i])) row.before[i] = row.after[i];
        }
    }

    const Differences& differences_;
    std::map<Key, std::size_t> places_;            // of the rows that can be taken over
    std::map<Key, std::set<std::size_t>> naming_;  // the rows that name one
    std::map<std::size_t, Columns> chosen_;        // by place
    std::vector<std::size_t> open_;                // what they need is still to be looked at
};

/// The names that rows would have beside those that stay.
class NameCheck {
public:
    NameCheck(ado::Connection& connection, const Rows& rows) : connection_(connection) {
        for (const ado::RowChange& row : rows) {
            if (IsNamed(row)) changing_.emplace(Key(row.table, *NumberOf(row)), &row);
        }
    }

    void Run(std::vector<TakeOverRefusal>& refusals) {
        for (const auto& [key, row] : changing_) {
            if (!IsTaken(key, *row)) continue;
            refusals.push_back({TakeOverRefusal::Cause::NameInUse, key.first, key.second,
                                ado::ToText(*row->ValueIn(row->before, "Name"))});
        }
    }

private:
    using Names = std::multimap<std::u16string, std::int32_t>;  // folded

    /// Whether the row gets another name, or other neighbours, or goes.
    static bool IsNamed(const ado::RowChange& row) {
        if (row.table != kArchiveTable && row.table != kTrendTable) return false;
        if (Comes(row) || Goes(row)) return true;
        return std::ranges::any_of(std::array{"Name", "ArchiveID"}, [&](const char* column) {
            const ado::Value* before = row.ValueIn(row.before, column);
            return before != nullptr && !IsSame(*before, *row.ValueIn(row.after, column));
        });
    }
    [[nodiscard]] bool IsTaken(const Key& key, const ado::RowChange& row) {
        if (Goes(row)) return false;
        const Names& names = NamesBeside(row);
        const auto name = ado::FoldName(ado::ToText(*row.ValueIn(row.before, "Name")));
        const auto [begin, end] = names.equal_range(name);
        // The other project may call two rows the same: that is its business.
        return std::any_of(begin, end, [&](const auto& each) {
            return each.second != key.second && !changing_.contains({key.first, each.second});
        });
    }
    /// Of the archives, or of the trends of the row's archive, as they are in the file.
    const Names& NamesBeside(const ado::RowChange& row) {
        const bool isTrend = row.table == kTrendTable;
        const ado::Value archive = isTrend ? *row.ValueIn(row.before, "ArchiveID") : ado::Value(0);
        const auto* id = std::get_if<std::int32_t>(&archive);
        const auto [at, isNew] = names_.try_emplace({row.table, id != nullptr ? *id : 0});
        if (!isNew || (isTrend && id == nullptr)) return at->second;
        ado::Recordset rows;
        rows.Open(row.table, connection_, ado::CommandType::Table);
        if (isTrend) rows.SetFilter("ArchiveID = " + std::to_string(*id));
        for (; !rows.IsEOF(); rows.MoveNext()) {
            at->second.emplace(ado::FoldName(ado::ToText(rows.Get("Name"))),
                               ado::ToLong(rows.Get(kKeyColumn)));
        }
        return at->second;
    }

    ado::Connection& connection_;
    std::map<Key, const ado::RowChange*> changing_;
    std::map<Key, Names> names_;  // by table and archive
};

/// The rows with the columns that the project has; those that nothing is left of are left out.
Rows InColumnsOf(ado::Connection& connection, Rows rows) {
    std::map<std::string, std::set<std::string>> tables;
    Rows result;
    for (ado::RowChange& row : rows) {
        std::set<std::string>& fields = tables[row.table];
        if (fields.empty()) {
            ado::Recordset own;
            own.Open(row.table, connection, ado::CommandType::Table);
            for (const ado::Field& field : own.Fields()) fields.insert(field.name);
        }
        std::vector<std::string> columns;
        for (std::size_t i = row.columns->size(); i-- > 0;) {
            if (fields.contains((*row.columns)[i])) {
                columns.insert(columns.begin(), (*row.columns)[i]);
                continue;
            }
            const auto at = static_cast<std::ptrdiff_t>(i);
            if (!row.before.empty()) row.before.erase(row.before.begin() + at);
            if (!row.after.empty()) row.after.erase(row.after.begin() + at);
        }
        if (columns.size() < row.columns->size()) {
            row.columns = std::make_shared<const std::vector<std::string>>(std::move(columns));
        }
        if (!std::ranges::equal(row.before, row.after, IsSame)) result.push_back(std::move(row));
    }
    return result;
}

TakeOverRefusal RefusalOf(const Conflict& conflict) {
    using Cause = TakeOverRefusal::Cause;
    const bool isInUse = conflict.kind == Conflict::Kind::RowInUse;
    return {isInUse ? Cause::HasTrends : Cause::Changed, conflict.table, conflict.id,
            conflict.name};
}

}  // namespace

bool IsTakenOver(const Differences& differences, const std::string& table) {
    return std::ranges::count(kOwnTables, table) > 0 &&
           std::ranges::count(differences.withoutIds, table) == 0;
}

std::vector<ado::RowChange> PlanTakeOver(const Differences& differences,
                                         std::span<const Wanted> wanted) {
    Planner planner(differences);
    for (const Wanted& each : wanted) planner.Want(each);
    return planner.Plan();
}

std::vector<TakeOverRefusal> TakeOver(ado::Connection& connection,
                                      std::vector<ado::RowChange> rows) {
    rows = InColumnsOf(connection, std::move(rows));
    std::vector<TakeOverRefusal> refusals;
    NameCheck(connection, rows).Run(refusals);
    if (!refusals.empty()) return refusals;
    // What this project holds is taken back to what the other one does.
    ChangeSet step;
    step.Add(std::move(rows));
    for (const Conflict& conflict : TakeBack(connection, step).open) {
        refusals.push_back(RefusalOf(conflict));
    }
    return refusals;
}

}  // namespace project
