#include "editor/MenuLetters.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QSet>

namespace {

/// "&&" is a character of the text.
QString WithoutLetter(QString text) {
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != u'&') continue;
        if (text[i + 1] != u'&') return text.remove(i, 1);
        ++i;
    }
    return text;
}

}  // namespace

MenuLetters::MenuLetters(const QMenu& menu) {
    QSet<QKeySequence> taken;
    for (QAction* action : menu.actions()) {
        const QKeySequence letter = QKeySequence::mnemonic(action->text());
        if (!action->isVisible() || letter.isEmpty()) continue;
        if (!taken.contains(letter)) {
            taken.insert(letter);
            continue;
        }
        changed_.append({action, action->text(), WithoutLetter(action->text())});
        action->setText(changed_.last().shown);
    }
}

MenuLetters::~MenuLetters() {
    for (const Changed& one : changed_) {
        // One that has got another text meanwhile is its owner's.
        if (one.action && one.action->text() == one.shown) one.action->setText(one.own);
    }
}
