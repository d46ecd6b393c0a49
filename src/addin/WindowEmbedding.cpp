#include "addin/WindowEmbedding.h"

#include <QApplication>

#include "messages/MessageBox.h"

namespace WindowEmbedding {

bool EmbedEditor(QWidget& editor, KV4AddIn::IHost& host) {
    QWidget* parent = host.EditorParent();
    if (parent == nullptr) return false;
    if (editor.parentWidget() != parent) editor.setParent(parent);
    return true;
}

void ReleaseEditor(QWidget& editor, QWidget* parent) {
    editor.setParent(parent);
}

QEvent::Type EditorsEvent() {
    // Registered numbers are the process's, so that one of them has to be kept for all editors.
    constexpr const char* kProperty = "KV_EDITORS";
    const QVariant known = qApp->property(kProperty);
    if (known.isValid()) return static_cast<QEvent::Type>(known.toInt());
    const int type = QEvent::registerEventType();
    qApp->setProperty(kProperty, type);
    return static_cast<QEvent::Type>(type);
}

}  // namespace WindowEmbedding

ActivationWatch::ActivationWatch(QWidget& editor) : QObject(&editor), editor_(&editor) {
    connect(qApp, &QApplication::focusChanged, this, &ActivationWatch::FocusChanged);
    editor.installEventFilter(this);
}

bool ActivationWatch::eventFilter(QObject* watched, QEvent* event) {
    // Another editor's notice is taken; there is nothing to do about it before the next activation.
    if (event->type() == WindowEmbedding::EditorsEvent()) event->accept();
    return QObject::eventFilter(watched, event);
}

// Looked at when the focus has settled: on its way between two windows nobody has it for a moment.
void ActivationWatch::FocusChanged() {
    if (settling_) return;
    settling_ = true;
    QMetaObject::invokeMethod(this, &ActivationWatch::FocusSettled, Qt::QueuedConnection);
}

void ActivationWatch::FocusSettled() {
    settling_ = false;
    if (!editor_ || messages::IsMessageOpen()) return;
    const bool active = Owns(QApplication::focusWidget());
    if (active == active_) return;
    active_ = active;
    if (active) {
        emit Activated();
    } else {
        emit Deactivated();
    }
}

/// Dialogs of the editor are windows of their own, hence not its descendants on the screen.
bool ActivationWatch::Owns(const QWidget* widget) const {
    for (; widget != nullptr; widget = widget->parentWidget()) {
        if (widget == editor_) return true;
    }
    return false;
}
