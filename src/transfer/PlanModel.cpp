#include "transfer/PlanModel.h"

#include <algorithm>
#include <numeric>

#include "projectdb/Text.h"
#include "texts/MResourceTable.h"
#include "transfer/PlanTexts.h"

namespace transfer {
namespace {

using namespace Qt::Literals::StringLiterals;
using exchange::PlannedRow;
using Text = MResourceTable::Exchange;

// An index of a row has this number, one of a field that of its row above it.
constexpr quintptr kRow = 0;

}  // namespace

PlanModel::PlanModel(const MResources::TextTable& texts, QObject* parent)
    : QAbstractItemModel(parent), texts_(texts) {}

void PlanModel::Take(ado::Connection& connection, std::vector<exchange::Plan> plans) {
    std::vector<exchange::Sheet> sheets;
    std::vector<Place> rows;
    for (std::size_t i = 0; i < plans.size(); ++i) {
        sheets.emplace_back(connection, plans[i].kind);
        for (std::size_t row = 0; row < plans[i].rows.size(); ++row) rows.push_back({i, row});
    }
    // A tick changes what is said of rows and seldom which there are: then the view stays where it
    // is, with what is open in it.
    bool isAlike = rows == rows_;
    for (std::size_t i = 0; isAlike && i < rows.size(); ++i) {
        const PlannedRow& now = plans[rows[i].plan].rows[rows[i].row];
        isAlike = now.line == RowOf(rows[i]).line && now.id == RowOf(rows[i]).id &&
                  now.changes.size() == RowOf(rows[i]).changes.size();
    }
    if (!isAlike) beginResetModel();
    plans_ = std::move(plans);
    sheets_ = std::move(sheets);
    rows_ = std::move(rows);
    if (!isAlike) return endResetModel();
    if (rows_.empty()) return;
    emit dataChanged(index(0, 0), index(static_cast<int>(rows_.size()) - 1, kColumnCount - 1));
}

QModelIndex PlanModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) return {};
    return createIndex(row, column,
                       parent.isValid() ? static_cast<quintptr>(parent.row()) + 1 : kRow);
}

QModelIndex PlanModel::parent(const QModelIndex& index) const {
    if (!index.isValid() || index.internalId() == kRow) return {};
    return createIndex(static_cast<int>(index.internalId() - 1), 0, kRow);
}

int PlanModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) return static_cast<int>(rows_.size());
    if (parent.internalId() != kRow || parent.column() != 0) return 0;
    return static_cast<int>(RowOf(rows_[static_cast<std::size_t>(parent.row())]).changes.size());
}

int PlanModel::columnCount(const QModelIndex&) const {
    return kColumnCount;
}

bool PlanModel::CanBeTicked(const Place& place) const {
    const PlannedRow& row = RowOf(place);
    if (row.state == PlannedRow::State::Missing && !PlanOf(place).deleteMissing) return false;
    return row.cause == PlannedRow::Cause::None || row.cause == PlannedRow::Cause::LeftOut;
}

bool PlanModel::IsDone(const Place& place) const {
    return CanBeTicked(place) && RowOf(place).cause == PlannedRow::Cause::None;
}

QString PlanModel::RowText(const Place& place, int column) const {
    const PlannedRow& row = RowOf(place);
    switch (column) {
        case kPlace:
            return PlaceOf(PlanOf(place), row, texts_);
        case kState:
            return StateOf(PlanOf(place), row, texts_);
        case kName: {
            const QString name = projectdb::ToQString(row.name);
            return row.archive.empty() ? name : projectdb::ToQString(row.archive) + u": "_s + name;
        }
        case kIs:
            if (row.ownText) return texts_.GetText(Text::OwnText);
            if (row.trends > 0) {
                return texts_.GetText(Text::WithTrends, {{u"n", QString::number(row.trends)}});
            }
            return ReasonOf(row, sheets_[place.plan], texts_);
        default:
            return {};
    }
}

QString PlanModel::FieldText(const Place& place, std::size_t field, int column) const {
    const exchange::Sheet& sheet = sheets_[place.plan];
    const exchange::FieldChange& change = RowOf(place).changes[field];
    switch (column) {
        case kName:
            return FieldOf(PlanOf(place), RowOf(place), change, sheet, texts_);
        case kWas:
            return ValueOf(change, change.was, sheet, texts_);
        case kIs: {
            const QString doubt = DoubtOf(change.suspicion, texts_);
            const QString value = ValueOf(change, change.is, sheet, texts_);
            return doubt.isEmpty() ? value : value + u"  \u26A0 "_s + doubt;
        }
        default:
            return {};
    }
}

QVariant PlanModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const bool isRow = index.internalId() == kRow;
    const auto at = static_cast<std::size_t>(isRow ? static_cast<quintptr>(index.row())
                                                   : index.internalId() - 1);
    const Place& place = rows_[at];
    if (role == Qt::CheckStateRole && isRow && index.column() == kPlace && CanBeTicked(place)) {
        return IsDone(place) ? Qt::Checked : Qt::Unchecked;
    }
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
    return isRow ? RowText(place, index.column())
                 : FieldText(place, static_cast<std::size_t>(index.row()), index.column());
}

QVariant PlanModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    constexpr Text kHeadings[] = {Text::ColumnPlace, Text::ColumnState, Text::ColumnName,
                                  Text::ColumnWas, Text::ColumnIs};
    return texts_.GetText(kHeadings[section]);
}

Qt::ItemFlags PlanModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const bool isTick = index.internalId() == kRow && index.column() == kPlace;
    if (isTick && CanBeTicked(rows_[static_cast<std::size_t>(index.row())])) {
        flags |= Qt::ItemIsUserCheckable;
    }
    return flags;
}

bool PlanModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::CheckStateRole || !(flags(index) & Qt::ItemIsUserCheckable)) return false;
    Tick({index.row()}, value.toInt() == Qt::Checked);
    return true;
}

bool PlanModel::IsTicked(int row) const {
    return IsDone(rows_[static_cast<std::size_t>(row)]);
}

void PlanModel::Tick(const std::vector<int>& rows, bool isWanted) {
    std::vector<Row> ticked;
    for (const int row : rows) {
        const Place& place = rows_[static_cast<std::size_t>(row)];
        if (!CanBeTicked(place)) continue;
        ticked.push_back({PlanOf(place).kind, RowOf(place).line, RowOf(place).id});
    }
    if (!ticked.empty()) emit Ticked(ticked, isWanted);
}

void PlanModel::TickAll(bool isWanted) {
    std::vector<int> all(rows_.size());
    std::iota(all.begin(), all.end(), 0);
    Tick(all, isWanted);
}

bool PlanModel::HasTicks() const {
    return std::any_of(rows_.begin(), rows_.end(),
                       [&](const Place& place) { return CanBeTicked(place); });
}

Qt::CheckState PlanModel::AllTicked() const {
    const std::size_t done = Count();
    if (done == 0) return Qt::Unchecked;
    const auto can = std::count_if(rows_.begin(), rows_.end(),
                                   [&](const Place& place) { return CanBeTicked(place); });
    return done == static_cast<std::size_t>(can) ? Qt::Checked : Qt::PartiallyChecked;
}

std::size_t PlanModel::Count() const {
    return static_cast<std::size_t>(std::count_if(
        rows_.begin(), rows_.end(), [&](const Place& place) { return IsDone(place); }));
}

}  // namespace transfer
