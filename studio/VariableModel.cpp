#include "studio/VariableModel.h"

#include <algorithm>
#include <QFont>
#include <QLocale>

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

}  // namespace

VariableModel::VariableModel(const VariableCatalog& catalog, const StudioTexts& texts,
                             QObject* parent)
    : QAbstractItemModel(parent), catalog_(catalog), texts_(texts) {
    TakeNew();
}

void VariableModel::TakeNew() {
    const std::vector<Structure>& structures = catalog_.Structures();
    branches_.resize(structures.size());
    for (std::size_t i = 0; i < structures.size(); ++i) {
        Branch& branch = branches_[i];
        const std::vector<int> added = NewMatches(i);
        if (!branch.visible && (!IsFiltered() || !added.empty())) {
            const auto place = std::lower_bound(visible_.begin(), visible_.end(), i);
            const int row = static_cast<int>(place - visible_.begin());
            beginInsertRows({}, row, row);
            visible_.insert(place, i);
            branch.visible = true;
            endInsertRows();
        }
        if (added.empty()) continue;
        const QModelIndex parent = index(RowOf(i), 0);
        const int first = static_cast<int>(branch.shown.size());
        beginInsertRows(parent, first, first + static_cast<int>(added.size()) - 1);
        branch.shown.insert(branch.shown.end(), added.begin(), added.end());
        shownCount_ += added.size();
        endInsertRows();
        emit dataChanged(parent, parent);  // the number of its variables
    }
}

void VariableModel::SetFilter(const QString& filter) {
    beginResetModel();
    words_.clear();
    for (const QString& word : filter.split(u' ', Qt::SkipEmptyParts)) {
        words_.emplace_back(word, Qt::CaseInsensitive);
    }
    visible_.clear();
    shownCount_ = 0;
    for (std::size_t i = 0; i < branches_.size(); ++i) {
        Branch& branch = branches_[i];
        branch = {};
        branch.shown = NewMatches(i);
        shownCount_ += branch.shown.size();
        branch.visible = !IsFiltered() || !branch.shown.empty();
        if (branch.visible) visible_.push_back(i);
    }
    endResetModel();
}

std::vector<int> VariableModel::NewMatches(std::size_t structure) {
    const Structure& source = catalog_.Structures()[structure];
    Branch& branch = branches_[structure];
    std::vector<int> matches;
    for (; branch.seen < source.variables.size(); ++branch.seen) {
        if (!IsFiltered() || Matches(source, source.variables[branch.seen])) {
            matches.push_back(static_cast<int>(branch.seen));
        }
    }
    return matches;
}

bool VariableModel::Matches(const Structure& structure, const Variable& variable) const {
    return std::all_of(words_.begin(), words_.end(), [&](const QStringMatcher& word) {
        const auto in = [&word](const QString& text) { return word.indexIn(text) >= 0; };
        return in(variable.name) || in(variable.comment) || in(variable.unit) ||
               in(variable.type) || in(structure.name) || in(structure.comment);
    });
}

QString VariableModel::VariableName(const QModelIndex& index) const {
    if (!index.isValid() || index.internalId() == 0) return {};
    const std::size_t structure = index.internalId() - 1;
    const int position = branches_[structure].shown[static_cast<std::size_t>(index.row())];
    return catalog_.Structures()[structure].variables[static_cast<std::size_t>(position)].name;
}

QModelIndex VariableModel::Find(const QString& name, Qt::CaseSensitivity sensitivity) const {
    if (name.isEmpty()) return {};
    for (std::size_t row = 0; row < visible_.size(); ++row) {
        const std::vector<Variable>& variables = catalog_.Structures()[visible_[row]].variables;
        const std::vector<int>& shown = branches_[visible_[row]].shown;
        const auto found = std::find_if(shown.begin(), shown.end(), [&](int position) {
            return variables[static_cast<std::size_t>(position)].name.compare(name, sensitivity) ==
                   0;
        });
        if (found == shown.end()) continue;
        return index(static_cast<int>(found - shown.begin()), 0, index(static_cast<int>(row), 0));
    }
    return {};
}

QModelIndex VariableModel::FirstVariable() const {
    for (std::size_t row = 0; row < visible_.size(); ++row) {
        const QModelIndex structure = index(static_cast<int>(row), 0);
        if (rowCount(structure) > 0) return index(0, 0, structure);
    }
    return {};
}

int VariableModel::RowOf(std::size_t structure) const {
    const auto place = std::lower_bound(visible_.begin(), visible_.end(), structure);
    return static_cast<int>(place - visible_.begin());
}

// A structure's row carries 0, a variable's the position of its structure, plus 1.
QModelIndex VariableModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) return {};
    if (!parent.isValid()) return createIndex(row, column, quintptr{0});
    return createIndex(row, column, quintptr{visible_[static_cast<std::size_t>(parent.row())] + 1});
}

QModelIndex VariableModel::parent(const QModelIndex& index) const {
    if (!index.isValid() || index.internalId() == 0) return {};
    return createIndex(RowOf(index.internalId() - 1), 0, quintptr{0});
}

int VariableModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) return static_cast<int>(visible_.size());
    if (parent.internalId() != 0 || parent.column() != 0) return 0;
    const std::size_t structure = visible_[static_cast<std::size_t>(parent.row())];
    return static_cast<int>(branches_[structure].shown.size());
}

int VariableModel::columnCount(const QModelIndex& /*parent*/) const {
    return kColumnCount;
}

QVariant VariableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const bool isStructure = index.internalId() == 0;
    switch (role) {
        case Qt::DisplayRole:
            return isStructure ? StructureText(visible_[static_cast<std::size_t>(index.row())],
                                               index.column())
                               : VariableText(index.internalId() - 1, index.row(), index.column());
        case Qt::ToolTipRole:
            return !isStructure && index.column() == kName ? VariableName(index)
                                                           : data(index, Qt::DisplayRole);
        case Qt::FontRole:
            if (isStructure && index.column() == kName) {
                QFont font;
                font.setBold(true);
                return font;
            }
            break;
        default:
            break;
    }
    return {};
}

QString VariableModel::StructureText(std::size_t structure, int column) const {
    const Structure& source = catalog_.Structures()[structure];
    if (column == kComment) return source.comment;
    if (column != kName) return {};
    const QString name = source.name.isEmpty() ? texts_(Text::VariablesNoStructure) : source.name;
    return u"%1 (%2)"_s.arg(name, QLocale().toString(branches_[structure].shown.size()));
}

QString VariableModel::VariableText(std::size_t structure, int row, int column) const {
    const Structure& source = catalog_.Structures()[structure];
    const int position = branches_[structure].shown[static_cast<std::size_t>(row)];
    const Variable& variable = source.variables[static_cast<std::size_t>(position)];
    switch (column) {
        case kName:
            // Below its structure a variable need not repeat what that is called.
            if (variable.name.size() > source.name.size() + 1 &&
                variable.name.startsWith(source.name) &&
                variable.name.at(source.name.size()) == u'.') {
                return variable.name.mid(source.name.size() + 1);
            }
            return variable.name;
        case kType:
            return variable.type;
        case kUnit:
            return variable.unit;
        case kComment:
            return variable.comment;
        default:
            return {};
    }
}

QVariant VariableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    switch (section) {
        case kName:
            return texts_(Text::VariableColumn);
        case kType:
            return texts_(Text::VariableTypeColumn);
        case kUnit:
            return texts_(Text::VariableUnitColumn);
        case kComment:
            return texts_(Text::VariableCommentColumn);
        default:
            return {};
    }
}

}  // namespace studio
