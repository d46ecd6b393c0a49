#include "controls/detail/RowMemory.h"

#include <algorithm>
#include <QScrollBar>
#include <QSet>
#include <vector>

#include "controls/detail/GridRows.h"
#include "controls/detail/GridView.h"

void RowMemory::Remember() {
    if (rows_.rowCount() == 0 || rows_.Source() == nullptr)
        return;  // what was remembered before is still awaited
    waiting_ = true;
    key_ = rows_.Source()->ContentKey();
    const QModelIndex current = view_.currentIndex();
    currentRow_ = current.row();
    currentColumn_ = current.column();
    current_ = rows_.IdAt(currentRow_);
    const QRect cell = current.isValid() ? view_.visualRect(current) : QRect();
    const bool inView =
        cell.isValid() && cell.top() >= 0 && cell.top() < view_.viewport()->height();
    currentTop_ = inView ? cell.top() : -1;
    topRow_ = std::max(view_.rowAt(0), 0);
    sideways_ = view_.horizontalScrollBar()->value();
    selected_ = view_.SelectedRowIds();
    anchor_ = view_.Anchor();
}

bool RowMemory::SameContent() const {
    const GridSource* source = rows_.Source();
    return source != nullptr && key_.isValid() && source->ContentKey() == key_;
}

bool RowMemory::Restore(bool sourceReset, bool alwaysCurrent) {
    const bool wanted = waiting_ && (!sourceReset || SameContent());
    // At the end of other rows the view would read on at once.
    if (!wanted) view_.verticalScrollBar()->setValue(0);
    if (rows_.rowCount() == 0 && rows_.canFetchMore({})) rows_.fetchMore({});
    if (rows_.rowCount() == 0 && sourceReset && waiting_) return false;
    waiting_ = false;
    view_.SetAnchor(kNoGridRow);
    if (wanted) FetchWanted();
    view_.LayOutNow();  // or the scroll bars keep to the range of before
    const bool found = wanted && RestoreCurrent();
    if (wanted) {
        RestoreSelection();
    } else {
        view_.scrollToTop();
    }
    if (!found && alwaysCurrent && rows_.rowCount() > 0) {
        // The next best: the row that has taken its place.
        const int row = wanted ? std::clamp(currentRow_, 0, rows_.rowCount() - 1) : 0;
        const int column = view_.isColumnHidden(std::max(currentColumn_, 0)) || currentColumn_ < 0
                               ? view_.FirstColumn()
                               : currentColumn_;
        view_.SetCurrent(rows_.index(row, column));
    }
    return true;
}

void RowMemory::FetchWanted() {
    GridSource& source = *rows_.Source();
    const auto missing = [&](GridRowId id) { return id != kNoGridRow && source.RowOf(id) < 0; };
    int before = -1;
    while (source.canFetchMore({}) && before != source.rowCount() &&
           (missing(current_) || std::any_of(selected_.begin(), selected_.end(), missing))) {
        before = source.rowCount();
        source.fetchMore({});
    }
}

bool RowMemory::RestoreCurrent() {
    const int row = rows_.RowOf(current_);
    view_.horizontalScrollBar()->setValue(sideways_);
    if (row < 0 || currentColumn_ >= rows_.columnCount()) {
        if (topRow_ < rows_.rowCount()) {
            view_.scrollTo(rows_.index(topRow_, view_.FirstColumn()),
                           QAbstractItemView::PositionAtTop);
        }
        view_.horizontalScrollBar()->setValue(sideways_);
        return false;
    }
    view_.SetCurrent(rows_.index(row, std::max(currentColumn_, 0)), false);
    if (currentTop_ >= 0) {
        // In the same place on the screen: it is the neighbours that may have changed.
        view_.verticalScrollBar()->setValue(row * view_.rowHeight(row) - currentTop_);
    } else if (topRow_ < rows_.rowCount()) {
        view_.verticalScrollBar()->setValue(topRow_ * view_.rowHeight(topRow_));
    }
    return true;
}

void RowMemory::RestoreSelection() {
    if (selected_.isEmpty()) return;
    const QSet<GridRowId> wanted(selected_.begin(), selected_.end());
    std::vector<int> rows;
    for (int row = 0; row < rows_.rowCount(); ++row) {
        if (wanted.contains(rows_.IdAt(row))) rows.push_back(row);
    }
    view_.SelectRowNumbers(rows);
    if (rows_.RowOf(anchor_) >= 0) view_.SetAnchor(anchor_);
}
