#include "projecttable/TrendTableModel.h"

#include <algorithm>
#include <QCollator>
#include <QWidget>

#include "cells/CellInput.h"
#include "cells/CellRefusal.h"
#include "cells/CellValue.h"
#include "guard/Guard.h"
#include "guard/RowProgress.h"
#include "project/Rows.h"
#include "projectdb/Failure.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

namespace {

/// More rows than this are announced as all of them.
constexpr std::size_t kFewRows = 16;
/// More cells than this may take longer than a user waits without a word.
constexpr qsizetype kFewCells = 200;

}  // namespace

TrendTableModel::TrendTableModel(const MResources::TextTable& texts, projectdb::IProjectWork& work,
                                 QWidget* owner)
    : GridSource(owner), texts_(texts), work_(work), owner_(owner) {}

TrendTableModel::~TrendTableModel() = default;

void TrendTableModel::SetTable(TrendTable table) {
    beginResetModel();
    auto held = std::make_unique<TrendTable>(std::move(table));
    order_ = std::make_unique<RowOrder>(*held, texts_);
    table_ = std::move(held);
    Compute();
    endResetModel();
    emit Narrowed();
}

void TrendTableModel::Narrow(Narrowing narrowing) {
    narrowing_ = std::move(narrowing);
    ApplyNarrowing();
}

void TrendTableModel::ApplyNarrowing() {
    if (table_ == nullptr) return;
    emit layoutAboutToBeChanged();
    Compute();
    emit layoutChanged();
    emit Narrowed();
}

void TrendTableModel::Compute() {
    std::map<std::size_t, RowFilter> filters;
    for (const auto& [field, text] : narrowing_.columns) {
        const int column = ColumnOf(field);
        RowFilter filter(text, locale_);
        if (column >= 0 && !filter.AsksNothing()) {
            filters.emplace(static_cast<std::size_t>(column), std::move(filter));
        }
    }
    std::vector<bool> shown;
    for (int column = 0; column < columnCount(); ++column) {
        shown.push_back(!narrowing_.hidden.contains(
            headerData(column, Qt::Horizontal, GridRole::kField).toString()));
    }
    order_->SetFilters(std::move(filters), RowFilter(narrowing_.anywhere, locale_),
                       std::move(shown));
    QList<RowOrder::Key> keys;
    for (const SortKey& key : keys_) {
        const int column = ColumnOf(key.field);
        if (column >= 0) keys.append({static_cast<std::size_t>(column), key.order});
    }
    order_->SetKeys(keys);
    rows_ = order_->Compute(narrowing_.archives);
    places_.assign(table_->RowCount(), -1);
    for (std::size_t place = 0; place < rows_.shown.size(); ++place) {
        places_[rows_.shown[place]] = static_cast<int>(place);
    }
}

QList<TrendTableModel::SortKey> TrendTableModel::SortKeys() const {
    return keys_;
}

void TrendTableModel::SetSortKeys(const QList<SortKey>& keys) {
    keys_ = keys;
    ApplyNarrowing();
}

bool TrendTableModel::SortRows(int column, Qt::SortOrder order, bool further) {
    if (table_ == nullptr) return true;
    if (!further || column < 0) keys_.clear();
    if (column >= 0) {
        const QString field = headerData(column, Qt::Horizontal, GridRole::kField).toString();
        keys_.removeIf([&](const SortKey& key) { return key.field == field; });
        keys_.append({field, order});
    }
    Compute();
    emit Narrowed();
    return true;
}

std::optional<Qt::SortOrder> TrendTableModel::OrderOf(int column) const {
    const QString field = headerData(column, Qt::Horizontal, GridRole::kField).toString();
    for (const SortKey& key : keys_) {
        if (key.field == field) return key.order;
    }
    return std::nullopt;
}

std::vector<TrendTableModel::Archive> TrendTableModel::Archives() {
    if (table_ == nullptr) return {};
    std::map<std::int32_t, Archive> byId;
    for (std::size_t row = 0; row < table_->RowCount(); ++row) {
        const std::int32_t id = table_->ArchiveOf(row);
        const auto [place, isNew] = byId.try_emplace(id);
        if (!isNew) continue;
        const QString& name = order_->TextOf(0, table_->NumberAt(row, 0));
        const auto count = rows_.byArchive.find(id);
        place->second = {id, name.isEmpty() ? u"(%1)"_s.arg(id) : name,
                         count == rows_.byArchive.end() ? 0 : count->second};
    }
    std::vector<Archive> archives;
    for (auto& [id, archive] : byId) archives.push_back(std::move(archive));
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    collator.setNumericMode(true);  // "Well 9" before "Well 10"
    std::stable_sort(archives.begin(), archives.end(), [&](const Archive& a, const Archive& b) {
        return collator.compare(a.name, b.name) < 0;
    });
    return archives;
}

std::size_t TrendTableModel::TrendCount() const {
    return table_ == nullptr ? 0 : table_->RowCount();
}

QStringList TrendTableModel::ValuesOf(int column) {
    if (table_ == nullptr) return {};
    // Values that no row has any more are not offered.
    const auto at = static_cast<std::size_t>(column);
    std::set<TrendTable::ValueNumber> used(ColumnAt(column).cells.begin(),
                                           ColumnAt(column).cells.end());
    QStringList values;
    for (const TrendTable::ValueNumber value : used) values.append(order_->TextOf(at, value));
    values.removeDuplicates();
    QCollator collator;
    collator.setNumericMode(true);
    std::sort(values.begin(), values.end(), collator);
    return values;
}

projectdb::Place TrendTableModel::PlaceOf(GridRowId row, int column) const {
    const std::string field = column >= 0 ? ColumnAt(column).field.baseColumn : std::string();
    const bool isArchive = column >= 0 && ColumnAt(column).isArchive;
    return {std::string(project::kTrendTable), static_cast<std::int32_t>(row),
            isArchive ? std::string() : field};
}

const TrendTable::Column& TrendTableModel::ColumnAt(int column) const {
    return table_->Columns()[static_cast<std::size_t>(column)];
}

int TrendTableModel::ColumnOf(const QString& field) const {
    for (int column = 0; column < columnCount(); ++column) {
        if (headerData(column, Qt::Horizontal, GridRole::kField).toString() == field) return column;
    }
    return -1;
}

GridRowId TrendTableModel::IdAt(int row) const {
    return table_->IdOf(rows_.shown[static_cast<std::size_t>(row)]);
}

int TrendTableModel::RowOf(GridRowId id) const {
    if (table_ == nullptr) return -1;
    const std::int64_t row = table_->RowOf(static_cast<std::int32_t>(id));
    return row < 0 ? -1 : places_[static_cast<std::size_t>(row)];
}

std::optional<QVariant> TrendTableModel::ReadCell(int column, const QString& text) const {
    const project::Reading read = CellInput(text, ColumnAt(column).field, locale_, texts_);
    // A text that is too long is refused with the reason when it is written.
    if (read.problem == project::Problem::TooLong) return text;
    if (read.problem != project::Problem::None) return std::nullopt;
    return StoredValue(read.value);
}

GridCommit TrendTableModel::CommitCell(GridRowId row, int column, const QVariant& value) {
    return CommitCells({{row, column, value}});
}

std::vector<project::CellChange> TrendTableModel::ChangesOf(const QList<GridCell>& cells) const {
    std::vector<project::CellChange> changes;
    for (const GridCell& cell : cells) {
        const auto row = table_->RowOf(static_cast<std::int32_t>(cell.row));
        const auto at = static_cast<std::size_t>(row);
        const auto column = static_cast<std::size_t>(cell.column);
        const TrendTable::Column& of = ColumnAt(cell.column);
        changes.push_back(
            {of.field.baseTable, row < 0 ? 0 : table_->StoredIn(at, column), of.field.baseColumn,
             row < 0 ? ado::Value() : table_->ValueAt(at, column), FieldValue(cell.value)});
    }
    return changes;
}

GridCommit TrendTableModel::CommitCells(const QList<GridCell>& cells) {
    const std::vector<project::CellChange> changes = ChangesOf(cells);
    GridCommit commit = GridCommit::Refused();
    // The call comes out of an event handler: nothing may be thrown into it.
    guard::Guard(u"frmProjectTable"_s, [&] {
        const std::uint64_t before = work_.Connection().ContentNumber();
        work_.RunStep([&] {
            try {
                commit = Write(changes, cells);
            } catch (const ado::AdoError& error) {
                const projectdb::Failure failure = projectdb::Failure::Current();
                commit = GridCommit::Failed(error.Number(), failure.Text(), failure.Details());
            }
        });
        if (commit.outcome == GridCommit::Outcome::Stored) TakeOver(changes, before);
    });
    return commit;
}

GridCommit TrendTableModel::Write(const std::vector<project::CellChange>& changes,
                                  const QList<GridCell>& cells) {
    project::WrittenCells written;
    {
        std::optional<RowProgress> progress;
        if (cells.size() > kFewCells) {
            progress.emplace(texts_, MResourceTable::kTextTableWriting, owner_);
        }
        written = project::WriteCells(work_.Connection(), changes,
                                      progress ? progress->Function() : projectdb::Progress());
    }
    if (written.isDone) return GridCommit::Stored();
    if (written.refusals.empty()) {
        emit GivenUp();
        return GridCommit::Refused();
    }
    const project::CellRefusal& first = written.refusals.front();
    return RefusalOf(first, cells[static_cast<qsizetype>(first.change)]);
}

GridCommit TrendTableModel::RefusalOf(const project::CellRefusal& refusal, const GridCell& cell) {
    const int row = RowOf(cell.row);
    const auto name = index(row, ColumnOf(u"Name"_s)).data().toString();
    GridCommit commit =
        GridCommit::Failed(ado::ErrorNumber::kIntegrity, CellRefusalText(refusal, name, texts_));
    commit.row = cell.row;
    commit.column = cell.column;
    // From now on what the other program has written is what the user sees.
    if (refusal.cause == project::CellRefusal::Cause::Changed && row >= 0) {
        table_->Set(rows_.shown[static_cast<std::size_t>(row)],
                    static_cast<std::size_t>(cell.column), refusal.stands);
        emit dataChanged(index(row, cell.column), index(row, cell.column));
    }
    return commit;
}

/// The rows as the file has them now: fields have their own idea of a value.
void TrendTableModel::TakeOver(const std::vector<project::CellChange>& changes,
                               std::uint64_t contentBefore) {
    std::set<std::pair<std::string_view, std::int32_t>> stored;
    for (const project::CellChange& change : changes) stored.emplace(change.table, change.id);
    project::Rows rows(work_.Connection());
    std::set<int> shown;
    for (const auto& [table, id] : stored) {
        const bool isTrend = table == project::kTrendTable;
        if (!(isTrend ? rows.SeekTrend(id) : rows.SeekText(id))) continue;
        const ado::Recordset& file = isTrend ? rows.Trends() : rows.Texts();
        for (const std::size_t row : table_->RowsStoredIn(table, id)) {
            for (std::size_t column = 0; column < table_->Columns().size(); ++column) {
                const TrendTable::Column& of = table_->Columns()[column];
                if (of.isArchive || of.field.baseTable != table) continue;
                table_->Set(row, column, file.Get(of.field.baseColumn));
            }
            if (places_[row] >= 0) shown.insert(places_[row]);
        }
    }
    // Where another program has written before, its rows are still to be read.
    if (table_->ContentNumber() == contentBefore) {
        table_->SetContentNumber(work_.Connection().ContentNumber());
    }
    if (shown.empty()) return;
    const int last = columnCount() - 1;
    if (shown.size() > kFewRows) {
        emit dataChanged(index(*shown.begin(), 0), index(*shown.rbegin(), last));
        return;
    }
    for (const int row : shown) emit dataChanged(index(row, 0), index(row, last));
}

int TrendTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.shown.size());
}

int TrendTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() || table_ == nullptr ? 0 : static_cast<int>(table_->Columns().size());
}

/// A text that is to be translated yet.
bool TrendTableModel::IsMissing(std::size_t row, std::size_t column) const {
    return table_->Columns()[column].field.baseTable == project::kTextTable &&
           order_->TextOf(column, table_->NumberAt(row, column)).trimmed().isEmpty();
}

QVariant TrendTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const std::size_t row = rows_.shown[static_cast<std::size_t>(index.row())];
    const auto column = static_cast<std::size_t>(index.column());
    switch (role) {
        case Qt::DisplayRole:
            return order_->TextOf(column, table_->NumberAt(row, column));
        case GridRole::kStored:
            return StoredValue(table_->ValueAt(row, column));
        case GridRole::kMissing:
            return IsMissing(row, column);
        case Qt::ToolTipRole:
            return IsMissing(row, column)
                       ? QVariant(texts_.GetText(MResourceTable::kTextTableMissing))
                       : QVariant();
        case GridRole::kExact:
            return ExactValue(table_->ValueAt(row, column));
        case GridRole::kNumber: {
            const auto* text = std::get_if<std::u16string>(&table_->ValueAt(row, column));
            const auto read = text != nullptr ? project::ReadNumber(*text) : project::NumberText();
            return read.whole && !read.tooLarge ? QVariant(read.number) : QVariant();
        }
        default:
            return {};
    }
}

QVariant TrendTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) {
        return GridSource::headerData(section, orientation, role);
    }
    const TrendTable::Column& column = ColumnAt(section);
    switch (role) {
        case Qt::DisplayRole:
        case GridRole::kField:
            return projectdb::ToQString(column.field.name);
        case GridRole::kKind:
            return static_cast<int>(KindOf(column.field));
        default:
            return {};
    }
}

Qt::ItemFlags TrendTableModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    const std::size_t row = rows_.shown[static_cast<std::size_t>(index.row())];
    const auto column = static_cast<std::size_t>(index.column());
    // A text that is not there cannot be written, and an archive is not renamed in passing.
    if (!ColumnAt(index.column()).isArchive && table_->StoredIn(row, column) != 0) {
        flags |= Qt::ItemIsEditable;
    }
    return flags;
}
