#include "differences/DifferenceModel.h"

#include <algorithm>
#include <QFont>

#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace differences {
namespace {

using projectdb::ToQString;
using Text = MResourceTable::Compare;

// What an index carries: nothing for a group, its group for a row, both places for a setting.
constexpr int kGroupBits = 16;

quintptr RowId(std::size_t group) {
    return group + 1;
}
quintptr FieldId(std::size_t group, std::size_t row) {
    return ((row + 1) << kGroupBits) | (group + 1);
}
bool IsGroup(const QModelIndex& index) {
    return index.internalId() == 0;
}
bool IsField(const QModelIndex& index) {
    return (index.internalId() >> kGroupBits) != 0;
}
std::size_t GroupIn(const QModelIndex& index) {
    return (index.internalId() & ((quintptr{1} << kGroupBits) - 1)) - 1;
}
std::size_t RowIn(const QModelIndex& index) {
    return (index.internalId() >> kGroupBits) - 1;
}

}  // namespace

RowKind KindOf(const ado::RowChange& row) {
    return row.before.empty()  ? RowKind::OnlyHere
           : row.after.empty() ? RowKind::OnlyThere
                               : RowKind::Changed;
}

DifferenceModel::DifferenceModel(const MResources::TextTable& texts, QObject* parent)
    : QAbstractItemModel(parent), texts_(texts) {}

void DifferenceModel::Show(std::shared_ptr<const project::Differences> differences) {
    beginResetModel();
    words_.reset();
    differences_ = std::move(differences);
    counts_ = {};
    if (differences_) {
        words_.emplace(texts_, *differences_);
        for (const ado::RowChange& row : differences_->rows) {
            ++counts_[static_cast<std::size_t>(KindOf(row))];
        }
    }
    fields_.clear();
    MakeGroups();
    endResetModel();
}

void DifferenceModel::SetNames(const QString& here, const QString& there) {
    here_ = here;
    there_ = there;
    emit headerDataChanged(Qt::Horizontal, kHere, kThere);
}

void DifferenceModel::Filter(const std::array<bool, kRowKinds>& kinds, const QString& text) {
    beginResetModel();
    kinds_ = kinds;
    text_ = text;
    MakeGroups();
    endResetModel();
}

void DifferenceModel::MakeGroups() {
    groups_.clear();
    if (!differences_) return;
    for (const project::TableDifference& lack : differences_->tables) {
        groups_.push_back({lack.table, {}, lack});
    }
    const std::vector<ado::RowChange>& rows = differences_->rows;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (!IsShown(rows[i])) continue;
        const bool isNew =
            groups_.empty() || groups_.back().lack || groups_.back().table != rows[i].table;
        if (isNew) groups_.push_back({rows[i].table, {}});
        groups_.back().shown.push_back(i);
    }
}

bool DifferenceModel::IsShown(const ado::RowChange& row) const {
    if (!kinds_[static_cast<std::size_t>(KindOf(row))]) return false;
    if (text_.isEmpty()) return true;
    for (const std::vector<ado::Value>* side : {&row.before, &row.after}) {
        for (const ado::Value& value : *side) {
            const auto* text = std::get_if<std::u16string>(&value);
            if (text != nullptr && ToQString(*text).contains(text_, Qt::CaseInsensitive)) {
                return true;
            }
        }
    }
    return words_->NameOf(row).contains(text_, Qt::CaseInsensitive);
}

std::size_t DifferenceModel::RowCount() const {
    return differences_ ? differences_->rows.size() : 0;
}

std::size_t DifferenceModel::ShownCount() const {
    std::size_t count = 0;
    for (const Group& group : groups_) count += group.shown.size();
    return count;
}

std::size_t DifferenceModel::PlaceOf(const QModelIndex& index) const {
    const std::size_t row = IsField(index) ? RowIn(index) : static_cast<std::size_t>(index.row());
    return groups_.at(GroupIn(index)).shown.at(row);
}

const QList<FieldLine>& DifferenceModel::FieldsOf(std::size_t place) const {
    const auto [at, isNew] = fields_.try_emplace(place);
    if (isNew) at->second = words_->FieldsOf(differences_->rows[place]);
    return at->second;
}

void DifferenceModel::AddWanted(const QModelIndex& index,
                                std::vector<project::Wanted>& wanted) const {
    if (!index.isValid()) return;
    if (IsGroup(index)) {
        const Group& group = groups_.at(static_cast<std::size_t>(index.row()));
        if (!project::IsTakenOver(*differences_, group.table)) return;
        for (const std::size_t place : group.shown) wanted.push_back({place, {}});
        return;
    }
    const std::size_t place = PlaceOf(index);
    if (!project::IsTakenOver(*differences_, differences_->rows[place].table)) return;
    wanted.push_back({place, ColumnAt(index)});
}

const ado::RowChange* DifferenceModel::RowAt(const QModelIndex& index) const {
    if (!index.isValid() || IsGroup(index)) return nullptr;
    return &differences_->rows[PlaceOf(index)];
}

std::string DifferenceModel::ColumnAt(const QModelIndex& index) const {
    if (!index.isValid() || !IsField(index)) return {};
    return FieldsOf(PlaceOf(index)).at(index.row()).column;
}

QModelIndex DifferenceModel::NextRow(const QModelIndex& from, bool forward) const {
    // As places (group, row), where a group itself stands in front of its rows.
    int group = 0;
    int row = -1;
    if (from.isValid()) {
        const bool isRow = !IsGroup(from);
        group = isRow ? static_cast<int>(GroupIn(from)) : from.row();
        if (isRow) row = IsField(from) ? static_cast<int>(RowIn(from)) : from.row();
    }
    row += forward ? 1 : -1;
    while (group >= 0 && group < static_cast<int>(groups_.size())) {
        const int count = static_cast<int>(groups_[static_cast<std::size_t>(group)].shown.size());
        if (row >= 0 && row < count) {
            return createIndex(row, 0, RowId(static_cast<std::size_t>(group)));
        }
        group += forward ? 1 : -1;
        if (group < 0 || group >= static_cast<int>(groups_.size())) break;
        const auto& next = groups_[static_cast<std::size_t>(group)].shown;
        row = forward ? 0 : static_cast<int>(next.size()) - 1;
    }
    return {};
}

QModelIndex DifferenceModel::IndexNear(const std::string& table, int place) const {
    for (std::size_t i = 0; i < groups_.size(); ++i) {
        const int count = static_cast<int>(groups_[i].shown.size());
        if (groups_[i].table != table || groups_[i].lack || count == 0) continue;
        return createIndex(std::clamp(place, 0, count - 1), 0, RowId(i));
    }
    return {};
}

QModelIndex DifferenceModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) return {};
    if (!parent.isValid()) return createIndex(row, column, quintptr{0});
    if (IsGroup(parent))
        return createIndex(row, column, RowId(static_cast<std::size_t>(parent.row())));
    return createIndex(row, column,
                       FieldId(GroupIn(parent), static_cast<std::size_t>(parent.row())));
}

QModelIndex DifferenceModel::parent(const QModelIndex& index) const {
    if (!index.isValid() || IsGroup(index)) return {};
    if (IsField(index)) {
        return createIndex(static_cast<int>(RowIn(index)), 0, RowId(GroupIn(index)));
    }
    return createIndex(static_cast<int>(GroupIn(index)), 0, quintptr{0});
}

int DifferenceModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) return static_cast<int>(groups_.size());
    if (parent.column() != 0 || IsField(parent)) return 0;
    if (IsGroup(parent)) {
        return static_cast<int>(groups_[static_cast<std::size_t>(parent.row())].shown.size());
    }
    return static_cast<int>(FieldsOf(PlaceOf(parent)).size());
}

int DifferenceModel::columnCount(const QModelIndex& /*parent*/) const {
    return kColumnCount;
}

bool DifferenceModel::hasChildren(const QModelIndex& parent) const {
    // What differs has a setting that does: nothing need be put into words for that.
    if (parent.isValid() && !IsGroup(parent)) return parent.column() == 0 && !IsField(parent);
    return rowCount(parent) > 0;
}

QString DifferenceModel::GroupText(const Group& group, int column) const {
    if (column != kDifference) return {};
    return group.lack ? words_->TextOf(*group.lack)
                      : words_->TableText(group.table, group.shown.size());
}

QString DifferenceModel::RowText(const ado::RowChange& row, int column) const {
    if (column == kDifference) return words_->WhatOf(row);
    return words_->NameIn(row, column == kHere);
}

QVariant DifferenceModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    if (role == Qt::FontRole && IsGroup(index)) {
        QFont font;
        font.setBold(true);
        return font;
    }
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
    if (IsGroup(index)) {
        return GroupText(groups_[static_cast<std::size_t>(index.row())], index.column());
    }
    if (!IsField(index)) return RowText(*RowAt(index), index.column());
    const FieldLine& line = FieldsOf(PlaceOf(index)).at(index.row());
    return index.column() == kDifference ? line.caption
           : index.column() == kHere     ? line.here
                                         : line.there;
}

QVariant DifferenceModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    switch (section) {
        case kHere:
            return texts_.GetText(Text::Here, {{u"project", here_}});
        case kThere:
            return texts_.GetText(Text::There, {{u"other", there_}});
        default:
            return texts_.GetText(Text::Difference);
    }
}

}  // namespace differences
