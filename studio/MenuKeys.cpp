#include "studio/MenuKeys.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QSet>

namespace studio {
namespace {

/// The text without its access key; "&&" is a character of the text.
QString WithoutLetter(const QString& text) {
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'&' && i + 1 < text.size()) {
            if (text[i + 1] == u'&') plain += u'&';
            ++i;
        }
        plain += text[i];
    }
    return plain;
}

}  // namespace

MenuKeys::MenuKeys(QMainWindow& window) : window_(window) {
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { FocusChanged(now); });
}

void MenuKeys::FocusChanged(QWidget* now) {
    // A menu that is open has the keyboard on behalf of what had it before.
    if (now == nullptr || qobject_cast<QMenuBar*>(now) || qobject_cast<QMenu*>(now)) return;
    keyboard_ = now;
    Update();
}

QMenuBar* MenuKeys::BarWithKeyboard() const {
    const QList<QMenuBar*> bars = window_.findChildren<QMenuBar*>();
    for (const QWidget* at = keyboard_; at != nullptr; at = at->parentWidget()) {
        for (QMenuBar* bar : bars) {
            if (bar->parentWidget() == at) return bar;
        }
    }
    return window_.menuBar();
}

void MenuKeys::Show(QList<Changed>& changed, QAction& action, const QString& text) {
    changed.append({&action, action.text(), text});
    action.setText(text);
}

void MenuKeys::Restore(QList<Changed>& changed) {
    for (const Changed& one : changed) {
        // One that has got another text meanwhile is its owner's.
        if (one.action && one.action->text() == one.shown) one.action->setText(one.own);
    }
    changed.clear();
}

void MenuKeys::Update() {
    Restore(letters_);
    const QMenuBar* first = BarWithKeyboard();
    QSet<QKeySequence> taken;
    for (const QAction* action : first->actions()) {
        const QKeySequence letter = QKeySequence::mnemonic(action->text());
        if (action->isVisible() && !letter.isEmpty()) taken.insert(letter);
    }
    for (const QMenuBar* bar : window_.findChildren<QMenuBar*>()) {
        // What lies in a tab that is not shown opens no menu.
        if (bar == first || !bar->isVisibleTo(&window_)) continue;
        for (QAction* action : bar->actions()) {
            if (taken.contains(QKeySequence::mnemonic(action->text()))) {
                Show(letters_, *action, WithoutLetter(action->text()));
            }
        }
    }
}

void MenuKeys::Watch(QMenu& menu) {
    connect(&menu, &QMenu::aboutToShow, this, [this, &menu] { HideTakenKeys(menu); });
    connect(&menu, &QMenu::aboutToHide, this, [this] { Restore(shortcuts_); });
}

void MenuKeys::HideTakenKeys(const QMenu& menu) {
    Restore(shortcuts_);
    if (!keyboard_) return;
    for (QAction* action : menu.actions()) {
        if (action->shortcut().isEmpty()) continue;
        const QKeyCombination key = action->shortcut()[0];
        QKeyEvent question(QEvent::ShortcutOverride, key.key(), key.keyboardModifiers());
        question.ignore();
        QApplication::sendEvent(keyboard_, &question);
        // A text with a tab brings its key along; here none.
        if (question.isAccepted()) Show(shortcuts_, *action, action->text() + u'\t');
    }
}

}  // namespace studio
