#pragma once

#include <KV4AddIn/KV4AddIn.h>

#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QWidget>

/// How the editor window becomes part of the host's window, and how the add-in learns that the
/// user has turned to it or away from it.
namespace WindowEmbedding {

/// Places the editor into the host's area for editors. False when the host has none.
[[nodiscard]] bool EmbedEditor(QWidget& editor, KV4AddIn::IHost& host);

/// Takes the editor out again, hidden; `parent` is null for a window of its own.
void ReleaseEditor(QWidget& editor, QWidget* parent);

/// Type of the event by which the studio's editors tell each other of changes ("KV_EDITORS"). The
/// same number in the whole process, whoever asks first.
[[nodiscard]] QEvent::Type EditorsEvent();

}  // namespace WindowEmbedding

/// Watches the editor window from its making to its deletion. The window is active while the
/// keyboard's focus is in it or in a window of its own above it, such as a dialog. While a message
/// box is open nothing is told: its coming and going is no turning of the user's.
class ActivationWatch final : public QObject {
    Q_OBJECT
public:
    /// `editor` is borrowed; the watch ends with it.
    explicit ActivationWatch(QWidget& editor);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void Activated();
    void Deactivated();

private:
    void FocusChanged();
    void FocusSettled();
    [[nodiscard]] bool Owns(const QWidget* widget) const;

    QPointer<QWidget> editor_;
    bool active_ = false;
    bool settling_ = false;
};
