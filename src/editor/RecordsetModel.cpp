#include "editor/RecordsetModel.h"

#include <algorithm>

#include "cells/CellInput.h"
#include "cells/CellText.h"
#include "cells/CellValue.h"
#include "guard/Guard.h"
#include "project/Colour.h"
#include "project/FieldText.h"
#include "projectdb/Text.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::size_t kPortion = 200;  // rows; some screens full

}  // namespace

RecordsetModel::RecordsetModel(const MResources::TextTable& texts, QObject* parent)
    : GridSource(parent), texts_(texts) {}

void RecordsetModel::Attach(ado::Recordset& recordset, std::vector<Column> columns,
                            const QVariant& contentKey) {
    Detach();
    beginResetModel();
    try {
        Bind(recordset, std::move(columns));
        contentKey_ = contentKey;
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
    for (const Column& column : columns) fields_.push_back(recordset.FieldIndex(column.field));
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
    places_.clear();
    lastRead_.reset();
    missing_ = {};
    failed_ = false;
    complete_ = true;
    endResetModel();
}

int RecordsetModel::Locate(GridRowId id) {
    while (RowOf(id) < 0 && !complete_) fetchMore({});
    return RowOf(id);
}

bool RecordsetModel::ReadAll() {
    while (!complete_) fetchMore({});
    return !failed_;
}

GridRowId RecordsetModel::IdAt(int row) const {
    return rows_.at(static_cast<std::size_t>(row)).id;
}

int RecordsetModel::RowOf(GridRowId id) const {
    return places_.value(id, -1);
}

int RecordsetModel::ColumnOf(std::string_view field) const {
    const auto found = std::find_if(columns_.begin(), columns_.end(),
                                    [&](const Column& column) { return column.field == field; });
    return found == columns_.end() ? -1 : static_cast<int>(found - columns_.begin());
}

const ado::Value& RecordsetModel::ValueAt(int row, int column) const {
    return rows_.at(static_cast<std::size_t>(row)).values.at(static_cast<std::size_t>(column));
}

const ado::Field& RecordsetModel::FieldAt(int column) const {
    return recordset_->Fields()[fields_.at(static_cast<std::size_t>(column))];
}

void RecordsetModel::MoveTo(int row) {
    recordset_->SetBookmark(rows_.at(static_cast<std::size_t>(row)).bookmark);
}

void RecordsetModel::TakeOver(int row) {
    rows_.at(static_cast<std::size_t>(row)) = ReadRow();
    emit dataChanged(index(row, 0), index(row, columnCount() - 1));
}

bool RecordsetModel::HasChanged(int row) const {
    return ReadRow().values != rows_.at(static_cast<std::size_t>(row)).values;
}

std::optional<QVariant> RecordsetModel::ReadCell(int column, const QString& text) const {
    if (recordset_ == nullptr) return std::nullopt;
    const project::Reading read = CellInput(text, FieldAt(column), locale_, texts_);
    // A text that is too long is the field's to refuse, which tells why.
    if (read.problem == project::Problem::TooLong) return text;
    if (read.problem != project::Problem::None) return std::nullopt;
    return StoredValue(read.value);
}

GridCommit RecordsetModel::CommitCell(GridRowId /*row*/, int /*column*/,
                                      const QVariant& /*value*/) {
    return GridCommit::Refused();
}

int RecordsetModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int RecordsetModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QString RecordsetModel::ShownText(int row, int column) const {
    const ado::Value& value = ValueAt(row, column);
    const auto* number = std::get_if<std::int32_t>(&value);
    const bool isColour =
        columns_[static_cast<std::size_t>(column)].kind == GridKind::Colour && number != nullptr;
    return isColour ? projectdb::ToQString(project::ColourText(*number))
                    : CellText(value, locale_, texts_);
}

QVariant RecordsetModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    switch (role) {
        case Qt::DisplayRole:
            return ShownText(index.row(), index.column());
        case GridRole::kNumber: {
            const auto* text = std::get_if<std::u16string>(&ValueAt(index.row(), index.column()));
            const auto read = text != nullptr ? project::ReadNumber(*text) : project::NumberText();
            return read.whole && !read.tooLarge ? QVariant(read.number) : QVariant();
        }
        case GridRole::kStored:
            return StoredValue(ValueAt(index.row(), index.column()));
        case GridRole::kExact:
            return ExactValue(ValueAt(index.row(), index.column()));
        default:
            return {};
    }
}

QVariant RecordsetModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) {
        return GridSource::headerData(section, orientation, role);
    }
    const Column& column = columns_[static_cast<std::size_t>(section)];
    switch (role) {
        case Qt::DisplayRole:
        case GridRole::kField:
            return projectdb::ToQString(column.field);
        case GridRole::kKind:
            return static_cast<int>(column.kind);
        default:
            return {};
    }
}

Qt::ItemFlags RecordsetModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    if (columns_[static_cast<std::size_t>(index.column())].editable) {
        flags |= Qt::ItemIsEditable;
    }
    return flags;
}

bool RecordsetModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && !complete_;
}

void RecordsetModel::fetchMore(const QModelIndex& parent) {
    if (!canFetchMore(parent)) return;
    const bool missingBefore = missing_.Count() > 0;
    std::vector<Row> portion;
    // The view calls this while it scrolls: nothing may be thrown into it.
    if (!guard::Guard(u"frmtabGrid"_s, [&] { ReadPortion(portion); })) failed_ = true;
    if (!portion.empty()) {
        const int first = rowCount();
        beginInsertRows({}, first, first + static_cast<int>(portion.size()) - 1);
        rows_.insert(rows_.end(), std::make_move_iterator(portion.begin()),
                     std::make_move_iterator(portion.end()));
        for (int row = first; row < rowCount(); ++row) places_[IdAt(row)] = row;
        endInsertRows();
    }
    if (!missingBefore && missing_.Count() > 0) emit RowsMissing();
}

void RecordsetModel::ReadPortion(std::vector<Row>& portion) {
    complete_ = true;  // and stays so when something is thrown
    projectdb::RowWalk walk(*recordset_, missing_);
    if (lastRead_) recordset_->SetBookmark(*lastRead_);
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
    row.bookmark = recordset_->GetBookmark();
    row.values.reserve(fields_.size());
    for (const std::size_t field : fields_) row.values.push_back(recordset_->Get(field));
    return row;
}
