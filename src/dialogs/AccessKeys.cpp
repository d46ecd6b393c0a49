#include "dialogs/AccessKeys.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QTabWidget>

namespace {

using Keys = QSet<QChar>;

/// Position of the marked letter; -1 when there is none. "&&" shows one "&" and marks nothing.
qsizetype MarkedLetter(const QString& text) {
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text.at(i) != u'&') continue;
        if (text.at(i + 1) != u'&') return i + 1;
        ++i;
    }
    return -1;
}

void Take(Keys& taken, const QString& text) {
    const qsizetype at = MarkedLetter(text);
    if (at >= 0) taken.insert(text.at(at).toLower());
}

/// Marks a free letter of `text`; leaves it as it is when there is none.
QString Marked(const QString& text, Keys& taken) {
    for (const bool wordStartsOnly : {true, false}) {
        for (qsizetype i = 0; i < text.size(); ++i) {
            const bool startsWord = i == 0 || !text.at(i - 1).isLetterOrNumber();
            const QChar key = text.at(i).toLower();
            // A keyboard of another country lacks everything but the plain letters.
            if (key < u'a' || key > u'z' || (wordStartsOnly && !startsWord)) continue;
            if (taken.contains(key)) continue;
            taken.insert(key);
            return QString(text).insert(i, u'&');
        }
    }
    return text;
}

template <typename Control>
void MarkUnmarked(const QList<Control*>& controls, Keys& taken) {
    for (Control* control : controls) {
        if (MarkedLetter(control->text()) < 0) control->setText(Marked(control->text(), taken));
    }
}

}  // namespace

QString WithoutAccessKey(const QString& text) {
    QString plain = text;
    const qsizetype at = MarkedLetter(text);
    if (at >= 0) plain.remove(at - 1, 1);
    return plain.replace(QStringLiteral("&&"), QStringLiteral("&"));
}

void AssignAccessKeys(QTabWidget& tabs, std::initializer_list<const QPushButton*> buttons) {
    Keys everywhere;
    for (const QPushButton* button : buttons) Take(everywhere, button->text());
    for (int i = 0; i < tabs.count(); ++i) Take(everywhere, tabs.tabText(i));
    for (int i = 0; i < tabs.count(); ++i) {
        if (MarkedLetter(tabs.tabText(i)) < 0)
            tabs.setTabText(i, Marked(tabs.tabText(i), everywhere));
    }
    for (int i = 0; i < tabs.count(); ++i) {
        const QWidget* page = tabs.widget(i);
        QList<QLabel*> labels;
        for (QLabel* label : page->findChildren<QLabel*>()) {
            if (label->buddy() != nullptr) labels.append(label);
        }
        QList<QAbstractButton*> choices;
        for (QAbstractButton* button : page->findChildren<QAbstractButton*>()) {
            if (qobject_cast<QRadioButton*>(button) != nullptr ||
                qobject_cast<QCheckBox*>(button) != nullptr) {
                choices.append(button);
            }
        }
        Keys taken = everywhere;
        for (const QLabel* label : std::as_const(labels)) Take(taken, label->text());
        for (const QAbstractButton* choice : std::as_const(choices)) Take(taken, choice->text());
        MarkUnmarked(labels, taken);
        MarkUnmarked(choices, taken);
    }
}
