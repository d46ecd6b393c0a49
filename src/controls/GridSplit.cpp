#include "controls/GridSplit.h"

#include <algorithm>
#include <QGuiApplication>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QTimer>

#include "controls/detail/CellEdit.h"
#include "controls/detail/ColumnLayout.h"
#include "controls/detail/GridRows.h"
#include "controls/detail/GridView.h"
#include "controls/detail/RowMemory.h"

GridSplit::GridSplit(GridView& view, QObject* parent)
    : QObject(parent),
      view_(view),
      rows_(std::make_unique<GridRows>(columns_)),
      layout_(std::make_unique<ColumnLayout>(view, columns_)),
      memory_(std::make_unique<RowMemory>(view, *rows_)),
      edit_(std::make_unique<CellEdit>(*this, view, *rows_)) {
    view_.Bind(*this, *rows_);
    connect(rows_.get(), &GridRows::AboutToRebuild, this, [this] {
        rebuilding_ = true;
        memory_->Remember();
    });
    connect(rows_.get(), &GridRows::ColumnsReset, this, &GridSplit::RebuildColumns);
    connect(rows_.get(), &GridRows::Rebuilt, this, &GridSplit::RowsRebuilt);
    connect(rows_.get(), &GridRows::rowsInserted, this,
            [this](const QModelIndex&, int first, int last) {
                // The first rows after an empty while.
                const bool all = first == 0 && last == rows_->rowCount() - 1;
                if (all && !rebuilding_) RowsRebuilt(true);
                edit_->Place();
            });
    connect(rows_.get(), &GridRows::rowsRemoved, this, &GridSplit::DiscardLostEdit);
    connect(layout_.get(), &ColumnLayout::Changed, this, [this] {
        edit_->Place();
        emit LayoutChanged();
    });
    connect(&view_, &GridView::Scrolled, edit_.get(), &CellEdit::Place);
    connect(this, &GridSplit::HeadClick, this, &GridSplit::SortByColumn);
    connect(this, &GridSplit::CellsChange, &view_, &GridView::PlaceFillHandle);
    connect(this, &GridSplit::RowColChange, &view_, &GridView::PlaceFillHandle);
    connect(this, &GridSplit::LayoutChanged, &view_, &GridView::PlaceFillHandle);
    // The view outlives the split, whose cells the handle asks for.
    connect(&view_, &GridView::Scrolled, this, [this] { view_.PlaceFillHandle(); });
}

GridSplit::~GridSplit() {
    blockSignals(true);  // whoever listens may be half gone himself
    edit_->Cancel();
    view_.setModel(nullptr);
}

QTableView* GridSplit::View() const {
    return &view_;
}

void GridSplit::SetTexts(std::function<QString(GridText)> texts) {
    rows_->SetTexts(std::move(texts));
    rows_->Refresh();
}

// --- source and columns

void GridSplit::SetSource(GridSource* source) {
    rows_->SetSource(source);
}

GridSource* GridSplit::Source() const {
    return rows_->Source();
}

void GridSplit::RebuildColumns() {
    const GridSource* source = rows_->Source();
    std::vector<GridColumn*> before = std::move(columns_);
    columns_.clear();
    const int count = source == nullptr ? 0 : source->columnCount();
    for (int i = 0; i < count; ++i) {
        const QString field = source->headerData(i, Qt::Horizontal, GridRole::kField).toString();
        const auto kind =
            static_cast<GridKind>(source->headerData(i, Qt::Horizontal, GridRole::kKind).toInt());
        const auto known = std::find_if(before.begin(), before.end(), [&](const auto* column) {
            return column != nullptr && column->DataField() == field && column->Kind() == kind;
        });
        if (known != before.end()) {
            columns_.push_back(std::exchange(*known, nullptr));
        } else {
            columns_.push_back(new GridColumn(field, kind, this));
            connect(columns_.back(), &GridColumn::Changed, rows_.get(), &GridRows::Refresh);
        }
    }
    for (GridColumn* column : before) {
        if (column != nullptr) column->deleteLater();
    }
}

void GridSplit::RowsRebuilt(bool sourceReset) {
    rebuilding_ = true;
    if (view_.horizontalHeader()->count() == ColumnCount()) layout_->Apply();
    const bool known = memory_->Restore(sourceReset, alwaysCurrent_);
    rebuilding_ = false;
    edit_->Place();
    if (known) {
        DiscardLostEdit();
        CurrentCellChanged();
    }
    emit FilterChanged();
}

void GridSplit::DiscardLostEdit() {
    if (!edit_->Active() || rows_->RowOf(edit_->Row()) >= 0) return;
    const GridRowId row = edit_->Row();
    const int column = edit_->Column();
    const QString text = edit_->Text();
    const bool changed = edit_->Changed();
    edit_->Cancel();
    if (changed) emit EditDiscarded(row, column, text);
}

QObject* GridSplit::Columns(const QVariant& nameOrIndex) const {
    if (nameOrIndex.typeId() == QMetaType::QString) return Column(nameOrIndex.toString());
    bool ok = false;
    const int column = nameOrIndex.toInt(&ok);
    return ok ? ColumnAt(column) : nullptr;
}

GridColumn* GridSplit::Column(QStringView field) const {
    return ColumnAt(ColumnIndex(field));
}

GridColumn* GridSplit::ColumnAt(int column) const {
    if (column < 0 || column >= ColumnCount()) return nullptr;
    return columns_[static_cast<std::size_t>(column)];
}

int GridSplit::ColumnIndex(QStringView field) const {
    for (int i = 0; i < ColumnCount(); ++i) {
        if (field.compare(ColumnAt(i)->DataField(), Qt::CaseInsensitive) == 0) return i;
    }
    return -1;
}

int GridSplit::ColumnCount() const {
    return static_cast<int>(columns_.size());
}

QList<int> GridSplit::ColumnOrders() const {
    return {layout_->Shown().begin(), layout_->Shown().end()};
}

void GridSplit::SetColumnOrders(const QList<int>& columns) {
    std::vector<int> order;
    std::vector<bool> named(columns_.size(), false);
    const auto add = [&](int column) {
        if (column < 0 || column >= ColumnCount() || named[static_cast<std::size_t>(column)])
            return;
        named[static_cast<std::size_t>(column)] = true;
        order.push_back(column);
    };
    std::for_each(columns.begin(), columns.end(), add);
    for (int i = 0; i < ColumnCount(); ++i) add(i);
    layout_->SetShown(std::move(order));
}

QString GridSplit::Caption() const {
    return caption_;
}

void GridSplit::SetCaption(const QString& caption) {
    caption_ = caption;
    view_.setAccessibleName(caption);
}

bool GridSplit::RecordSelectors() const {
    return !view_.verticalHeader()->isHidden();
}

void GridSplit::SetRecordSelectors(bool show) {
    view_.verticalHeader()->setVisible(show);
}

bool GridSplit::AllowColMove() const {
    return view_.horizontalHeader()->sectionsMovable();
}

void GridSplit::SetAllowColMove(bool allow) {
    view_.horizontalHeader()->setSectionsMovable(allow);
}

void GridSplit::SetLocked(bool locked) {
    locked_ = locked;
}

void GridSplit::SetAlwaysCurrent(bool always) {
    alwaysCurrent_ = always;
    if (always && !view_.currentIndex().isValid() && rows_->rowCount() > 0) {
        view_.SetCurrent(rows_->index(0, view_.FirstColumn()));
    }
}

QString GridSplit::FrozenColumn() const {
    const GridColumn* column = ColumnAt(layout_->Frozen());
    return column == nullptr ? QString() : column->DataField();
}

void GridSplit::SetFrozenColumn(const QString& field) {
    layout_->SetFrozen(ColumnIndex(field));
}

void GridSplit::FitColumn(int column) {
    if (ColumnAt(column) != nullptr) view_.FitColumn(column);
}

void GridSplit::FitAllColumns() {
    for (const int column : layout_->Shown()) {
        if (!view_.isColumnHidden(column)) view_.FitColumn(column);
    }
}

// --- current cell and selection

GridRowId GridSplit::CurrentRow() const {
    return rows_->IdAt(view_.currentIndex().row());
}

int GridSplit::CurrentColumn() const {
    return view_.currentIndex().column();
}

bool GridSplit::SetCurrentCell(GridRowId row, int column) {
    if (edit_->Active() && (row != edit_->Row() || (column >= 0 && column != edit_->Column())) &&
        !CommitPendingEdit()) {
        return false;
    }
    if (row == kNoGridRow) {
        view_.SetCurrent({});
        return true;
    }
    GridSource* source = rows_->Source();
    int before = -1;
    while (source != nullptr && source->RowOf(row) < 0 && source->canFetchMore({}) &&
           before != source->rowCount()) {
        before = source->rowCount();
        source->fetchMore({});
    }
    const int place = rows_->RowOf(row);
    if (place < 0) return false;
    if (column < 0) column = CurrentColumn() >= 0 ? CurrentColumn() : view_.FirstColumn();
    view_.SetCurrent(rows_->index(place, std::min(column, ColumnCount() - 1)));
    return true;
}

QList<GridRowId> GridSplit::SelectedRows() const {
    return view_.SelectedRowIds();
}

void GridSplit::SelectRows(const QList<GridRowId>& rows) {
    std::vector<int> numbers;
    for (const GridRowId id : rows) {
        if (const int row = rows_->RowOf(id); row >= 0) numbers.push_back(row);
    }
    std::sort(numbers.begin(), numbers.end());
    view_.SetWholeRows(true);
    view_.SelectRowNumbers(numbers);
}

void GridSplit::SelectAll() {
    rows_->FetchAll();
    view_.SetWholeRows(true);
    if (rows_->rowCount() > 0) view_.SelectRange(0, rows_->rowCount() - 1);
}

QList<GridRowId> GridSplit::ShownRows() const {
    QList<GridRowId> ids;
    for (int row = 0; row < rows_->rowCount(); ++row) ids.push_back(rows_->IdAt(row));
    return ids;
}

QString GridSplit::CellText(GridRowId row, int column) const {
    const GridSource* source = rows_->Source();
    const int sourceRow = source == nullptr ? -1 : source->RowOf(row);
    if (sourceRow < 0 || ColumnAt(column) == nullptr) return {};
    return rows_->ShownText(sourceRow, column);
}

void GridSplit::CurrentCellChanged() {
    if (rebuilding_) return;
    const GridRowId row = CurrentRow();
    const int column = CurrentColumn();
    if (row == currentRow_ && column == currentColumn_) return;
    currentRow_ = row;
    currentColumn_ = column;
    emit RowColChange(row, column);
}

// --- order and narrowing

void GridSplit::Sort(QStringView field, Qt::SortOrder order) {
    const int column = ColumnIndex(field);
    if (column >= 0) rows_->Sort(column, order);
}

void GridSplit::SortByColumn(int column) {
    if (ColumnAt(column) == nullptr || !CommitPendingEdit()) return;
    const bool upwards = rows_->OrderOf(column) == Qt::AscendingOrder;
    const bool further = QGuiApplication::keyboardModifiers().testFlag(Qt::ShiftModifier);
    rows_->Sort(column, upwards ? Qt::DescendingOrder : Qt::AscendingOrder, further);
}

void GridSplit::ClearSort() {
    if (rows_->SortColumn() >= 0) rows_->Sort(-1, Qt::AscendingOrder);
}

QString GridSplit::SortField() const {
    const GridColumn* column = ColumnAt(rows_->SortColumn());
    return column == nullptr ? QString() : column->DataField();
}

Qt::SortOrder GridSplit::SortOrder() const {
    return rows_->Order();
}

void GridSplit::SetFillsByMouse(bool fills) {
    fillsByMouse_ = fills;
    view_.PlaceFillHandle();
}

void GridSplit::SetEmptyText(const QString& text) {
    view_.SetEmptyText(text);
}

void GridSplit::SetFilterRow(bool show) {
    view_.ShowFilters(show);
}

QString GridSplit::ColumnFilter(int column) const {
    const GridColumn* shown = ColumnAt(column);
    return shown == nullptr ? QString() : filters_.value(shown->DataField());
}

void GridSplit::SetColumnFilter(int column, const QString& text) {
    const GridColumn* shown = ColumnAt(column);
    if (shown == nullptr || ColumnFilter(column) == text) return;
    filters_[shown->DataField()] = text;
    view_.FiltersChanged();
    emit ColumnFilterChanged(column, text);
}

bool GridSplit::FocusFilter(int column) {
    return view_.FocusFilter(column);
}

void GridSplit::SetFilterText(const QString& text) {
    rows_->SetFilterText(text);
}

QString GridSplit::FilterText() const {
    return rows_->FilterText();
}

int GridSplit::RowCount() const {
    return rows_->rowCount();
}
