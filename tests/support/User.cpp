#include "support/User.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <tuple>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QProgressDialog>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QWindow>

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kWatchMs = 5;
constexpr int kPatienceMs = 15000;  // builds with sanitizers on a busy machine

QWidget* InFront() {
    QWidget* popup = QApplication::activePopupWidget();
    return popup != nullptr ? popup : QApplication::activeModalWidget();
}

/// The windows that have had the keyboard, the last one at the end.
QList<QPointer<QWindow>>& Used() {
    static QList<QPointer<QWindow>> used;
    return used;
}

void NoteKeyboard(QWindow* window) {
    if (window == nullptr) return;
    Used().removeIf([window](const QPointer<QWindow>& each) { return !each || each == window; });
    Used().append(window);
}

QWidget* Keyboard() {
    if (QWidget* popup = QApplication::activePopupWidget()) return popup;
    QWidget* window = QApplication::activeWindow();
    if (window == nullptr || !window->isVisible()) return nullptr;
    QWidget* focus = QApplication::focusWidget();
    return focus != nullptr ? focus : window;
}

/// A window manager gives the keyboard back to the window behind one that closes; without one
/// nobody does. Any command may have shown such a window, if only its progress on a slow machine.
void GiveKeyboardBack() {
    if (Keyboard() != nullptr) return;
    const auto& used = Used();
    const auto behind = std::find_if(used.rbegin(), used.rend(), [](const QPointer<QWindow>& each) {
        return each && each->isVisible();
    });
    if (behind == used.rend()) return;
    (*behind)->requestActivate();
    std::ignore = QTest::qWaitFor([] { return Keyboard() != nullptr; }, kPatienceMs);
}

/// After each key and click the program does what it has put off.
void Settle() {
    QCoreApplication::processEvents();
    GiveKeyboardBack();
}

/// Brings the page of a control to the front with the mouse.
void OpenPage(QWidget& control) {
    for (QWidget* page = &control; page != nullptr; page = page->parentWidget()) {
        auto* stack = page->parentWidget();
        auto* tabs = stack != nullptr ? qobject_cast<QTabWidget*>(stack->parentWidget()) : nullptr;
        if (tabs == nullptr || tabs->indexOf(page) < 0) continue;
        QTabBar* bar = tabs->tabBar();
        User::ClickAt(*bar, bar->tabRect(tabs->indexOf(page)).center());
        ASSERT_EQ(tabs->currentWidget(), page);
    }
}

void FillText(QLineEdit& field, const QString& text) {
    User::Click(field);
    ASSERT_TRUE(field.hasFocus()) << qUtf8Printable(field.objectName());
    User::Press(Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty()) User::Press(Qt::Key_Delete);
    User::Type(text);
    EXPECT_EQ(field.text(), text) << qUtf8Printable(field.objectName());
}

void ChooseEntry(QComboBox& list, int entry) {
    list.setFocus(Qt::TabFocusReason);
    if (list.currentIndex() < 0) User::Press(Qt::Key_Down);
    while (list.currentIndex() > entry) User::Press(Qt::Key_Up);
    while (list.currentIndex() < qMin(entry, list.count() - 1)) User::Press(Qt::Key_Down);
    EXPECT_EQ(list.currentIndex(), entry) << qUtf8Printable(list.objectName());
}

}  // namespace

User::User() {
    NoteKeyboard(QGuiApplication::focusWindow());
    QObject::connect(qGuiApp, &QGuiApplication::focusWindowChanged, &context_, &NoteKeyboard);
    QTimer::singleShot(kWatchMs, &context_, [this] { Watch(); });
}

void User::Press(Qt::Key key, Qt::KeyboardModifiers held) {
    QWidget* keyboard = Keyboard();
    ASSERT_NE(keyboard, nullptr) << "nothing has the keyboard";
    QTest::keyClick(keyboard, key, held);
    Settle();
}

void User::Type(const QString& text) {
    for (const QChar letter : text) {
        QWidget* keyboard = Keyboard();
        ASSERT_NE(keyboard, nullptr) << "nothing has the keyboard";
        // Qt numbers the keys of letters as Unicode does the capitals.
        const auto key = static_cast<Qt::Key>(letter.toUpper().unicode());
        QTest::sendKeyEvent(QTest::Click, keyboard, key, QString(letter), Qt::NoModifier);
        Settle();
    }
}

void User::Click(QWidget& widget) {
    ASSERT_TRUE(widget.isVisible()) << qUtf8Printable(widget.objectName());
    ASSERT_TRUE(widget.isEnabled()) << qUtf8Printable(widget.objectName());
    // Check boxes and options answer on their mark and text only.
    const bool isButton = qobject_cast<QAbstractButton*>(&widget) != nullptr;
    const QPoint left(qMin(10, widget.width() / 2), widget.height() / 2);
    ClickAt(widget, isButton ? left : widget.rect().center());
}

void User::ClickAt(QWidget& widget, QPoint place, Qt::KeyboardModifiers held,
                   Qt::MouseButton button) {
    QTest::mouseClick(&widget, button, held, place);
    Settle();
}

void User::ChooseFromMenu(QWidget& window, const QString& menu, const QString& entry) {
    auto* found = window.findChild<QMenu*>(menu);
    ASSERT_NE(found, nullptr) << qUtf8Printable(menu);
    auto* bar = qobject_cast<QMenuBar*>(found->parentWidget());
    ASSERT_NE(bar, nullptr) << qUtf8Printable(menu);
    ClickAt(*bar, bar->actionGeometry(found->menuAction()).center());
    ASSERT_TRUE(found->isVisible()) << qUtf8Printable(menu);
    ClickEntry(*found, entry);
}

void User::ClickEntry(QWidget& menu, const QString& entry) {
    auto* shown = qobject_cast<QMenu*>(&menu);
    ASSERT_NE(shown, nullptr);
    for (QAction* action : shown->actions()) {
        if (action->objectName() != entry) continue;
        ASSERT_TRUE(action->isVisible() && action->isEnabled()) << qUtf8Printable(entry);
        ClickAt(*shown, shown->actionGeometry(action).center());
        return;
    }
    FAIL() << qUtf8Printable(entry) << " is not in the menu";
}

void User::Drag(QWidget& widget, QPoint from, QPoint to) {
    QTest::mousePress(&widget, Qt::LeftButton, {}, from);
    QTest::mouseMove(&widget, (from + to) / 2);
    QTest::mouseMove(&widget, to);
    QTest::mouseRelease(&widget, Qt::LeftButton, {}, to);
    Settle();
}

void User::Fill(QWidget& dialog, const QString& control, const QString& value) {
    auto* found = dialog.findChild<QWidget*>(control);
    ASSERT_NE(found, nullptr) << qUtf8Printable(control);
    OpenPage(*found);
    ASSERT_TRUE(found->isEnabled()) << qUtf8Printable(control) << " cannot be used";
    if (auto* field = qobject_cast<QLineEdit*>(found)) return FillText(*field, value);
    auto* list = qobject_cast<QComboBox*>(found);
    if (list == nullptr) return Click(*found);
    if (list->isEditable()) return FillText(*list->lineEdit(), value);
    ChooseEntry(*list, value.toInt());
}

void User::InDialog(const QString& name, const Step& step, const std::function<void()>& action) {
    const auto waiting = expected_.size();
    expected_.append({name, step});
    action();
    Settle();
    if (expected_.size() == waiting) return;
    ADD_FAILURE() << qUtf8Printable(name) << " has not been shown";
    expected_.removeLast();
}

// A timer for each look: one that repeats would not run in the dialog that it has led to.
void User::Watch() {
    QTimer::singleShot(kWatchMs, &context_, [this] { Watch(); });
    const QPointer<QWidget> front = InFront();
    // A dialog that counts rows comes and goes by itself.
    if (front == nullptr || inHand_.contains(front) || !front->isVisible() ||
        qobject_cast<QProgressDialog*>(front) != nullptr) {
        unexpected_.invalidate();
        return;
    }
    const bool hasKeyboard = front == QApplication::activePopupWidget() || front->isActiveWindow();
    if (expected_.isEmpty() || expected_.last().name != front->objectName() || !hasKeyboard) {
        if (!unexpected_.isValid()) unexpected_.start();
        if (unexpected_.elapsed() < kPatienceMs) return;
        ADD_FAILURE() << "nobody has told of " << qUtf8Printable(front->objectName());
        front->close();
        return;
    }
    unexpected_.invalidate();
    const Expected expected = expected_.takeLast();
    inHand_.append(front);
    expected.step(*front);
    inHand_.removeAll(front);
    if (front == nullptr || !front->isVisible()) return;
    ADD_FAILURE() << qUtf8Printable(expected.name) << " is still shown";
    front->close();
}
