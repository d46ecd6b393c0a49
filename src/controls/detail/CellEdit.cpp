#include "controls/detail/CellEdit.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <QWheelEvent>

#include "controls/detail/CellDelegate.h"
#include "controls/detail/CellValue.h"
#include "controls/detail/GridRows.h"
#include "controls/detail/GridView.h"
#include "controls/GridSplit.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// Knows whether an entry was picked in the drop-down or come to with the keys.
class ListEditor final : public QComboBox {
public:
    using QComboBox::QComboBox;

    bool picking = false;

    void showPopup() override {
        picking = true;
        QComboBox::showPopup();
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        picking = false;  // the drop-down has been closed without
        QComboBox::keyPressEvent(event);
    }
};

}  // namespace

CellEdit::CellEdit(GridSplit& split, GridView& view, GridRows& rows)
    : split_(split), view_(view), rows_(rows) {}

CellEdit::~CellEdit() = default;

void CellEdit::Begin(const QModelIndex& cell, Mode mode, const QString& typed) {
    row_ = rows_.IdAt(cell.row());
    if (row_ != stays_) stays_ = kNoGridRow;
    column_ = cell.column();
    mode_ = mode;
    hidden_ = false;
    rows_.Pin(row_);
    const GridColumn& column = *split_.ColumnAt(column_);
    before_ = cell.data(Qt::EditRole).toString();
    if (column.ValueItems().isEmpty()) {
        MakeLine(typed);
    } else {
        MakeList(typed);
    }
    editor_->setObjectName(u"CellEditor"_s);
    editor_->setAccessibleName(
        rows_.headerData(column_, Qt::Horizontal, Qt::DisplayRole).toString());
    editor_->setFont(view_.font());
    editor_->setAutoFillBackground(true);
    editor_->installEventFilter(this);
    view_.scrollTo(cell);
    Place();
    editor_->show();
    editor_->setFocus(Qt::OtherFocusReason);
    view_.UpdateMarks();
    emit split_.EditBegun();
}

void CellEdit::MakeLine(const QString& typed) {
    const GridColumn& column = *split_.ColumnAt(column_);
    line_ = new QLineEdit(view_.viewport());
    editor_ = line_;
    line_->setFrame(false);
    line_->setTextMargins(2, 0, 2, 0);
    const QString pattern = cellvalue::InputPattern(column.Kind());
    if (!pattern.isEmpty()) {
        line_->setValidator(new QRegularExpressionValidator(QRegularExpression(pattern), line_));
    }
    if (column.Kind() == GridKind::Integer || column.Kind() == GridKind::Number) {
        line_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    line_->setText(before_);
    line_->selectAll();
    if (mode_ == Mode::Replace) {
        // As typed by the user, so that what the column does not take is not taken.
        line_->del();
        if (!typed.isEmpty()) line_->insert(typed);
    }
}

void CellEdit::MakeList(const QString& typed) {
    auto* list = new ListEditor(view_.viewport());
    list_ = list;
    editor_ = list_;
    list_->setFrame(false);
    const GridColumn& column = *split_.ColumnAt(column_);
    for (const GridValueItem& item : column.ValueItems()) list_->addItem(item.text, item.code);
    const QModelIndex cell = rows_.index(rows_.RowOf(row_), column_);
    const QVariant stored = cell.data(GridRole::kStored);
    const bool isNull = !stored.isValid() || stored.isNull();
    beforeEntry_ = isNull ? -1 : list_->findData(stored.toInt());
    list_->setCurrentIndex(beforeEntry_);
    if (!typed.isEmpty()) {
        const int entry = list_->findText(typed, Qt::MatchStartsWith);
        if (entry >= 0) list_->setCurrentIndex(entry);
    }
    connect(list_, &QComboBox::activated, this, [this, list] {
        if (std::exchange(list->picking, false)) CommitToAll();
    });
}

void CellEdit::OpenList() {
    if (list_ != nullptr && editor_ != nullptr) list_->showPopup();
}

QString CellEdit::Text() const {
    if (!Active()) return {};
    return line_ != nullptr ? line_->text() : list_->currentText();
}

bool CellEdit::Changed() const {
    if (!Active()) return false;
    return line_ != nullptr ? line_->text() != before_ : list_->currentIndex() != beforeEntry_;
}

std::optional<QVariant> CellEdit::Value() const {
    if (list_ != nullptr) return QVariant(list_->currentData().toLongLong());
    return split_.Source()->ReadCell(column_, line_->text());
}

void CellEdit::Close() {
    QWidget* editor = editor_;
    const bool hadFocus = editor->hasFocus() || (hidden_ && hadFocus_);
    // From here on nothing of the editor is heard, its loss of the focus least of all.
    editor_ = nullptr;
    line_ = nullptr;
    list_ = nullptr;
    editor->removeEventFilter(this);
    editor->setObjectName({});  // it is found no more, though it may live a little longer
    if (hadFocus) view_.setFocus(Qt::OtherFocusReason);
    editor->hide();
    editor->deleteLater();
    rows_.Pin(kNoGridRow);
    view_.UpdateMarks();
}

bool CellEdit::Commit() {
    if (Active() && !Changed()) {
        Close();
        emit split_.EditEnded();
    }
    return Store([this] { return ValueForCell(); });
}

bool CellEdit::CommitToAll() {
    if (split_.SelectedCells().Count() < 2) return Commit();
    return Store([this] { return ValuesForAll(); });
}

bool CellEdit::Store(const std::function<std::optional<QList<GridCell>>()>& values) {
    if (!Active()) return true;
    if (split_.RefusedJustNow()) return false;  // the user has just been told
    const std::optional<QList<GridCell>> cells = values();
    if (!cells) {
        QApplication::beep();
        split_.NoteRefusal();
        if (!editor_->hasFocus()) editor_->setFocus(Qt::OtherFocusReason);
        return false;
    }
    const GridRowId row = row_;
    const int column = column_;
    const QString typed = Text();
    const bool isList = list_ != nullptr;
    // Closed first: telling the user of an error takes the focus away, which would commit again.
    Close();
    const bool stored = split_.WriteCells(*cells);
    // What the user has typed is theirs until they give it up. An entry of a list is no text.
    if (!stored && !isList) split_.ReturnEdit(row, column, typed);
    if (!Active()) emit split_.EditEnded();
    return stored;
}

std::optional<QList<GridCell>> CellEdit::ValueForCell() {
    const std::optional<QVariant> value = Value();
    if (value) return QList<GridCell>{{row_, column_, *value}};
    emit split_.TextRefused(column_, Text());
    return std::nullopt;
}

/// An entry of a list is meant for its own column alone.
std::optional<QList<GridCell>> CellEdit::ValuesForAll() {
    if (list_ == nullptr) return split_.CellsWith(Text());
    QList<GridCell> cells;
    for (const GridRowId row : split_.SelectedCells().rows) cells.append({row, column_, *Value()});
    return cells;
}

void CellEdit::SetText(const QString& text) {
    if (line_ != nullptr) line_->setText(text);
    if (list_ != nullptr) list_->setCurrentIndex(list_->findText(text));
}

void CellEdit::Cancel() {
    stays_ = kNoGridRow;
    if (!Active()) return;
    Close();
    emit split_.EditEnded();
}

void CellEdit::Place() {
    if (!Active()) return;
    const int row = rows_.RowOf(row_);
    if (row < 0 || column_ >= rows_.columnCount() || view_.isColumnHidden(column_)) {
        Hide();
        return;
    }
    const QModelIndex cell = rows_.index(row, column_);
    QRect rect = view_.CellRect(cell);
    const GridColumn& column = *split_.ColumnAt(column_);
    if (column.Button()) {
        rect.setRight(CellDelegate::ButtonRect(column, rect).left() - 1);
    }
    QWidget* viewport = view_.ViewportOf(cell);
    if (editor_->parentWidget() != viewport) {
        Hide();
        editor_->setParent(viewport);
    }
    editor_->setGeometry(rect);
    if (!hidden_) return;
    hidden_ = false;
    editor_->show();
    if (hadFocus_) editor_->setFocus(Qt::OtherFocusReason);
}

void CellEdit::Hide() {
    if (hidden_) return;
    hadFocus_ = editor_->hasFocus();
    hidden_ = true;  // before the focus goes: that is no leaving of the cell
    // The keyboard stays with the grid meanwhile.
    if (hadFocus_) view_.setFocus(Qt::OtherFocusReason);
    editor_->hide();
}

bool CellEdit::eventFilter(QObject* watched, QEvent* event) {
    if (watched != editor_) return false;
    switch (event->type()) {
        case QEvent::KeyPress:
            return KeyPress(static_cast<QKeyEvent*>(event));
        case QEvent::ShortcutOverride: {
            // These belong to the edit, whatever the window has bound to them.
            const auto* pressed = static_cast<QKeyEvent*>(event);
            const int key = pressed->key();
            if (key != Qt::Key_Escape && key != Qt::Key_F2 && key != Qt::Key_F6 &&
                !GridView::KeepsWithControl(*pressed)) {
                return false;
            }
            event->accept();
            return true;
        }
        case QEvent::FocusOut: {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            // A drop-down and a menu of the editor's own are no leaving either.
            if (hidden_ || QApplication::activePopupWidget() != nullptr ||
                reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason ||
                reason == Qt::MenuBarFocusReason) {
                return false;
            }
            Commit();
            return false;
        }
        case QEvent::Wheel:
            // Turning the wheel scrolls, also over the cell being edited.
            QApplication::sendEvent(view_.viewport(), event);
            return true;
        default:
            return false;
    }
}

bool CellEdit::KeyPress(QKeyEvent* event) {
    return LeaveKey(event) || (line_ != nullptr && LineKey(event));
}

bool CellEdit::LeaveKey(QKeyEvent* event) {
    const Qt::KeyboardModifiers held =
        event->modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
    const bool control = held == Qt::ControlModifier;
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (control) {
                CommitToAll();
            } else if (row_ != stays_) {
                CommitAndStepRows(held & Qt::ShiftModifier ? -1 : +1);
            } else if (Commit()) {
                stays_ = kNoGridRow;
            }
            return true;
        case Qt::Key_Tab:
            if (control) return false;
            CommitAndStepCells(+1, true);
            return true;
        case Qt::Key_Backtab:
            CommitAndStepCells(-1, true);
            return true;
        case Qt::Key_Escape:
            Cancel();
            return true;
        case Qt::Key_F6:
            if (Commit()) emit view_.OtherSplitRequested();
            return true;
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
        case Qt::Key_O:
            if (event->key() == Qt::Key_O ? !control : (held && !control)) return false;
            if (Commit()) view_.keyPressEvent(event);
            return true;
        default:
            return false;
    }
}

bool CellEdit::LineKey(QKeyEvent* event) {
    const bool plain = !(event->modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier));
    if (!plain) return false;
    switch (event->key()) {
        case Qt::Key_F2:
            mode_ = mode_ == Mode::Change ? Mode::Replace : Mode::Change;
            return true;
        case Qt::Key_Up:
        case Qt::Key_Down: {
            const int step = event->key() == Qt::Key_Up ? -1 : +1;
            const int row = rows_.RowOf(row_) + step;
            // At the edge there is nowhere to go: the edit stays.
            if (row >= 0 && (row < rows_.rowCount() || rows_.canFetchMore({}))) {
                CommitAndStepRows(step);
            }
            return true;
        }
        case Qt::Key_Left:
        case Qt::Key_Right:
            if (mode_ != Mode::Replace) return false;
            CommitAndStepCells(event->key() == Qt::Key_Left ? -1 : +1, false);
            return true;
        case Qt::Key_Space: {
            if (!split_.ColumnAt(column_)->Button()) return false;
            if (line_->selectedText() != line_->text()) return false;
            const GridRowId row = row_;
            const int column = column_;
            if (Commit()) emit split_.ButtonClick(row, column);
            return true;
        }
        default:
            return false;
    }
}

void CellEdit::CommitAndStepRows(int step) {
    if (Commit()) view_.StepRows(step);
}

void CellEdit::CommitAndStepCells(int step, bool goOn) {
    if (!Commit()) return;
    if (view_.StepCells(step, goOn) && goOn) split_.BeginEdit();
}
