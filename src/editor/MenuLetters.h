#pragma once

#include <QList>
#include <QPointer>
#include <QString>

class QAction;
class QMenu;

/// While it lives no letter means two things in a menu: of entries that share one the first keeps
/// it. The actions, which stand in other menus too, have their own texts back afterwards.
class MenuLetters {
public:
    explicit MenuLetters(const QMenu& menu);
    ~MenuLetters();
    MenuLetters(const MenuLetters&) = delete;
    MenuLetters& operator=(const MenuLetters&) = delete;

private:
    struct Changed {
        QPointer<QAction> action;
        QString own;
        QString shown;
    };
    QList<Changed> changed_;
};
