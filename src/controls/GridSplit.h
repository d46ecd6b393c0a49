#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariant>
#include <vector>

#include "controls/GridColumn.h"
#include "controls/GridSource.h"
#include "controls/GridText.h"

class CellEdit;
class ColumnLayout;
class GridRows;
class GridView;
class QTableView;
class RowMemory;

/// One split of a TDBGrid: a view over a source, with its columns, current cell, row selection,
/// sort order, filter text and pending edit. Rows are named by id throughout; what stands where
/// on the screen is the split's own business.
class GridSplit final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(bool RecordSelectors READ RecordSelectors WRITE SetRecordSelectors)
    Q_PROPERTY(bool AllowColMove READ AllowColMove WRITE SetAllowColMove)
    Q_PROPERTY(bool Locked READ Locked WRITE SetLocked)
    Q_PROPERTY(bool DoubleClickEdits READ DoubleClickEdits WRITE SetDoubleClickEdits)
    Q_PROPERTY(bool AlwaysCurrent READ AlwaysCurrent WRITE SetAlwaysCurrent)
    Q_PROPERTY(QString FrozenColumn READ FrozenColumn WRITE SetFrozenColumn)
    Q_PROPERTY(bool DataChanged READ DataChanged)

public:
    /// `view` shows the split and outlives it.
    explicit GridSplit(GridView& view, QObject* parent);
    ~GridSplit() override;

    /// The view, for its place on the screen and its context menu; not for its model.
    [[nodiscard]] QTableView* View() const;

    /// See TDBGrid::SetTexts.
    void SetTexts(std::function<QString(GridText)> texts);

    // --- source and columns
    /// Borrowed; it must outlive the split or be taken away with nullptr.
    void SetSource(GridSource* source);
    [[nodiscard]] GridSource* Source() const;
    /// A column by field name (letter case does not matter) or by 0-based number in the source's
    /// order; nullptr when there is none.
    [[nodiscard]] Q_INVOKABLE QObject* Columns(const QVariant& nameOrIndex) const;
    [[nodiscard]] GridColumn* Column(QStringView field) const;
    [[nodiscard]] GridColumn* ColumnAt(int column) const;
    [[nodiscard]] int ColumnIndex(QStringView field) const;  // -1 when there is none
    [[nodiscard]] int ColumnCount() const;
    /// Source columns in the order shown, hidden ones included.
    [[nodiscard]] QList<int> ColumnOrders() const;
    /// Columns that `columns` does not name follow in their own order; numbers out of range and
    /// repeated ones are ignored.
    void SetColumnOrders(const QList<int>& columns);

    /// What assistive tools call the split ("Trends").
    [[nodiscard]] QString Caption() const;
    void SetCaption(const QString& caption);
    /// What stands in the view while there are no rows: why, and what to do.
    void SetEmptyText(const QString& text);
    [[nodiscard]] bool RecordSelectors() const;
    void SetRecordSelectors(bool show);
    [[nodiscard]] bool AllowColMove() const;
    void SetAllowColMove(bool allow);
    /// A locked split cannot be edited.
    [[nodiscard]] bool Locked() const noexcept { return locked_; }
    void SetLocked(bool locked);
    /// Whether a double click begins an edit. Off where the window gives it another meaning; the
    /// signal DblClick comes either way.
    [[nodiscard]] bool DoubleClickEdits() const noexcept { return doubleClickEdits_; }
    void SetDoubleClickEdits(bool edits) { doubleClickEdits_ = edits; }
    /// Whether there is a current cell as soon as there are rows, also after the current row has
    /// gone. Off: not until the user or SetCurrentCell picks one.
    [[nodiscard]] bool AlwaysCurrent() const noexcept { return alwaysCurrent_; }
    void SetAlwaysCurrent(bool always);
    /// Field name of the last of the columns that stay in view when scrolling sideways: all shown
    /// from the first to this one, as many as leave a part of the others in view. Empty: none.
    [[nodiscard]] QString FrozenColumn() const;
    void SetFrozenColumn(const QString& field);

    /// Makes a column as wide as what it shows, but not much wider than the view.
    void FitColumn(int column);
    void FitAllColumns();

    // --- current cell and selection
    [[nodiscard]] GridRowId CurrentRow() const;  // kNoGridRow: none
    [[nodiscard]] int CurrentColumn() const;     // -1: none
    /// Brings the cell into view; `column` -1 keeps the current column. Reads on as far as needed.
    /// Returns whether the row is shown. kNoGridRow: no current cell.
    bool SetCurrentCell(GridRowId row, int column = -1);
    /// Selected rows that are shown, from top to bottom.
    [[nodiscard]] QList<GridRowId> SelectedRows() const;
    void SelectRows(const QList<GridRowId>& rows);
    void SelectAll();
    /// The cells that a change is meant for: of the selected rows those of the current column, or
    /// of all columns that the selection has been widened over; the current cell alone when its row
    /// is not selected. Rows from top to bottom, columns in the order shown.
    struct Cells {
        QList<GridRowId> rows;
        QList<int> columns;
        [[nodiscard]] qsizetype Count() const { return rows.size() * columns.size(); }
    };
    [[nodiscard]] Cells SelectedCells() const;
    /// Whether cells have been selected, as by dragging over them or with Shift and the arrow keys,
    /// rather than rows as such by their record selectors.
    [[nodiscard]] bool AreCellsSelected() const;
    /// Whether the corner of the selected cells can be dragged to fill those below (FillWanted).
    [[nodiscard]] bool FillsByMouse() const noexcept { return fillsByMouse_; }
    void SetFillsByMouse(bool fills);
    /// Writes cells, all or none, and raises AfterColUpdate once. False when that was refused or
    /// has failed.
    bool WriteCells(const QList<GridCell>& cells);
    /// Stores nothing in the selected cells that can be edited and are no list's.
    void ClearCells();
    /// Columns that are shown, in the order shown.
    [[nodiscard]] QList<int> ShownColumns() const;
    /// All rows shown, from top to bottom, as far as they have been fetched.
    [[nodiscard]] QList<GridRowId> ShownRows() const;
    /// A cell's text as the grid shows it.
    [[nodiscard]] QString CellText(GridRowId row, int column) const;

    // --- editing
    /// Whether the cell can be edited.
    [[nodiscard]] bool CanEdit(GridRowId row, int column) const;
    /// Opens the current cell's editor.
    bool BeginEdit();
    /// The same in a row that the user has just made: with Enter it stays the current one.
    bool BeginRow();
    [[nodiscard]] bool Editing() const;
    /// What is being edited; its text is what stands in the editor.
    struct Edit {
        GridRowId row;
        int column;
        QString text;
    };
    [[nodiscard]] std::optional<Edit> PendingEdit() const;
    /// Brings the cell into view and puts a text into it as if it had been typed there. False when
    /// the cell is not there or cannot be edited.
    bool ResumeEdit(const Edit& edit);
    /// The pending edit differs from what is stored.
    [[nodiscard]] bool DataChanged() const;
    /// Writes the pending edit. To be called before commands and on deactivation. False when
    /// something was refused or failed: the typed text is the pending edit again, and what would
    /// have followed is better left undone. True when there was nothing to write.
    bool CommitPendingEdit();

    // --- order and narrowing
    /// Sorts once, stably; edits and new rows do not move until it is called again, a reset
    /// applies it anew. Numbers go by value, listed values and texts as the locale sorts what is
    /// shown, Null first. Current row and selection stay with their rows.
    void Sort(QStringView field, Qt::SortOrder order = Qt::AscendingOrder);
    /// As Ctrl+O does with the current column and a click with the column of the heading: upwards,
    /// or downwards when it is sorted upwards.
    void SortByColumn(int column);
    void SortByCurrentColumn() { SortByColumn(CurrentColumn()); }
    void ClearSort();
    [[nodiscard]] QString SortField() const;  // empty: in the source's order
    [[nodiscard]] Qt::SortOrder SortOrder() const;
    /// Shows only rows in which a visible column contains the text, whatever its letter case.
    /// Empty: all. A row with a pending edit stays.
    void SetFilterText(const QString& text);
    [[nodiscard]] QString FilterText() const;
    /// A line of fields under the headings, one for each column, into which the user types what he
    /// looks for. The grid keeps the texts and leaves to the source's owner what they mean
    /// (ColumnFilterChanged).
    void SetFilterRow(bool show);
    [[nodiscard]] QString ColumnFilter(int column) const;
    /// Raises ColumnFilterChanged when it is another text.
    void SetColumnFilter(int column, const QString& text);
    /// Leads the keyboard into the field of a column. False when it is not shown.
    bool FocusFilter(int column);
    /// Rows that are shown, as far as they have been fetched.
    [[nodiscard]] int RowCount() const;

signals:
    /// An edit has begun, has ended. One that was refused has not ended.
    void EditBegun();
    void EditEnded();
    /// The current cell is another one (kNoGridRow: none). Not raised when a reset or a sort
    /// finds the same cell again.
    void RowColChange(GridRowId row, int column);
    void SelChange();
    /// SelectedCells may be others.
    void CellsChange();
    /// The selected cells shall be filled with what stands in their first rows, `sources` of them;
    /// `counting`: with what follows it.
    void FillWanted(int sources, bool counting);
    /// The chooser of a column with a Button is wanted.
    void ButtonClick(GridRowId row, int column);
    void DblClick(GridRowId row, int column);
    /// A heading has been clicked, which has sorted by its column.
    void HeadClick(int column);
    /// The menu of a heading is wanted; -1: beside all columns.
    void HeadMenu(int column, const QPoint& globalPosition);
    void AfterColUpdate(GridRowId row, int column);
    /// A commit failed. The cell is current again, and when the message has been shown the typed
    /// text stands in it as a pending edit. The grid shows no message of its own.
    void DataError(int number, const QString& text, const QString& details);
    /// What has been typed is no value of the column, and stays in its cell. With several cells to
    /// be written it may be the text of another of their columns.
    void TextRefused(int column, const QString& text);
    /// The user types into a split that is locked, where nothing can be meant for the cell.
    void TypedWhereLocked(const QString& text);
    /// A row disappeared while `text` was being typed into it.
    void EditDiscarded(GridRowId row, int column, const QString& text);
    void ColumnFilterChanged(int column, const QString& text);
    /// The choice of filters for a column is wanted.
    void ColumnFilterMenu(int column, const QPoint& globalPosition);
    /// Also after a reset, which may bring other rows.
    void FilterChanged();
    /// Columns were moved, resized, shown or hidden, by the user or by property.
    void LayoutChanged();
    /// A context menu is wanted for a cell (kNoGridRow: beside all rows).
    void ContextMenu(GridRowId row, int column, const QPoint& globalPosition);

private:
    friend class CellEdit;
    friend class GridView;

    void RebuildColumns();
    void RowsRebuilt(bool sourceReset);
    void DiscardLostEdit();
    void CurrentCellChanged();
    // What the keys of the view come to.
    void BeginTyping(const QString& typed);
    void OpenList();
    void PressButton();
    bool Begin(bool replace, const QString& typed);
    /// The selected cells with what a text means in each; nothing, and told, where it is no value.
    [[nodiscard]] std::optional<QList<GridCell>> CellsWith(const QString& text);
    /// Puts a text that has been refused back into its cell, as a pending edit.
    void ReturnEdit(GridRowId row, int column, const QString& text);
    bool Report(const GridCommit& commit, GridRowId row, int column);
    /// An edit has been refused within the event that is being handled: whatever else the event
    /// wanted is off, the grid stays with the cell.
    void NoteRefusal();
    [[nodiscard]] bool RefusedJustNow() const noexcept { return refused_; }

    GridView& view_;
    std::vector<GridColumn*> columns_;
    std::unique_ptr<GridRows> rows_;
    std::unique_ptr<ColumnLayout> layout_;
    std::unique_ptr<RowMemory> memory_;
    std::unique_ptr<CellEdit> edit_;
    QString caption_;
    QHash<QString, QString> filters_;    // of columns, by field
    GridRowId currentRow_ = kNoGridRow;  // as last raised by RowColChange
    int currentColumn_ = -1;
    bool locked_ = false;
    bool doubleClickEdits_ = true;
    bool alwaysCurrent_ = false;
    bool fillsByMouse_ = false;
    bool storing_ = false;
    bool rebuilding_ = false;
    bool refused_ = false;
};
