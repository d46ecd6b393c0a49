#include "controls/detail/FillHandle.h"

#include <algorithm>
#include <QMouseEvent>
#include <QPainter>

#include "controls/detail/GridRows.h"
#include "controls/detail/GridView.h"
#include "controls/GridSplit.h"
#include "controls/GridText.h"

namespace {

constexpr int kSide = 7;  // pixels

}  // namespace

FillHandle::FillHandle(GridView& view, GridSplit& split)
    : QWidget(view.viewport()), view_(view), split_(split) {
    setObjectName(QStringLiteral("fillHandle"));
    setFixedSize(kSide, kSide);
    setCursor(Qt::CrossCursor);
    hide();
}

std::optional<FillHandle::Cells> FillHandle::Block() const {
    const QModelIndex current = view_.currentIndex();
    if (!current.isValid()) return std::nullopt;
    if (!view_.IsRowSelected(current.row())) {
        return Cells{current.row(), current.row(), current.column()};
    }
    const auto rows = view_.SelectedBlock();
    const QList<int> columns = split_.ShownColumns();
    const auto last = std::find_if(columns.rbegin(), columns.rend(),
                                   [this](int column) { return view_.InColumnRange(column); });
    if (view_.SelectsWholeRows() || !rows || last == columns.rend()) return std::nullopt;
    return Cells{rows->first, rows->second, *last};
}

void FillHandle::Place() {
    if (firstRow_ >= 0) return;  // under the pointer
    hide();
    if (!split_.FillsByMouse() || split_.Locked()) return;
    const auto block = Block();
    if (!block) return;
    // Asked at every step of scrolling, so only the corner is looked at, however many cells there
    // are.
    if (view_.InStrip(block->column) ||
        !split_.CanEdit(view_.Rows().IdAt(block->last), block->column)) {
        return;
    }
    const QRect corner = view_.visualRect(view_.Rows().index(block->last, block->column));
    if (!view_.viewport()->rect().contains(corner.bottomRight())) return;
    setToolTip(view_.Rows().Text(GridText::FillHandle));
    move(corner.right() - kSide + 2, corner.bottom() - kSide + 2);
    raise();
    show();
}

void FillHandle::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    painter.fillRect(rect().adjusted(1, 1, -1, -1), palette().highlight());
}

void FillHandle::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !split_.CommitPendingEdit()) return;
    const auto block = Block();
    if (!block) return;
    firstRow_ = block->first;
    lastRow_ = block->last;
    end_ = lastRow_;
}

void FillHandle::mouseMoveEvent(QMouseEvent* event) {
    if (firstRow_ < 0) return;
    const QPoint at = view_.viewport()->mapFromGlobal(event->globalPosition().toPoint());
    const int height = view_.viewport()->height();
    int row = view_.rowAt(std::clamp(at.y(), 0, height - 1));
    if (row < 0) row = view_.Rows().rowCount() - 1;
    // Beyond the edge it scrolls a row at a time.
    if (at.y() >= height) row = std::min(row + 1, view_.Rows().rowCount() - 1);
    end_ = std::max(row, lastRow_);
    view_.SelectBlock(firstRow_, end_);
    view_.scrollTo(view_.Rows().index(end_, view_.currentIndex().column()));
}

void FillHandle::mouseReleaseEvent(QMouseEvent* event) {
    if (firstRow_ < 0) return;
    const int sources = lastRow_ - firstRow_ + 1;
    const bool isWider = end_ > lastRow_;
    firstRow_ = -1;
    if (isWider) {
        emit split_.FillWanted(sources, event->modifiers().testFlag(Qt::ControlModifier));
    }
    Place();
}
