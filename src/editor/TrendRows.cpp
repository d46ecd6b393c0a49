#include "editor/TrendRows.h"

#include <set>
#include <unordered_map>
#include <utility>

#include "cells/CellValue.h"
#include "project/Rows.h"
#include "project/Transaction.h"
#include "projectdb/Failure.h"
#include "projectdb/Hierarchy.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

/// The column of the table of trends that a field holds; null when it is another's.
const project::Column* KnownColumn(const ado::Field& field) {
    return field.baseTable == project::kTrendTable ? project::FindTrendColumn(field.baseColumn)
                                                   : nullptr;
}

/// Whether a trend has that setting of its own: keys are given to it.
bool IsSettingField(const ado::Field& field) {
    if (field.baseTable != project::kTrendTable) return false;
    const project::Column* column = KnownColumn(field);
    return column != nullptr ? column->caption != 0 : field.baseColumn != project::kKeyColumn;
}

/// New names of trends, taken as a set: one that another of them gives up is free. Unless they are
/// kept the lists have the old ones again at the end.
class TrendNames {
public:
    explicit TrendNames(INameRegistry& registry) : registry_(registry) {}
    ~TrendNames() {
        for (const Name& name : names_) Move(name.stands, name.aside);
        for (const Name& name : names_) Move(name.aside, name.stored);
    }
    TrendNames(const TrendNames&) = delete;
    TrendNames& operator=(const TrendNames&) = delete;

    void Change(int row, const QString& stored, const QString& name) {
        const QString aside = QChar(1) + QString::number(names_.size());  // nobody's name
        Move(stored, aside);
        names_.push_back({row, stored, aside, aside, name});
    }
    /// Number of the text that says why not; 0 when all have been taken.
    [[nodiscard]] int Take() {
        for (Name& name : names_) {
            if (name.wanted.trimmed().isEmpty()) return MResourceTable::kTextNameRequired;
            // What is not changed is not refused, however many have it already.
            if (name.wanted != name.stored &&
                registry_.TestNameInGroup(projectdb::kTrendNames, name.wanted)) {
                return MResourceTable::kTextNameInUse;
            }
            Move(name.aside, name.wanted);
            name.stands = name.wanted;
        }
        return 0;
    }
    /// `nameOf` a row as it has been stored.
    void Keep(const std::function<QString(int row)>& nameOf) {
        for (const Name& name : names_) Move(name.stands, nameOf(name.row));
        names_.clear();
    }

private:
    struct Name {
        int row;
        QString stored;
        QString aside;   // stands for it while the set is taken
        QString stands;  // in the lists now
        QString wanted;
    };
    void Move(const QString& from, const QString& to) {
        registry_.ChangeNameInGroup(projectdb::kTrendNames, from, to);
    }

    INameRegistry& registry_;
    std::vector<Name> names_;
};

}  // namespace

TrendRows::TrendRows(const MResources::TextTable& texts, INameRegistry& names, Refusal refuse,
                     AskForConflicts ask, QObject* parent)
    : RecordsetModel(texts, parent),
      names_(names),
      refuse_(std::move(refuse)),
      ask_(std::move(ask)) {}

void TrendRows::AttachTrends(ado::Recordset& trends, ado::Connection& connection,
                             const QVariant& archive) {
    connection_ = &connection;
    std::vector<Column> columns;
    for (const ado::Field& field : trends.Fields()) {
        const project::Column* known = KnownColumn(field);
        const bool isKey = known != nullptr && known->kind == project::Kind::Key;
        const bool editable = IsSettingField(field) && !isKey;
        columns.push_back({field.name, KindOf(field), editable});
    }
    Attach(trends, std::move(columns), archive);
}

bool TrendRows::IsSetting(int column) const {
    return IsSettingField(FieldAt(column));
}

bool TrendRows::IsLanguage(int column) const {
    const ado::Field& field = FieldAt(column);
    return field.baseTable == project::kTextTable && project::IsLanguageColumn(field.baseColumn);
}

std::vector<TrendRows::RowCells> TrendRows::ByRow(const QList<GridCell>& cells) const {
    std::vector<RowCells> rows;
    std::unordered_map<GridRowId, std::size_t> places;
    for (const GridCell& cell : cells) {
        const auto [place, isNew] = places.try_emplace(cell.row, rows.size());
        if (isNew) rows.push_back({RowOf(cell.row), {}});
        rows[place->second].cells.emplace_back(cell.column, FieldValue(cell.value));
    }
    return rows;
}

GridCommit TrendRows::CommitCell(GridRowId row, int column, const QVariant& value) {
    return CommitCells({{row, column, value}});
}

GridCommit TrendRows::CommitCells(const QList<GridCell>& cells) {
    std::vector<RowCells> rows = ByRow(cells);
    TrendNames names(names_);
    for (const RowCells& row : rows) {
        if (row.row < 0) return GridCommit::Failed(kRowChanged, {});
        for (const auto& [column, value] : row.cells) {
            if (column != NameColumn()) continue;
            names.Change(row.row, projectdb::ToQString(ado::ToText(ValueAt(row.row, column))),
                         projectdb::ToQString(ado::ToText(value)));
        }
    }
    if (const int refusal = names.Take(); refusal != 0) {
        refuse_(refusal);
        return GridCommit::Refused();
    }
    const GridCommit commit = Write(rows);
    // As the rows bear them now: where the user has let another program's value stand, that.
    if (commit.outcome == GridCommit::Outcome::Stored) {
        names.Keep(
            [&](int row) { return projectdb::ToQString(ado::ToText(ValueAt(row, NameColumn()))); });
    }
    return commit;
}

std::optional<QList<GridCell>> TrendRows::Settle(const QList<GridCell>& cells) {
    std::vector<RowCells> rows = ByRow(cells);
    std::erase_if(rows, [](const RowCells& row) { return row.row < 0; });
    if (!Join(rows)) return std::nullopt;
    std::set<std::pair<GridRowId, int>> left;
    for (const RowCells& row : rows) {
        for (const auto& [column, value] : row.cells) left.emplace(IdAt(row.row), column);
    }
    QList<GridCell> settled = cells;
    settled.removeIf([&](const GridCell& cell) { return !left.contains({cell.row, cell.column}); });
    return settled;
}

bool TrendRows::Join(std::vector<RowCells>& rows) {
    std::vector<project::Conflict> conflicts;
    std::vector<std::pair<RowCells*, int>> places;
    for (RowCells& row : rows) {
        MoveTo(row.row);
        Rows().Resync();  // it may have been the current one already, as it was then
        if (!HasChanged(row.row)) continue;
        std::vector<ado::Value> before;
        for (const auto& [column, value] : row.cells) before.push_back(ValueAt(row.row, column));
        TakeOver(row.row);
        for (std::size_t i = 0; i < row.cells.size(); ++i) {
            const auto& [column, mine] = row.cells[i];
            const ado::Value& theirs = ValueAt(row.row, column);
            if (theirs == before[i] || theirs == mine) continue;
            project::Conflict conflict;
            conflict.was = before[i];
            conflict.theirs = theirs;
            conflict.mine = mine;
            conflict.table = FieldAt(column).baseTable;
            conflict.column = FieldAt(column).baseColumn;
            conflict.name = project::NameOf(Rows());
            conflicts.push_back(std::move(conflict));
            places.emplace_back(&row, column);
        }
    }
    if (conflicts.empty()) return true;
    const auto mine = ask_(conflicts);
    if (!mine) return false;
    for (std::size_t i = 0; i < places.size(); ++i) {
        if ((*mine)[i]) continue;
        const int column = places[i].second;
        std::erase_if(places[i].first->cells,
                      [column](const auto& cell) { return cell.first == column; });
    }
    return Join(rows);  // while the user was asked they may have become others
}

void TrendRows::WriteRow(const RowCells& row, int& column) {
    MoveTo(row.row);
    for (const auto& [at, value] : row.cells) {
        column = at;
        if (at == NameColumn()) {
            project::RenameTrendText(Rows(), project::NameOf(Rows()), ado::ToText(value));
        }
        Rows().Set(Columns()[static_cast<std::size_t>(at)].field, value);
    }
    Rows().Update();
    TakeOver(row.row);
}

void TrendRows::ReadAgain(const std::vector<RowCells>& rows) {
    try {
        for (const RowCells& row : rows) {
            MoveTo(row.row);
            Rows().Resync();
            TakeOver(row.row);
        }
    } catch (const ado::AdoError&) {
        // A row that has gone is found to have when the window reads the rows anew.
    }
}

GridCommit TrendRows::Write(std::vector<RowCells>& rows) {
    const RowCells* at = nullptr;
    int column = -1;
    GridCommit commit;
    try {
        if (!Join(rows)) return GridCommit::Refused();
        std::erase_if(rows, [](const RowCells& row) { return row.cells.empty(); });
        project::Transaction transaction(*connection_);
        for (const RowCells& row : rows) {
            at = &row;
            WriteRow(row, column);
        }
        transaction.Commit();
        return GridCommit::Stored();
    } catch (const ado::AdoError& error) {
        const projectdb::Failure failure = projectdb::Failure::Current();
        Rows().CancelUpdate();
        const bool changed = error.Number() == ado::ErrorNumber::kRowNotLocated;
        commit = GridCommit::Failed(changed ? kRowChanged : error.Number(), failure.Text(),
                                    failure.Details());
    }
    if (at != nullptr) {
        commit.row = IdAt(at->row);
        commit.column = column;
    }
    ReadAgain(rows);
    return commit;
}
