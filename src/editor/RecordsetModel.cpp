#include "editor/RecordsetModel.h"

#include "editor/CellText.h"
#include "projectdb/Guard.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::size_t kPortion = 200;  // rows; some screens full

}  // namespace

RecordsetModel::RecordsetModel(const MResources::TextTable& texts, QObject* parent)
    : QAbstractTableModel(parent), texts_(texts) {}

void RecordsetModel::Attach(ado::Recordset& recordset, std::vector<Column> columns) {
    Detach();
    beginResetModel();
    try {
        Bind(recordset, std::move(columns));
    } catch (...) {
        recordset_ = nullptr;
        columns_.clear();
        endResetModel();
        throw;
    }
    endResetModel();
}

void RecordsetModel::Bind(ado::Recordset& recordset, std::vector<Column> columns) {
    fields_.clear();
    rightAligned_.clear();
    for (const Column& column : columns) {
        fields_.push_back(recordset.FieldIndex(column.field));
        rightAligned_.push_back(IsNumber(recordset.Fields()[fields_.back()].type));
    }
    idField_ = recordset.FieldIndex("ID");
    columns_ = std::move(columns);
    complete_ = false;  // whether there are rows shows when they are read
    recordset_ = &recordset;
}

void RecordsetModel::Detach() {
    if (recordset_ == nullptr) return;
    beginResetModel();
    recordset_ = nullptr;
    rows_.clear();
    lastRead_.reset();
    missing_ = {};
    complete_ = true;
    endResetModel();
}

int RecordsetModel::RowOf(std::int32_t id) {
    int row = 0;
    while (true) {
        for (; row < rowCount(); ++row) {
            if (IdAt(row) == id) return row;
        }
        if (complete_) return -1;
        fetchMore({});
    }
}

std::int32_t RecordsetModel::IdAt(int row) const {
    return rows_.at(static_cast<std::size_t>(row)).id;
}

int RecordsetModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int RecordsetModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant RecordsetModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const auto column = static_cast<std::size_t>(index.column());
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
        return rows_.at(static_cast<std::size_t>(index.row())).texts.at(column);
    }
    if (role == Qt::TextAlignmentRole) {
        const Qt::Alignment side = rightAligned_.at(column) ? Qt::AlignRight : Qt::AlignLeft;
        return QVariant::fromValue(side | Qt::AlignVCenter);
    }
    return {};
}

QVariant RecordsetModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 &&
        section < columnCount()) {
        return columns_[static_cast<std::size_t>(section)].caption;
    }
    return QAbstractTableModel::headerData(section, orientation, role);
}

bool RecordsetModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && !complete_;
}

void RecordsetModel::fetchMore(const QModelIndex& parent) {
    if (!canFetchMore(parent)) return;
    const bool missingBefore = missing_.Count() > 0;
    std::vector<Row> portion;
    // The view calls this while it scrolls: nothing may be thrown into it.
    projectdb::Guard(u"frmtabGrid"_s, [&] { ReadPortion(portion); });
    if (!portion.empty()) {
        const int first = rowCount();
        beginInsertRows({}, first, first + static_cast<int>(portion.size()) - 1);
        rows_.insert(rows_.end(), std::make_move_iterator(portion.begin()),
                     std::make_move_iterator(portion.end()));
        endInsertRows();
    }
    if (!missingBefore && missing_.Count() > 0) emit RowsMissing();
}

void RecordsetModel::ReadPortion(std::vector<Row>& portion) {
    complete_ = true;  // and stays so when something is thrown
    if (lastRead_) recordset_->SetBookmark(*lastRead_);
    projectdb::RowWalk walk(*recordset_, missing_);
    for (bool found = lastRead_ ? walk.Next() : walk.First(); found; found = walk.Next()) {
        if (portion.size() == kPortion) {
            complete_ = false;
            return;
        }
        lastRead_ = recordset_->GetBookmark();
        walk.Read([&] { portion.push_back(ReadRow()); });
    }
}

RecordsetModel::Row RecordsetModel::ReadRow() const {
    Row row;
    row.id = ado::ToLong(recordset_->Get(idField_));
    row.texts.reserve(fields_.size());
    for (const std::size_t field : fields_) {
        row.texts.push_back(CellText(recordset_->Get(field), locale_, texts_));
    }
    return row;
}
