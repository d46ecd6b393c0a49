#include "projecttable/ArchiveGroups.h"

#include <algorithm>

#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int kNameColumn = 0;
constexpr int kColumns = 2;

}  // namespace

void ArchiveGroups::Show(std::vector<TrendTableModel::Archive> archives) {
    TrendTableModel::Archive all{kAll, texts_.GetText(MResourceTable::kTextTableAllArchives), 0};
    for (const TrendTableModel::Archive& archive : archives) all.trends += archive.trends;
    archives.insert(archives.begin(), std::move(all));
    const bool areSame =
        std::equal(archives.begin(), archives.end(), archives_.begin(), archives_.end(),
                   [](const auto& a, const auto& b) { return a.id == b.id && a.name == b.name; });
    if (areSame) {
        archives_ = std::move(archives);
        emit dataChanged(index(0, 0), index(rowCount() - 1, kColumns - 1));
        return;
    }
    beginResetModel();
    archives_ = std::move(archives);
    places_.clear();
    for (int row = 0; row < rowCount(); ++row) places_[IdAt(row)] = row;
    endResetModel();
}

GridRowId ArchiveGroups::IdAt(int row) const {
    return archives_[static_cast<std::size_t>(row)].id;
}

int ArchiveGroups::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(archives_.size());
}

int ArchiveGroups::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumns;
}

QVariant ArchiveGroups::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const TrendTableModel::Archive& archive = archives_[static_cast<std::size_t>(index.row())];
    const bool isName = index.column() == kNameColumn;
    if (role == GridRole::kStored || role == GridRole::kExact) {
        return isName ? QVariant(archive.name) : QVariant(static_cast<int>(archive.trends));
    }
    if (role != Qt::DisplayRole) return {};
    return isName ? archive.name : QLocale().toString(static_cast<qulonglong>(archive.trends));
}

QVariant ArchiveGroups::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= kColumns) {
        return GridSource::headerData(section, orientation, role);
    }
    const bool isName = section == kNameColumn;
    switch (role) {
        case Qt::DisplayRole:
            return texts_.GetText(isName ? MResourceTable::kTextTableArchive
                                         : MResourceTable::kTextTrends);
        case GridRole::kField:
            return isName ? u"Name"_s : u"Trends"_s;
        case GridRole::kKind:
            return static_cast<int>(isName ? GridKind::Text : GridKind::Integer);
        default:
            return {};
    }
}

Qt::ItemFlags ArchiveGroups::flags(const QModelIndex& index) const {
    return index.isValid() ? Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren
                           : Qt::NoItemFlags;
}
