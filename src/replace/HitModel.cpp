#include "replace/HitModel.h"

#include <algorithm>

#include "platform/Locale.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace replace {

using Text = MResourceTable::Replace;

HitModel::HitModel(Hits& hits, const MResources::TextTable& texts, QObject* parent)
    : QAbstractTableModel(parent), hits_(hits), texts_(texts) {}

void HitModel::Reset() {
    beginResetModel();
    shown_.clear();
    taken_ = 0;
    endResetModel();
    TakeNew();
}

void HitModel::TakeNew() {
    std::vector<std::uint32_t> further;
    for (; taken_ < hits_.Count(); ++taken_) {
        const bool suits = Suits(taken_);
        hits_.SetShown(taken_, suits);
        if (suits) further.push_back(static_cast<std::uint32_t>(taken_));
    }
    if (further.empty()) return;
    const int first = rowCount();
    beginInsertRows({}, first, first + static_cast<int>(further.size()) - 1);
    shown_.insert(shown_.end(), further.begin(), further.end());
    endInsertRows();
}

void HitModel::ShowStates() {
    if (shown_.empty()) return;
    emit dataChanged(index(0, 0), index(rowCount() - 1, kColumnCount - 1));
}

void HitModel::Narrow(const QString& text) {
    narrowing_ = text;
    Reset();
}

bool HitModel::Suits(std::size_t hit) const {
    if (narrowing_.isEmpty()) return true;
    for (const int column : {kArchive, kTrend, kField, kOld, kNew}) {
        if (column == kNew && !hits_.IsReplacing()) continue;
        if (TextOf(hit, column).contains(narrowing_, Qt::CaseInsensitive)) return true;
    }
    return false;
}

void HitModel::SetTicked(const QModelIndexList& rows, bool ticked) {
    for (const QModelIndex& row : rows) {
        if (CanBeTicked(HitOf(row))) hits_.SetTicked(HitOf(row), ticked);
    }
    ShowStates();
    emit Ticked();
}

void HitModel::SetAllTicked(bool ticked) {
    for (const std::uint32_t hit : shown_) hits_.SetTicked(hit, ticked);
    ShowStates();
    emit Ticked();
}

Qt::CheckState HitModel::AllTicked() const {
    const auto isTicked = [this](std::uint32_t hit) { return hits_.IsTicked(hit); };
    if (std::none_of(shown_.begin(), shown_.end(), isTicked)) return Qt::Unchecked;
    return std::all_of(shown_.begin(), shown_.end(), isTicked) ? Qt::Checked : Qt::PartiallyChecked;
}

int HitModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int HitModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumnCount;
}

bool HitModel::CanBeTicked(std::size_t hit) const {
    return hits_.IsReplacing() && !hits_.RefusalOf(hit) && !hits_.IsUnchanged(hit);
}

QVariant HitModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const std::size_t hit = HitOf(index);
    if (role == Qt::DisplayRole) return TextOf(hit, index.column());
    if (role == Qt::ToolTipRole) {
        const QString note = hits_.IsReplacing() ? Note(hit) : QString();
        return note.isEmpty() ? TextOf(hit, index.column()) : note;
    }
    if (role == Qt::CheckStateRole && index.column() == kArchive && hits_.IsReplacing()) {
        const bool ticked = CanBeTicked(hit) && hits_.IsTicked(hit);
        return QVariant::fromValue(ticked ? Qt::Checked : Qt::Unchecked);
    }
    if (role == kParts && index.column() == kOld) {
        const auto& fields = hits_.Fields();
        return QVariant::fromValue(hits_.Matcher().PartsOf(fields.TextOf(hits_.FieldOf(hit))));
    }
    if (role == kParts && index.column() == kNew) {
        return QVariant::fromValue(hits_.NewTextOf(hit).parts);
    }
    return {};
}

QString HitModel::TextOf(std::size_t hit, int column) const {
    const ProjectFields& fields = hits_.Fields();
    const ProjectFields::Field& field = hits_.FieldOf(hit);
    switch (column) {
        case kArchive:
            return fields.ArchiveName(field).toString();
        case kTrend:
            return fields.TrendName(field).toString();
        case kField:
            return FieldName(fields.ColumnOf(field));
        case kOld:
            return fields.TextOf(field).toString();
        case kNew:
            return hits_.IsReplacing() ? hits_.NewTextOf(hit).text : QString();
        default:
            return Note(hit);
    }
}

QString HitModel::FieldName(const ProjectFields::Column& column) const {
    if (column.caption != 0) {
        QString caption = texts_.GetText(column.caption);
        return caption.remove(u'&');
    }
    const auto lcid = projectdb::ToQString(column.name).mid(1).toUInt();
    const QString language = platform::LanguageName(lcid, texts_.Language().lcid);
    return texts_.GetText(Text::TextIn,
                          {{u"language", language.isEmpty() ? QString::number(lcid) : language}});
}

QString HitModel::Note(std::size_t hit) const {
    using Refusal = Hits::Refusal;
    if (!hits_.IsReplacing()) return {};
    if (hits_.IsUnchanged(hit)) return texts_.GetText(Text::NoteSame);
    const auto refusal = hits_.RefusalOf(hit);
    if (!refusal) return {};
    switch (*refusal) {
        case Refusal::RowGone:
            return texts_.GetText(Text::NoteGone);
        case Refusal::Changed:
            return texts_.GetText(Text::NoteChanged);
        case Refusal::DoesNotFit:
            return texts_.GetText(Text::NoteTooLong);
        case Refusal::NameEmpty:
            return texts_.GetText(Text::NoteEmpty);
        case Refusal::NameDouble:
            return texts_.GetText(Text::NoteDouble);
        case Refusal::NoField:
        case Refusal::WrongType:
            break;
    }
    return texts_.GetText(Text::NoteField);
}

QVariant HitModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    constexpr Text kHeadings[] = {Text::Archive, Text::Trend, Text::Field,
                                  Text::Old,     Text::New,   Text::Note};
    return texts_.GetText(kHeadings[section]);
}

Qt::ItemFlags HitModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (index.column() == kArchive && CanBeTicked(HitOf(index))) flags |= Qt::ItemIsUserCheckable;
    return flags;
}

bool HitModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::CheckStateRole || index.column() != kArchive) return false;
    SetTicked({index}, value.toInt() == Qt::Checked);
    return true;
}

}  // namespace replace
