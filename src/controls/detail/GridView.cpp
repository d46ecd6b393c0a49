#include "controls/detail/GridView.h"

#include <algorithm>
#include <numeric>
#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>
#include <utility>

#include "controls/detail/CellDelegate.h"
#include "controls/detail/CellEdit.h"
#include "controls/detail/FillHandle.h"
#include "controls/detail/FilterRow.h"
#include "controls/detail/FrozenView.h"
#include "controls/detail/GridRows.h"
#include "controls/detail/Headers.h"
#include "controls/GridSplit.h"
#include "controls/GridText.h"

namespace {

constexpr int kSpaceAroundRow = 6;  // pixels, above and below together

}  // namespace

GridView::GridView(QWidget* parent) : QTableView(parent) {
    captions_ = new CaptionHeader(*this, this);
    setHorizontalHeader(captions_);
    records_ = new RecordHeader(*this);
    setVerticalHeader(records_);
    setItemDelegate(new CellDelegate(*this));
    // Of Qt's ways to select only that of assistive tools is left, see selectionCommand.
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectRows);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setTabKeyNavigation(true);
    setCornerButtonEnabled(false);
    // Qt's tables select columns and rows with these; here a heading selects nothing, and record
    // selectors know the keys that are held.
    disconnect(captions_, &QHeaderView::sectionPressed, this, nullptr);
    disconnect(captions_, &QHeaderView::sectionEntered, this, nullptr);
    disconnect(captions_, &QHeaderView::sectionHandleDoubleClicked, this, nullptr);
    connect(captions_, &QHeaderView::sectionHandleDoubleClicked, this, &GridView::FitColumn);
    disconnect(records_, &QHeaderView::sectionPressed, this, nullptr);
    disconnect(records_, &QHeaderView::sectionEntered, this, nullptr);
    connect(records_, &QHeaderView::sectionPressed, this, &GridView::PressRecordSelector);
    connect(records_, &QHeaderView::sectionEntered, this, &GridView::DragRecordSelector);
}

GridView::~GridView() = default;

void GridView::Bind(GridSplit& split, GridRows& rows) {
    split_ = &split;
    rows_ = &rows;
    setModel(&rows);
    frozen_ = new FrozenView(*this);
    fillHandle_ = new FillHandle(*this, split);
    connect(captions_, &QHeaderView::sectionClicked, &split, &GridSplit::HeadClick);
    connect(captions_, &QHeaderView::sectionResized, this, &GridView::PlaceFrozen);
}

CellMarks GridView::Marks() const {
    const QModelIndex current = currentIndex();
    return {current.row(), current.column(), hasFocus() || split_->Editing(), wholeRows_};
}

void GridView::SetCurrent(const QModelIndex& cell, bool bringIntoView) {
    selectionModel()->setCurrentIndex(cell, QItemSelectionModel::NoUpdate);
    if (bringIntoView && cell.isValid()) scrollTo(cell);
}

int GridView::FirstColumn() const {
    const int column = ColumnBeside(-1, +1);
    return std::max(column, 0);
}

int GridView::ColumnBeside(int column, int step) const {
    int visual = column < 0 ? (step > 0 ? -1 : captions_->count()) : captions_->visualIndex(column);
    for (visual += step; visual >= 0 && visual < captions_->count(); visual += step) {
        const int logical = captions_->logicalIndex(visual);
        if (!captions_->isSectionHidden(logical)) return logical;
    }
    return -1;
}

bool GridView::StepRows(int step) {
    const QModelIndex current = currentIndex();
    if (!current.isValid()) return false;
    const int row = current.row() + step;
    if (row >= rows_->rowCount() && rows_->canFetchMore({})) rows_->fetchMore({});
    if (row < 0 || row >= rows_->rowCount()) return false;
    SetCurrent(rows_->index(row, current.column()));
    return true;
}

bool GridView::StepCells(int step, bool editableOnly) {
    int row = currentIndex().row();
    int column = currentIndex().column();
    if (row < 0) return false;
    // Over one row more than this one there is nothing new to find but other rows' flags.
    for (int rowsSeen = 0; rowsSeen < 3;) {
        column = ColumnBeside(column, step);
        if (column < 0) {
            row += step;
            ++rowsSeen;
            if (row >= rows_->rowCount() && rows_->canFetchMore({})) rows_->fetchMore({});
            if (row < 0 || row >= rows_->rowCount()) return false;
            continue;
        }
        if (editableOnly && !split_->CanEdit(rows_->IdAt(row), column)) continue;
        SetCurrent(rows_->index(row, column));
        return true;
    }
    return false;
}

QList<GridRowId> GridView::SelectedRowIds() const {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) rows.push_back(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    QList<GridRowId> ids;
    ids.reserve(static_cast<qsizetype>(rows.size()));
    for (const int row : rows) ids.push_back(rows_->IdAt(row));
    return ids;
}

std::optional<std::pair<int, int>> GridView::SelectedBlock() const {
    std::vector<std::pair<int, int>> ranges;
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        ranges.emplace_back(range.top(), range.bottom());
    }
    if (ranges.empty()) return std::nullopt;
    std::sort(ranges.begin(), ranges.end());
    std::pair<int, int> block = ranges.front();
    for (const auto& [top, bottom] : ranges) {
        if (top > block.second + 1) return std::nullopt;
        block.second = std::max(block.second, bottom);
    }
    return block;
}

void GridView::SelectRowNumbers(const std::vector<int>& rows) {
    QItemSelection selection;
    const int last = rows_->columnCount() - 1;
    for (std::size_t begin = 0; begin < rows.size();) {
        std::size_t end = begin + 1;
        while (end < rows.size() && rows[end] == rows[end - 1] + 1) ++end;
        selection.append(
            QItemSelectionRange(rows_->index(rows[begin], 0), rows_->index(rows[end - 1], last)));
        begin = end;
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void GridView::SelectRange(int fromRow, int toRow) {
    const int last = rows_->columnCount() - 1;
    const QItemSelection range(rows_->index(std::min(fromRow, toRow), 0),
                               rows_->index(std::max(fromRow, toRow), last));
    selectionModel()->select(range, QItemSelectionModel::ClearAndSelect);
}

void GridView::ToggleRow(int row) {
    const QItemSelection one(rows_->index(row, 0), rows_->index(row, rows_->columnCount() - 1));
    selectionModel()->select(one, QItemSelectionModel::Toggle);
}

void GridView::SelectBlock(int fromRow, int toRow) {
    anchor_ = rows_->IdAt(fromRow);
    SetWholeRows(false);
    SelectRange(fromRow, toRow);
}

void GridView::PlaceFillHandle() {
    if (fillHandle_) fillHandle_->Place();
}

bool GridView::IsRowSelected(int row) const {
    return selectionModel()->isRowSelected(row, {});
}

void GridView::SetWholeRows(bool whole) {
    if (whole) anchorColumn_ = -1;
    wholeRows_ = whole;
    viewport()->update();
    if (frozen_->isVisible()) frozen_->viewport()->update();
}

bool GridView::InColumnRange(int column) const {
    const int current = currentIndex().column();
    if (anchorColumn_ < 0 || current < 0) return column == current;
    const int place = captions_->visualIndex(column);
    const int from = captions_->visualIndex(anchorColumn_);
    const int to = captions_->visualIndex(current);
    return place >= std::min(from, to) && place <= std::max(from, to) &&
           !captions_->isSectionHidden(column);
}

void GridView::PressRecordSelector(int row) {
    // An edit that is refused by now has the keyboard back already.
    if (split_->RefusedJustNow()) return;
    setFocus(Qt::MouseFocusReason);
    if (split_->RefusedJustNow()) return;
    const Qt::KeyboardModifiers keys = QApplication::keyboardModifiers();
    const int column = currentIndex().isValid() ? currentIndex().column() : FirstColumn();
    const int anchor = rows_->RowOf(anchor_);
    SetWholeRows(true);
    SetCurrent(rows_->index(row, column));
    if (keys & Qt::ShiftModifier && anchor >= 0) {
        SelectRange(anchor, row);
        return;
    }
    anchor_ = rows_->IdAt(row);
    if (keys & Qt::ControlModifier) {
        ToggleRow(row);
    } else {
        SelectRange(row, row);
    }
}

void GridView::DragRecordSelector(int row) {
    const int anchor = rows_->RowOf(anchor_);
    if (!(QApplication::mouseButtons() & Qt::LeftButton) || anchor < 0) return;
    SetCurrent(rows_->index(row, std::max(currentIndex().column(), 0)));
    SelectRange(anchor, row);
}

bool GridView::ButtonHit(const QModelIndex& cell, const QRect& rect, QPoint at) const {
    return cell == currentIndex() && split_->CanEdit(rows_->IdAt(cell.row()), cell.column()) &&
           CellDelegate::ButtonRect(*split_->ColumnAt(cell.column()), rect).contains(at);
}

void GridView::PressCell(const QModelIndex& cell, const QRect& rect, QMouseEvent* event) {
    event->accept();
    // The press has ended an edit with an error: the grid has gone back to that cell.
    if (split_->RefusedJustNow()) return;
    if (!cell.isValid()) return;
    if (event->button() == Qt::RightButton) {
        // A menu for the selection must find it unchanged.
        if (!selectionModel()->isSelected(cell)) selectionModel()->clearSelection();
        SetCurrent(cell, false);
        return;
    }
    if (event->button() != Qt::LeftButton) return;
    if (ButtonHit(cell, rect, event->pos())) {
        split_->PressButton();
        return;
    }
    const QModelIndex before = currentIndex();
    pressed_ = cell;
    if (event->modifiers() & Qt::ShiftModifier) {
        const int anchor = rows_->RowOf(anchor_);
        const int from = anchor >= 0 ? anchor : before.isValid() ? before.row() : cell.row();
        if (anchorColumn_ < 0) anchorColumn_ = before.column();
        SetWholeRows(false);
        SetCurrent(cell);
        anchor_ = rows_->IdAt(from);
        SelectRange(from, cell.row());
        return;
    }
    SetWholeRows((event->modifiers() & Qt::ControlModifier) != 0 && wholeRows_);
    anchorColumn_ = -1;
    SetCurrent(cell);
    if (event->modifiers() & Qt::ControlModifier) {
        anchor_ = rows_->IdAt(cell.row());
        ToggleRow(cell.row());
    } else {
        anchor_ = kNoGridRow;
        selectionModel()->clearSelection();
    }
}

void GridView::DoubleClickCell(const QModelIndex& cell, const QRect& rect, QMouseEvent* event) {
    event->accept();
    if (!cell.isValid() || event->button() != Qt::LeftButton) return;
    if (ButtonHit(cell, rect, event->pos())) return;  // its first press was enough
    const GridRowId id = rows_->IdAt(cell.row());
    if (split_->DoubleClickEdits()) split_->BeginEdit();
    emit split_->DblClick(id, cell.column());
}

void GridView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex cell = indexAt(event->pos());
    PressCell(cell, visualRect(cell), event);
}

void GridView::DragTo(const QModelIndex& cell) {
    if (!pressed_.isValid() || !cell.isValid() || cell == currentIndex()) return;
    if (split_->Editing() && !split_->CommitPendingEdit()) return;
    anchor_ = rows_->IdAt(pressed_.row());
    anchorColumn_ = pressed_.column();
    SetWholeRows(false);
    SetCurrent(cell);
    SelectRange(pressed_.row(), cell.row());
}

// Qt's own way of dragging selects otherwise.
void GridView::mouseMoveEvent(QMouseEvent* event) {
    if (!(event->buttons() & Qt::LeftButton)) return;
    const QRect inside = viewport()->rect().adjusted(0, 0, -1, -1);
    const QPoint at(std::clamp(event->pos().x(), inside.left(), inside.right()),
                    std::clamp(event->pos().y(), inside.top(), inside.bottom()));
    DragTo(indexAt(at));
}

void GridView::mouseReleaseEvent(QMouseEvent* /*event*/) {
    pressed_ = QPersistentModelIndex();
}

void GridView::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex cell = indexAt(event->pos());
    DoubleClickCell(cell, visualRect(cell), event);
}

void GridView::contextMenuEvent(QContextMenuEvent* event) {
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex cell = byKey ? currentIndex() : indexAt(event->pos());
    const QPoint at = byKey && cell.isValid()
                          ? ViewportOf(cell)->mapToGlobal(CellRect(cell).bottomLeft())
                          : event->globalPos();
    emit split_->ContextMenu(rows_->IdAt(cell.row()), cell.column(), at);
}

bool GridView::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip && rows_ != nullptr) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const QModelIndex cell = indexAt(help->pos());
        if (cell.isValid() && ButtonHit(cell, visualRect(cell), help->pos()) &&
            split_->ColumnAt(cell.column())->Button()) {
            QToolTip::showText(help->globalPos(), rows_->Text(GridText::Choose), this);
            return true;
        }
    }
    return QTableView::viewportEvent(event);
}

void GridView::focusInEvent(QFocusEvent* event) {
    // Where a row is chosen by making it current, the keyboard's coming back must choose none.
    if (split_->AlwaysCurrent() && !currentIndex().isValid() && rows_->rowCount() > 0) {
        SetCurrent(rows_->index(0, FirstColumn()));
    }
    if (currentIndex().isValid()) {
        QTableView::focusInEvent(event);
    } else {
        // Qt's views make the first row current then.
        QAbstractScrollArea::focusInEvent(event);
        viewport()->update();
    }
    UpdateMarks();
    emit GotKeyboard();
    AnnounceCell(QAccessible::Focus, currentIndex());
}

/// Tells assistive tools of a cell. Qt's tables do so whoever has the keyboard, and name a hidden
/// column where a row is selected.
void GridView::AnnounceCell(QAccessible::Event what, const QModelIndex& cell) {
    if (!QAccessible::isActive() || !hasFocus() || !cell.isValid()) return;
    // As Qt numbers them: headings and record selectors are cells too.
    const int columns = rows_->columnCount() + 1;
    QAccessibleEvent event(this, what);
    event.setChild((cell.row() + 1) * columns + cell.column() + 1);
    QAccessible::updateAccessibility(&event);
}

QItemSelectionModel::SelectionFlags GridView::selectionCommand(const QModelIndex& /*index*/,
                                                               const QEvent* /*event*/) const {
    return QItemSelectionModel::NoUpdate;
}

void GridView::focusOutEvent(QFocusEvent* event) {
    QTableView::focusOutEvent(event);
    UpdateMarks();
}

void GridView::UpdateMarks() {
    records_->viewport()->update();
    const QModelIndex current = currentIndex();
    if (!current.isValid()) return;
    viewport()->update(0, rowViewportPosition(current.row()), viewport()->width(),
                       rowHeight(current.row()));
    if (frozen_->isVisible()) frozen_->viewport()->update();
}

void GridView::LayOutNow() {
    executeDelayedItemsLayout();
    updateGeometries();
}

void GridView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QAbstractItemView::currentChanged(current, previous);
    AnnounceCell(QAccessible::Focus, current);
    if (previous.isValid() && previous.row() != current.row()) {
        viewport()->update(0, rowViewportPosition(previous.row()), viewport()->width(),
                           rowHeight(previous.row()));
    }
    UpdateMarks();
    if (!wholeRows_ && selectionModel()->hasSelection()) viewport()->update();
    split_->CurrentCellChanged();
    emit split_->CellsChange();
}

void GridView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    QAbstractItemView::selectionChanged(selected, deselected);
    const int shown = currentIndex().isValid() ? currentIndex().column() : FirstColumn();
    if (!selected.isEmpty()) {
        AnnounceCell(QAccessible::SelectionAdd, rows_->index(selected.first().top(), shown));
    }
    if (!deselected.isEmpty() && deselected.first().isValid()) {
        AnnounceCell(QAccessible::SelectionRemove, rows_->index(deselected.first().top(), shown));
    }
    if (!selectionModel()->hasSelection()) anchorColumn_ = -1;
    emit split_->SelChange();
    emit split_->CellsChange();
}

// --- geometry

void GridView::scrollTo(const QModelIndex& index, ScrollHint hint) {
    const int sideways = horizontalScrollBar()->value();
    QTableView::scrollTo(index, hint);
    if (strip_.empty() || !index.isValid()) return;
    if (InStrip(index.column())) {  // in view wherever the others are
        horizontalScrollBar()->setValue(sideways);
        return;
    }
    const int hidden = StripWidth() - visualRect(index).left();
    if (hidden > 0) horizontalScrollBar()->setValue(horizontalScrollBar()->value() - hidden);
}

void GridView::ShowFilters(bool show) {
    captions_->ShowFilters(show);
    frozen_->Captions().ShowFilters(show);
    updateGeometries();
}

void GridView::FiltersChanged() {
    for (CaptionHeader* header : {captions_, &frozen_->Captions()}) {
        if (header->Filters() != nullptr) header->Filters()->Update();
    }
}

bool GridView::FocusFilter(int column) {
    CaptionHeader& header = InStrip(column) ? frozen_->Captions() : *captions_;
    if (!InStrip(column) && rows_->rowCount() > 0) scrollTo(rows_->index(0, column));
    return header.Filters() != nullptr && header.Filters()->Focus(column);
}

void GridView::FitColumn(int column) {
    const int wide = std::max(sizeHintForColumn(column), captions_->sectionSizeHint(column));
    captions_->resizeSection(column, std::min(wide, std::max(viewport()->width() * 3 / 4, 1)));
}

void GridView::SetRowHeightFor(const QFont& cells, const QFont& headings) {
    setFont(cells);
    captions_->setFont(headings);
    records_->setDefaultSectionSize(QFontMetrics(cells, this).height() + kSpaceAroundRow);
    SetFrozen(frozenColumns_);
}

void GridView::SetFrozen(std::vector<int> columns) {
    frozenColumns_ = std::move(columns);
    strip_.clear();
    if (frozen_ == nullptr) return;
    if (frozenColumns_.empty()) frozen_->ShowColumns({});
    PlaceFrozen();
}

bool GridView::InStrip(int column) const {
    return std::find(strip_.begin(), strip_.end(), column) != strip_.end();
}

int GridView::StripWidth() const {
    return std::accumulate(strip_.begin(), strip_.end(), 0,
                           [this](int sum, int column) { return sum + columnWidth(column); });
}

void GridView::PlaceFrozen() {
    if (frozen_ == nullptr || frozenColumns_.empty()) return;
    if (*std::max_element(frozenColumns_.begin(), frozenColumns_.end()) >= captions_->count()) {
        return;
    }
    // Leaves a part of the other columns in view, however wide the strip would be.
    const int room = viewport()->width() * 3 / 4;
    std::vector<int> strip;
    int width = 0;
    for (const int column : frozenColumns_) {
        if (!strip.empty() && width + columnWidth(column) > room) break;
        strip.push_back(column);
        width += columnWidth(column);
    }
    if (strip != strip_) {
        strip_ = std::move(strip);
        frozen_->ShowColumns(strip_);
    }
    for (const int column : strip_) {
        if (frozen_->columnWidth(column) != columnWidth(column)) {
            frozen_->setColumnWidth(column, columnWidth(column));
        }
    }
    const int height = captions_->height() + viewport()->height();
    frozen_->horizontalHeader()->setFixedHeight(captions_->height());
    frozen_->setGeometry(viewport()->x(), captions_->y(), std::min(width, room), height);
    frozen_->verticalScrollBar()->setValue(verticalScrollBar()->value());
    captions_->PlaceFilters();
    frozen_->Captions().PlaceFilters();
}

QWidget* GridView::ViewportOf(const QModelIndex& cell) const {
    const bool inStrip = InStrip(cell.column()) && frozen_->isVisible();
    return inStrip ? frozen_->viewport() : viewport();
}

QRect GridView::CellRect(const QModelIndex& cell) const {
    const bool inStrip = InStrip(cell.column()) && frozen_->isVisible();
    return inStrip ? frozen_->visualRect(cell) : visualRect(cell);
}

void GridView::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    if (dx != 0) captions_->PlaceFilters();
    emit Scrolled();
}

void GridView::SetEmptyText(const QString& text) {
    if (std::exchange(emptyText_, text) == text) return;
    setAccessibleDescription(text);
    viewport()->update();
}

void GridView::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (emptyText_.isEmpty() || rows_ == nullptr || rows_->rowCount() > 0) return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::Text));
    const int space = fontMetrics().height();
    painter.drawText(viewport()->rect().adjusted(space, space, -space, -space),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, emptyText_);
}

void GridView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    PlaceFrozen();
}

void GridView::updateGeometries() {
    QTableView::updateGeometries();
    PlaceFrozen();
    emit Scrolled();
}
