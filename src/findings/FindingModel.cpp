#include "findings/FindingModel.h"

#include <algorithm>
#include <utility>

#include "findings/FindingTexts.h"
#include "project/Schema.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace findings {

using projectdb::ToQString;

FindingModel::FindingModel(const MResources::TextTable& texts, QObject* parent)
    : QAbstractTableModel(parent), texts_(texts), words_(WordsOf(texts)) {}

void FindingModel::Show(CheckedPtr checked) {
    beginResetModel();
    checked_ = std::move(checked);
    endResetModel();
}

const project::Finding& FindingModel::At(int row) const {
    return checked_->judgement.open.at(static_cast<std::size_t>(row));
}

int FindingModel::RowOf(const project::Finding& finding) const {
    if (!checked_) return -1;
    const auto& open = checked_->judgement.open;
    const auto found = std::find_if(open.begin(), open.end(), [&](const project::Finding& each) {
        return each.rule == finding.rule && each.id == finding.id && each.table == finding.table &&
               each.column == finding.column && each.values == finding.values;
    });
    return found == open.end() ? -1 : static_cast<int>(found - open.begin());
}

int FindingModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || !checked_ ? 0 : static_cast<int>(checked_->judgement.open.size());
}

int FindingModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(kColumnCount);
}

QString FindingModel::TextAt(const project::Finding& finding, int column) const {
    switch (column) {
        case kSeverity:
            return SeverityText(finding.severity, texts_);
        case kMessage:
            return ListTextOf(finding, words_);
        case kArchive: {
            const project::FoundRow row = findings::RowOf(finding);
            return ToQString(row.table == project::kArchiveTable ? row.name : row.archive);
        }
        case kRow: {
            const project::FoundRow row = findings::RowOf(finding);
            return row.id == 0 || row.table == project::kArchiveTable
                       ? QString()
                       : ToQString(row.name.empty() ? project::NameOf(row, words_) : row.name);
        }
        case kField:
            return CaptionOf(finding.table, finding.column, texts_);
        default:
            return {};
    }
}

QVariant FindingModel::data(const QModelIndex& index, int role) const {
    const project::Finding& finding = At(index.row());
    switch (role) {
        case Qt::DisplayRole:
            return TextAt(finding, index.column());
        case Qt::ToolTipRole:
            return TextAt(finding, index.column()).toHtmlEscaped();
        case Qt::DecorationRole:
            return index.column() == kSeverity ? QVariant(SeverityIcon(finding.severity))
                                               : QVariant();
        default:
            return {};
    }
}

QVariant FindingModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    using namespace MResourceTable;
    static constexpr std::array<int, kColumnCount> kHeadings = {
        kTextFindingSeverity, kTextFindingMessage, kTextFindingArchive, kTextFindingRow,
        kTextFindingField};
    return texts_.GetText(kHeadings.at(static_cast<std::size_t>(section)));
}

FindingFilter::FindingFilter(FindingModel& model, QObject* parent)
    : QSortFilterProxyModel(parent), model_(model) {
    setSourceModel(&model);
}

void FindingFilter::SetText(const QString& text) {
    text_ = text;
    invalidateFilter();
}

void FindingFilter::SetShown(project::Severity severity, bool isShown) {
    isShown_.at(static_cast<std::size_t>(severity)) = isShown;
    invalidateFilter();
}

bool FindingFilter::filterAcceptsRow(int row, const QModelIndex& /*parent*/) const {
    if (!isShown_.at(static_cast<std::size_t>(model_.At(row).severity))) return false;
    if (text_.isEmpty()) return true;
    for (int column = 0; column < FindingModel::kColumnCount; ++column) {
        const QString text = model_.data(model_.index(row, column), Qt::DisplayRole).toString();
        if (text.contains(text_, Qt::CaseInsensitive)) return true;
    }
    return false;
}

bool FindingFilter::lessThan(const QModelIndex& left, const QModelIndex& right) const {
    if (left.column() != FindingModel::kSeverity) {
        return QString::localeAwareCompare(left.data().toString(), right.data().toString()) < 0;
    }
    return model_.At(left.row()).severity > model_.At(right.row()).severity;
}

}  // namespace findings
