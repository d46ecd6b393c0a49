// Editing in a GridSplit: from a key to the source and back.

#include <QTimer>

#include "controls/detail/CellEdit.h"
#include "controls/detail/CellValue.h"
#include "controls/detail/GridRows.h"
#include "controls/detail/GridView.h"
#include "controls/GridSplit.h"

bool GridSplit::CanEdit(GridRowId row, int column) const {
    const int place = rows_->RowOf(row);
    if (locked_ || place < 0 || column < 0 || column >= ColumnCount()) return false;
    return rows_->flags(rows_->index(place, column)) & Qt::ItemIsEditable;
}

bool GridSplit::Begin(bool replace, const QString& typed) {
    if (edit_->Active()) return true;
    if (storing_ || !CanEdit(CurrentRow(), CurrentColumn())) return false;
    const GridColumn& how = *ColumnAt(CurrentColumn());
    // A letter in a number's cell must not leave an empty editor behind, which Enter would store.
    if (how.ValueItems().isEmpty() && !cellvalue::Accepts(typed, how.Kind())) return false;
    edit_->Begin(view_.currentIndex(), replace ? CellEdit::Mode::Replace : CellEdit::Mode::Change,
                 typed);
    return true;
}

bool GridSplit::BeginEdit() {
    return Begin(false, {});
}

bool GridSplit::BeginRow() {
    if (!BeginEdit()) return false;
    edit_->StayInRow();
    return true;
}

void GridSplit::BeginTyping(const QString& typed) {
    if (locked_ && !typed.isEmpty()) {
        emit TypedWhereLocked(typed);
        return;
    }
    Begin(true, typed);
}

void GridSplit::OpenList() {
    const GridColumn* column = ColumnAt(CurrentColumn());
    if (column == nullptr || column->ValueItems().isEmpty()) return;
    if (BeginEdit()) edit_->OpenList();
}

void GridSplit::PressButton() {
    const int column = CurrentColumn();
    const GridRowId row = CurrentRow();
    if (!CanEdit(row, column)) return;
    if (!ColumnAt(column)->Button()) {
        OpenList();
        return;
    }
    if (CommitPendingEdit()) emit ButtonClick(row, column);
}

bool GridSplit::Editing() const {
    return edit_->Active();
}

std::optional<GridSplit::Edit> GridSplit::PendingEdit() const {
    if (!edit_->Changed()) return std::nullopt;
    return Edit{edit_->Row(), edit_->Column(), edit_->Text()};
}

bool GridSplit::ResumeEdit(const Edit& edit) {
    if (!SetCurrentCell(edit.row, edit.column) || !BeginEdit()) return false;
    edit_->SetText(edit.text);
    return true;
}

bool GridSplit::DataChanged() const {
    return edit_->Changed();
}

bool GridSplit::CommitPendingEdit() {
    if (storing_) return false;  // called while the user is being told why it does not work
    return edit_->Commit();
}

void GridSplit::ReturnEdit(GridRowId row, int column, const QString& text) {
    const int place = rows_->RowOf(row);
    if (place < 0 || column >= ColumnCount()) {  // the message has shown that it is gone
        emit EditDiscarded(row, column, text);
        return;
    }
    view_.SetCurrent(rows_->index(place, column));
    if (BeginEdit()) edit_->SetText(text);
}

bool GridSplit::Report(const GridCommit& commit, GridRowId row, int column) {
    if (commit.outcome == GridCommit::Outcome::Stored) return true;
    if (commit.row != kNoGridRow) {
        row = commit.row;
        column = commit.column;
    }
    // Back onto the row: the user may have clicked elsewhere already.
    if (const int place = rows_->RowOf(row); place >= 0 && column >= 0) {
        view_.SetCurrent(rows_->index(place, column));
    }
    if (commit.outcome == GridCommit::Outcome::Failed) {
        emit DataError(commit.number, commit.text, commit.details);
    }
    NoteRefusal();  // last: a message box has lasted longer than this event
    return false;
}

void GridSplit::NoteRefusal() {
    refused_ = true;
    QTimer::singleShot(0, this, [this] { refused_ = false; });
}
