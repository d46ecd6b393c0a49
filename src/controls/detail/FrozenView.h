#pragma once

#include <QTableView>

class CaptionHeader;
class GridView;

/// The column that stays in view: a strip over the left edge of its grid that shows this one column
/// of the same model. It only shows; keys and mouse are the grid's.
class FrozenView final : public QTableView {
    Q_OBJECT
public:
    explicit FrozenView(GridView& grid);

    /// After the grid's columns or fonts have changed. `column` -1 hides the strip.
    void ShowColumn(int column);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    GridView& grid_;
    CaptionHeader* captions_;
};
