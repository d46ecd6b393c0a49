#include "project/Merge.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <optional>

#include "ado/AdoError.h"
#include "ado/Recordset.h"
#include "project/Changes.h"
#include "project/compare/NewNumbers.h"
#include "project/compare/RowMerge.h"
#include "project/Differences.h"
#include "project/Schema.h"
#include "project/TakeBack.h"
#include "project/Transaction.h"

namespace project {
namespace {

using Columns = std::shared_ptr<const std::vector<std::string>>;
using Rows = std::vector<ado::RowChange>;

Columns ColumnsOf(ado::Connection& connection, const std::string& table) {
    ado::Recordset rows;
    rows.Open(table, connection, ado::CommandType::Table);
    std::vector<std::string> names;
    for (const ado::Field& field : rows.Fields()) names.push_back(field.name);
    return std::make_shared<const std::vector<std::string>>(std::move(names));
}

/// What each side has changed.
struct Sides {
    Differences mine;
    Differences theirs;
};

/// Without a common base: what both have has been made by both.
Sides WithoutBase(ado::Connection& mine, ado::Connection& theirs) {
    Sides sides;
    sides.theirs = Compare(mine, theirs);
    sides.theirs.tables.clear();
    Rows rows = std::exchange(sides.theirs.rows, {});
    for (ado::RowChange& row : rows) {
        if (row.after.empty()) continue;
        if (!row.before.empty()) {
            ado::RowChange own = row;
            own.after = std::exchange(own.before, {});
            sides.mine.rows.push_back(std::move(own));
        }
        row.before.clear();
        sides.theirs.rows.push_back(std::move(row));
    }
    return sides;
}

class Merger {
public:
    Merger(ado::Connection* base, ado::Connection& mine, ado::Connection& theirs)
        : base_(base), mine_(mine), theirs_(theirs) {}

    Merged Run() {
        RequireRoom();
        Sides sides = base_ != nullptr ? Sides{Compare(*base_, mine_), Compare(*base_, theirs_)}
                                       : WithoutBase(mine_, theirs_);
        for (const TableDifference& table : sides.theirs.tables) {
            if (table.kind != TableDifference::Kind::TableGone || !HasMine(table.table)) continue;
            AddConflict(MergeConflict::Kind::TableGone, table.table);
        }
        std::set<std::string> withoutIds(sides.mine.withoutIds.begin(),
                                         sides.mine.withoutIds.end());
        withoutIds.insert(sides.theirs.withoutIds.begin(), sides.theirs.withoutIds.end());
        Rows mine = InMyColumns(std::move(sides.mine.rows));
        Rows theirs = InMyColumns(std::move(sides.theirs.rows));
        const Rows mySets = TakeOut(mine, withoutIds);
        const Rows theirSets = TakeOut(theirs, withoutIds);
        RowChanges known = ByKey(std::move(mine));
        RowChanges coming = ByKey(std::move(theirs));
        GiveNewNumbers(known, coming);
        RowMerge rows(std::move(known), std::move(coming));
        rows.Run();
        std::ranges::move(rows.conflicts, std::back_inserter(merged_.conflicts));

        if (rows.steps.empty() && theirSets.empty()) return std::move(merged_);
        Transaction transaction(mine_);
        for (const std::string& table : withoutIds) MergeSets(table, mySets, theirSets);
        Apply(rows.steps);
        FindDoubledNames(rows);
        transaction.Commit();
        return std::move(merged_);
    }

private:
    using Named = std::pair<std::int32_t, std::u16string>;  // a row's ID and name

    [[nodiscard]] bool HasMine(const std::string& table) const {
        return std::ranges::count(mine_.TableNames(), table) > 0;
    }
    /// Tables and columns cannot be added.
    void RequireRoom() {
        for (const std::string& table : theirs_.TableNames()) {
            if (!HasMine(table)) RefuseFor("the table " + table);
            const Columns mine = ColumnsOf(mine_, table);
            const Columns theirs = ColumnsOf(theirs_, table);
            for (const std::string& column : *theirs) {
                if (std::ranges::count(*mine, column) > 0) continue;
                RefuseFor("the column " + column + " of the table " + table);
            }
        }
    }
    [[noreturn]] void RefuseFor(const std::string& what) const {
        throw ado::AdoError(ado::ErrorNumber::kInvalidArgument,
                            '"' + theirs_.DataSource() + "\": it has " + what +
                                ", which the other project does not have. Give the other one the "
                                "same languages and tables first, or merge the other way round.");
    }
    void AddConflict(MergeConflict::Kind kind, const std::string& table) {
        MergeConflict conflict;
        conflict.kind = kind;
        conflict.table = table;
        merged_.conflicts.push_back(std::move(conflict));
    }

    /// The changes of columns that my project has, in their order.
    Rows InMyColumns(Rows rows) {
        std::map<std::string, Columns> tables;
        Rows result;
        for (ado::RowChange& row : rows) {
            Columns& columns = tables[row.table];
            if (columns == nullptr) columns = ColumnsOf(mine_, row.table);
            if (*row.columns != *columns) {
                for (std::vector<ado::Value>* side : {&row.before, &row.after}) {
                    if (side->empty()) continue;
                    std::vector<ado::Value> values;
                    for (const std::string& column : *columns) {
                        const ado::Value* value = row.ValueIn(*side, column);
                        values.push_back(value != nullptr ? *value : ado::Value());
                    }
                    *side = std::move(values);
                }
            }
            row.columns = columns;
            if (!std::ranges::equal(row.before, row.after, IsSame)) {
                result.push_back(std::move(row));
            }
        }
        return result;
    }

    /// The rows of some tables, which are then gone from the others.
    static Rows TakeOut(Rows& rows, const std::set<std::string>& tables) {
        const auto rest = std::ranges::stable_partition(
            rows, [&](const ado::RowChange& row) { return !tables.contains(row.table); });
        Rows taken(std::make_move_iterator(rest.begin()), std::make_move_iterator(rest.end()));
        rows.erase(rest.begin(), rest.end());
        return taken;
    }

    void GiveNewNumbers(const RowChanges& mine, RowChanges& theirs) {
        NewNumbers numbers;
        std::map<std::string, std::int32_t> last;  // by table
        for (const RowKey& key : FindTaken(mine, theirs, base_ != nullptr)) {
            const auto [at, isNew] = last.try_emplace(key.first);
            if (isNew) at->second = LastNumber(key.first);
            if (at->second == std::numeric_limits<std::int32_t>::max()) {
                throw ado::AdoError(ado::ErrorNumber::kDoesNotFit,
                                    '"' + mine_.DataSource() + "\": the table " + key.first +
                                        " has no numbers left for new rows. kvs repair writes a "
                                        "file that has.");
            }
            numbers[key] = ++at->second;
            const ado::Value* name = theirs.at(key).KnownIn("Name");
            merged_.renumbered.push_back({key.first, key.second, at->second,
                                          name != nullptr ? ado::ToText(*name) : std::u16string()});
        }
        Renumber(theirs, numbers);
    }
    [[nodiscard]] std::int32_t LastNumber(const std::string& table) {
        std::int32_t last = 0;
        for (ado::Connection* project : {&mine_, &theirs_}) {
            ado::Recordset rows;
            rows.Open(table, *project, ado::CommandType::Table);
            for (const std::int32_t id : rows.NumbersOf(rows.FieldIndex(kKeyColumn))) {
                last = std::max(last, id);
            }
        }
        return last;
    }

    /// A table whose rows have no IDs is theirs or mine as a whole.
    void MergeSets(const std::string& table, const Rows& mine, const Rows& theirs) {
        const auto of = [&](const Rows& rows) {
            std::vector<const ado::RowChange*> found;
            for (const ado::RowChange& row : rows) {
                if (row.table == table) found.push_back(&row);
            }
            return found;
        };
        const auto myRows = of(mine);
        const auto theirRows = of(theirs);
        const auto isEqual = [](const ado::RowChange* a, const ado::RowChange* b) {
            return std::ranges::equal(a->before, b->before, IsSame) &&
                   std::ranges::equal(a->after, b->after, IsSame);
        };
        if (theirRows.empty() || std::ranges::is_permutation(myRows, theirRows, isEqual)) return;
        if (!myRows.empty()) {
            return AddConflict(MergeConflict::Kind::TableChanged, table);
        }
        ado::Recordset rows;
        rows.Open(table, mine_, ado::CommandType::Table);
        for (const ado::RowChange* row : theirRows) {
            if (!row->before.empty()) Remove(rows, row->before);
            if (!row->after.empty()) Insert(rows, row->after);
        }
    }
    static void Remove(ado::Recordset& rows, const std::vector<ado::Value>& values) {
        if (!rows.IsBOF() || !rows.IsEOF()) rows.MoveFirst();
        for (; !rows.IsEOF(); rows.MoveNext()) {
            std::size_t i = 0;
            while (i < values.size() && IsSame(rows.Get(i), values[i])) ++i;
            if (i == values.size()) return rows.Delete();
        }
    }
    static void Insert(ado::Recordset& rows, const std::vector<ado::Value>& values) {
        rows.AddNew();
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (!ado::IsNull(values[i])) rows.Set(i, values[i]);
        }
        rows.Update();
    }

    /// Taking back a step that has led from the result to what is there.
    void Apply(const Rows& steps) {
        if (steps.empty()) return;
        Rows taken = steps;
        for (ado::RowChange& row : taken) std::swap(row.before, row.after);
        ChangeSet step;
        step.Add(std::move(taken));
        if (!TakeBack(mine_, step).open.empty()) {
            throw ado::AdoError(ado::ErrorNumber::kRowNotLocated,
                                '"' + mine_.DataSource() +
                                    "\": another program has changed it meanwhile. Try again.");
        }
    }

    /// Rows that are called the same since one side has named the one, and one the other.
    void FindDoubledNames(const RowMerge& rows) {
        std::set<std::pair<RowKey, std::int32_t>> told;
        for (const ado::RowChange& step : rows.steps) {
            if (step.after.empty() || !IsNamed(step)) continue;
            const RowKey own(step.table, NumberOf(step).value_or(0));
            const bool isMixed = IsNamedIn(rows.Mine(), own);
            for (const auto& [other, name] : Namesakes(step, own.second)) {
                const RowKey key(own.first, other);
                const bool isDoubled = isMixed || IsNamedIn(rows.Mine(), key);
                if (!isDoubled || told.contains({key, own.second})) continue;
                told.insert({own, other});
                AddConflict(MergeConflict::Kind::NameDoubled, step.table);
                merged_.conflicts.back().id = own.second;
                merged_.conflicts.back().other = other;
                merged_.conflicts.back().otherName = name;
                merged_.conflicts.back().name = ado::ToText(*step.ValueIn(step.after, "Name"));
            }
        }
    }
    /// Whether a change gives the row another name, or other neighbours.
    [[nodiscard]] static bool IsNamed(const ado::RowChange& row) {
        if (row.table != kArchiveTable && row.table != kTrendTable) return false;
        if (row.before.empty() || row.after.empty()) return true;
        return std::ranges::any_of(std::array{"Name", "ArchiveID"}, [&](const char* column) {
            const ado::Value* before = row.ValueIn(row.before, column);
            return before != nullptr && !IsSame(*before, *row.ValueIn(row.after, column));
        });
    }
    [[nodiscard]] static bool IsNamedIn(const RowChanges& changes, const RowKey& key) {
        const auto found = changes.find(key);
        return found != changes.end() && IsNamed(found->second);
    }
    /// Archives, or trends of the same archive, that have the name of the row.
    std::vector<Named> Namesakes(const ado::RowChange& row, std::int32_t own) {
        const bool isTrend = row.table == kTrendTable;
        const ado::Value archive = isTrend ? *row.ValueIn(row.after, "ArchiveID") : ado::Value(0);
        const auto* id = std::get_if<std::int32_t>(&archive);
        if (id == nullptr) return {};
        const auto [names, isNew] = names_.try_emplace({row.table, *id});
        if (isNew) {
            ado::Recordset rows;
            rows.Open(row.table, mine_, ado::CommandType::Table);
            if (isTrend) rows.SetFilter("ArchiveID = " + std::to_string(*id));
            for (; !rows.IsEOF(); rows.MoveNext()) {
                const ado::Value name = rows.Get("Name");
                names->second.emplace(Folded(name),
                                      Named(ado::ToLong(rows.Get(kKeyColumn)), ado::ToText(name)));
            }
        }
        std::vector<Named> others;
        const auto [begin, end] =
            names->second.equal_range(Folded(*row.ValueIn(row.after, "Name")));
        for (auto each = begin; each != end; ++each) {
            if (each->second.first != own) others.push_back(each->second);
        }
        return others;
    }
    [[nodiscard]] static std::u16string Folded(const ado::Value& name) {
        return ado::FoldName(ado::ToText(name));
    }

    ado::Connection* base_;  // may be null
    ado::Connection& mine_;
    ado::Connection& theirs_;
    Merged merged_;
    std::map<RowKey, std::multimap<std::u16string, Named>> names_;  // by archive and folded name
};

}  // namespace

Merged Merge(ado::Connection* base, ado::Connection& mine, ado::Connection& theirs) {
    return Merger(base, mine, theirs).Run();
}

}  // namespace project
