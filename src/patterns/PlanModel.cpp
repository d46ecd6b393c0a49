#include "patterns/PlanModel.h"

#include <QApplication>
#include <QBrush>
#include <QColor>
#include <QFont>
#include <QIcon>
#include <QStyle>

#include "project/Colour.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace patterns {

using MResourceTable::Number;
using Text = MResourceTable::Patterns;

namespace {

constexpr int kMarkAlpha = 90;  // of 255: readable on light and dark

std::size_t At(int number) {
    return static_cast<std::size_t>(number);
}

}  // namespace

void PlanModel::Reset(const QStringList& languages) {
    beginResetModel();
    languages_ = languages;
    rows_ = static_cast<int>(plan_.Rows());
    endResetModel();
}

void PlanModel::ShowProblems() {
    if (rows_ > 0) emit dataChanged(index(0, 0), index(rows_ - 1, columnCount() - 1));
}

int PlanModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int PlanModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(plan_.Columns());
}

QString PlanModel::ProblemText(const QModelIndex& index) const {
    switch (plan_.ProblemOf(At(index.row()), At(index.column()))) {
        case TrendPlan::Problem::None:
            return {};
        case TrendPlan::Problem::NameEmpty:
            return texts_.GetText(Text::NameEmpty);
        case TrendPlan::Problem::NameDouble:
            return texts_.GetText(Text::NameDouble);
        case TrendPlan::Problem::TooLong:
            return texts_.GetText(Text::TooLong);
        case TrendPlan::Problem::NoNumber:
            return texts_.GetText(Text::NoNumber);
        case TrendPlan::Problem::NoColour:
            return texts_.GetText(Text::NoColour);
    }
    return {};
}

QVariant PlanModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const std::size_t row = At(index.row());
    const std::size_t column = At(index.column());
    const QString problem = ProblemText(index);
    switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return projectdb::ToQString(plan_.Cell(row, column));
        case Qt::ToolTipRole:
            if (!problem.isEmpty() || column != plan_.ColourColumn()) return problem;
            return texts_.GetText(Text::ColourHint);
        case Qt::CheckStateRole:
            if (column != TrendPlan::kName) return {};
            return QVariant::fromValue(plan_.IsLeftOut(row) ? Qt::Unchecked : Qt::Checked);
        case Qt::BackgroundRole: {
            if (problem.isEmpty()) return {};
            QColor mark(Qt::red);
            mark.setAlpha(kMarkAlpha);
            return QBrush(mark);
        }
        case Qt::AccessibleDescriptionRole:
            return problem;
        case Qt::DecorationRole: {
            // Beside the ground, which not everybody can tell from others.
            if (!problem.isEmpty()) {
                return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
            }
            if (column != plan_.ColourColumn()) return {};
            const auto colour = project::ReadColour(plan_.Cell(row, column));
            if (!colour) return {};
            const project::ColourParts parts = project::PartsOf(*colour);
            return QColor(parts.red, parts.green, parts.blue);
        }
        case Qt::FontRole: {
            QFont font;
            font.setItalic(plan_.IsCorrected(row, column));
            font.setStrikeOut(plan_.IsLeftOut(row));
            return font;
        }
        default:
            return {};
    }
}

QVariant PlanModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole) return {};
    if (orientation == Qt::Vertical) return section + 1;
    const std::size_t column = At(section);
    if (column == TrendPlan::kName) return texts_.GetText(Number::kTextTrendName);
    if (column == TrendPlan::kVariable) return texts_.GetText(Number::kTextTrendVar);
    if (column < plan_.UnitColumn()) {
        return languages_.value(section - static_cast<int>(TrendPlan::kFirstText));
    }
    if (column == plan_.UnitColumn()) return texts_.GetText(Number::kTextUnit);
    if (column == plan_.SmallestColumn()) return texts_.GetText(Number::kTextVMin);
    if (column == plan_.LargestColumn()) return texts_.GetText(Number::kTextVMax);
    return texts_.GetText(Number::kTextVLineColor);
}

Qt::ItemFlags PlanModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
    if (At(index.column()) == TrendPlan::kName) flags |= Qt::ItemIsUserCheckable;
    return flags;
}

bool PlanModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid()) return false;
    if (role == Qt::CheckStateRole) {
        plan_.LeaveOut(At(index.row()), value.toInt() != Qt::Checked);
    } else if (role == Qt::EditRole) {
        plan_.Correct(At(index.row()), At(index.column()), projectdb::ToUtf16(value.toString()));
    } else {
        return false;
    }
    emit Corrected();
    return true;
}

}  // namespace patterns
