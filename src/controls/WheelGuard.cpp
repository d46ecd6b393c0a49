#include "controls/WheelGuard.h"

#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>
#include <QScrollBar>

WheelGuard::WheelGuard(QWidget& form) : QObject(&form) {
    const QList<QWidget*> widgets = form.findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        const bool slider = qobject_cast<QAbstractSlider*>(widget) != nullptr &&
                            qobject_cast<QScrollBar*>(widget) == nullptr;
        if (!slider && qobject_cast<QComboBox*>(widget) == nullptr &&
            qobject_cast<QAbstractSpinBox*>(widget) == nullptr) {
            continue;
        }
        if (widget->focusPolicy() == Qt::WheelFocus) widget->setFocusPolicy(Qt::StrongFocus);
        widget->installEventFilter(this);
    }
}

bool WheelGuard::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Wheel) return false;
    const auto* widget = static_cast<QWidget*>(watched);
    if (widget->hasFocus()) return false;
    event->ignore();  // so that it goes on to the parent
    return true;
}
