#include "controls/detail/GridRows.h"

#include <algorithm>
#include <numeric>
#include <QCollator>

#include "controls/GridText.h"

namespace {

using namespace Qt::Literals::StringLiterals;

// More rows than this at once are announced as all rows; looking each one up would cost more.
constexpr int kFewRows = 16;

bool IsNull(const QVariant& stored) {
    return !stored.isValid() || stored.isNull();
}

/// What a row is sorted by: numbers by value before all texts, Null before everything.
struct SortKey {
    int rank = 0;  // 0 Null, 1 number, 2 text
    double number = 0;
    QCollatorSortKey text;
    int sourceRow = 0;

    [[nodiscard]] bool Before(const SortKey& other) const {
        if (rank != other.rank) return rank < other.rank;
        if (rank == 1) return number < other.number;
        return rank == 2 && text.compare(other.text) < 0;
    }
};

}  // namespace

GridRows::GridRows(const std::vector<GridColumn*>& columns, QObject* parent)
    : QAbstractTableModel(parent), columns_(columns) {}

void GridRows::SetSource(GridSource* source) {
    emit AboutToRebuild(true);
    beginResetModel();
    if (source_ != nullptr) source_->disconnect(this);
    source_ = source;
    if (source_ != nullptr) {
        connect(source_, &GridSource::modelAboutToBeReset, this, [this] {
            emit AboutToRebuild(true);
            rebuilding_ = true;
            beginResetModel();
        });
        connect(source_, &GridSource::modelReset, this, [this] {
            emit ColumnsReset();
            Compute();
            rebuilding_ = false;
            endResetModel();
            emit Rebuilt(true);
        });
        connect(source_, &GridSource::layoutAboutToBeChanged, this, [this] {
            emit AboutToRebuild(false);
            rebuilding_ = true;
            beginResetModel();
        });
        connect(source_, &GridSource::layoutChanged, this, [this] {
            Compute();
            rebuilding_ = false;
            endResetModel();
            emit Rebuilt(false);
        });
        connect(source_, &GridSource::rowsInserted, this,
                [this](const QModelIndex&, int first, int last) { SourceInserted(first, last); });
        connect(
            source_, &GridSource::rowsAboutToBeRemoved, this,
            [this](const QModelIndex&, int first, int last) { SourceAboutToRemove(first, last); });
        connect(source_, &GridSource::rowsRemoved, this,
                [this](const QModelIndex&, int first, int last) { SourceRemoved(first, last); });
        connect(source_, &GridSource::dataChanged, this, &GridRows::SourceChanged);
        connect(source_, &GridSource::headerDataChanged, this,
                [this](Qt::Orientation orientation, int first, int last) {
                    if (orientation == Qt::Horizontal) {
                        emit headerDataChanged(orientation, first, last);
                    }
                });
    }
    emit ColumnsReset();
    Compute();
    endResetModel();
    emit Rebuilt(true);
}

GridRowId GridRows::IdAt(int row) const {
    if (source_ == nullptr || row < 0 || row >= rowCount()) return kNoGridRow;
    return source_->IdAt(shown_[static_cast<std::size_t>(row)]);
}

int GridRows::RowOf(GridRowId id) const {
    if (source_ == nullptr || id == kNoGridRow) return -1;
    const int sourceRow = source_->RowOf(id);
    return sourceRow < 0 ? -1 : PlaceOf(sourceRow);
}

int GridRows::PlaceOf(int sourceRow) const {
    const auto place = InSourceOrder() ? std::lower_bound(shown_.begin(), shown_.end(), sourceRow)
                                       : std::find(shown_.begin(), shown_.end(), sourceRow);
    if (place == shown_.end() || *place != sourceRow) return -1;
    return static_cast<int>(place - shown_.begin());
}

void GridRows::FetchAll() {
    if (source_ == nullptr) return;
    int before = -1;  // a source that promises rows and has none must not hang the window
    while (source_->canFetchMore({}) && before != source_->rowCount()) {
        before = source_->rowCount();
        source_->fetchMore({});
    }
}

void GridRows::Refresh() {
    if (columnCount() == 0) return;
    emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
    if (rowCount() > 0) {
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }
}

void GridRows::Rebuild(const std::function<void()>& change) {
    FetchAll();
    emit AboutToRebuild(false);
    beginResetModel();
    change();
    Compute();
    endResetModel();
    emit Rebuilt(false);
}

std::optional<Qt::SortOrder> GridRows::OrderOf(int column) const {
    if (sourceSorts_ && source_ != nullptr) return source_->OrderOf(column);
    return column == sortColumn_ ? std::optional(order_) : std::nullopt;
}

void GridRows::Sort(int column, Qt::SortOrder order, bool further) {
    Rebuild([&] {
        sortColumn_ = column;
        order_ = order;
        sourceSorts_ = source_ != nullptr && source_->SortRows(column, order, further);
    });
    if (columnCount() > 0) emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

void GridRows::SetFilterText(const QString& text) {
    if (text == filter_) return;
    Rebuild([&] { filter_ = text; });
}

void GridRows::Compute() {
    shown_.clear();
    if (source_ == nullptr) return;
    locale_ = QLocale();
    if (sortColumn_ >= source_->columnCount()) sortColumn_ = -1;
    if (!InSourceOrder() || !filter_.isEmpty()) FetchAll();
    const int count = source_->rowCount();
    if (filter_.isEmpty()) {
        shown_.resize(static_cast<std::size_t>(count));
        std::iota(shown_.begin(), shown_.end(), 0);
    } else {
        const QStringMatcher matcher(filter_, Qt::CaseInsensitive);
        for (int row = 0; row < count; ++row) {
            if (Matches(row, matcher)) shown_.push_back(row);
        }
    }
    if (!InSourceOrder()) SortShown();
}

void GridRows::SortShown() {
    QCollator collator(locale_);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    const QCollatorSortKey none = collator.sortKey({});
    std::vector<SortKey> keys;
    keys.reserve(shown_.size());
    for (const int row : shown_) {
        const QVariant stored = source_->data(source_->index(row, sortColumn_), GridRole::kStored);
        SortKey key{IsNull(stored) ? 0 : 2, 0, none, row};
        if (const auto number = NumberAt(row, sortColumn_); key.rank != 0 && number) {
            key.number = *number;
            key.rank = 1;
        }
        if (key.rank == 2) key.text = collator.sortKey(ShownText(row, sortColumn_));
        keys.push_back(std::move(key));
    }
    // Downwards compares the other way round rather than reversing: equal rows keep their order.
    std::stable_sort(keys.begin(), keys.end(), [this](const SortKey& a, const SortKey& b) {
        return order_ == Qt::AscendingOrder ? a.Before(b) : b.Before(a);
    });
    std::transform(keys.begin(), keys.end(), shown_.begin(),
                   [](const SortKey& key) { return key.sourceRow; });
}

std::optional<double> GridRows::NumberAt(int sourceRow, int column) const {
    const GridColumn& how = *columns_[static_cast<std::size_t>(column)];
    if (!how.ValueItems().isEmpty()) return std::nullopt;
    const QVariant stored = source_->data(source_->index(sourceRow, column), GridRole::kStored);
    if (how.Kind() == GridKind::Text) {
        if (how.NumberFormat().isEmpty()) return std::nullopt;
        const QVariant read = source_->data(source_->index(sourceRow, column), GridRole::kNumber);
        return read.isValid() ? std::optional(read.toDouble()) : std::nullopt;
    }
    bool isNumber = false;
    const double number = stored.toDouble(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

bool GridRows::Matches(int sourceRow, const QStringMatcher& matcher) const {
    if (pinned_ != kNoGridRow && source_->IdAt(sourceRow) == pinned_) return true;
    for (int column = 0; column < columnCount(); ++column) {
        if (columns_[static_cast<std::size_t>(column)]->Visible() &&
            matcher.indexIn(ShownText(sourceRow, column)) >= 0) {
            return true;
        }
    }
    return false;
}

void GridRows::SourceInserted(int first, int last) {
    if (rebuilding_) return;
    const int count = last - first + 1;
    // Those behind the new rows have moved on already.
    for (int& row : shown_) {
        if (row >= first) row += count;
    }
    std::vector<int> added;
    const QStringMatcher matcher(filter_, Qt::CaseInsensitive);
    for (int row = first; row <= last; ++row) {
        if (filter_.isEmpty() || Matches(row, matcher)) added.push_back(row);
    }
    if (added.empty()) return;
    const auto place =
        InSourceOrder() ? std::lower_bound(shown_.begin(), shown_.end(), first) : shown_.end();
    const int at = static_cast<int>(place - shown_.begin());
    beginInsertRows({}, at, at + static_cast<int>(added.size()) - 1);
    shown_.insert(place, added.begin(), added.end());
    endInsertRows();
}

void GridRows::SourceAboutToRemove(int first, int last) {
    if (rebuilding_) return;
    const auto leaves = [=](int row) { return row >= first && row <= last; };
    // From below, whole runs at a time: rows above keep their numbers meanwhile.
    int end = rowCount();
    while (end > 0) {
        if (!leaves(shown_[static_cast<std::size_t>(end - 1)])) {
            --end;
            continue;
        }
        int begin = end - 1;
        while (begin > 0 && leaves(shown_[static_cast<std::size_t>(begin - 1)])) --begin;
        beginRemoveRows({}, begin, end - 1);
        shown_.erase(shown_.begin() + begin, shown_.begin() + end);
        endRemoveRows();
        end = begin;
    }
}

void GridRows::SourceRemoved(int first, int last) {
    if (rebuilding_) return;
    for (int& row : shown_) {
        if (row > last) row -= last - first + 1;
    }
}

void GridRows::SourceChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight) {
    if (rebuilding_ || rowCount() == 0) return;
    if (bottomRight.row() - topLeft.row() >= kFewRows) {
        emit dataChanged(index(0, topLeft.column()), index(rowCount() - 1, bottomRight.column()));
        return;
    }
    for (int sourceRow = topLeft.row(); sourceRow <= bottomRight.row(); ++sourceRow) {
        const int row = PlaceOf(sourceRow);
        if (row < 0) continue;
        emit dataChanged(index(row, topLeft.column()), index(row, bottomRight.column()));
    }
}

QString GridRows::ShownText(int sourceRow, int column) const {
    const GridColumn& how = *columns_[static_cast<std::size_t>(column)];
    const QModelIndex cell = source_->index(sourceRow, column);
    if (how.ValueItems().isEmpty()) return source_->data(cell, Qt::DisplayRole).toString();
    const QVariant stored = source_->data(cell, GridRole::kStored);
    if (IsNull(stored)) return {};
    const QString text = how.ValueText(stored);
    return text.isNull() ? stored.toString() : text;
}

QString GridRows::EditText(int sourceRow, int column) const {
    const GridColumn& how = *columns_[static_cast<std::size_t>(column)];
    const QModelIndex cell = source_->index(sourceRow, column);
    const bool shown = how.Kind() != GridKind::Text && how.ValueItems().isEmpty();
    return source_->data(cell, shown ? int{Qt::DisplayRole} : GridRole::kStored).toString();
}

int GridRows::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int GridRows::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant GridRows::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || source_ == nullptr) return {};
    const int sourceRow = shown_[static_cast<std::size_t>(index.row())];
    const GridColumn& how = *columns_[static_cast<std::size_t>(index.column())];
    switch (role) {
        case Qt::DisplayRole:
            return ShownText(sourceRow, index.column());
        case Qt::EditRole:
            return EditText(sourceRow, index.column());
        case Qt::ToolTipRole: {
            const QVariant tip = source_->data(source_->index(sourceRow, index.column()), role);
            return tip.isValid() ? tip : QVariant(ShownText(sourceRow, index.column()));
        }
        case Qt::TextAlignmentRole: {
            const bool number =
                how.ValueItems().isEmpty() &&
                (how.Kind() == GridKind::Integer || how.Kind() == GridKind::Number ||
                 (how.Kind() == GridKind::Text && NumberAt(sourceRow, index.column()).has_value()));
            return Qt::Alignment((number ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter)
                .toInt();
        }
        default:
            return source_->data(source_->index(sourceRow, index.column()), role);
    }
}

QVariant GridRows::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Vertical) {
        if (role == Qt::DisplayRole) return QString();  // the record selector shows a mark instead
        if (role == Qt::AccessibleTextRole) return QString::number(section + 1);
        return {};
    }
    if (section < 0 || section >= columnCount()) return {};
    const GridColumn& how = *columns_[static_cast<std::size_t>(section)];
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole && role != Qt::AccessibleTextRole) {
        return role == Qt::TextAlignmentRole
                   ? QVariant(Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter).toInt())
                   : QVariant();
    }
    QString caption = how.Caption();
    if (caption.isEmpty() && source_ != nullptr) {
        caption = source_->headerData(section, orientation, Qt::DisplayRole).toString();
    }
    if (const auto order = OrderOf(section); role == Qt::AccessibleTextRole && order) {
        caption += u", "_s + Text(*order == Qt::AscendingOrder ? GridText::SortedUpwards
                                                               : GridText::SortedDownwards);
    }
    return caption;
}

Qt::ItemFlags GridRows::flags(const QModelIndex& index) const {
    if (!index.isValid() || source_ == nullptr) return Qt::NoItemFlags;
    const int sourceRow = shown_[static_cast<std::size_t>(index.row())];
    Qt::ItemFlags flags = source_->flags(source_->index(sourceRow, index.column()));
    if (columns_[static_cast<std::size_t>(index.column())]->Locked()) {
        flags &= ~Qt::ItemFlags(Qt::ItemIsEditable);
    }
    return flags | Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

bool GridRows::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && source_ != nullptr && source_->canFetchMore({});
}

void GridRows::fetchMore(const QModelIndex& parent) {
    if (!parent.isValid() && source_ != nullptr) source_->fetchMore({});
}
