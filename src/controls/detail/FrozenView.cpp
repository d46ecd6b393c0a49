#include "controls/detail/FrozenView.h"

#include <algorithm>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QWheelEvent>

#include "controls/detail/GridRows.h"
#include "controls/detail/GridView.h"
#include "controls/detail/Headers.h"
#include "controls/GridSplit.h"

FrozenView::FrozenView(GridView& grid)
    : QTableView(&grid), grid_(grid), captions_(new CaptionHeader(grid, this)) {
    setHorizontalHeader(captions_);
    captions_->setSectionsMovable(false);
    captions_->setSectionsClickable(true);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(1);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setSelectionMode(NoSelection);
    setEditTriggers(NoEditTriggers);
    setFocusPolicy(Qt::NoFocus);
    setAlternatingRowColors(grid.alternatingRowColors());
    setWordWrap(false);
    captions_->disconnect(this);
    connect(grid.verticalScrollBar(), &QScrollBar::valueChanged, verticalScrollBar(),
            &QScrollBar::setValue);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, grid.verticalScrollBar(),
            &QScrollBar::setValue);
    connect(captions_, &QHeaderView::sectionResized, this, [this](int column, int, int size) {
        if (size > 0 && !arranging_) grid_.setColumnWidth(column, size);
    });
    connect(captions_, &QHeaderView::sectionHandleDoubleClicked, &grid, &GridView::FitColumn);
    connect(captions_, &QHeaderView::sectionClicked, this,
            [this](int column) { emit grid_.Split().HeadClick(column); });
    hide();
}

void FrozenView::ShowColumns(const std::vector<int>& columns) {
    if (columns.empty()) {
        hide();
        return;
    }
    const QScopedValueRollback arranging(arranging_, true);
    if (model() == nullptr) {
        setModel(&grid_.Rows());
        QItemSelectionModel* own = selectionModel();
        setSelectionModel(grid_.selectionModel());
        delete own;
        setItemDelegate(grid_.itemDelegate());
        // Their connections are made anew with each model.
        captions_->setSectionsClickable(true);
    }
    for (int i = 0; i < model()->columnCount(); ++i) {
        setColumnHidden(i, std::find(columns.begin(), columns.end(), i) == columns.end());
    }
    for (int place = 0; place < static_cast<int>(columns.size()); ++place) {
        const int column = columns[static_cast<std::size_t>(place)];
        captions_->moveSection(captions_->visualIndex(column), place);
        captions_->setSectionResizeMode(column,
                                        grid_.horizontalHeader()->sectionResizeMode(column));
        setColumnWidth(column, grid_.columnWidth(column));
    }
    verticalHeader()->setDefaultSectionSize(grid_.verticalHeader()->defaultSectionSize());
    captions_->setFont(grid_.horizontalHeader()->font());
    captions_->setFixedHeight(grid_.horizontalHeader()->height());
    setFont(grid_.font());
    verticalScrollBar()->setValue(grid_.verticalScrollBar()->value());
    show();
    raise();
}

void FrozenView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex cell = indexAt(event->pos());
    grid_.setFocus(Qt::MouseFocusReason);
    grid_.PressCell(cell, visualRect(cell), event);
}

// Beyond the strip it goes on over the grid.
void FrozenView::mouseMoveEvent(QMouseEvent* event) {
    if (!(event->buttons() & Qt::LeftButton)) return;
    const bool inStrip = viewport()->rect().contains(event->pos());
    const QPoint beyond = grid_.viewport()->mapFrom(
        viewport()->window(), viewport()->mapTo(viewport()->window(), event->pos()));
    grid_.DragTo(inStrip ? indexAt(event->pos()) : grid_.indexAt(beyond));
}

void FrozenView::mouseReleaseEvent(QMouseEvent* event) {
    grid_.mouseReleaseEvent(event);
}

void FrozenView::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex cell = indexAt(event->pos());
    grid_.DoubleClickCell(cell, visualRect(cell), event);
}

void FrozenView::contextMenuEvent(QContextMenuEvent* event) {
    const QModelIndex cell = indexAt(event->pos());
    emit grid_.Split().ContextMenu(grid_.Rows().IdAt(cell.row()), cell.column(),
                                   event->globalPos());
}

void FrozenView::wheelEvent(QWheelEvent* event) {
    QApplication::sendEvent(grid_.verticalScrollBar(), event);
}

void FrozenView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QAbstractItemView::currentChanged(current, previous);
}

void FrozenView::selectionChanged(const QItemSelection& selected,
                                  const QItemSelection& deselected) {
    QAbstractItemView::selectionChanged(selected, deselected);
}
