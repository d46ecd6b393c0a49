#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>

class QAction;
class QMainWindow;
class QMenu;
class QMenuBar;

namespace studio {

/// Keys that the window and an editor inside it both have in their menus are those of the one that
/// has the keyboard: a letter that Alt opens a menu with in both opens that one's, and a menu shows
/// no key that does something else where the keyboard is.
class MenuKeys final : public QObject {
public:
    /// `window` is borrowed, has its menu bar already and outlives the object.
    explicit MenuKeys(QMainWindow& window);

    /// The menus, their texts or the editors are others.
    void Update();
    /// From now on the menu hides keys that the keyboard's owner has taken, while it is shown.
    void Watch(QMenu& menu);

private:
    /// An action whose text the keys have changed.
    struct Changed {
        QPointer<QAction> action;
        QString own;
        QString shown;
    };

    void FocusChanged(QWidget* now);
    [[nodiscard]] QMenuBar* BarWithKeyboard() const;
    void HideTakenKeys(const QMenu& menu);
    static void Show(QList<Changed>& changed, QAction& action, const QString& text);
    static void Restore(QList<Changed>& changed);

    QMainWindow& window_;
    QPointer<QWidget> keyboard_;  // that has it, or had it before a menu was opened
    QList<Changed> letters_;
    QList<Changed> shortcuts_;
};

}  // namespace studio
