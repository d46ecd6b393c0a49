#include "dialogs/ManyRecords.h"

#include <algorithm>
#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>

#include "controls/KVColorSelect.h"
#include "dialogs/ColourTexts.h"
#include "dialogs/ControlContent.h"
#include "icons/Icons.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

ManyRecords::ManyRecords(const MResources::TextTable& texts, QPushButton& ok, int records,
                         QObject* dialog)
    : QObject(dialog), texts_(texts), ok_(ok), okText_(ok.text()), records_(records) {}

QString ManyRecords::Text(int id) const {
    return texts_.GetText(id);
}

void ManyRecords::ShowDifferent(QWidget& control) {
    const QString different = Text(MResourceTable::kTextDifferent);
    if (auto* text = qobject_cast<QLineEdit*>(&control)) {
        text->clear();
        text->setPlaceholderText(different);
    } else if (auto* list = qobject_cast<QComboBox*>(&control)) {
        list->setCurrentIndex(-1);
        list->setPlaceholderText(different);
    } else if (auto* color = qobject_cast<KVColorSelect*>(&control)) {
        ColorTexts words = ColourTexts(texts_);
        words.none = different;
        color->SetTexts(words);
        color->ClearColor();
    }
}

void ManyRecords::Add(QWidget& control, bool differs) {
    if (differs) ShowDifferent(control);
    contents_.insert(&control, ContentOf(control));
    Connect(control);
    control.installEventFilter(this);
}

void ManyRecords::Connect(QWidget& control) {
    const auto changed = [this, &control] { Changed(control); };
    if (auto* text = qobject_cast<QLineEdit*>(&control)) {
        // What is typed counts, even where nothing is left of it: the field has been cleared.
        connect(text, &QLineEdit::textEdited, this, [this, text] {
            edited_.insert(text);
            Changed(*text);
        });
        connect(text, &QLineEdit::textChanged, this, changed);
        AddWayBack(*text);
    } else if (auto* list = qobject_cast<QComboBox*>(&control)) {
        connect(list, &QComboBox::currentIndexChanged, this, changed);
    } else if (auto* color = qobject_cast<KVColorSelect*>(&control)) {
        connect(color, &KVColorSelect::ColorChanged, this, changed);
    }
}

void ManyRecords::AddWayBack(QLineEdit& field) {
    QAction* back = field.addAction(icons::Icon(u"undo"), QLineEdit::TrailingPosition);
    back->setObjectName(u"actBack"_s);
    back->setText(Text(MResourceTable::kTextWayBack));
    back->setToolTip(Text(MResourceTable::kTextWayBack));
    back->setVisible(false);
    connect(back, &QAction::triggered, this, [this, &field] { GoBack(field); });
}

bool ManyRecords::IsTouched(const QWidget& control) const {
    const auto loaded = contents_.constFind(&control);
    if (loaded == contents_.constEnd()) return false;
    return edited_.contains(&control) || *loaded != ContentOf(control);
}

void ManyRecords::GoBack(QWidget& control) {
    edited_.remove(&control);
    SetContent(control, contents_.value(&control));
    Changed(control);
}

void ManyRecords::Changed(QWidget& control) {
    const bool touched = IsTouched(control);
    if (auto* text = qobject_cast<QLineEdit*>(&control)) {
        text->findChild<QAction*>(u"actBack"_s)->setVisible(touched);
        // Where they differ an empty field stands for that, until it is meant to be empty.
        if (!text->placeholderText().isEmpty()) {
            text->setPlaceholderText(
                Text(touched ? MResourceTable::kTextCleared : MResourceTable::kTextDifferent));
        }
    } else if (control.toolTip().isEmpty() || !touched) {
        control.setToolTip(touched ? Text(MResourceTable::kTextWayBack) : QString());
    }
    const auto fields = std::count_if(contents_.keyBegin(), contents_.keyEnd(),
                                      [this](const QWidget* each) { return IsTouched(*each); });
    const int caption =
        fields == 1 ? MResourceTable::kTextChangeField : MResourceTable::kTextChangeFields;
    ok_.setText(fields == 0 ? okText_
                            : texts_.GetText(caption, {{u"fields", QString::number(fields)},
                                                       {u"n", QString::number(records_)}}));
}

bool ManyRecords::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_Backspace || key->modifiers() != Qt::ControlModifier) return false;
    GoBack(*static_cast<QWidget*>(watched));
    return true;
}
