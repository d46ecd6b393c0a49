#include "controls/detail/CellDelegate.h"

#include <algorithm>
#include <QApplication>
#include <QPainter>
#include <QStyleOptionButton>
#include <QStyleOptionViewItem>

#include "colours/Contrast.h"
#include "controls/detail/GridRows.h"
#include "controls/detail/GridView.h"
#include "controls/GridSplit.h"
#include "controls/KVColorSelect.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using colours::Blend;

constexpr int kPadding = 4;           // pixels between a cell's edge and its text
constexpr int kSpaceAroundRow = 6;    // pixels, above and below together
constexpr qreal kRowTint = 0.22;      // how much of the highlight the current row shows
constexpr qreal kAsideTint = 0.3;     // and how dark it is while another pane has the keyboard
constexpr qreal kBesideTint = 0.35;   // and a selected row beside the cells that are selected
constexpr qreal kMissingTint = 0.45;  // how dark the hatching is
constexpr int kFrame = 2;             // pixels

QPalette::ColorGroup GroupOf(const QStyleOptionViewItem& option) {
    if (!(option.state & QStyle::State_Enabled)) return QPalette::Disabled;
    return option.state & QStyle::State_Active ? QPalette::Active : QPalette::Inactive;
}

/// The swatch of a colour; returns where the text begins.
int PaintSwatch(QPainter* painter, const QRect& cell, const QColor& colour, const QColor& frame) {
    const int side = cell.height() - 6;
    const QRect swatch(cell.left() + kPadding, cell.top() + 3, side * 3 / 2, side);
    painter->fillRect(swatch, colour);
    painter->setPen(frame);
    painter->drawRect(swatch.adjusted(0, 0, -1, -1));
    return swatch.right() + 1 + kPadding;
}

}  // namespace

CellDelegate::CellDelegate(GridView& grid) : QAbstractItemDelegate(&grid), grid_(grid) {}

QRect CellDelegate::ButtonRect(const GridColumn& column, const QRect& cell) {
    if (!column.Button() && column.ValueItems().isEmpty()) return {};
    const int width = std::min(cell.height() + 2, cell.width() / 2);
    return {cell.right() - width + 1, cell.top(), width, cell.height()};
}

void CellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const CellMarks marks = grid_.Marks();
    const GridColumn& column = *grid_.Split().ColumnAt(index.column());
    const QPalette::ColorGroup group = GroupOf(option);
    const bool inSelectedRow = option.state & QStyle::State_Selected;
    const bool selected = inSelectedRow && (marks.wholeRows || grid_.InColumnRange(index.column()));
    const bool currentRow = index.row() == marks.currentRow;
    const bool currentCell = currentRow && index.column() == marks.currentColumn;
    const bool choosable =
        currentCell && grid_.Split().CanEdit(grid_.Rows().IdAt(index.row()), index.column());
    const QColor base = option.palette.color(group, QPalette::Base);
    QColor text = option.palette.color(group, QPalette::Text);
    // Without the keyboard all marks are grey: where it is, is seen at a glance.
    const QColor highlight = marks.active ? option.palette.color(group, QPalette::Highlight)
                                          : Blend(base, text, kAsideTint);
    if (selected) {
        if (marks.active) text = option.palette.color(group, QPalette::HighlightedText);
        painter->fillRect(option.rect, highlight);
    } else if (currentRow || inSelectedRow) {
        const QColor ground = Blend(base, highlight, inSelectedRow ? kBesideTint : kRowTint);
        painter->fillRect(option.rect, ground);
        text = colours::VisibleOn(text, ground, colours::kForText);
    }

    QRect rect = option.rect.adjusted(kPadding, 0, -kPadding, 0);
    if (choosable) {
        if (const QRect button = ButtonRect(column, option.rect); !button.isEmpty()) {
            rect.setRight(button.left() - kPadding);
        }
    }
    if (column.Kind() == GridKind::Colour) {
        const QVariant stored = index.data(GridRole::kStored);
        if (stored.isValid() && !stored.isNull()) {
            rect.setLeft(PaintSwatch(painter, option.rect,
                                     KVColorSelect::Shown(stored.toInt(), option.palette), text));
        }
    }
    const QString shown = index.data(Qt::DisplayRole).toString();
    if (shown.isEmpty() && !selected && index.data(GridRole::kMissing).toBool()) {
        painter->fillRect(option.rect, QBrush(Blend(base, text, kMissingTint), Qt::BDiagPattern));
    }
    if (!shown.isEmpty() && rect.width() > 0) {
        const int wide = option.fontMetrics.horizontalAdvance(shown);
        painter->setPen(text);
        const bool right = index.data(Qt::TextAlignmentRole).toInt() & Qt::AlignRight;
        const QString fitting = wide <= rect.width() ? shown
                                                     : option.fontMetrics.elidedText(
                                                           shown, Qt::ElideRight, rect.width());
        painter->setFont(option.font);
        painter->drawText(
            rect,
            static_cast<int>((right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter) |
                Qt::TextSingleLine | Qt::TextDontClip,
            fitting);
    }
    if (!currentCell) return;
    if (choosable) PaintButton(painter, option, column);
    QColor frame = colours::VisibleOn(highlight, base, colours::kForMarks);
    if (selected) frame = text;  // on the highlight itself it would not show
    painter->save();
    painter->setPen(QPen(frame, marks.active ? kFrame : 1));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(QRectF(option.rect).adjusted(1, 1, -1, -1));
    painter->restore();
}

void CellDelegate::PaintButton(QPainter* painter, const QStyleOptionViewItem& option,
                               const GridColumn& column) const {
    QStyleOptionButton button;
    button.rect = ButtonRect(column, option.rect);
    if (button.rect.isEmpty()) return;
    button.palette = option.palette;
    button.fontMetrics = option.fontMetrics;
    button.direction = option.direction;
    button.state = QStyle::State_Enabled | QStyle::State_Raised;
    const QStyle* style = option.widget != nullptr ? option.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelButtonCommand, &button, painter, option.widget);
    if (!column.Button()) {
        button.rect.adjust(4, 4, -4, -4);
        style->drawPrimitive(QStyle::PE_IndicatorArrowDown, &button, painter, option.widget);
        return;
    }
    painter->setPen(option.palette.color(QPalette::ButtonText));
    painter->drawText(button.rect, Qt::AlignCenter, u"\u2026"_s);
}

QSize CellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const GridColumn& column = *grid_.Split().ColumnAt(index.column());
    const int height = option.fontMetrics.height() + kSpaceAroundRow;
    int width =
        option.fontMetrics.horizontalAdvance(index.data(Qt::DisplayRole).toString()) + 2 * kPadding;
    if (column.Kind() == GridKind::Colour) width += height * 3 / 2 + kPadding;
    return {width + ButtonRect(column, QRect(0, 0, 10 * height, height)).width() + 1, height};
}
