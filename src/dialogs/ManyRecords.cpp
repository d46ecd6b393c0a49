#include "dialogs/ManyRecords.h"

#include <algorithm>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

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
    } else if (auto* list = qobject_cast<QComboBox*>(&control)) {
        connect(list, &QComboBox::currentIndexChanged, this, changed);
    } else if (auto* color = qobject_cast<KVColorSelect*>(&control)) {
        connect(color, &KVColorSelect::ColorChanged, this, changed);
    }
    AddWayBack(control);
}

/// The mark of a control that has been touched; keys do what it does.
void ManyRecords::AddWayBack(QWidget& control) {
    auto* back = new QToolButton(&control);
    back->setObjectName(u"cmdBack"_s);
    back->setIcon(icons::Icon(u"undo"));
    back->setAutoRaise(true);
    back->setFocusPolicy(Qt::NoFocus);
    back->setCursor(Qt::ArrowCursor);
    back->setToolTip(Text(MResourceTable::kTextWayBack));
    back->setAccessibleName(Text(MResourceTable::kTextWayBack));
    back->hide();
    connect(back, &QToolButton::clicked, this, [this, &control] { GoBack(control); });
}

/// At the right end; of a list, beside its arrow.
void ManyRecords::Place(QToolButton& back) {
    const QWidget& control = *back.parentWidget();
    const int side = control.height() - 4;
    const bool isList = qobject_cast<const QComboBox*>(&control) != nullptr;
    back.setGeometry(control.width() - (isList ? 2 : 1) * side - 2, 2, side, side);
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
    auto& back = *control.findChild<QToolButton*>(u"cmdBack"_s, Qt::FindDirectChildrenOnly);
    Place(back);
    back.setVisible(touched);
    // Where they differ an empty field stands for that, until it is meant to be empty.
    auto* text = qobject_cast<QLineEdit*>(&control);
    if (text != nullptr && !text->placeholderText().isEmpty()) {
        text->setPlaceholderText(
            Text(touched ? MResourceTable::kTextCleared : MResourceTable::kTextDifferent));
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
    if (event->type() == QEvent::Resize) {
        auto* control = static_cast<QWidget*>(watched);
        Place(*control->findChild<QToolButton*>(u"cmdBack"_s, Qt::FindDirectChildrenOnly));
    }
    if (event->type() != QEvent::KeyPress) return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_Backspace || key->modifiers() != Qt::AltModifier) return false;
    GoBack(*static_cast<QWidget*>(watched));
    return true;
}
