#pragma once

#include <QApplication>
#include <QEvent>
#include <QProgressDialog>

/// Presses Cancel as soon as a dialog of progress is made, however fast the machine is.
class CancelsProgress final : public QObject {
public:
    CancelsProgress() { qApp->installEventFilter(this); }
    bool hasCancelled = false;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::WindowTitleChange) return false;
        if (auto* progress = qobject_cast<QProgressDialog*>(watched)) {
            progress->cancel();
            hasCancelled = true;
        }
        return false;
    }
};
