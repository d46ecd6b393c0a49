#include "dialogs/ManyRecords.h"

#include <algorithm>
#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>

#include "controls/KVColorSelect.h"
#include "dialogs/ColourTexts.h"
#include "dialogs/ControlContent.h"
#include "icons/Icons.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;

namespace {

const QString kWayBack = u"cmdBack"_s;
constexpr int kMargin = 2;  // pixels around the mark

/// What is typed into; null where nothing is.
QLineEdit* LineOf(QWidget& control) {
    if (auto* list = qobject_cast<QComboBox*>(&control)) return list->lineEdit();
    return qobject_cast<QLineEdit*>(&control);
}

/// Of the buttons of a choice one is always chosen, as long as that is a choice.
void SetContents(const QList<QWidget*>& controls, const QVariantList& contents) {
    const auto choose = [&](bool isChoice) {
        for (QWidget* control : controls) {
            if (auto* button = qobject_cast<QRadioButton*>(control)) {
                button->setAutoExclusive(isChoice);
            }
        }
    };
    choose(false);
    for (qsizetype i = 0; i < controls.size(); ++i) SetContent(*controls[i], contents[i]);
    choose(true);
}

}  // namespace

ManyRecords::ManyRecords(const MResources::TextTable& texts, QPushButton& ok,
                         const Captions& captions, int records, QObject* dialog)
    : QObject(dialog),
      texts_(texts),
      ok_(ok),
      okText_(ok.text()),
      captions_(captions),
      records_(records) {}

QString ManyRecords::Text(int id) const {
    return texts_.GetText(id);
}

void ManyRecords::ShowDifferent(QWidget& control) {
    const QString different = Text(MResourceTable::kTextDifferent);
    if (auto* list = qobject_cast<QComboBox*>(&control)) {
        list->setCurrentIndex(-1);
        list->setPlaceholderText(different);
    } else if (auto* color = qobject_cast<KVColorSelect*>(&control)) {
        ColorTexts words = ColourTexts(texts_);
        words.none = different;
        color->SetTexts(words);
        color->ClearColor();
    } else if (auto* check = qobject_cast<QCheckBox*>(&control)) {
        check->setTristate(true);
        check->setCheckState(Qt::PartiallyChecked);
        check->setToolTip(different);
    } else if (auto* button = qobject_cast<QRadioButton*>(&control)) {
        button->setToolTip(different);
    }
    if (QLineEdit* line = LineOf(control)) {
        line->clear();
        line->setPlaceholderText(different);
    }
}

void ManyRecords::Add(const QList<QWidget*>& controls, bool differs) {
    if (differs) {
        if (controls.size() > 1) SetContents(controls, QVariantList(controls.size(), false));
        for (QWidget* control : controls) ShowDifferent(*control);
    }
    const std::size_t field = fields_.size();
    fields_.push_back({controls, {}});
    fields_.back().contents = ContentsOf(fields_.back());
    AddWayBack(field);
    for (QWidget* control : controls) {
        fieldOf_.insert(control, field);
        Connect(*control, field);
        control->installEventFilter(this);
    }
}

QVariantList ManyRecords::ContentsOf(const Field& field) {
    QVariantList contents;
    for (const QWidget* control : field.controls) contents.append(ContentOf(*control));
    return contents;
}

void ManyRecords::Connect(QWidget& control, std::size_t field) {
    const auto changed = [this, field] { Changed(field); };
    if (QLineEdit* line = LineOf(control)) {
        // What is typed counts, even where nothing is left of it: the field has been cleared.
        connect(line, &QLineEdit::textEdited, this, [this, field] {
            fields_[field].isEdited = true;
            Changed(field);
        });
        connect(line, &QLineEdit::textChanged, this, changed);
    } else if (auto* list = qobject_cast<QComboBox*>(&control)) {
        connect(list, &QComboBox::currentIndexChanged, this, changed);
    } else if (auto* color = qobject_cast<KVColorSelect*>(&control)) {
        connect(color, &KVColorSelect::ColorChanged, this, changed);
    } else if (auto* check = qobject_cast<QCheckBox*>(&control)) {
        connect(check, &QCheckBox::stateChanged, this, changed);
    } else if (auto* button = qobject_cast<QAbstractButton*>(&control)) {
        connect(button, &QAbstractButton::toggled, this, changed);
    }
}

/// The mark of a field that has been touched; keys do what it does.
QToolButton& ManyRecords::AddWayBack(std::size_t field) {
    QWidget& control = *fields_[field].controls.back();
    auto* back = new QToolButton(&control);
    back->setObjectName(kWayBack);
    back->setIcon(icons::Icon(u"undo"));
    back->setAutoRaise(true);
    back->setFocusPolicy(Qt::NoFocus);
    back->setCursor(Qt::ArrowCursor);
    back->setToolTip(Text(MResourceTable::kTextWayBack));
    back->setAccessibleName(Text(MResourceTable::kTextWayBack));
    back->hide();
    // Beside the text of a button, not over it.
    if (qobject_cast<QCheckBox*>(&control) != nullptr ||
        qobject_cast<QRadioButton*>(&control) != nullptr) {
        const QSize size = control.sizeHint();
        control.setMinimumWidth(size.width() + size.height() + kMargin);
    }
    connect(back, &QToolButton::clicked, this, [this, field] { GoBack(field); });
    return *back;
}

QToolButton* ManyRecords::WayBackOf(const QWidget& control) {
    return control.findChild<QToolButton*>(kWayBack, Qt::FindDirectChildrenOnly);
}

/// At the right end; of a list, beside its arrow.
void ManyRecords::Place(QToolButton& back) {
    const QWidget& control = *back.parentWidget();
    const int side = control.height() - 2 * kMargin;
    const bool isList = qobject_cast<const QComboBox*>(&control) != nullptr;
    back.setGeometry(control.width() - (isList ? 2 : 1) * side - kMargin, kMargin, side, side);
}

bool ManyRecords::IsTouched(const Field& field) {
    return field.isEdited || field.contents != ContentsOf(field);
}

bool ManyRecords::IsTouched(const QWidget& control) const {
    const auto field = fieldOf_.constFind(&control);
    return field != fieldOf_.constEnd() && IsTouched(fields_[*field]);
}

void ManyRecords::GoBack(std::size_t field) {
    fields_[field].isEdited = false;
    SetContents(fields_[field].controls, fields_[field].contents);
    Changed(field);
}

void ManyRecords::Changed(std::size_t field) {
    const bool touched = IsTouched(fields_[field]);
    QWidget& last = *fields_[field].controls.back();
    QToolButton& back = *WayBackOf(last);
    Place(back);
    back.setVisible(touched);
    // Where they differ an empty field stands for that, until it is meant to be empty.
    QLineEdit* line = LineOf(last);
    if (line != nullptr && !line->placeholderText().isEmpty()) {
        line->setPlaceholderText(
            Text(touched ? MResourceTable::kTextCleared : MResourceTable::kTextDifferent));
    }
    ShowCount();
}

void ManyRecords::ShowCount() {
    const auto touched = std::count_if(fields_.begin(), fields_.end(),
                                       [](const Field& field) { return IsTouched(field); });
    const int caption = touched == 1 ? captions_.field : captions_.fields;
    ok_.setText(touched == 0 ? okText_
                             : texts_.GetText(caption, {{u"fields", QString::number(touched)},
                                                        {u"n", QString::number(records_)}}));
}

bool ManyRecords::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) {
        if (auto* back = WayBackOf(*static_cast<QWidget*>(watched))) Place(*back);
    }
    if (event->type() != QEvent::KeyPress) return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_Backspace || key->modifiers() != Qt::AltModifier) return false;
    GoBack(fieldOf_.value(watched));
    return true;
}
