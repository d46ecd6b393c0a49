#include "dialogs/PropertyDialog.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QTabBar>
#include <QTabWidget>
#include <utility>

#include "dialogs/AccessKeys.h"
#include "dialogs/FieldColours.h"
#include "dialogs/FolderChoice.h"
#include "dialogs/TextDialog.h"
#include "languages/MResources.h"
#include "languages/MResourceTable.h"
#include "platform/MessageBox.h"

namespace {

bool IsField(const QWidget* control) {
    return qobject_cast<const QLineEdit*>(control) != nullptr ||
           qobject_cast<const QComboBox*>(control) != nullptr ||
           qobject_cast<const QPlainTextEdit*>(control) != nullptr;
}

/// The first control of a page that the Tab key reaches; null when there is none.
QWidget* FirstStop(QWidget* page) {
    for (QWidget* next = page->nextInFocusChain(); next != page; next = next->nextInFocusChain()) {
        if (page->isAncestorOf(next) && next->isEnabledTo(page) && next->isVisibleTo(page) &&
            (next->focusPolicy() & Qt::TabFocus) != 0 && next->focusProxy() == nullptr) {
            return next;
        }
    }
    return nullptr;
}

}  // namespace

PropertyDialog::PropertyDialog(const DialogServices& services, QStringView nameGroup,
                               QWidget* owner)
    : QDialog(owner), services_(services), nameGroup_(nameGroup) {
    setModal(true);
}

void PropertyDialog::SetUpFrame(const Frame& frame) {
    frame_ = frame;
    frame.cmdOk->setText(Text(MResourceTable::kTextOk));
    frame.cmdCancel->setText(Text(MResourceTable::kTextCancel));
    frame.cmdHelp->setText(Text(MResourceTable::kTextHelp));
    frame.cmdOk->setDefault(true);
    frame.cmdCancel->setAutoDefault(false);
    frame.cmdHelp->setAutoDefault(false);
    connect(frame.cmdOk, &QPushButton::clicked, this, &PropertyDialog::cmdOk_Click);
    connect(frame.cmdCancel, &QPushButton::clicked, this, &PropertyDialog::reject);
    connect(frame.cmdHelp, &QPushButton::clicked, this, &PropertyDialog::cmdHelp_Click);

    // Shortcuts come before the controls, of which some would keep the keys to themselves.
    const auto* forward = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Tab), this);
    connect(forward, &QShortcut::activated, this, [this] { ShowNextPage(1); });
    const auto* backward =
        new QShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab), this);
    connect(backward, &QShortcut::activated, this, [this] { ShowNextPage(-1); });
    frame.tabs->setCurrentIndex(0);
    frame.txtName->setFocus();
}

void PropertyDialog::NameControls() {
    for (const QLabel* label : findChildren<QLabel*>()) {
        if (label->buddy() != nullptr && label->buddy()->accessibleName().isEmpty()) {
            label->buddy()->setAccessibleName(WithoutAccessKey(label->text()));
        }
    }
    for (const Picker& picker : pickers_) {
        const QString action = Text(picker.toolTip);
        picker.button->setToolTip(action);
        picker.button->setAccessibleName(
            QStringLiteral("%1: %2").arg(picker.field->accessibleName(), action));
    }
    AssignAccessKeys(*frame_.tabs, {frame_.cmdOk, frame_.cmdCancel, frame_.cmdHelp});
}

void PropertyDialog::SetOpenedName(const QString& name) {
    openedName_ = name;
    loaded_ = true;
}

void PropertyDialog::TakeBackName() {
    services_.names.ChangeNameInGroup(nameGroup_, frame_.txtName->text(), openedName_);
}

void PropertyDialog::SetIndexTextParamNames(std::optional<QString> names) {
    indexTextParamNames_ = std::move(names);
}

QString PropertyDialog::Text(int id) const {
    return services_.texts.GetText(id);
}

void PropertyDialog::SetUsable(QWidget* control, bool usable) {
    control->setEnabled(usable);
    if (!IsField(control)) return;
    if (!fields_.contains(control)) fields_.append(control);
    PaintField(control, usable);
}

void PropertyDialog::PaintField(QWidget* field, bool usable) {
    const QScopedValueRollback painting(painting_, true);
    field->setPalette(FieldPalette(palette(), usable));
}

void PropertyDialog::ConnectVariablePicker(QPushButton* button, QLineEdit* field) {
    AddPicker(button, field, MResourceTable::kTextArchiveChooseVariable);
    connect(button, &QPushButton::clicked, this, [this, field] {
        if (!services_.chooseVariable) return;
        const std::optional<QString> chosen = services_.chooseVariable(this, field->text());
        if (chosen && Fits(*chosen, *field)) field->setText(*chosen);
        field->setFocus();
    });
}

void PropertyDialog::ConnectFolderPicker(QPushButton* button, QComboBox* field, int title) {
    AddPicker(button, field, title);
    connect(button, &QPushButton::clicked, this, [this, field, title] {
        const std::optional<QString> chosen =
            ChooseFolder(services_, this, Text(title), field->currentText());
        if (chosen && Fits(*chosen, *field->lineEdit())) field->setEditText(*chosen);
        field->setFocus();
    });
}

void PropertyDialog::ConnectTextEditor(QPushButton* button, QLineEdit* field, int keyFilter) {
    AddPicker(button, field, MResourceTable::kTextEditText);
    connect(button, &QPushButton::clicked, this, [this, field, keyFilter] {
        TextDialog editor(services_.texts, *field, keyFilter, this);
        if (editor.exec() == QDialog::Accepted) field->setText(editor.Text());
        field->setFocus();
    });
}

bool PropertyDialog::Fits(const QString& chosen, const QLineEdit& field) {
    if (chosen.size() <= field.maxLength()) return true;
    // The field would cut it to the name of something else.
    QString text = Text(MResourceTable::kTextChoiceTooLong);
    text.replace(QStringLiteral("<max>"), QString::number(field.maxLength()))
        .replace(QStringLiteral("<text>"), chosen);
    platform::ShowMessage(text, platform::MessageButtons::Ok, windowTitle(), this);
    return false;
}

void PropertyDialog::AddPicker(QPushButton* button, QWidget* field, int toolTip) {
    button->setText(Text(MResourceTable::kTextPicker));
    button->setAutoDefault(false);
    pickers_.append({button, field, toolTip});
}

void PropertyDialog::cmdOk_Click() {
    const QString name = frame_.txtName->text();
    if (name != openedName_ && services_.names.TestNameInGroup(nameGroup_, name)) {
        platform::ShowMessage(Text(MResourceTable::kTextDoubleName), platform::MessageButtons::Ok,
                              windowTitle(), this);
        for (int page = 0; page < frame_.tabs->count(); ++page) {
            if (frame_.tabs->widget(page)->isAncestorOf(frame_.txtName)) {
                frame_.tabs->setCurrentIndex(page);
            }
        }
        frame_.txtName->setFocus();
        frame_.txtName->selectAll();
        return;
    }
    services_.names.ChangeNameInGroup(nameGroup_, openedName_, name);
    cancelled_ = false;
    accept();
}

void PropertyDialog::cmdHelp_Click() {
    QKeyEvent key(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
    QApplication::sendEvent(this, &key);
}

void PropertyDialog::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_F1) {
        QDialog::keyPressEvent(event);
        return;
    }
    if (services_.showHelp) services_.showHelp(HelpTopic(frame_.tabs->currentIndex()), this);
}

void PropertyDialog::ShowNextPage(int step) {
    QTabWidget& tabs = *frame_.tabs;
    const bool onTabs = tabs.tabBar()->hasFocus();
    tabs.setCurrentIndex((tabs.currentIndex() + step + tabs.count()) % tabs.count());
    QWidget* stop = onTabs ? nullptr : FirstStop(tabs.currentWidget());
    (stop != nullptr ? stop : tabs.tabBar())->setFocus(Qt::TabFocusReason);
}

void PropertyDialog::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    // The desktop has changed between light and dark: the colours are ours and have to follow.
    if (event->type() != QEvent::PaletteChange || painting_) return;
    for (QWidget* field : std::as_const(fields_)) PaintField(field, field->isEnabledTo(this));
}
