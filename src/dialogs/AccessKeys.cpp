#include "dialogs/AccessKeys.h"

#include <algorithm>
#include <functional>
#include <map>
#include <QAbstractButton>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QTabWidget>
#include <utility>
#include <vector>

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

/// Takes the key that a text brings along; the text without it where another has it already.
QString Keep(Keys& taken, const QString& text) {
    const qsizetype at = MarkedLetter(text);
    if (at < 0) return text;
    const QChar key = text.at(at).toLower();
    if (taken.contains(key)) return QString(text).remove(at - 1, 1);
    taken.insert(key);
    return text;
}

/// Texts that want a letter each, all different.
class Distribution {
public:
    explicit Distribution(Keys taken) : taken_(std::move(taken)) {}

    void Add(const QString& text, std::function<void(const QString&)> setText) {
        if (MarkedLetter(text) < 0) wishes_.push_back({text, Places(text), std::move(setText)});
    }
    /// Marks the texts; those for which there is no letter stay as they are.
    void Mark() {
        for (std::size_t i = 0; i < wishes_.size(); ++i) {
            Keys tried;
            Give(i, tried);
        }
        for (const auto& [key, owner] : owners_) {
            const Wish& wish = wishes_[owner];
            const auto at = std::find_if(wish.places.begin(), wish.places.end(), [&](qsizetype i) {
                return wish.text.at(i).toLower() == key;
            });
            wish.setText(QString(wish.text).insert(*at, u'&'));
        }
    }

private:
    struct Wish {
        QString text;
        std::vector<qsizetype> places;  // of the letters that could be marked, the best first
        std::function<void(const QString&)> setText;
    };

    [[nodiscard]] std::vector<qsizetype> Places(const QString& text) const {
        std::vector<qsizetype> places;
        for (const bool wordStarts : {true, false}) {
            for (qsizetype i = 0; i < text.size(); ++i) {
                const bool startsWord = i == 0 || !text.at(i - 1).isLetterOrNumber();
                const QChar key = text.at(i).toLower();
                // A keyboard of another country lacks everything but the plain letters.
                if (key < u'a' || key > u'z' || startsWord != wordStarts) continue;
                if (!taken_.contains(key)) places.push_back(i);
            }
        }
        return places;
    }

    /// A letter that is free; else one whose owner can do with another. Each is tried once.
    bool Give(std::size_t wish, Keys& tried) {
        for (const bool fromOthers : {false, true}) {
            for (const qsizetype place : wishes_[wish].places) {
                const QChar key = wishes_[wish].text.at(place).toLower();
                const auto owner = owners_.find(key);
                if (owner != owners_.end()) {
                    if (!fromOthers || tried.contains(key)) continue;
                    tried.insert(key);
                    if (!Give(owner->second, tried)) continue;
                }
                owners_[key] = wish;
                return true;
            }
        }
        return false;
    }

    Keys taken_;
    std::vector<Wish> wishes_;
    std::map<QChar, std::size_t> owners_;
};

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
    Distribution pages(everywhere);
    for (int i = 0; i < tabs.count(); ++i) {
        pages.Add(tabs.tabText(i), [&tabs, i](const QString& text) { tabs.setTabText(i, text); });
    }
    pages.Mark();
    for (int i = 0; i < tabs.count(); ++i) Take(everywhere, tabs.tabText(i));
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
        for (QLabel* label : std::as_const(labels)) label->setText(Keep(taken, label->text()));
        for (QAbstractButton* choice : std::as_const(choices)) {
            choice->setText(Keep(taken, choice->text()));
        }
        Distribution fields(taken);
        for (QLabel* label : std::as_const(labels)) {
            fields.Add(label->text(), [label](const QString& text) { label->setText(text); });
        }
        for (QAbstractButton* choice : std::as_const(choices)) {
            fields.Add(choice->text(), [choice](const QString& text) { choice->setText(text); });
        }
        fields.Mark();
    }
}
