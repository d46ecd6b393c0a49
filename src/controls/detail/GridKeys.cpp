// The keys of GridView while no cell is being edited; CellEdit has those of an edit.

#include <QInputMethodEvent>
#include <QKeyEvent>

#include "controls/detail/CellEdit.h"
#include "controls/detail/GridRows.h"
#include "controls/detail/GridView.h"
#include "controls/GridSplit.h"

namespace {

bool MovesByRows(int key) {
    return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp ||
           key == Qt::Key_PageDown;
}

Qt::KeyboardModifiers Held(const QKeyEvent& event) {
    return event.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
}

}  // namespace

bool GridView::KeepsWithControl(const QKeyEvent& event) {
    const int key = event.key();
    return Held(event) == Qt::ControlModifier &&
           (key == Qt::Key_O || key == Qt::Key_PageUp || key == Qt::Key_PageDown);
}

// Space, plain letters and the grid's keys with Ctrl must reach keyPressEvent even where the
// window, or the host's window around it, has shortcuts on them.
bool GridView::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool types = !(Held(*key) & ~Qt::KeyboardModifiers(Qt::ShiftModifier)) &&
                           !key->text().isEmpty() && key->text().front().isPrint();
        if (types || KeepsWithControl(*key)) {
            event->accept();
            return true;
        }
    }
    return QTableView::event(event);
}

// Letters with accents come this way where they are composed of two keys.
void GridView::inputMethodEvent(QInputMethodEvent* event) {
    event->accept();
    if (!event->commitString().isEmpty()) split_->BeginTyping(event->commitString());
}

void GridView::keyPressEvent(QKeyEvent* event) {
    event->accept();
    if (SplitKey(event) || EditKey(event) || SelectKey(event) || MoveKey(event) || TypeKey(event)) {
        return;
    }
    event->ignore();  // the window's
}

bool GridView::SplitKey(QKeyEvent* event) {
    const Qt::KeyboardModifiers held = Held(*event);
    const int key = event->key();
    if (key == Qt::Key_F6 && !(held & ~Qt::KeyboardModifiers(Qt::ShiftModifier))) {
        emit OtherSplitRequested();
        return true;
    }
    if (held != Qt::ControlModifier) return false;
    if (key == Qt::Key_PageUp || key == Qt::Key_PageDown) {
        emit PageRequested(key == Qt::Key_PageUp ? -1 : +1);
        return true;
    }
    if (key == Qt::Key_O) {
        split_->SortByCurrentColumn();
        return true;
    }
    return false;
}

bool GridView::EditKey(QKeyEvent* event) {
    const Qt::KeyboardModifiers held = Held(*event);
    if (!currentIndex().isValid()) return false;
    switch (event->key()) {
        case Qt::Key_F2:
            if (held) return false;
            split_->BeginEdit();
            return true;
        case Qt::Key_Delete:
            if (held) return false;
            split_->ClearCells();
            return true;
        case Qt::Key_Backspace:
            if (held) return false;
            split_->BeginTyping({});
            return true;
        case Qt::Key_Down:
            if (held != Qt::AltModifier) return false;
            split_->OpenList();
            return true;
        case Qt::Key_Space:
            if (held || !split_->ColumnAt(currentIndex().column())->Button()) return false;
            split_->PressButton();
            return true;
        default:
            return false;
    }
}

bool GridView::SelectKey(QKeyEvent* event) {
    const Qt::KeyboardModifiers held = Held(*event);
    const int key = event->key();
    if (held == Qt::ControlModifier && key == Qt::Key_A) {
        split_->SelectAll();
        return true;
    }
    const QModelIndex current = currentIndex();
    if (held != Qt::ShiftModifier || !current.isValid()) return false;
    if (key == Qt::Key_Space) {
        SetWholeRows(true);
        anchor_ = rows_->IdAt(current.row());
        SelectRange(current.row(), current.row());
        return true;
    }
    if (key == Qt::Key_Left || key == Qt::Key_Right) {
        const int column = ColumnBeside(current.column(), key == Qt::Key_Left ? -1 : +1);
        if (column >= 0) WidenTo(column);
        return true;
    }
    int step = 0;
    const int page = qMax(1, viewport()->height() / qMax(1, rowHeight(current.row())) - 1);
    if (key == Qt::Key_Up) step = -1;
    if (key == Qt::Key_Down) step = +1;
    if (key == Qt::Key_PageUp) step = -qMin(page, current.row());
    if (key == Qt::Key_PageDown) step = qMin(page, rows_->rowCount() - 1 - current.row());
    if (key != Qt::Key_Up && key != Qt::Key_Down && step == 0) return false;
    int anchor = rows_->RowOf(anchor_);
    if (anchor < 0) {
        anchor = current.row();
        anchor_ = rows_->IdAt(anchor);
    }
    SetWholeRows(false);
    StepRows(step);
    SelectRange(anchor, currentIndex().row());
    return true;
}

/// The selection takes in all columns from where it stood to this one.
void GridView::WidenTo(int column) {
    const QModelIndex current = currentIndex();
    if (anchorColumn_ < 0) anchorColumn_ = current.column();
    SetWholeRows(false);
    SetCurrent(rows_->index(current.row(), column));
    if (IsRowSelected(current.row())) return;
    anchor_ = rows_->IdAt(current.row());
    SelectRange(current.row(), current.row());
}

/// Along the row. The rows that are selected stay, and what is meant are their cells there.
void GridView::GoSideways(int column) {
    const QModelIndex current = currentIndex();
    const QModelIndex cell = rows_->index(current.row(), column);
    if (!IsRowSelected(current.row())) return GoTo(cell);
    anchorColumn_ = -1;
    SetCurrent(cell);
    viewport()->update();
}

void GridView::GoTo(const QModelIndex& cell) {
    if (!cell.isValid()) return;
    anchorColumn_ = -1;
    anchor_ = kNoGridRow;
    selectionModel()->clearSelection();
    SetCurrent(cell);
}

bool GridView::MoveKey(QKeyEvent* event) {
    const Qt::KeyboardModifiers held = Held(*event);
    const bool control = held == Qt::ControlModifier;
    const QModelIndex current = currentIndex();
    const auto stepRows = [this](int step) {
        anchor_ = kNoGridRow;
        anchorColumn_ = -1;
        selectionModel()->clearSelection();
        StepRows(step);
    };
    // No row has been chosen yet: the first key that moves chooses one.
    if (!current.isValid() && !held && MovesByRows(event->key()) && rows_->rowCount() > 0) {
        GoTo(rows_->index(0, FirstColumn()));
        return true;
    }
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (held && held != Qt::ShiftModifier) return false;
            stepRows(held ? -1 : +1);
            return true;
        case Qt::Key_Tab:
            return !held && StepCells(+1, false);  // behind the last cell it leaves the grid
        case Qt::Key_Backtab:
            return StepCells(-1, false);
        case Qt::Key_Up:
        case Qt::Key_Down:
            if (held) return false;
            stepRows(event->key() == Qt::Key_Up ? -1 : +1);
            return true;
        case Qt::Key_Left:
        case Qt::Key_Right: {
            if (held) return false;
            const int column =
                ColumnBeside(current.column(), event->key() == Qt::Key_Left ? -1 : +1);
            if (column >= 0 && current.isValid()) GoSideways(column);
            return true;
        }
        case Qt::Key_Home:
        case Qt::Key_End: {
            if ((held && !control) || rows_->rowCount() == 0) return false;
            const bool home = event->key() == Qt::Key_Home;
            if (control && !home) rows_->FetchAll();
            const int column = home ? FirstColumn() : qMax(0, ColumnBeside(-1, -1));
            if (!control && current.isValid()) {
                GoSideways(column);
            } else {
                GoTo(rows_->index(home ? 0 : rows_->rowCount() - 1, column));
            }
            return true;
        }
        case Qt::Key_PageUp:
            if (held) return false;
            GoTo(moveCursor(MovePageUp, {}));
            return true;
        case Qt::Key_PageDown:
            if (held) return false;
            if (rows_->canFetchMore({})) rows_->fetchMore({});
            GoTo(moveCursor(MovePageDown, {}));
            return true;
        default:
            return false;
    }
}

bool GridView::TypeKey(QKeyEvent* event) {
    // AltGr types characters too, and some platforms report it as Ctrl+Alt.
    const Qt::KeyboardModifiers held = Held(*event);
    const bool altGr = held == (Qt::ControlModifier | Qt::AltModifier);
    const bool plain = !(held & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    const QString text = event->text();
    if (!currentIndex().isValid() || text.isEmpty() || !text.front().isPrint()) return false;
    if (!plain && !altGr) return false;
    split_->BeginTyping(text);
    return true;
}
