#include "dialogs/ControlContent.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QColor>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include "controls/KVColorSelect.h"

QVariant ContentOf(const QWidget& control) {
    // Before the buttons, of which it is one.
    if (const auto* color = qobject_cast<const KVColorSelect*>(&control)) {
        return color->HasColor() ? QVariant(color->Color()) : QVariant();
    }
    if (const auto* text = qobject_cast<const QLineEdit*>(&control)) return text->text();
    if (const auto* list = qobject_cast<const QComboBox*>(&control)) {
        return list->isEditable() ? QVariant(list->currentText()) : list->currentIndex();
    }
    if (const auto* check = qobject_cast<const QCheckBox*>(&control);
        check && check->isTristate()) {
        return check->checkState();
    }
    if (const auto* button = qobject_cast<const QAbstractButton*>(&control)) {
        return button->isCheckable() ? QVariant(button->isChecked()) : QVariant();
    }
    if (const auto* holder = qobject_cast<const QLabel*>(&control)) return holder->text();
    return {};
}

QString ShownContentOf(const QWidget& control) {
    if (const auto* color = qobject_cast<const KVColorSelect*>(&control)) {
        if (!color->HasColor()) return {};
        const int bgr = color->Color();
        return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF).name();
    }
    if (const auto* list = qobject_cast<const QComboBox*>(&control)) return list->currentText();
    if (const auto* button = qobject_cast<const QAbstractButton*>(&control)) {
        return button->isChecked() ? QStringLiteral("\u2713") : QStringLiteral("\u2013");
    }
    return ContentOf(control).toString();
}

void SetContent(QWidget& control, const QVariant& content) {
    if (auto* color = qobject_cast<KVColorSelect*>(&control)) {
        !content.isNull() ? color->SetColor(content.toInt()) : color->ClearColor();
    } else if (auto* text = qobject_cast<QLineEdit*>(&control)) {
        text->setText(content.toString());
    } else if (auto* list = qobject_cast<QComboBox*>(&control)) {
        list->isEditable() ? list->setEditText(content.toString())
                           : list->setCurrentIndex(content.toInt());
    } else if (auto* check = qobject_cast<QCheckBox*>(&control); check && check->isTristate()) {
        check->setCheckState(static_cast<Qt::CheckState>(content.toInt()));
    } else if (auto* button = qobject_cast<QAbstractButton*>(&control)) {
        button->setChecked(content.toBool());
    } else if (auto* holder = qobject_cast<QLabel*>(&control)) {
        holder->setText(content.toString());
    }
}
