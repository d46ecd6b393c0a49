#pragma once

#include <QObject>

class QWidget;

/// Keeps the mouse wheel from changing values in passing: a combo box or number field takes it only
/// while it has the focus, and turning the wheel over it gives it none. What lies behind scrolls
/// instead.
class WheelGuard final : public QObject {
    Q_OBJECT
public:
    /// Guards all combo boxes, number fields and sliders that `form` has now. Belongs to `form`.
    explicit WheelGuard(QWidget& form);

    bool eventFilter(QObject* watched, QEvent* event) override;
};
