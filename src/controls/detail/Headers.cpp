#include "controls/detail/Headers.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QPolygonF>
#include <QStyleOptionHeader>
#include <QToolTip>

#include "controls/detail/FilterRow.h"
#include "controls/detail/GridRows.h"
#include "controls/detail/GridView.h"
#include "controls/GridSplit.h"
#include "controls/GridText.h"

namespace {

constexpr int kSpaceAroundMark = 8;  // pixels, both sides together

/// The mark's shape in a square from (0, 0) to (1, 1).
QPolygonF Triangle() {
    return {{0.25, 0.1}, {0.8, 0.5}, {0.25, 0.9}};
}

QPolygonF Pencil() {
    return {{0.05, 0.95}, {0.15, 0.6}, {0.7, 0.05}, {0.95, 0.3}, {0.4, 0.85}};
}

}  // namespace

CaptionHeader::CaptionHeader(GridView& grid, QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent), grid_(grid) {
    setSectionsClickable(true);
    setSectionsMovable(true);
    setHighlightSections(false);
    setTextElideMode(Qt::ElideRight);
    setMinimumSectionSize(1);
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    connect(this, &QHeaderView::sectionResized, this, &CaptionHeader::PlaceFilters);
    connect(this, &QHeaderView::sectionMoved, this, &CaptionHeader::PlaceFilters);
    connect(this, &QHeaderView::sectionCountChanged, this, &CaptionHeader::PlaceFilters);
}

CaptionHeader::~CaptionHeader() = default;

void CaptionHeader::ShowFilters(bool show) {
    filters_ = show ? std::make_unique<FilterRow>(*this, grid_) : nullptr;
    updateGeometries();
    emit geometriesChanged();
}

void CaptionHeader::PlaceFilters() {
    if (filters_) filters_->Place();
}

QSize CaptionHeader::sizeHint() const {
    const QSize size = QHeaderView::sizeHint();
    return filters_ ? size + QSize(0, filters_->Height()) : size;
}

void CaptionHeader::updateGeometries() {
    setViewportMargins(0, 0, 0, filters_ ? filters_->Height() : 0);
    QHeaderView::updateGeometries();
    PlaceFilters();
}

void CaptionHeader::contextMenuEvent(QContextMenuEvent* event) {
    emit grid_.Split().HeadMenu(logicalIndexAt(event->pos()), event->globalPos());
}

void CaptionHeader::initStyleOptionForIndex(QStyleOptionHeader* option, int logicalIndex) const {
    QHeaderView::initStyleOptionForIndex(option, logicalIndex);
    const auto order = grid_.Rows().OrderOf(logicalIndex);
    if (!order) return;
    // Qt's arrows are named by the way that lists grow, not by where they point.
    option->sortIndicator =
        *order == Qt::AscendingOrder ? QStyleOptionHeader::SortDown : QStyleOptionHeader::SortUp;
}

RecordHeader::RecordHeader(GridView& grid) : QHeaderView(Qt::Vertical, &grid), grid_(grid) {
    setSectionsClickable(true);
    setHighlightSections(false);
    setSectionResizeMode(QHeaderView::Fixed);
    setMinimumSectionSize(1);
}

QSize RecordHeader::sizeHint() const {
    const int side = fontMetrics().height() + kSpaceAroundMark;
    return {side, side};
}

RecordHeader::Mark RecordHeader::MarkOf(int row) const {
    const GridRows& rows = grid_.Rows();
    if (row != grid_.Marks().currentRow || rows.Source() == nullptr) return Mark::None;
    return grid_.Split().Editing() ? Mark::Edited : Mark::Current;
}

void RecordHeader::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const {
    painter->save();  // styles leave an empty clip behind
    QHeaderView::paintSection(painter, rect, logicalIndex);
    painter->restore();
    QPolygonF shape;
    switch (MarkOf(logicalIndex)) {
        case Mark::None:
            return;
        case Mark::Current:
            shape = Triangle();
            break;
        case Mark::Edited:
            shape = Pencil();
            break;
    }
    const qreal side = qMin(rect.width() - kSpaceAroundMark, rect.height() - kSpaceAroundMark);
    QTransform place;
    place.translate(rect.center().x() - side / 2 + 0.5, rect.center().y() - side / 2 + 0.5);
    place.scale(side, side);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(palette().buttonText());
    painter->drawPolygon(place.map(shape));
    painter->restore();
}

bool RecordHeader::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QHeaderView::viewportEvent(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    QString text;
    switch (MarkOf(logicalIndexAt(help->pos()))) {
        case Mark::None:
            break;
        case Mark::Current:
            text = grid_.Rows().Text(GridText::CurrentRow);
            break;
        case Mark::Edited:
            text = grid_.Rows().Text(GridText::EditedRow);
            break;
    }
    QToolTip::showText(help->globalPos(), text, this);
    return true;
}
