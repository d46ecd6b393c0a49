#include "controls/GridSource.h"

GridSource::GridSource(QObject* parent) : QAbstractTableModel(parent) {}

GridSource::~GridSource() = default;

bool GridSource::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || (role != Qt::EditRole && role != GridRole::kStored)) return false;
    return CommitCell(IdAt(index.row()), index.column(), value).outcome ==
           GridCommit::Outcome::Stored;
}
