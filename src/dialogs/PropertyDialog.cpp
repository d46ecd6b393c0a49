#include "dialogs/PropertyDialog.h"

#include <algorithm>
#include <cmath>
#include <QAbstractButton>
#include <QAction>
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
#include <vector>

#include "dialogs/AccessKeys.h"
#include "dialogs/ControlContent.h"
#include "dialogs/FieldColours.h"
#include "dialogs/FieldMark.h"
#include "dialogs/FolderChoice.h"
#include "dialogs/KeyFilter.h"
#include "dialogs/ManyRecords.h"
#include "dialogs/TextDialog.h"
#include "drafts/DraftKeeper.h"
#include "messages/LabelEdges.h"
#include "messages/MessageBox.h"
#include "platform/Locale.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace {

/// As the user writes it.
QString NumberToText(double number) {
    return QString::fromStdU16String(
        project::FormatNumber(number, platform::DecimalSeparator().unicode()));
}

bool IsField(const QWidget* control) {
    return qobject_cast<const QLineEdit*>(control) != nullptr ||
           qobject_cast<const QComboBox*>(control) != nullptr ||
           qobject_cast<const QPlainTextEdit*>(control) != nullptr;
}

std::u16string ToUtf16(const QString& text) {
    return text.toStdU16String();
}

/// A number as it would be stored, in the user's own form.
QString StoredNumber(const ado::Value& value, const project::NumberRange& range) {
    const double number = std::get<double>(value);
    return NumberToText(range.integral ? std::nearbyint(number) : number);
}

/// What the user knows a control as.
QString NameOf(const QWidget& control) {
    QString name = control.accessibleName();
    if (const auto* button = qobject_cast<const QAbstractButton*>(&control); name.isEmpty()) {
        if (button != nullptr) name = WithoutAccessKey(button->text());
    }
    if (name.endsWith(u':')) name.chop(1);
    return name;
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
    for (QLineEdit* field : findChildren<QLineEdit*>()) {
        if (!MResources::IsRestricted(*field)) {
            MResources::RestrictInput(*field, MResources::kEveryKey, &services_.texts);
        }
    }
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
    messages::AlignLabels(*this);
}

void PropertyDialog::SetOpenedName(const QString& name) {
    openedName_ = name;
    loaded_ = true;
    loadedContents_.clear();
    for (const QWidget* control : findChildren<QWidget*>()) {
        loadedContents_.insert(control, ContentOf(*control));
    }
}

ManyRecords& PropertyDialog::ShowMany(int records, int field, int fields) {
    many_ = new ManyRecords(services_.texts, *frame_.cmdOk, {field, fields}, records, this);
    return *many_;
}

bool PropertyDialog::Touched(const QWidget& control) const {
    if (many_ != nullptr) return many_->IsTouched(control);
    const auto loaded = loadedContents_.constFind(&control);
    return loaded == loadedContents_.constEnd() || *loaded != ContentOf(control);
}

void PropertyDialog::ShowCode(QComboBox& list, std::optional<int> code,
                              std::span<const project::Code> codes) {
    QString shown;
    if (code && list.findData(*code) < 0) {
        shown = QString::number(*code);
        for (const project::Code& each : codes) {
            if (each.code == *code) shown = Text(each.text) + QStringLiteral(" (%1)").arg(shown);
        }
    }
    list.setPlaceholderText(shown);
    list.setCurrentIndex(code ? list.findData(*code) : -1);
}

QString PropertyDialog::LabelOf(const QString& column) const {
    const QLineEdit* field = columns_.value(column);
    if (field == nullptr) return {};
    // The field of an editable list has the name of the list.
    const QWidget* list = qobject_cast<const QComboBox*>(field->parentWidget());
    return NameOf(list != nullptr ? *list : *field);
}

QList<drafts::Field> PropertyDialog::Typed() const {
    QList<drafts::Field> typed;
    for (const QWidget* control : findChildren<QWidget*>()) {
        // What shows others' values, and is told anew, is nobody's input.
        const bool tells = qobject_cast<const QLabel*>(control) != nullptr && control->isVisible();
        if (tells || control->objectName().isEmpty() || !Touched(*control)) continue;
        typed.append({control->objectName(), NameOf(*control), ShownContentOf(*control),
                      ContentOf(*control)});
    }
    return typed;
}

void PropertyDialog::Type(const QList<drafts::Field>& fields) {
    // Twice: what is chosen in one control may set another, which has been set before.
    for (int round = 0; round < 2; ++round) {
        for (const drafts::Field& field : fields) {
            if (auto* control = findChild<QWidget*>(field.name))
                SetContent(*control, field.content);
        }
    }
}

void PropertyDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (services_.drafts == nullptr || event->spontaneous()) return;
    Type(services_.drafts->TakeResumed());
    services_.drafts->Watch([this] { return Typed(); });
}

void PropertyDialog::done(int result) {
    if (services_.drafts != nullptr) services_.drafts->Forget();
    QDialog::done(result);
}

void PropertyDialog::SetReadOnly(QLineEdit& field) {
    field.setReadOnly(true);
    PaintField(&field, false);
}

void PropertyDialog::ExpectNumber(QLineEdit& field, const project::NumberRange& range) {
    if (!numbers_.contains(&field)) {
        connect(&field, &QLineEdit::textChanged, this, [this, &field] { MarkNumber(field); });
    }
    numbers_.insert(&field, range);
}

/// What has been loaded is right as it is, whatever it is.
void PropertyDialog::MarkNumber(QLineEdit& field) {
    using enum project::Problem;
    const project::Reading read =
        project::ReadDialogText(ToUtf16(field.text()), numbers_.value(&field));
    FieldMark& mark = FieldMark::Of(field);
    if (!loaded_ || !Touched(field) || read.problem == None) return mark.Clear();
    if (read.problem == OutOfRange) {
        mark.Show(Text(MResourceTable::kTextTooLarge),
                  NumberText(field, MResourceTable::kTextNumberTooLarge));
    } else {
        const int text = read.problem == NotWhole ? MResourceTable::kTextWholeNumbers
                                                  : MResourceTable::kTextNoWholeNumber;
        mark.Show(QStringLiteral("\u2192 ") + StoredNumber(read.value, numbers_.value(&field)),
                  NumberText(field, text));
    }
}

/// The text with all that it can tell of the field.
QString PropertyDialog::NumberText(const QLineEdit& field, int text) const {
    const project::NumberRange range = numbers_.value(&field);
    const project::Reading read = project::ReadDialogText(ToUtf16(field.text()), range);
    return services_.texts.GetText(text, {{u"smallest", NumberToText(range.smallest)},
                                          {u"largest", NumberToText(range.largest)},
                                          {u"number", StoredNumber(read.value, range)},
                                          {u"text", field.text()}});
}

std::optional<PropertyDialog::Objection> PropertyDialog::NumberThatDoesNotFit() const {
    for (QLineEdit* field : findChildren<QLineEdit*>()) {
        const auto range = numbers_.constFind(field);
        if (range == numbers_.constEnd() || !Touched(*field)) continue;
        if (project::ReadDialogText(ToUtf16(field->text()), *range).problem ==
            project::Problem::OutOfRange) {
            return Objection{field, NumberText(*field, MResourceTable::kTextNumberTooLarge)};
        }
    }
    return std::nullopt;
}

void PropertyDialog::FillWithCodes(QComboBox& list, std::span<const project::Code> codes) {
    std::vector<project::Code> offered(codes.begin(), codes.end());
    std::erase_if(offered, [](const project::Code& code) { return !code.inDialog; });
    std::sort(offered.begin(), offered.end(),
              [](const auto& a, const auto& b) { return a.code < b.code; });
    for (const project::Code& code : offered) list.addItem(Text(code.text), code.code);
    list.setCurrentIndex(-1);  // the record selects
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
    // In the menu of the button, and by its key in the field.
    auto* uses = new QAction(Text(MResourceTable::kTextWhereUsed), this);
    uses->setObjectName(QStringLiteral("mnuUses"));
    uses->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_U);
    uses->setShortcutContext(Qt::WidgetShortcut);
    connect(uses, &QAction::triggered, this, [this, field] {
        if (services_.showUses && !field->text().isEmpty()) {
            services_.showUses(this, field->text());
        }
    });
    field->addAction(uses);
    button->addAction(uses);
    button->setContextMenuPolicy(Qt::ActionsContextMenu);
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

void PropertyDialog::ConnectTextEditor(QPushButton* button, QLineEdit* field) {
    AddPicker(button, field, MResourceTable::kTextEditText);
    connect(button, &QPushButton::clicked, this, [this, field] {
        TextDialog editor(services_.texts, *field, {}, {}, this);
        if (editor.exec() == QDialog::Accepted) field->setText(editor.Text());
        field->setFocus();
    });
}

void PropertyDialog::ConnectTextsEditor(QPushButton* button, QLineEdit* field) {
    AddPicker(button, field, MResourceTable::kTextEditText);
    connect(button, &QPushButton::clicked, this, [this, field] {
        TextDialog editor(services_.texts, *field, textLanguage_, otherTexts_, this);
        if (editor.exec() == QDialog::Accepted) {
            field->setText(editor.Text());
            otherTexts_ = editor.Others();
        }
        field->setFocus();
    });
}

bool PropertyDialog::Fits(const QString& chosen, const QLineEdit& field) {
    if (chosen.size() <= field.maxLength()) return true;
    // The field would cut it to the name of something else.
    const QString text =
        services_.texts.GetText(MResourceTable::kTextChoiceTooLong,
                                {{u"max", QString::number(field.maxLength())}, {u"text", chosen}});
    messages::ShowMessage(text, messages::MessageButtons::Ok, windowTitle(), this);
    return false;
}

void PropertyDialog::AddPicker(QPushButton* button, QWidget* field, int toolTip) {
    button->setText(Text(MResourceTable::kTextPicker));
    button->setAutoDefault(false);
    pickers_.append({button, field, toolTip});
}

void PropertyDialog::cmdOk_Click() {
    const QString name = frame_.txtName->text();
    // Another spelling of the own name is no second use of it.
    // The names of several are theirs who store them.
    if (!IsOfMany() && !services_.names.IsSameName(name, openedName_) &&
        services_.names.TestNameInGroup(nameGroup_, name)) {
        return Refuse({frame_.txtName, Text(MResourceTable::kTextDoubleName)});
    }
    if (const auto number = NumberThatDoesNotFit()) return Refuse(*number);
    if (const auto missing = WhatIsMissing()) return Refuse(*missing);
    if (store_ && !store_()) return;
    if (!IsOfMany()) services_.names.ChangeNameInGroup(nameGroup_, openedName_, name);
    cancelled_ = false;
    accept();
}

/// Says what stands against OK and leads to the field where it can be put right.
void PropertyDialog::Refuse(const Objection& objection) {
    messages::ShowMessage(objection.text, messages::MessageButtons::Ok, windowTitle(), this);
    for (int page = 0; page < frame_.tabs->count(); ++page) {
        if (frame_.tabs->widget(page)->isAncestorOf(objection.field)) {
            frame_.tabs->setCurrentIndex(page);
        }
    }
    objection.field->setFocus();
    objection.field->selectAll();
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
    setAttribute(Qt::WA_KeyboardFocusChange);  // or some styles show no focus
    (stop != nullptr ? stop : tabs.tabBar())->setFocus(Qt::TabFocusReason);
}

void PropertyDialog::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    // The desktop has changed between light and dark: the colours are ours and have to follow.
    if (event->type() != QEvent::PaletteChange || painting_) return;
    for (QWidget* field : std::as_const(fields_)) PaintField(field, field->isEnabledTo(this));
}
