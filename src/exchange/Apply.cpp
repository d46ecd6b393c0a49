#include "exchange/Apply.h"

#include <algorithm>
#include <map>

#include "ado/AdoError.h"
#include "project/CurveColours.h"
#include "project/Names.h"
#include "project/Rows.h"
#include "project/Transaction.h"
#include "unicode/Unicode.h"

namespace exchange {
namespace {

using State = PlannedRow::State;

/// The project is not what it was when the plan was made.
struct Stale {};

void Require(bool isSo) {
    if (!isSo) throw Stale();
}

class Applier {
public:
    Applier(ado::Connection& connection, const Plan& plan, std::function<void()> tellOfRow)
        : plan_(plan), rows_(connection), tellOfRow_(std::move(tellOfRow)) {}

    void Run() {
        // Names that are given up come first, as those that are taken may be the same.
        if (plan_.deleteMissing) Remove();
        for (const PlannedRow& row : plan_.rows) {
            if (row.cause != PlannedRow::Cause::None || row.state == State::Missing) continue;
            try {
                if (row.state == State::Changed) Change(row);
                if (row.state == State::New) Add(row);
                tellOfRow_();
            } catch (const ado::AdoError& error) {
                const std::string line = std::to_string(row.line) + ": ";
                const std::string where =
                    plan_.sheet.empty()
                        ? "Line " + line
                        : "Sheet \"" + unicode::ToUtf8(plan_.sheet) + "\", row " + line;
                throw ado::AdoError(error.Number(), where + error.Description());
            }
        }
    }

private:
    [[nodiscard]] bool IsTrends() const { return plan_.kind == SheetKind::Trends; }
    ado::Recordset& Own() { return IsTrends() ? rows_.Trends() : rows_.Archives(); }
    bool Seek(std::int32_t id) { return IsTrends() ? rows_.SeekTrend(id) : rows_.SeekArchive(id); }

    void Change(const PlannedRow& row) {
        Require(Seek(row.id));
        RequireTarget(row);
        Write(Own(), row, TableOf(plan_.kind));
        if (Has(row, project::kTextTable)) ChangeText(row);
        if (Has(row, project::kGroupTable)) {
            Require(rows_.SeekGroup(row.id));
            Write(rows_.Groups(), row, project::kGroupTable);
        }
    }

    /// Where a trend moves to may have been given its numbers in the same import: they have to be
    /// those of the plan.
    void RequireTarget(const PlannedRow& row) {
        if (row.target.empty()) return;
        std::int32_t archive = 0;
        for (const FieldChange& change : row.changes) {
            if (change.column == "ArchiveID") {
                archive = ado::ToLong(change.is);
                Require(rows_.SeekArchive(archive) &&
                        project::NameOf(rows_.Archives()) == row.target);
            } else if (change.column == "ParentID") {
                Require(change.is == ado::Value(rows_.GroupOfTrends(archive)));
            }
        }
    }

    void ChangeText(const PlannedRow& row) {
        const bool hasText = rows_.SeekTextOf(Own());
        if (hasText && !row.ownText) return Write(rows_.Texts(), row, project::kTextTable);
        project::Values texts;
        if (hasText) texts = CopyOfText();
        for (const FieldChange& change : row.changes) {
            if (change.table != project::kTextTable) continue;
            const auto found = std::find_if(texts.begin(), texts.end(), [&](const auto& each) {
                return each.first == change.column;
            });
            Require((found != texts.end() ? found->second : ado::Value()) == change.was);
            if (found != texts.end()) texts.erase(found);
            texts.emplace_back(change.column, change.is);
        }
        AddText(texts);
    }

    /// All but what the new text gets by rule.
    project::Values CopyOfText() {
        project::Values values;
        for (const ado::Field& field : rows_.Texts().Fields()) {
            if (field.autoNumber || field.name == "ParentID" || field.name == "Name") continue;
            values.emplace_back(field.name, rows_.Texts().Get(field.name));
        }
        return values;
    }

    /// A text of its own for the current row.
    void AddText(const project::Values& texts) {
        if (IsTrends()) {
            const auto archive = project::NumberOf(Own(), "ArchiveID");
            const std::int32_t group = archive ? rows_.GroupOfTrends(*archive) : rows_.RootGroup();
            project::NewTrend trend;
            trend.texts = texts;
            rows_.AddTrendText(group, trend);
            return;
        }
        const std::int32_t id = ado::ToLong(Own().Get("ID"));
        const std::int32_t group =
            rows_.SeekGroup(id) ? ado::ToLong(rows_.Groups().Get("ID")) : rows_.RootGroup();
        rows_.AddArchiveText(group, project::NameOf(Own()), {});
        for (const auto& [column, value] : texts) rows_.Texts().Set(column, value);
        rows_.Texts().Update();
    }

    static bool Has(const PlannedRow& row, std::string_view table) {
        return std::any_of(row.changes.begin(), row.changes.end(),
                           [&](const FieldChange& change) { return change.table == table; });
    }

    /// The changes of one table into its current row, over what the plan has seen there.
    static void Write(ado::Recordset& into, const PlannedRow& row, std::string_view table) {
        const project::EditScope scope(into);
        for (const FieldChange& change : row.changes) {
            if (change.table != table) continue;
            const ado::Value stands = into.Get(change.column);
            Require(Part(stands, change.mask) == change.was);
            into.Set(change.column, Joined(stands, change));
        }
        into.Update();
    }

    static ado::Value Part(const ado::Value& value, std::int32_t mask) {
        const auto* number = std::get_if<std::int32_t>(&value);
        return mask != 0 && number != nullptr ? ado::Value(*number & mask) : value;
    }

    /// Bits that are not the change's stay.
    static ado::Value Joined(const ado::Value& stands, const FieldChange& change) {
        if (change.mask == 0) return change.is;
        const std::int32_t others = ado::ToLong(stands) & ~change.mask;
        return others | ado::ToLong(change.is);
    }

    void Add(const PlannedRow& row) {
        if (IsTrends()) {
            AddTrend(row);
        } else {
            AddArchive(row);
        }
    }

    void AddTrend(const PlannedRow& row) {
        Require(rows_.SeekArchive(*row.archiveId) &&
                project::NameOf(rows_.Archives()) == row.archive);
        project::NewTrend trend;
        trend.name = row.name;
        for (const FieldChange& change : row.changes) {
            const bool isText = change.table == project::kTextTable;
            (isText ? trend.texts : trend.values).emplace_back(change.column, change.is);
        }
        const auto colours = colours_.try_emplace(*row.archiveId, rows_, *row.archiveId).first;
        trend.colour = colours->second.Next();
        rows_.AddTrend(*row.archiveId, trend);
        colours->second.Add(rows_.Trends());
        rows_.AddTrendText(rows_.GroupOfTrends(*row.archiveId), trend);
    }

    void AddArchive(const PlannedRow& row) {
        const std::int32_t id = rows_.AddArchive(row.name);
        const std::int32_t group = rows_.AddGroup(id, row.name);
        rows_.AddArchiveText(group, row.name, {});
        const auto write = [&](ado::Recordset& into, std::string_view table) {
            const project::EditScope scope(into);
            for (const FieldChange& change : row.changes) {
                if (change.table == table) {
                    into.Set(change.column, Joined(into.Get(change.column), change));
                }
            }
            into.Update();
        };
        write(rows_.Archives(), project::kArchiveTable);
        write(rows_.Texts(), project::kTextTable);
    }

    void Remove() {
        rows_.BeginRemoving();
        for (const PlannedRow& row : plan_.rows) {
            if (row.state != State::Missing || row.cause != PlannedRow::Cause::None) continue;
            Require(Seek(row.id) && project::NameOf(Own()) == row.name);
            if (!IsTrends()) RemoveTrendsOf(row);
            Require(IsTrends() ? rows_.RemoveTrend(row.id) : rows_.RemoveArchive(row.id));
            tellOfRow_();
        }
    }

    void RemoveTrendsOf(const PlannedRow& row) {
        std::vector<std::int32_t> trends;
        if (rows_.SeekTrendsOf(row.id)) {
            ado::Recordset& all = rows_.Trends();
            for (; !all.IsEOF(); all.MoveNext()) trends.push_back(ado::ToLong(all.Get("ID")));
        }
        Require(trends.size() == row.trends);
        for (const std::int32_t trend : trends) Require(rows_.RemoveTrend(trend));
    }

    const Plan& plan_;
    project::Rows rows_;
    std::map<std::int32_t, project::CurveColours> colours_;  // by archive
    std::function<void()> tellOfRow_;
};

}  // namespace

bool Apply(ado::Connection& connection, const Plan& plan) {
    return Apply(connection, std::span(&plan, 1), {}) == Outcome::Done;
}

Outcome Apply(ado::Connection& connection, std::span<const Plan> plans,
              const std::function<bool(std::size_t rows)>& goOn) {
    std::size_t rows = 0;
    const auto tellOfRow = [&] {
        ++rows;
        if (goOn && !goOn(rows)) throw GivenUp();
    };
    try {
        project::Transaction transaction(connection);
        for (const Plan& plan : plans) Applier(connection, plan, tellOfRow).Run();
        transaction.Commit();
        return Outcome::Done;
    } catch (const Stale&) {
        return Outcome::Stale;
    } catch (const GivenUp&) {
        return Outcome::GivenUp;
    }
}

}  // namespace exchange
