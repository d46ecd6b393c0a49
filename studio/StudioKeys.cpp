#include "studio/StudioKeys.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QStringList>

#include "studio/KeysDialog.h"
#include "studio/StudioTexts.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kGroup = u"Keys"_s;

QList<QKeyCombination> KeysIn(const QList<QKeySequence>& sequences) {
    QList<QKeyCombination> keys;
    for (const QKeySequence& sequence : sequences) {
        if (sequence.count() == 1) keys += sequence[0];
    }
    return keys;
}

}  // namespace

StudioKeys::StudioKeys(QMenuBar& menus, QSettings* state, QObject* parent)
    : QObject(parent), state_(state) {
    for (QAction* menu : menus.actions()) {
        if (menu->menu() == nullptr) continue;
        for (QAction* action : menu->menu()->actions()) {
            if (action->menu() != nullptr || action->objectName().isEmpty()) continue;
            const QVariant fixed = action->property(kFixedKey);
            const QList<QKeySequence> keys =
                fixed.isValid() ? QList{fixed.value<QKeySequence>()} : action->shortcuts();
            items_ += Item{action, menu, KeysIn(keys), fixed.isValid()};
        }
    }
    Apply(Stored());
}

bool StudioKeys::IsGiven(const QString& name, QKeyCombination key) const {
    for (const Item& item : items_) {
        if (item.action->objectName() == name) return item.given.contains(key);
    }
    for (const commandset::Command& command : commandset::Commands()) {
        if (command.name != name) continue;
        for (const commandset::Key& given : command.keys) {
            if (given.keys == key) return true;
        }
    }
    return false;
}

commandset::OwnKeys StudioKeys::Stored() const {
    commandset::OwnKeys own;
    if (state_ == nullptr) return own;
    state_->beginGroup(kGroup);
    for (const QString& name : state_->childKeys()) {
        QList<QKeyCombination> keys;
        for (const QString& text : state_->value(name).toStringList()) {
            for (const QKeyCombination key :
                 KeysIn({QKeySequence(text, QKeySequence::PortableText)})) {
                // The file may have been written by hand: a letter alone would end all typing.
                if (commandset::CanBeGiven(key) || IsGiven(name, key)) keys += key;
            }
        }
        own.insert(name, keys);
    }
    state_->endGroup();
    return own;
}

void StudioKeys::Store(const commandset::OwnKeys& own) {
    if (state_ == nullptr) return;
    state_->remove(kGroup);
    state_->beginGroup(kGroup);
    for (auto one = own.begin(); one != own.end(); ++one) {
        QStringList keys;
        for (const QKeyCombination key : one.value()) {
            keys += QKeySequence(key).toString(QKeySequence::PortableText);
        }
        state_->setValue(one.key(), keys);
    }
    state_->endGroup();
    state_->sync();
}

void StudioKeys::Apply(const commandset::OwnKeys& own) {
    for (const Item& item : items_) {
        if (item.isFixed) continue;
        QList<QKeySequence> keys;
        for (const QKeyCombination key : own.value(item.action->objectName(), item.given)) {
            keys += QKeySequence(key);
        }
        item.action->setShortcuts(keys);
    }
    commandset::SetOwnKeys(own);
    emit Changed();
}

QList<KeyPlan::Entry> StudioKeys::StudioEntries(const StudioTexts& texts) const {
    QList<KeyPlan::Entry> entries;
    for (const Item& item : items_) {
        const QString menu = item.menu->text().remove(u'&');
        entries +=
            KeyPlan::Entry{item.action->objectName(),
                           texts.Table().GetText(MResourceTable::Keys::Studio, {{u"menu", menu}}),
                           item.action->text().remove(u'&'),
                           item.given,
                           nullptr,
                           item.isFixed};
    }
    return entries;
}

void StudioKeys::ShowOverview(const StudioTexts& texts, QWidget* owner) {
    KeysDialog dialog(StudioEntries(texts), commandset::CurrentOwnKeys(), texts, owner);
    if (dialog.exec() != QDialog::Accepted) return;
    Store(dialog.Own());
    Apply(dialog.Own());
}

}  // namespace studio
