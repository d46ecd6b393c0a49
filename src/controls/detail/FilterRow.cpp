#include "controls/detail/FilterRow.h"

#include <QAction>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QStyle>

#include "controls/detail/GridRows.h"
#include "controls/detail/GridView.h"
#include "controls/detail/Headers.h"
#include "controls/GridSplit.h"

using namespace Qt::Literals::StringLiterals;

FilterRow::FilterRow(CaptionHeader& header, GridView& grid) : header_(header), grid_(grid) {
    Place();
}

FilterRow::~FilterRow() {
    qDeleteAll(fields_);
}

int FilterRow::Height() const {
    return fields_.isEmpty() ? QLineEdit().sizeHint().height()
                             : (*fields_.begin())->sizeHint().height();
}

QLineEdit* FilterRow::FieldOf(int column) {
    QLineEdit*& field = fields_[column];
    if (field != nullptr) return field;
    GridSplit& split = grid_.Split();
    const GridColumn* shown = split.ColumnAt(column);
    field = new QLineEdit(&header_);
    field->setObjectName(u"txtFilter_"_s + shown->DataField());
    field->setClearButtonEnabled(true);
    field->setText(split.ColumnFilter(column));
    field->installEventFilter(this);
    if (!shown->ValueItems().isEmpty() || shown->Kind() == GridKind::Colour) {
        QAction* choices =
            field->addAction(grid_.style()->standardIcon(QStyle::SP_TitleBarUnshadeButton),
                             QLineEdit::TrailingPosition);
        choices->setText(grid_.Rows().Text(GridText::FilterChoices));
        connect(choices, &QAction::triggered, this, [this, column] {
            const QLineEdit* under = FieldOf(column);
            emit grid_.Split().ColumnFilterMenu(column,
                                                under->mapToGlobal(under->rect().bottomLeft()));
        });
    }
    connect(field, &QLineEdit::textChanged, this,
            [this, column](const QString& text) { grid_.Split().SetColumnFilter(column, text); });
    return field;
}

void FilterRow::Place() {
    if (placing_) return;
    const QScopedValueRollback placing(placing_, true);
    const bool isStrip = &header_ != grid_.horizontalHeader();
    const int height = Height();
    const int top = header_.height() - height;
    for (int column = 0; column < header_.count(); ++column) {
        if (grid_.Split().ColumnAt(column) == nullptr) continue;
        const bool isShown =
            !header_.isSectionHidden(column) && (isStrip || !grid_.InStrip(column));
        if (!isShown) {
            if (QLineEdit* field = fields_.value(column)) field->hide();
            continue;
        }
        QLineEdit* field = FieldOf(column);
        const QString caption =
            grid_.Rows().headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
        field->setAccessibleName(grid_.Rows().Text(GridText::Filter) + u": "_s + caption);
        field->setToolTip(field->accessibleName());
        // The record selectors stand beside the viewport of the headings, not beside the headings.
        field->setGeometry(header_.sectionViewportPosition(column), top,
                           header_.sectionSize(column), height);
        field->show();
    }
}

void FilterRow::Update() {
    for (auto field = fields_.begin(); field != fields_.end(); ++field) {
        const QString text = grid_.Split().ColumnFilter(field.key());
        if ((*field)->text() == text) continue;
        (*field)->setText(text);
    }
}

bool FilterRow::Focus(int column) {
    QLineEdit* field = fields_.value(column);
    if (field == nullptr || !field->isVisible()) return false;
    field->setFocus(Qt::ShortcutFocusReason);
    field->selectAll();
    return true;
}

bool FilterRow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QObject::eventFilter(watched, event);
    auto* field = qobject_cast<QLineEdit*>(watched);
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool opens =
        key == Qt::Key_Down && static_cast<QKeyEvent*>(event)->modifiers() == Qt::AltModifier;
    if (opens && !field->actions().isEmpty()) {
        field->actions().back()->trigger();
        return true;
    }
    if (key == Qt::Key_Escape && !field->text().isEmpty()) {
        field->clear();
        return true;
    }
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Down ||
        key == Qt::Key_Escape) {
        grid_.setFocus(Qt::OtherFocusReason);
        return true;
    }
    return QObject::eventFilter(watched, event);
}
