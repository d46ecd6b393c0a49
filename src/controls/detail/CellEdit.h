#pragma once

#include <functional>
#include <optional>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

#include "controls/GridSource.h"

class GridRows;
class GridSplit;
class GridView;
class QComboBox;
class QKeyEvent;
class QLineEdit;

/// The pending edit of a split: one editor over one cell. It belongs to the cell's row by id and
/// follows it when rows are sorted, narrowed or read anew; while the row is not there it waits out
/// of sight.
class CellEdit final : public QObject {
    Q_OBJECT
public:
    enum class Mode {
        Change,   // the caret moves in the value
        Replace,  // begun by typing: the arrow keys leave the cell
    };

    CellEdit(GridSplit& split, GridView& view, GridRows& rows);
    ~CellEdit() override;

    /// REQUIRES: not Active; the cell can be edited. `typed` replaces the value in mode Replace.
    void Begin(const QModelIndex& cell, Mode mode, const QString& typed);
    /// Opens the drop-down of a list.
    void OpenList();

    [[nodiscard]] bool Active() const { return editor_ != nullptr; }
    [[nodiscard]] GridRowId Row() const { return row_; }
    [[nodiscard]] int Column() const { return column_; }
    [[nodiscard]] QString Text() const;
    [[nodiscard]] bool Changed() const;

    /// Closes the editor and stores what was changed. False when that was refused; a typed text
    /// then stands in the editor again, over the value that is stored now.
    bool Commit();
    /// The same for all cells that are selected, where the current one is among several.
    bool CommitToAll();
    /// Gives the editor another text or the entry that reads so, as if the user had.
    void SetText(const QString& text);
    /// Enter does not go on to the next row while this one is being edited.
    void StayInRow() { stays_ = row_; }
    void Cancel();
    /// Brings the editor to where its cell is now.
    void Place();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void MakeList(const QString& typed);
    void MakeLine(const QString& typed);
    void Close();
    void Hide();
    [[nodiscard]] std::optional<QVariant> Value() const;
    // What the cell, all cells get; nothing, and told, where what has been typed is no value.
    [[nodiscard]] std::optional<QList<GridCell>> ValueForCell();
    [[nodiscard]] std::optional<QList<GridCell>> ValuesForAll();
    bool Store(const std::function<std::optional<QList<GridCell>>()>& values);
    bool KeyPress(QKeyEvent* event);
    bool LineKey(QKeyEvent* event);
    bool LeaveKey(QKeyEvent* event);
    void CommitAndStepRows(int step);
    void CommitAndStepCells(int step, bool goOn);

    GridSplit& split_;
    GridView& view_;
    GridRows& rows_;
    QPointer<QWidget> editor_;
    QLineEdit* line_ = nullptr;  // either of these is the editor
    QComboBox* list_ = nullptr;
    Mode mode_ = Mode::Change;
    GridRowId row_ = kNoGridRow;
    GridRowId stays_ = kNoGridRow;  // the row that Enter does not leave
    int column_ = -1;
    QString before_;        // the line's text as stored
    int beforeEntry_ = -1;  // the list's entry as stored
    bool hidden_ = false;   // its cell is not there just now
    bool hadFocus_ = false;
};
