#include "project/TakeBack.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>

#include "ado/AdoError.h"
#include "ado/Recordset.h"
#include "project/Schema.h"
#include "project/Transaction.h"

namespace project {
namespace {

using Key = std::pair<std::string, std::int32_t>;  // table, ID
using Values = std::vector<ado::Value>;

class Restorer {
public:
    Restorer(ado::Connection& connection, std::span<const Settlement> settled)
        : connection_(connection), settled_(settled) {}

    void Restore(std::span<const ado::RowChange> rows) {
        // Rows that need another ID come back first: those that name them are told of it.
        for (const ado::RowChange& row : rows) {
            if (row.after.empty() && IsTaken(row)) BringBackRenumbered(row);
        }
        // The last change first, as if the step ran backwards; archives behind their trends.
        for (const bool archives : {false, true}) {
            for (std::size_t i = rows.size(); i-- > 0;) {
                const ado::RowChange& row = rows[i];
                if (row.after.empty() || (row.table == kArchiveTable) != archives) continue;
                row.before.empty() ? Remove(row) : Change(row);
            }
        }
        // In the order of their numbers, in which they lay in the file.
        std::vector<const ado::RowChange*> gone;
        for (const ado::RowChange& row : rows) {
            if (row.after.empty() && !newNumbers_.contains(KeyOf(row))) gone.push_back(&row);
        }
        std::ranges::sort(gone, {}, [](const ado::RowChange* row) { return KeyOf(*row); });
        for (const ado::RowChange* row : gone) BringBack(*row);
        for (const ado::RowChange* row : renumberedRows_) TellReferences(*row);
    }

    [[nodiscard]] bool HasWritten() const { return hasWritten_; }
    TakenBack result;

private:
    [[nodiscard]] static Key KeyOf(const ado::RowChange& row) {
        return {row.table, ado::ToLong(*row.KnownIn(kKeyColumn))};
    }
    [[nodiscard]] ado::Recordset& Table(const std::string& name) {
        std::unique_ptr<ado::Recordset>& rows = tables_[name];
        if (rows == nullptr) {
            rows = std::make_unique<ado::Recordset>();
            rows->Open(name, connection_, ado::CommandType::Table);
        }
        return *rows;
    }
    /// Moves to the row; false when there is none.
    [[nodiscard]] bool Seek(const Key& key) {
        ado::Recordset& rows = Table(key.first);
        rows.SetFilter("ID = " + std::to_string(key.second));
        return !rows.IsEOF();
    }
    [[nodiscard]] std::optional<ado::Value> NewNumber(std::string_view table,
                                                      const ado::Value& id) const {
        const auto* number = std::get_if<std::int32_t>(&id);
        if (number == nullptr) return std::nullopt;
        const auto found = newNumbers_.find({std::string(table), *number});
        return found != newNumbers_.end() ? std::optional<ado::Value>(found->second) : std::nullopt;
    }
    /// A value that is to be written: what names a row that has another ID now follows it.
    [[nodiscard]] ado::Value Wanted(const ado::RowChange& row, std::size_t column) const {
        const ado::Value& value = row.before[column];
        const std::string& name = (*row.columns)[column];
        if (name == kKeyColumn) return value;
        return NewNumber(TargetOf(row, name), value).value_or(value);
    }

    /// How the user has settled it; nothing: it is still open, and is told.
    [[nodiscard]] std::optional<bool> TakesMine(Conflict conflict) {
        for (const Settlement& known : settled_) {
            const Conflict& c = known.conflict;
            const bool same = c.kind == conflict.kind && c.table == conflict.table &&
                              c.id == conflict.id && c.column == conflict.column &&
                              c.theirs == conflict.theirs;
            if (same) return known.takeMine;
        }
        result.open.push_back(std::move(conflict));
        return std::nullopt;
    }
    [[nodiscard]] static Conflict ConflictOf(Conflict::Kind kind, const ado::RowChange& row) {
        Conflict conflict;
        conflict.kind = kind;
        std::tie(conflict.table, conflict.id) = KeyOf(row);
        if (const ado::Value* name = row.KnownIn("Name")) conflict.name = ado::ToText(*name);
        return conflict;
    }

    /// Whether the current row holds these values.
    [[nodiscard]] static bool Equals(const ado::Recordset& now, const ado::RowChange& row,
                                     const Values& values) {
        for (std::size_t i = 0; i < row.columns->size(); ++i) {
            if (now.Get((*row.columns)[i]) != values[i]) return false;
        }
        return true;
    }
    [[nodiscard]] bool IsTaken(const ado::RowChange& row) {
        const Key key = KeyOf(row);
        return Seek(key) && !Equals(Table(key.first), row, row.before);
    }

    void BringBackRenumbered(const ado::RowChange& row) {
        const auto mine = TakesMine(ConflictOf(Conflict::Kind::NumberTaken, row));
        if (!mine.value_or(false)) return;
        const Key key = KeyOf(row);
        newNumbers_[key] = Insert(row, false);
        result.renumbered.push_back({key.first, key.second, newNumbers_[key]});
        renumberedRows_.push_back(&row);
    }
    void TellReferences(const ado::RowChange& row) {
        const Key key = KeyOf(row);
        if (!Seek({key.first, newNumbers_.at(key)})) return;
        ado::Recordset& rows = Table(key.first);
        for (std::size_t i = 0; i < row.columns->size(); ++i) {
            const ado::Value wanted = Wanted(row, i);
            if (wanted != row.before[i]) rows.Set((*row.columns)[i], wanted);
        }
        rows.Update();
    }
    void BringBack(const ado::RowChange& row) {
        if (!Seek(KeyOf(row))) Insert(row, true);
    }
    std::int32_t Insert(const ado::RowChange& row, bool underOldNumber) {
        ado::Recordset& rows = Table(row.table);
        rows.AddNew();
        for (std::size_t i = 0; i < row.columns->size(); ++i) {
            const std::string& column = (*row.columns)[i];
            if (column == kKeyColumn && !underOldNumber) continue;
            if (!ado::IsNull(row.before[i])) rows.Set(column, Wanted(row, i));
        }
        rows.Update();
        hasWritten_ = true;
        return ado::ToLong(rows.Get(kKeyColumn));
    }

    void Change(const ado::RowChange& row) {
        if (!Seek(KeyOf(row))) {
            if (TakesMine(ConflictOf(Conflict::Kind::RowGone, row)).value_or(false)) {
                Insert(row, true);
            }
            return;
        }
        ado::Recordset& rows = Table(row.table);
        bool changes = false;
        for (std::size_t i = 0; i < row.columns->size(); ++i) {
            if (row.before[i] == row.after[i]) continue;
            const std::string& column = (*row.columns)[i];
            const ado::Value wanted = Wanted(row, i);
            const ado::Value now = rows.Get(column);
            if (now == wanted) continue;
            if (now != row.after[i]) {
                Conflict conflict = ConflictOf(Conflict::Kind::Field, row);
                conflict.column = column;
                conflict.was = row.after[i];
                conflict.theirs = now;
                conflict.mine = wanted;
                if (!TakesMine(std::move(conflict)).value_or(false)) continue;
            }
            rows.Set(column, wanted);
            changes = true;
        }
        if (!changes) return;
        rows.Update();
        hasWritten_ = true;
    }

    void Remove(const ado::RowChange& row) {
        const Key key = KeyOf(row);
        if (!Seek(key)) return;
        if (!Equals(Table(key.first), row, row.after) &&
            !TakesMine(ConflictOf(Conflict::Kind::RowChanged, row)).value_or(false)) {
            return;
        }
        // Those of the step have gone already.
        if (key.first == kArchiveTable && HasTrends(key.second)) {
            std::ignore = TakesMine(ConflictOf(Conflict::Kind::RowInUse, row));
            return;
        }
        Table(key.first).Delete();
        hasWritten_ = true;
    }
    [[nodiscard]] bool HasTrends(std::int32_t archive) {
        ado::Recordset& trends = Table(std::string(kTrendTable));
        trends.SetFilter("ArchiveID = " + std::to_string(archive));
        return !trends.IsEOF();
    }

    ado::Connection& connection_;
    std::span<const Settlement> settled_;
    std::map<std::string, std::unique_ptr<ado::Recordset>> tables_;
    std::map<Key, std::int32_t> newNumbers_;
    std::vector<const ado::RowChange*> renumberedRows_;
    bool hasWritten_ = false;
};

}  // namespace

TakenBack TakeBack(ado::Connection& connection, const ChangeSet& step,
                   std::span<const Settlement> settled) {
    Transaction transaction(connection);
    Restorer restorer(connection, settled);
    restorer.Restore(step.Rows());
    if (restorer.result.open.empty() && restorer.HasWritten()) transaction.Commit();
    return std::move(restorer.result);
}

}  // namespace project
