#pragma once

#include <optional>
#include <QAccessible>
#include <QList>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QTableView>
#include <utility>
#include <vector>

#include "controls/GridSource.h"

class CaptionHeader;
class FillHandle;
class FrozenView;
class GridRows;
class GridSplit;
class RecordHeader;

/// What the view tells the split of its own cell, while it paints: no more than this.
struct CellMarks {
    int currentRow = -1;
    int currentColumn = -1;
    bool active = false;    // the view has the keyboard
    bool wholeRows = true;  // the selection is of rows, not of cells
};

/// The table of one split: cells and headings on the screen, keys and mouse. Selection is of whole
/// rows and kept apart from the current cell, so Qt's own selection handling is off; Qt's editing
/// too, see CellEdit.
class GridView final : public QTableView {
    Q_OBJECT
public:
    explicit GridView(QWidget* parent = nullptr);
    ~GridView() override;

    /// The split outlives its view's last event. REQUIRES: before anything else.
    void Bind(GridSplit& split, GridRows& rows);
    [[nodiscard]] GridSplit& Split() const { return *split_; }
    [[nodiscard]] GridRows& Rows() const { return *rows_; }
    [[nodiscard]] CellMarks Marks() const;

    // --- current cell
    /// `bringIntoView` as with keys; false leaves the scroll bars alone.
    void SetCurrent(const QModelIndex& cell, bool bringIntoView = true);
    [[nodiscard]] int FirstColumn() const;  // the first one shown; 0 when all are hidden
    /// The shown column beside `column`, by `step` -1 or +1; -1 at the edge.
    [[nodiscard]] int ColumnBeside(int column, int step) const;
    /// Moves the current cell by rows, reading on when it comes to the last one. False at the
    /// edge; nothing happens then.
    bool StepRows(int step);
    /// To the next or previous cell, at the row's end to the next row. False behind the last.
    bool StepCells(int step, bool editableOnly);

    // --- selected rows
    [[nodiscard]] QList<GridRowId> SelectedRowIds() const;
    /// The first and the last selected row, where no other is between them. However many they are,
    /// only ranges are looked at.
    [[nodiscard]] std::optional<std::pair<int, int>> SelectedBlock() const;
    void SelectRowNumbers(const std::vector<int>& rows);
    void SelectRange(int fromRow, int toRow);
    void ToggleRow(int row);
    [[nodiscard]] GridRowId Anchor() const { return anchor_; }
    void SetAnchor(GridRowId row) { anchor_ = row; }
    [[nodiscard]] bool IsRowSelected(int row) const;
    /// Some cells of these rows, in the columns that are meant already.
    void SelectBlock(int fromRow, int toRow);
    void PlaceFillHandle();
    /// Rows have been selected as such, not some of their cells.
    [[nodiscard]] bool SelectsWholeRows() const { return wholeRows_; }
    void SetWholeRows(bool whole);
    /// Whether the cells of the selected rows that are meant by a change are those of this column:
    /// the current one, or one between it and where the selection was widened from.
    [[nodiscard]] bool InColumnRange(int column) const;

    // --- appearance
    void SetRowHeightFor(const QFont& cells, const QFont& headings);
    /// The columns that stay in view, in the order shown; as many of them as leave a part of the
    /// others in view, but at least one.
    void SetFrozen(std::vector<int> columns);
    void ShowFilters(bool show);
    void FiltersChanged();
    bool FocusFilter(int column);
    /// Whether the column stands in the strip that stays in view.
    [[nodiscard]] bool InStrip(int column) const;
    void FitColumn(int column);
    [[nodiscard]] bool ButtonHit(const QModelIndex& cell, const QRect& rect, QPoint at) const;
    /// Where the cell is shown: the frozen strip's viewport or the view's own, and its place there.
    [[nodiscard]] QWidget* ViewportOf(const QModelIndex& cell) const;
    [[nodiscard]] QRect CellRect(const QModelIndex& cell) const;
    void SetEmptyText(const QString& text);
    void UpdateMarks();
    void LayOutNow();

    // Also for the frozen strip, which hands on what happens in it.
    void PressCell(const QModelIndex& cell, const QRect& rect, QMouseEvent* event);
    /// With the left button held since PressCell, over this cell now.
    void DragTo(const QModelIndex& cell);
    void DoubleClickCell(const QModelIndex& cell, const QRect& rect, QMouseEvent* event);
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    /// With Ctrl, the grid's own keys whatever the window has bound to them, also while one of its
    /// cells is being edited.
    [[nodiscard]] static bool KeepsWithControl(const QKeyEvent& event);
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

signals:
    void PageRequested(int step);
    void OtherSplitRequested();
    void GotKeyboard();
    void Scrolled();

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void updateGeometries() override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;

private:
    bool SplitKey(QKeyEvent* event);
    bool EditKey(QKeyEvent* event);
    bool SelectKey(QKeyEvent* event);
    bool MoveKey(QKeyEvent* event);
    bool TypeKey(QKeyEvent* event);
    void GoTo(const QModelIndex& cell);
    void GoSideways(int column);
    void WidenTo(int column);
    void PressRecordSelector(int row);
    void DragRecordSelector(int row);
    void PlaceFrozen();
    void AnnounceCell(QAccessible::Event what, const QModelIndex& cell);
    [[nodiscard]] int StripWidth() const;

    GridSplit* split_ = nullptr;
    GridRows* rows_ = nullptr;
    CaptionHeader* captions_ = nullptr;
    RecordHeader* records_ = nullptr;
    FrozenView* frozen_ = nullptr;
    QPointer<FillHandle> fillHandle_;  // goes with the viewport, before the split does
    std::vector<int> frozenColumns_;   // that are wanted in the strip
    std::vector<int> strip_;           // those of them that there is room for
    GridRowId anchor_ = kNoGridRow;    // where a row selection began
    int anchorColumn_ = -1;            // and a widening over columns; -1: there is none
    bool wholeRows_ = true;
    QString emptyText_;
    QPersistentModelIndex pressed_;  // the cell that the left button has gone down on
};
