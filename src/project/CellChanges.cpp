#include "project/CellChanges.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "ado/AdoError.h"
#include "project/Names.h"
#include "project/Rows.h"
#include "project/Schema.h"
#include "project/Transaction.h"

namespace project {
namespace {

using Cause = CellRefusal::Cause;

constexpr std::string_view kNameColumn = "Name";

/// The changes of one row, by their positions.
struct RowChanges {
    std::string_view table;
    std::int32_t id = 0;
    std::vector<std::size_t> changes;
};

std::vector<RowChanges> ByRow(std::span<const CellChange> changes) {
    std::vector<RowChanges> rows;
    std::map<std::pair<std::string_view, std::int32_t>, std::size_t> places;
    for (std::size_t i = 0; i < changes.size(); ++i) {
        const auto [place, isNew] =
            places.try_emplace({changes[i].table, changes[i].id}, rows.size());
        if (isNew) rows.push_back({changes[i].table, changes[i].id, {}});
        rows[place->second].changes.push_back(i);
    }
    return rows;
}

std::u16string KeyOf(std::u16string_view name) {
    std::u16string key = ado::FoldName(name);
    key.erase(key.find_last_not_of(u' ') + 1);
    return key;
}

/// Names of rows that are to have others, within one archive or among the archives.
struct Renaming {
    std::size_t change;
    std::int32_t id;
    std::u16string was;
    std::u16string is;
};

class CellWriter {
public:
    using GoOn = std::function<bool(int done, int total)>;

    CellWriter(ado::Connection& connection, std::span<const CellChange> changes, GoOn goOn)
        : changes_(changes), rows_(connection), byRow_(ByRow(changes)), goOn_(std::move(goOn)) {}

    std::vector<CellRefusal> Check() {
        std::vector<CellRefusal> refusals;
        renamings_.clear();
        for (const RowChanges& row : byRow_) {
            if (!MayGoOn()) return {};
            CheckRow(row, refusals);
        }
        for (const auto& [archive, renamings] : renamings_) {
            CheckNames(archive, renamings, refusals);
        }
        std::sort(refusals.begin(), refusals.end(),
                  [](const CellRefusal& a, const CellRefusal& b) { return a.change < b.change; });
        return refusals;
    }

    void Write() {
        for (const RowChanges& row : byRow_) {
            if (!MayGoOn()) return;
            WriteRow(row);
        }
    }
    [[nodiscard]] bool IsGivenUp() const { return isGivenUp_; }

private:
    static constexpr std::int32_t kArchives = -1;  // the scope of their names

    /// Called before each row.
    bool MayGoOn() {
        if (goOn_ && !goOn_(done_++, 2 * static_cast<int>(byRow_.size()))) isGivenUp_ = true;
        return !isGivenUp_;
    }

    /// Null where the schema has no such table.
    ado::Recordset* RowsOf(std::string_view table) {
        if (table == kArchiveTable) return &rows_.Archives();
        if (table == kTrendTable) return &rows_.Trends();
        if (table == kTextTable) return &rows_.Texts();
        if (table == kGroupTable) return &rows_.Groups();
        return nullptr;
    }

    bool Seek(const RowChanges& row) {
        ado::Recordset* rows = RowsOf(row.table);
        if (rows == nullptr) return false;
        rows->SetFilter("ID = " + std::to_string(row.id));
        return !rows->IsEOF();
    }

    void CheckRow(const RowChanges& row, std::vector<CellRefusal>& refusals) {
        if (!Seek(row)) {
            for (const std::size_t change : row.changes) {
                refusals.push_back({change, Cause::RowGone});
            }
            return;
        }
        ado::Recordset& stands = *RowsOf(row.table);
        for (const std::size_t at : row.changes) {
            if (const auto refusal = RefusalOf(stands, at)) {
                refusals.push_back(*refusal);
            } else if (IsName(changes_[at])) {
                const std::int32_t scope = row.table == kArchiveTable
                                               ? kArchives
                                               : NumberOf(stands, "ArchiveID").value_or(0);
                renamings_[scope].push_back(
                    {at, row.id, NameOf(stands), ado::ToText(changes_[at].is)});
            }
        }
    }

    static bool IsName(const CellChange& change) {
        return change.column == kNameColumn &&
               (change.table == kArchiveTable || change.table == kTrendTable);
    }

    std::optional<CellRefusal> RefusalOf(ado::Recordset& stands, std::size_t at) {
        const CellChange& change = changes_[at];
        if (!HasField(stands, change.column) || change.column == kKeyColumn) {
            return CellRefusal{at, Cause::NoField};
        }
        const ado::Value now = stands.Get(change.column);
        if (now != change.was) return CellRefusal{at, Cause::Changed, now};
        const EditScope scope(stands);
        try {
            stands.Set(change.column, change.is);
        } catch (const ado::AdoError& error) {
            if (error.Number() == ado::ErrorNumber::kDoesNotFit) {
                return CellRefusal{at, Cause::DoesNotFit};
            }
            if (error.Number() == ado::ErrorNumber::kWrongType) {
                return CellRefusal{at, Cause::WrongType};
            }
            throw;
        }
        if (!IsName(change)) return std::nullopt;
        const std::u16string name = ado::ToText(change.is);
        if (KeyOf(name).empty()) return CellRefusal{at, Cause::NameEmpty};
        const int longest =
            change.table == kArchiveTable ? LongestArchiveName() : LongestTrendName();
        if (name.size() > static_cast<std::size_t>(longest)) {
            return CellRefusal{at, Cause::DoesNotFit};
        }
        return std::nullopt;
    }

    int LongestArchiveName() {
        if (!longestArchiveName_) longestArchiveName_ = rows_.LongestArchiveName();
        return *longestArchiveName_;
    }
    int LongestTrendName() {
        if (!longestTrendName_) longestTrendName_ = rows_.LongestTrendName();
        return *longestTrendName_;
    }

    void CheckNames(std::int32_t scope, const std::vector<Renaming>& renamings,
                    std::vector<CellRefusal>& refusals) {
        std::map<std::u16string, int> names = NamesOf(scope);
        for (const Renaming& each : renamings) --names[KeyOf(each.was)];
        for (const Renaming& each : renamings) ++names[KeyOf(each.is)];
        for (const Renaming& each : renamings) {
            const std::u16string key = KeyOf(each.is);
            if (names[key] > 1 && key != KeyOf(each.was)) {
                refusals.push_back({each.change, Cause::NameDouble});
            }
        }
    }

    std::map<std::u16string, int> NamesOf(std::int32_t scope) {
        std::map<std::u16string, int> names;
        const bool isArchives = scope == kArchives;
        ado::Recordset& rows = isArchives ? rows_.Archives() : rows_.Trends();
        rows.SetFilter(isArchives ? std::string() : "ArchiveID = " + std::to_string(scope));
        for (; !rows.IsEOF(); rows.MoveNext()) ++names[KeyOf(NameOf(rows))];
        return names;
    }

    void WriteRow(const RowChanges& row) {
        try {
            if (!Seek(row)) {
                throw ado::AdoError(ado::ErrorNumber::kRowNotLocated, "The row has been deleted.");
            }
            ado::Recordset& stands = *RowsOf(row.table);
            const EditScope scope(stands);
            const bool hasName = row.table == kArchiveTable || row.table == kTrendTable;
            const std::u16string oldName = hasName ? NameOf(stands) : std::u16string();
            for (const std::size_t at : row.changes) {
                stands.Set(changes_[at].column, changes_[at].is);
            }
            stands.Update();
            if (hasName && NameOf(stands) != oldName) FollowName(row, oldName);
        } catch (const ado::AdoError& error) {
            throw ado::AdoError(error.Number(),
                                std::string(row.table) + ", row " + std::to_string(row.id) + ": " +
                                    error.Description(),
                                error.Reason());
        }
    }

    void FollowName(const RowChanges& row, const std::u16string& oldName) {
        if (row.table == kArchiveTable) return rows_.NameGroupAndText(row.id);
        if (!rows_.SeekTextOf(rows_.Trends())) return;
        ado::Recordset& text = rows_.Texts();
        const std::u16string name = TrendTextName(NameOf(rows_.Trends()));
        const auto room = text.Fields()[text.FieldIndex(kNameColumn)].definedSize;
        if (NameOf(text) != TrendTextName(oldName)) return;
        if (name.size() > static_cast<std::size_t>(room)) return;
        text.Set(kNameColumn, name);
        text.Update();
    }

    std::span<const CellChange> changes_;
    Rows rows_;
    std::vector<RowChanges> byRow_;
    GoOn goOn_;
    int done_ = 0;  // rows that have been looked at, and written
    bool isGivenUp_ = false;
    std::map<std::int32_t, std::vector<Renaming>> renamings_;  // by archive
    std::optional<int> longestArchiveName_;
    std::optional<int> longestTrendName_;
};

}  // namespace

std::vector<CellRefusal> CheckCells(ado::Connection& connection,
                                    std::span<const CellChange> changes) {
    return CellWriter(connection, changes, {}).Check();
}

WrittenCells WriteCells(ado::Connection& connection, std::span<const CellChange> changes,
                        const std::function<bool(int done, int total)>& goOn) {
    Transaction transaction(connection);
    CellWriter writer(connection, changes, goOn);
    WrittenCells written{false, writer.Check()};
    if (!written.refusals.empty()) return written;
    writer.Write();
    if (writer.IsGivenUp()) return written;
    transaction.Commit();
    written.isDone = true;
    return written;
}

}  // namespace project
