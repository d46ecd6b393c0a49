#pragma once

#include <optional>
#include <QWidget>

class GridSplit;
class GridView;

/// The small square at the lower right corner of the selected cells: drawn down it widens the
/// selection, and what is let go of is to be filled (GridSplit::FillWanted). For the mouse alone;
/// keys have commands.
class FillHandle final : public QWidget {
    Q_OBJECT
public:
    /// Both are borrowed; it lies over the view's cells.
    FillHandle(GridView& view, GridSplit& split);

    /// Puts it where the selected cells end, or hides it where they are no block that can be
    /// written.
    void Place();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    /// The selected cells as far as the handle needs them: rows from the first to the last, the
    /// last column.
    struct Cells {
        int first;
        int last;
        int column;
    };
    /// Nothing where they are no block, or whole rows.
    [[nodiscard]] std::optional<Cells> Block() const;

    GridView& view_;
    GridSplit& split_;
    int firstRow_ = -1;  // of the block, while it is dragged
    int lastRow_ = -1;
    int end_ = -1;  // where the pointer is
};
