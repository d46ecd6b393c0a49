#pragma once

#include <QAbstractItemDelegate>
#include <QColor>

class GridColumn;
class GridView;

/// Paints the cells of a split: the text, the swatch of a colour, the button of the current cell
/// and the marks of current row and selection. Lean on purpose: a screen has a thousand cells and
/// a frame 16 ms.
class CellDelegate final : public QAbstractItemDelegate {
    Q_OBJECT
public:
    explicit CellDelegate(GridView& grid);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;

    /// The place of a cell's button; empty when its column has none.
    [[nodiscard]] static QRect ButtonRect(const GridColumn& column, const QRect& cell);

private:
    void PaintButton(QPainter* painter, const QStyleOptionViewItem& option,
                     const GridColumn& column) const;

    GridView& grid_;
};
