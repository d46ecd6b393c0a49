#include <algorithm>
#include <map>
#include <unordered_map>

#include "exchange/InputRows.h"
#include "exchange/Plan.h"
#include "exchange/RowMatch.h"
#include "exchange/SheetRows.h"
#include "project/Names.h"
#include "project/Rows.h"

namespace exchange {
namespace {

using Role = SheetColumn::Role;
using State = PlannedRow::State;
using Cause = PlannedRow::Cause;
using project::Problem;

/// How many rows name each text.
class TextUse {
public:
    explicit TextUse(ado::Connection& connection) {
        for (const std::string_view table : {project::kArchiveTable, project::kTrendTable}) {
            ado::Recordset rows;
            rows.Open(table, connection, ado::CommandType::Table);
            for (const std::int32_t text : rows.NumbersOf(rows.FieldIndex("TextID"))) ++uses_[text];
        }
    }
    [[nodiscard]] bool IsShared(std::int32_t text) const {
        const auto found = uses_.find(text);
        return found != uses_.end() && found->second > 1;
    }

private:
    std::unordered_map<std::int32_t, int> uses_;
};

class Planner {
public:
    Planner(ado::Connection& connection, const InputRows& input, const PlanOptions& options,
            const ArchiveNames* before, const GoOn& goOn)
        : options_(options),
          goOn_(goOn),
          input_(input),
          sheet_(input_.Columns()),
          archives_(NamesOf(connection, before)),
          stored_(connection, sheet_, archives_),
          match_(stored_, archives_, input_, options.matchBy),
          textUse_(connection),
          rows_(connection),
          name_(*sheet_.FindField("Name")),
          archive_(sheet_.FindRole(Role::Archive)) {}

    Plan Make() {
        plan_.kind = sheet_.Kind();
        plan_.sheet = input_.SheetName();
        plan_.places.assign(input_.Places().begin(), input_.Places().end());
        plan_.deleteMissing = options_.deleteMissing;
        CompareStored();
        AddNewAndDoubtful();
        std::stable_sort(plan_.rows.begin(), plan_.rows.end(),
                         [](const auto& a, const auto& b) { return a.line < b.line; });
        LeaveOut();
        RefuseDoubleNames();
        AddMissing();
        return std::move(plan_);
    }

private:
    static ArchiveNames NamesOf(ado::Connection& connection, const ArchiveNames* before) {
        ArchiveNames names(connection);
        if (before != nullptr) names.AddFormer(*before);
        return names;
    }
    [[nodiscard]] bool IsTrends() const { return plan_.kind == SheetKind::Trends; }
    [[nodiscard]] std::u16string ArchiveName(std::optional<std::int32_t> id) const {
        const std::u16string* name = id ? archives_.Find(*id) : nullptr;
        return name != nullptr ? *name : std::u16string();
    }

    static void Refuse(PlannedRow& row, Cause cause, std::size_t column, std::u16string_view given,
                       State state = State::Refused) {
        row.state = state;
        row.cause = cause;
        row.column = column;
        row.given = given;
    }

    void CountRow() {
        if (goOn_ && !goOn_(++counted_)) throw GivenUp();
    }

    /// All stored rows in one pass, each against the row that means it.
    void CompareStored() {
        stored_.Restart();
        Cell written;
        for (std::size_t at = 0; stored_.Next(); ++at) {
            const StoredRow& known = match_.Stored()[at];
            if (!known.input) continue;
            CountRow();
            PlannedRow row{.line = input_.Line(*known.input),
                           .id = known.id,
                           .archiveId = known.archive,
                           .archive = ArchiveName(known.archive),
                           .name = known.name};
            for (std::size_t i = 1; i < sheet_.Columns().size(); ++i) {
                const auto given = input_.Get(*known.input, i);
                if (!given) continue;
                const ado::Value value = stored_.Get(i);
                WriteCell(sheet_.Columns()[i], value, words::Languages().front(), written);
                if (IsSame(sheet_.Columns()[i], value, written, *given)) continue;
                const bool isArchive = archive_ == i && known.archive;
                if (isArchive && archives_.IsNameOf(*known.archive, given->text)) continue;
                if (!AddChange(row, i, value, *given)) break;
            }
            if (row.changes.empty() && row.cause == Cause::None) {
                ++plan_.same;
                continue;
            }
            if (row.cause == Cause::None) AddWhatFollows(row);
            plan_.rows.push_back(std::move(row));
        }
    }

    /// False when the row is refused.
    bool AddChange(PlannedRow& row, std::size_t i, const ado::Value& was, const CellView& given) {
        const SheetColumn& column = sheet_.Columns()[i];
        if (given.kind == CellKind::Unknown) {
            Refuse(row, Cause::NoResult, i, given.text);
            return false;
        }
        if (column.role == Role::Archive) return AddMove(row, i, given);
        const project::Reading read = ReadCell(column, given);
        if (read.problem != Problem::None) {
            Refuse(row, Cause::BadCell, i, given.text);
            row.problem = read.problem;
            if (given.kind == CellKind::Date) row.suspicion = Suspicion::Date;
            return false;
        }
        if (i == name_ && project::WithoutBlanks(given.text).empty()) {
            Refuse(row, Cause::NoName, i, given.text);
            return false;
        }
        if (i == name_ && static_cast<int>(given.text.size()) > LongestName()) {
            Refuse(row, Cause::BadCell, i, given.text);
            row.problem = Problem::TooLong;
            return false;
        }
        row.changes.push_back({.table = std::string(column.table),
                               .column = column.field.name,
                               .mask = column.mask,
                               .sheetColumn = i,
                               .was = Part(column, was),
                               .is = read.value,
                               .suspicion = SuspicionOf(column, was, given)});
        return true;
    }

    static ado::Value Part(const SheetColumn& column, const ado::Value& value) {
        const auto* number = std::get_if<std::int32_t>(&value);
        return column.mask != 0 && number != nullptr ? ado::Value(*number & column.mask) : value;
    }

    int LongestName() {
        if (!longestName_) {
            longestName_ = IsTrends() ? rows_.LongestTrendName() : rows_.LongestArchiveName();
        }
        return *longestName_;
    }

    /// The archive that a cell names; nothing, and the row is refused, when it is not one.
    std::optional<std::int32_t> ArchiveOf(PlannedRow& row, const CellView& given) {
        const auto& named = archives_.Named(std::u16string(given.text));
        if (named.size() == 1) return named.front();
        if (named.empty()) {
            Refuse(row, Cause::NoArchive, *archive_, given.text);
        } else {
            Refuse(row, Cause::SeveralArchives, *archive_, given.text, State::Ambiguous);
        }
        return std::nullopt;
    }

    bool AddMove(PlannedRow& row, std::size_t i, const CellView& given) {
        const auto to = ArchiveOf(row, given);
        if (!to) return false;
        row.target = ArchiveName(to);
        row.changes.push_back({.table = std::string(project::kTrendTable),
                               .column = sheet_.Columns()[i].field.name,
                               .sheetColumn = i,
                               .was = StoredArchive(),
                               .is = *to});
        return true;
    }

    /// What stands in the current row, be it an archive's ID or not.
    [[nodiscard]] ado::Value StoredArchive() const { return stored_.Field("ArchiveID"); }

    /// Names and places of texts and groups go with those of their rows; a text that several rows
    /// share is left to the others.
    void AddWhatFollows(PlannedRow& row) {
        const auto changes = [&](std::size_t column) -> const FieldChange* {
            const auto found =
                std::find_if(row.changes.begin(), row.changes.end(),
                             [&](const FieldChange& each) { return each.sheetColumn == column; });
            return found != row.changes.end() ? &*found : nullptr;
        };
        const FieldChange* name = changes(name_);
        const FieldChange* archive = archive_ ? changes(*archive_) : nullptr;
        const bool hasText =
            std::any_of(row.changes.begin(), row.changes.end(),
                        [](const FieldChange& each) { return each.table == project::kTextTable; });
        const ado::Value text = stored_.Field("TextID");
        row.ownText = hasText && !ado::IsNull(text) && textUse_.IsShared(ado::ToLong(text));
        if (row.ownText || (name == nullptr && archive == nullptr)) return;
        const std::u16string newName =
            name != nullptr ? std::get<std::u16string>(name->is) : row.name;
        std::vector<FieldChange> follow;
        if (!ado::IsNull(text) && rows_.SeekText(ado::ToLong(text))) {
            if (name != nullptr) FollowName(row, newName, follow);
            if (archive != nullptr) FollowArchive(row, ado::ToLong(archive->is), follow);
        }
        if (!IsTrends() && rows_.SeekGroup(row.id)) {
            follow.push_back({.table = std::string(project::kGroupTable),
                              .column = "Name",
                              .was = rows_.Groups().Get("Name"),
                              .is = newName});
        }
        row.changes.insert(row.changes.end(), follow.begin(), follow.end());
    }

    void FollowName(const PlannedRow& row, const std::u16string& newName,
                    std::vector<FieldChange>& follow) {
        const auto ruled = [&](const std::u16string& name) {
            return IsTrends() ? project::TrendTextName(name) : project::ArchiveTextName(name);
        };
        const ado::Value was = rows_.Texts().Get("Name");
        if (ado::ToText(was) != ruled(row.name)) return;
        follow.push_back({.table = std::string(project::kTextTable),
                          .column = "Name",
                          .was = was,
                          .is = ruled(newName)});
    }

    void FollowArchive(const PlannedRow& row, std::int32_t to, std::vector<FieldChange>& follow) {
        const ado::Value was = rows_.Texts().Get("ParentID");
        const bool isOfArchive =
            row.archiveId && was == ado::Value(rows_.GroupOfTrends(*row.archiveId));
        if (!isOfArchive) return;
        follow.push_back({.table = std::string(project::kTextTable),
                          .column = "ParentID",
                          .was = was,
                          .is = rows_.GroupOfTrends(to)});
    }

    void AddNewAndDoubtful() {
        for (std::size_t i = 0; i < input_.Count(); ++i) {
            if (match_.Of(i) != nullptr) continue;
            CountRow();
            const RowMatch::Doubt& doubt = match_.DoubtOf(i);
            PlannedRow row{.state = doubt.state, .cause = doubt.cause, .line = input_.Line(i)};
            const auto textOf = [&](std::size_t column) {
                const auto cell = input_.Get(i, column);
                return cell ? std::u16string(cell->text) : std::u16string();
            };
            row.name = textOf(name_);
            if (archive_) row.archive = textOf(*archive_);
            row.column = doubt.column;
            row.other = doubt.other;
            if (row.cause == Cause::BadCell) {
                row.given = textOf(row.column);
                row.problem = Problem::NoNumber;
            }
            if (row.cause == Cause::None) AddNew(row, i);
            plan_.rows.push_back(std::move(row));
        }
    }

    void AddNew(PlannedRow& row, std::size_t input) {
        row.state = State::New;
        if (project::WithoutBlanks(row.name).empty()) {
            return Refuse(row, Cause::NoName, name_, row.name);
        }
        for (std::size_t i = 1; i < sheet_.Columns().size(); ++i) {
            const auto given = input_.Get(input, i);
            if (!given) continue;
            if (sheet_.Columns()[i].role == Role::Archive) {
                row.archiveId = ArchiveOf(row, *given);
                if (!row.archiveId) return;
                row.archive = ArchiveName(row.archiveId);
                continue;
            }
            // A text that is Null is what a new row has anyway.
            const bool isNothing =
                sheet_.Columns()[i].role == Role::Text && given->kind == CellKind::Null;
            if (!isNothing && !AddChange(row, i, {}, *given)) return;
        }
        if (IsTrends() && !row.archiveId) Refuse(row, Cause::NoArchive, *archive_, u"");
    }

    void LeaveOut() {
        for (PlannedRow& row : plan_.rows) {
            const bool isIn = row.cause == Cause::None;
            if (isIn && options_.leftOut.contains({plan_.kind, row.line}))
                row.cause = Cause::LeftOut;
        }
    }

    // Names are held against each other in any case of letters, within an archive.
    using NameKey = std::pair<std::int32_t, std::u16string>;

    [[nodiscard]] std::optional<NameKey> NewName(const PlannedRow& row) const {
        if (row.cause != Cause::None) return std::nullopt;
        std::u16string name = row.name;
        std::int32_t archive = row.archiveId.value_or(0);
        bool isNew = row.state == State::New;
        for (const FieldChange& change : row.changes) {
            if (change.sheetColumn == name_) name = ado::ToText(change.is);
            const bool isMove = archive_ && change.sheetColumn == archive_;
            if (isMove) archive = ado::ToLong(change.is);
            isNew = isNew || isMove || change.sheetColumn == name_;
        }
        if (!isNew) return std::nullopt;
        return NameKey{archive, ado::FoldName(name)};
    }

    /// Refuses rows whose new name another row has afterwards. A refused row keeps its old name,
    /// which may be another one's new name.
    void RefuseDoubleNames() {
        const bool isAny = std::any_of(plan_.rows.begin(), plan_.rows.end(),
                                       [&](const auto& row) { return NewName(row).has_value(); });
        for (bool again = isAny; again;) {
            again = false;
            std::map<NameKey, int> names = OldNames();
            for (const PlannedRow& row : plan_.rows) {
                if (const auto name = NewName(row)) ++names[*name];
            }
            for (PlannedRow& row : plan_.rows) {
                const auto name = NewName(row);
                if (!name || names[*name] < 2) continue;
                Refuse(row, Cause::NameInUse, name_, name->second);
                again = true;
            }
        }
    }

    /// Of all rows that keep their names and are there afterwards.
    [[nodiscard]] std::map<NameKey, int> OldNames() const {
        std::map<std::int32_t, bool> leaves;
        for (const PlannedRow& row : plan_.rows) {
            if (row.state == State::Changed && NewName(row)) leaves[row.id] = true;
        }
        std::map<NameKey, int> names;
        for (const StoredRow& row : match_.Stored()) {
            if (!leaves.contains(row.id))
                ++names[{row.archive.value_or(0), ado::FoldName(row.name)}];
        }
        return names;
    }

    /// Trends of archives that the input names, and archives.
    void AddMissing() {
        std::map<std::int32_t, bool> named;
        for (const StoredRow& row : match_.Stored()) {
            if (row.input) named[row.archive.value_or(0)] = true;
        }
        for (const PlannedRow& row : plan_.rows) {
            if (row.archiveId) named[*row.archiveId] = true;
        }
        for (const StoredRow& stored : match_.Stored()) {
            if (stored.input || (IsTrends() && !named.contains(stored.archive.value_or(0)))) {
                continue;
            }
            if (IsMeant(stored.id)) continue;
            PlannedRow row{.state = State::Missing,
                           .id = stored.id,
                           .archiveId = stored.archive,
                           .archive = ArchiveName(stored.archive),
                           .name = stored.name};
            if (!IsTrends() && rows_.SeekTrendsOf(stored.id)) {
                row.trends = rows_.Trends().RecordCount();
            }
            if (options_.kept.contains({plan_.kind, row.id})) row.cause = Cause::LeftOut;
            plan_.rows.push_back(std::move(row));
        }
    }

    /// A row of which it cannot be told whether it has come in is not missing.
    [[nodiscard]] bool IsMeant(std::int32_t id) {
        if (!meant_) {
            meant_.emplace();
            for (std::size_t i = 0; i < input_.Count(); ++i) {
                const auto cell = input_.Get(i, 0);
                if (match_.Of(i) != nullptr || !cell) continue;
                const project::NumberText read = project::ReadNumber(cell->text);
                if (read.whole) (*meant_)[read.number] = true;
            }
        }
        return meant_->contains(id);
    }

    const PlanOptions& options_;
    const GoOn& goOn_;
    std::size_t counted_ = 0;
    const InputRows& input_;
    const Sheet& sheet_;
    ArchiveNames archives_;
    SheetRows stored_;
    RowMatch match_;
    TextUse textUse_;
    project::Rows rows_;
    std::size_t name_;
    std::optional<std::size_t> archive_;
    std::optional<int> longestName_;
    std::optional<std::map<double, bool>> meant_;
    Plan plan_;
};

}  // namespace

std::size_t Plan::Count(PlannedRow::State state) const {
    return static_cast<std::size_t>(std::count_if(
        rows.begin(), rows.end(), [&](const PlannedRow& row) { return row.state == state; }));
}

bool Plan::HasWork() const {
    return std::any_of(rows.begin(), rows.end(), [&](const PlannedRow& row) {
        const bool isDone = row.state != State::Missing || deleteMissing;
        return row.cause == Cause::None && isDone;
    });
}

Plan MakePlan(ado::Connection& connection, Input& input, const PlanOptions& options,
              const ReadOptions& reading) {
    return MakePlan(connection, InputRows(connection, input, reading), options);
}

Plan MakePlan(ado::Connection& connection, const InputRows& input, const PlanOptions& options,
              const ArchiveNames* before, const GoOn& goOn) {
    input.RequireKey();
    return Planner(connection, input, options, before, goOn).Make();
}

}  // namespace exchange
