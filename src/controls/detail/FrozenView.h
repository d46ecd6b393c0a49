#pragma once

#include <QTableView>
#include <vector>

class CaptionHeader;
class GridView;

/// The columns that stay in view: a strip over the left edge of its grid that shows these columns
/// of the same model. It only shows; keys and mouse are the grid's.
class FrozenView final : public QTableView {
    Q_OBJECT
public:
    explicit FrozenView(GridView& grid);

    /// After the grid's columns or fonts have changed; in the order shown. None hides the strip.
    void ShowColumns(const std::vector<int>& columns);
    [[nodiscard]] CaptionHeader& Captions() const { return *captions_; }

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    // Assistive tools hear of cells and rows from the grid.
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override;

private:
    GridView& grid_;
    CaptionHeader* captions_;
    bool arranging_ = false;  // what the headings do is not the user's doing
};
