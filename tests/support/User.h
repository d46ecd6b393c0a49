#pragma once

#include <functional>
#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QString>

#include "support/PrintQt.h"

class QAbstractButton;
class QTableView;
class QWidget;

/// Works with the program as a person does: keys go to what has the keyboard, clicks to the middle
/// of what is on the screen. What cannot be reached that way is a failure of the test. After each
/// key and click the program does what it has put off, and the keyboard goes back to the window
/// that had it before one that has closed.
///
/// A modal dialog or a menu keeps its caller waiting; InDialog tells what is to be done in it. One
/// that nobody has told of is closed after a while and fails the test, instead of hanging it.
class User {
public:
    using Step = std::function<void(QWidget& shown)>;

    User();
    User(const User&) = delete;
    User& operator=(const User&) = delete;

    /// One key to whatever has the keyboard now; an open menu before all others.
    static void Press(Qt::Key key, Qt::KeyboardModifiers held = {});
    /// Types text, one key after another.
    static void Type(const QString& text);

    static void Click(QWidget& widget);
    static void ClickAt(QWidget& widget, QPoint place, Qt::KeyboardModifiers held = {},
                        Qt::MouseButton button = Qt::LeftButton);
    /// Chooses an entry of a menu of a menu bar; both by their object names.
    static void ChooseFromMenu(QWidget& window, const QString& menu, const QString& entry);
    /// Clicks an entry of a menu that is shown.
    static void ClickEntry(QWidget& menu, const QString& entry);
    /// Drags within a widget with the left button.
    static void Drag(QWidget& widget, QPoint from, QPoint to);

    /// Sets a control of a dialog, found by its object name: a field is typed into, a list gets
    /// the entry of this number by keys, a button is clicked. Opens the control's page first.
    static void Fill(QWidget& dialog, const QString& control, const QString& value);

    /// Runs `action`, which shows the dialog or menu `name` and returns when that is closed;
    /// `step` works in it and closes it.
    void InDialog(const QString& name, const Step& step, const std::function<void()>& action);

private:
    struct Expected {
        QString name;
        Step step;
    };

    void Watch();

    QObject context_;  // ends the watch
    QList<Expected> expected_;
    QList<QWidget*> inHand_;    // shown, and being worked in
    QElapsedTimer unexpected_;  // since when something nobody has told of is shown
};
