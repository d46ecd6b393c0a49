#include "controls/GridSource.h"

GridSource::GridSource(QObject* parent) : QAbstractTableModel(parent) {}

GridSource::~GridSource() = default;

GridCommit GridSource::CommitCells(const QList<GridCell>& cells) {
    if (cells.size() != 1) return GridCommit::Refused();
    return CommitCell(cells.front().row, cells.front().column, cells.front().value);
}

bool GridSource::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || (role != Qt::EditRole && role != GridRole::kStored)) return false;
    return CommitCell(IdAt(index.row()), index.column(), value).outcome ==
           GridCommit::Outcome::Stored;
}

bool GridSource::SortRows(int /*column*/, Qt::SortOrder /*order*/, bool /*further*/) {
    return false;
}

std::optional<Qt::SortOrder> GridSource::OrderOf(int /*column*/) const {
    return std::nullopt;
}
