#include "studio/KeysDialog.h"

#include <algorithm>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSet>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "messages/MessageBox.h"
#include "messages/PlainTexts.h"
#include "studio/StudioTexts.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;
using commandset::Command;
using commandset::Id;
using MResourceTable::Keys;

constexpr QSize kFirstSize(760, 560);

QString WithoutMark(QString text) {
    return text.remove(u'&');
}

QList<QKeyCombination> EachOnce(const QList<commandset::Key>& keys) {
    QList<QKeyCombination> each;
    for (const commandset::Key& key : keys) {
        if (!each.contains(key.keys)) each += key.keys;
    }
    return each;
}

KeyPlan::Entry EntryOf(const Command& command, int menu, const MResources::TextTable& texts) {
    const QString text = command.text != 0
                             ? commandset::MenuText(command, texts).section(u'\t', 0, 0)
                             : texts.GetText(MResourceTable::kTextHelp);
    return {command.name.toString(),
            texts.GetText(Keys::Editor, {{u"menu", WithoutMark(texts.GetText(menu))}}),
            WithoutMark(text).trimmed(), EachOnce(commandset::GivenKeys(command)), &command};
}

/// By menu; what stands in none concerns the trends.
QList<KeyPlan::Entry> WithEditor(QList<KeyPlan::Entry> entries,
                                 const MResources::TextTable& texts) {
    QSet<Id> listed;
    const auto add = [&](Id id, int menu) {
        if (id == Id::Separator || listed.contains(id)) return;
        listed.insert(id);
        entries += EntryOf(commandset::CommandOf(id), menu, texts);
    };
    for (const commandset::Menu& menu : commandset::Menus()) {
        for (const Id id : menu.commands) add(id, menu.text);
        if (menu.text != MResourceTable::kTextMenuTrends) continue;
        for (const Id id : commandset::ContextMenu(commandset::Place::Trends)) {
            const bool inBar =
                std::any_of(commandset::Menus().begin(), commandset::Menus().end(),
                            [id](const commandset::Menu& known) {
                                return std::find(known.commands.begin(), known.commands.end(),
                                                 id) != known.commands.end();
                            });
            if (!inBar) add(id, menu.text);
        }
    }
    for (const Command& command : commandset::Commands())
        add(command.id, MResourceTable::kTextHelp);
    return entries;
}

}  // namespace

KeyField::KeyField(QWidget* parent) : QLineEdit(parent) {
    setReadOnly(true);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAttribute(Qt::WA_InputMethodEnabled, false);
}

bool KeyField::event(QEvent* event) {
    // Whatever the windows around it have bound to a key.
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    return QLineEdit::event(event);
}

void KeyField::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Shift:
        case Qt::Key_Control:
        case Qt::Key_Alt:
        case Qt::Key_AltGr:
        case Qt::Key_Meta:
        case Qt::Key_CapsLock:
            return;
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Escape:
            event->ignore();  // the dialog's
            return;
        default:
            // The keypad's keys are the same keys.
            emit Pressed(QKeyCombination(event->modifiers() & ~Qt::KeypadModifier,
                                         static_cast<Qt::Key>(event->key())));
    }
}

KeysDialog::KeysDialog(const QList<KeyPlan::Entry>& studio, const commandset::OwnKeys& own,
                       const StudioTexts& texts, QWidget* owner)
    : QDialog(owner), texts_(texts.Table()), plan_(WithEditor(studio, texts_), own) {
    setObjectName(u"frmKeys"_s);
    setWindowTitle(texts_.GetText(Keys::Title));
    Build(texts);
    messages::KeepTextsPlain(*this);
    FillTree();
    ShowKeys();
    resize(kFirstSize);
    txtFilter_->setFocus();
}

void KeysDialog::Build(const StudioTexts& texts) {
    auto* hint = new QLabel(texts_.GetText(Keys::Hint), this);
    hint->setObjectName(u"lblHint"_s);
    hint->setWordWrap(true);
    txtFilter_ = new QLineEdit(this);
    txtFilter_->setObjectName(u"txtFilter"_s);
    txtFilter_->setPlaceholderText(texts_.GetText(Keys::Filter));
    txtFilter_->setAccessibleName(txtFilter_->placeholderText());
    txtFilter_->setClearButtonEnabled(true);
    connect(txtFilter_, &QLineEdit::textChanged, this, &KeysDialog::Filter);
    tvwKeys_ = new QTreeWidget(this);
    tvwKeys_->setObjectName(u"tvwKeys"_s);
    tvwKeys_->setAccessibleName(windowTitle());
    tvwKeys_->setHeaderLabels({texts_.GetText(Keys::CommandColumn), texts_.GetText(Keys::KeyColumn),
                               texts_.GetText(Keys::GivenColumn)});
    connect(tvwKeys_, &QTreeWidget::currentItemChanged, this, [this] {
        pressed_.reset();
        txtKey_->clear();
        ShowState();
    });
    connect(tvwKeys_, &QTreeWidget::itemDoubleClicked, this, [this] { txtKey_->setFocus(); });
    lblNoHit_ = new QLabel(texts_.GetText(Keys::NoHit), this);
    lblNoHit_->setObjectName(u"lblNoHit"_s);
    lblNoHit_->hide();
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(texts(Text::Ok), QDialogButtonBox::AcceptRole)->setObjectName(u"cmdOk"_s);
    buttons->addButton(texts(Text::Cancel), QDialogButtonBox::RejectRole)
        ->setObjectName(u"cmdCancel"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    for (QWidget* part : {static_cast<QWidget*>(hint), static_cast<QWidget*>(txtFilter_)}) {
        layout->addWidget(part);
    }
    layout->addWidget(tvwKeys_, 1);
    layout->addWidget(lblNoHit_);
    layout->addWidget(BuildFields());
    layout->addWidget(buttons);
}

QWidget* KeysDialog::BuildFields() {
    auto* fields = new QWidget(this);
    const auto button = [&](const QString& name, Keys text, auto run) {
        auto* made = new QPushButton(texts_.GetText(text), fields);
        made->setObjectName(name);
        made->setAutoDefault(false);
        connect(made, &QPushButton::clicked, this, run);
        return made;
    };
    auto* label = new QLabel(texts_.GetText(Keys::NewKey), fields);
    label->setObjectName(u"lblKey"_s);
    txtKey_ = new KeyField(fields);
    txtKey_->setObjectName(u"txtKey"_s);
    txtKey_->setPlaceholderText(texts_.GetText(Keys::Press));
    label->setBuddy(txtKey_);
    connect(txtKey_, &KeyField::Pressed, this, &KeysDialog::TakeKey);
    cmdGive_ = button(u"cmdGive"_s, Keys::Give, [this] { Give(); });
    cmdNoKey_ = button(u"cmdNoKey"_s, Keys::NoKey, [this] {
        plan_.TakeAway(Chosen());
        ShowKeys();
    });
    cmdReset_ = button(u"cmdReset"_s, Keys::Reset, [this] { ResetChosen(); });
    cmdResetAll_ = button(u"cmdResetAll"_s, Keys::ResetAll, [this] {
        plan_.ResetAll();
        ShowKeys();
    });
    lblState_ = new QLabel(fields);
    lblState_->setObjectName(u"lblState"_s);
    lblState_->setWordWrap(true);
    lblState_->setMinimumHeight(2 * lblState_->fontMetrics().lineSpacing());
    auto* column = new QVBoxLayout(fields);
    column->setContentsMargins(0, 0, 0, 0);
    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addSpacing(12 - row->spacing());
    row->addWidget(txtKey_, 1);
    for (QPushButton* made : {cmdGive_, cmdNoKey_, cmdReset_, cmdResetAll_}) row->addWidget(made);
    column->addLayout(row);
    column->addWidget(lblState_);
    return fields;
}

void KeysDialog::FillTree() {
    QTreeWidgetItem* group = nullptr;
    for (int entry = 0; entry < plan_.Entries().size(); ++entry) {
        const KeyPlan::Entry& shown = plan_.Entries()[entry];
        if (group == nullptr || group->text(0) != shown.group) {
            const QList<QTreeWidgetItem*> known =
                tvwKeys_->findItems(shown.group, Qt::MatchExactly | Qt::MatchCaseSensitive);
            group = !known.isEmpty() ? known.front() : new QTreeWidgetItem(tvwKeys_, {shown.group});
            group->setFirstColumnSpanned(true);
            group->setExpanded(true);
        }
        auto* item = new QTreeWidgetItem(group, {shown.text});
        item->setData(0, Qt::UserRole, entry);
        items_ += item;
    }
    tvwKeys_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    tvwKeys_->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
}

void KeysDialog::ShowKeys() {
    for (int entry = 0; entry < items_.size(); ++entry) {
        items_[entry]->setText(1, TextOf(plan_.KeysOf(entry)));
        items_[entry]->setText(
            2, plan_.IsOwn(entry) ? TextOf(plan_.Entries()[entry].given) : QString());
    }
    Filter();
    ShowState();
}

void KeysDialog::Filter() {
    const QString term = txtFilter_->text().trimmed();
    bool isAny = false;
    for (int group = 0; group < tvwKeys_->topLevelItemCount(); ++group) {
        QTreeWidgetItem* shown = tvwKeys_->topLevelItem(group);
        const bool isGroup = shown->text(0).contains(term, Qt::CaseInsensitive);
        bool isHere = false;
        for (int row = 0; row < shown->childCount(); ++row) {
            QTreeWidgetItem* item = shown->child(row);
            const bool fits = isGroup || item->text(0).contains(term, Qt::CaseInsensitive) ||
                              item->text(1).contains(term, Qt::CaseInsensitive);
            item->setHidden(!fits);
            isHere = isHere || fits;
        }
        shown->setHidden(!isHere);
        isAny = isAny || isHere;
    }
    lblNoHit_->setVisible(!isAny);
}

int KeysDialog::Chosen() const {
    const QTreeWidgetItem* item = tvwKeys_->currentItem();
    const QVariant entry = item != nullptr ? item->data(0, Qt::UserRole) : QVariant();
    return entry.isValid() ? entry.toInt() : -1;
}

QString KeysDialog::TextOf(const QList<QKeyCombination>& keys) const {
    QStringList shown;
    for (const QKeyCombination key : keys) {
        // What the command set has no word for is none of its keys.
        shown += commandset::CanBeGiven(key) || key.key() < Qt::Key_Escape ||
                         key.key() == Qt::Key_Delete ||
                         (key.key() >= Qt::Key_F1 && key.key() <= Qt::Key_F12)
                     ? commandset::KeyText(key, texts_)
                     : QKeySequence(key).toString(QKeySequence::NativeText);
    }
    return shown.isEmpty() ? texts_.GetText(Keys::NoneOwned) : shown.join(u", "_s);
}

QString KeysDialog::NamesOf(const QList<int>& entries) const {
    QStringList names;
    for (const int entry : entries) {
        const KeyPlan::Entry& named = plan_.Entries()[entry];
        names += u"\"%1\" (%2)"_s.arg(named.text, named.group);
    }
    return names.join(u", "_s);
}

void KeysDialog::ShowState() {
    const int entry = Chosen();
    const bool mayChange = entry >= 0 && !plan_.IsFixed(entry);
    bool canGive = false;
    QString state;
    if (entry >= 0 && !mayChange) {
        state = texts_.GetText(Keys::IsFixed, {{u"command", NamesOf({entry})}});
    } else if (entry >= 0 && pressed_) {
        const QString key = TextOf({*pressed_});
        const QList<int> owners = plan_.Owners(entry, *pressed_);
        canGive = plan_.CanHave(entry, *pressed_) && plan_.KeysOf(entry).value(0) != *pressed_;
        if (plan_.KeysOf(entry).contains(*pressed_)) {
            state = texts_.GetText(Keys::HasIt, {{u"command", NamesOf({entry})}, {u"key", key}});
        } else if (!canGive) {
            state = texts_.GetText(Keys::CannotBeGiven, {{u"key", key}});
        } else if (owners.isEmpty()) {
            state = texts_.GetText(Keys::Free, {{u"key", key}});
        } else {
            state = texts_.GetText(Keys::Belongs, {{u"key", key}, {u"commands", NamesOf(owners)}});
        }
    }
    lblState_->setText(state);
    txtKey_->setEnabled(mayChange);
    cmdGive_->setEnabled(mayChange && canGive);
    cmdNoKey_->setEnabled(mayChange && !plan_.KeysOf(entry).isEmpty());
    cmdReset_->setEnabled(mayChange && plan_.IsOwn(entry));
    cmdResetAll_->setEnabled(!plan_.Own().isEmpty());
}

void KeysDialog::TakeKey(QKeyCombination key) {
    pressed_ = key;
    txtKey_->setText(TextOf({key}));
    ShowState();
}

bool KeysDialog::MayTake(const QString& keys, const QList<int>& owners) {
    if (owners.isEmpty()) return true;
    const QString question = texts_.GetText(
        Keys::Question,
        {{u"key", keys}, {u"commands", NamesOf(owners)}, {u"command", NamesOf({Chosen()})}});
    return messages::ShowMessage(question, messages::MessageButtons::YesNo, windowTitle(), this) ==
           messages::MessageResult::Yes;
}

void KeysDialog::Give() {
    if (!MayTake(TextOf({*pressed_}), plan_.Owners(Chosen(), *pressed_))) return;
    plan_.Give(Chosen(), *pressed_);
    ShowKeys();
}

void KeysDialog::ResetChosen() {
    const int entry = Chosen();
    const QString keys = TextOf(plan_.Entries()[entry].given);
    if (!MayTake(keys, plan_.OwnersOfGiven(entry))) return;
    plan_.Reset(entry);
    ShowKeys();
}

void KeysDialog::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && !txtFilter_->text().isEmpty() && txtFilter_->hasFocus()) {
        return txtFilter_->clear();
    }
    // Enter where a key has been pressed gives it.
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && txtKey_->hasFocus()) {
        if (cmdGive_->isEnabled()) Give();
        return;
    }
    QDialog::keyPressEvent(event);
}

}  // namespace studio
