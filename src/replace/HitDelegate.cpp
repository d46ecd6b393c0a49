#include "replace/HitDelegate.h"

#include <QApplication>
#include <QPainter>
#include <QTextLayout>

#include "replace/HitModel.h"

namespace replace {
namespace {

constexpr int kMargin = 4;       // pixels
constexpr int kMarkAlpha = 110;  // of 255: the letters stay readable on light and dark

}  // namespace

void HitDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const {
    const QVariant parts = index.data(HitModel::kParts);
    if (!parts.isValid()) return QStyledItemDelegate::paint(painter, option, index);
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const QString text = std::exchange(item.text, QString());
    const QStyle* style = item.widget != nullptr ? item.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);

    QTextCharFormat mark;
    QColor colour = index.column() == HitModel::kNew ? QColor(Qt::darkGreen) : QColor(Qt::darkRed);
    colour.setAlpha(kMarkAlpha);
    mark.setBackground(colour);
    mark.setFontWeight(QFont::Bold);
    QList<QTextLayout::FormatRange> marks;
    for (const Part& part : parts.value<std::vector<Part>>()) {
        marks.append({static_cast<int>(part.at), static_cast<int>(part.length), mark});
    }
    QTextLayout layout(text, item.font);
    layout.setFormats(marks);
    QTextOption wrap;
    wrap.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(wrap);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    layout.endLayout();
    if (!line.isValid()) return;
    const QRect room = item.rect.adjusted(kMargin, 0, -kMargin, 0);
    const bool selected = item.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setClipRect(item.rect);
    painter->setPen(item.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    layout.draw(painter, QPointF(room.left(), room.top() + (room.height() - line.height()) / 2));
    painter->restore();
}

}  // namespace replace
