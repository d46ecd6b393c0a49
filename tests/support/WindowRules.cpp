// What every window has to keep, whichever test shows it. A program that lists this file is held to
// it: its windows are looked at when they are shown, and again when a menu of theirs is.

#include <gtest/gtest.h>

#include <map>
#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>
#include <set>

#include "support/PrintQt.h"

namespace {

using namespace Qt::Literals::StringLiterals;

/// What Alt and a letter lead to.
using Keys = std::map<QString, QString>;

/// A screen of 1024 x 600 without the frame of the window.
constexpr QSize kSmallScreen(1016, 560);
constexpr int kLabelGap = 12;  // pixels

QString NameOf(const QObject& object) {
    const QString name = object.objectName();
    return name.isEmpty() ? QString::fromLatin1(object.metaObject()->className()) : name;
}

void Add(Keys& keys, const QString& text, const QString& owner, const QString& window) {
    const QString key = QKeySequence::mnemonic(text).toString();
    if (key.isEmpty()) return;
    const auto [other, isNew] = keys.emplace(key, owner);
    EXPECT_TRUE(isNew || other->second == owner)
        << qUtf8Printable(window) << ": " << qUtf8Printable(key) << " is " << qUtf8Printable(owner)
        << " and " << qUtf8Printable(other->second);
}

/// The keys of the widgets in `parent`; of `pages` only one can be seen at a time.
void Collect(const QWidget& parent, Keys& keys, QList<QWidget*>& pages, const QString& window) {
    for (QObject* child : parent.children()) {
        auto* widget = qobject_cast<QWidget*>(child);
        if (widget == nullptr || widget->isWindow()) continue;
        const auto* stack = qobject_cast<QStackedWidget*>(widget);
        if (stack != nullptr && qobject_cast<QTabWidget*>(stack->parent()) != nullptr) {
            for (int i = 0; i < stack->count(); ++i) pages.append(stack->widget(i));
            continue;
        }
        if (widget->isHidden()) continue;
        const QString owner = NameOf(*widget);
        if (const auto* button = qobject_cast<QAbstractButton*>(widget)) {
            Add(keys, button->text(), owner, window);
        } else if (const auto* label = qobject_cast<QLabel*>(widget)) {
            if (label->buddy() != nullptr) Add(keys, label->text(), owner, window);
        } else if (const auto* box = qobject_cast<QGroupBox*>(widget)) {
            Add(keys, box->title(), owner, window);
        } else if (const auto* tabs = qobject_cast<QTabBar*>(widget)) {
            for (int i = 0; i < tabs->count(); ++i) {
                Add(keys, tabs->tabText(i), u"%1(%2)"_s.arg(owner).arg(i), window);
            }
        } else if (const auto* bar = qobject_cast<QMenuBar*>(widget)) {
            for (const QAction* action : bar->actions()) {
                if (action->isVisible()) Add(keys, action->text(), action->text(), window);
            }
        }
        Collect(*widget, keys, pages, window);
    }
}

void ExpectKeysOnce(const QWidget& window) {
    Keys keys;
    QList<QWidget*> pages;
    Collect(window, keys, pages, NameOf(window));
    for (const QWidget* page : pages) {
        Keys here = keys;
        QList<QWidget*> inner;
        Collect(*page, here, inner, NameOf(window));
    }
}

void ExpectKeysOnce(const QMenu& menu) {
    Keys keys;
    for (const QAction* action : menu.actions()) {
        if (action->isVisible()) Add(keys, action->text(), action->text(), NameOf(menu));
    }
}

/// A list of choices is called what its label says: as a name it has what is chosen.
QString SpokenName(QWidget& widget) {
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&widget);
    if (spoken == nullptr) return {};
    for (const auto& [label, relation] : spoken->relations(QAccessible::Label)) {
        if (label != nullptr) return label->text(QAccessible::Name);
    }
    if (qobject_cast<QComboBox*>(&widget) != nullptr) return {};
    return spoken->text(QAccessible::Name);
}

/// Whoever does not see the window is told what each control is.
void ExpectNames(const QWidget& window) {
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        const bool isPart = qobject_cast<QComboBox*>(widget->parentWidget()) != nullptr;
        if (!widget->isVisibleTo(&window) || widget->window() != &window || isPart) continue;
        const bool isStop = (widget->focusPolicy() & Qt::TabFocus) != 0 &&
                            widget->focusProxy() == nullptr &&
                            qobject_cast<QTabBar*>(widget) == nullptr &&
                            qobject_cast<QTabWidget*>(widget) == nullptr;
        const bool isTool = qobject_cast<QToolButton*>(widget) != nullptr &&
                            qobject_cast<QToolBar*>(widget->parentWidget()) != nullptr &&
                            !widget->objectName().startsWith(u"qt_toolbar_ext");
        if (!isStop && !isTool) continue;
        const QString name = SpokenName(*widget);
        EXPECT_FALSE(name.trimmed().isEmpty() || name.contains(u"   ") || name == u"...")
            << qUtf8Printable(NameOf(window)) << ": " << qUtf8Printable(NameOf(*widget))
            << " is called '" << qUtf8Printable(name) << "'";
    }
}

/// Fields that stand behind labels begin below each other, page by page, and not too near to them.
void ExpectOneEdge(const QWidget& window) {
    std::map<const QWidget*, int> edges;
    for (const QGridLayout* grid : window.findChildren<QGridLayout*>()) {
        for (int row = 0; row < grid->rowCount(); ++row) {
            const QLayoutItem* left = grid->itemAtPosition(row, 0);
            const QLayoutItem* right = grid->itemAtPosition(row, 1);
            if (left == nullptr || right == nullptr || left == right) continue;
            const auto* label = qobject_cast<QLabel*>(left->widget());
            if (label == nullptr || label->buddy() == nullptr || !label->isVisible()) continue;
            const QWidget* page = label;
            while (!page->isWindow() &&
                   qobject_cast<QStackedWidget*>(page->parentWidget()) == nullptr) {
                page = page->parentWidget();
            }
            const QWidget* holder = grid->parentWidget();
            const int edge = holder->mapTo(page, right->geometry().topLeft()).x();
            const int text = holder->mapTo(page, left->geometry().topLeft()).x() +
                             label->sizeHint().width() - label->contentsMargins().right();
            EXPECT_GE(edge - text, kLabelGap)
                << qUtf8Printable(NameOf(window)) << ": " << qUtf8Printable(NameOf(*label));
            EXPECT_EQ(edges.emplace(page, edge).first->second, edge)
                << qUtf8Printable(NameOf(window)) << ": " << qUtf8Printable(NameOf(*label));
        }
    }
}

void ExpectFitsSmallScreen(const QWidget& window) {
    const QSize least = window.minimumSizeHint().expandedTo(window.minimumSize());
    EXPECT_TRUE(least.width() <= kSmallScreen.width() && least.height() <= kSmallScreen.height())
        << qUtf8Printable(NameOf(window)) << " needs " << least.width() << " x " << least.height();
}

class WindowRules final : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Show || !watched->isWidgetType()) return false;
        auto* widget = static_cast<QWidget*>(watched);
        if (!widget->isWindow()) return false;
        // When its maker has finished with it.
        QMetaObject::invokeMethod(
            widget, [widget = QPointer<QWidget>(widget)] { Look(widget); }, Qt::QueuedConnection);
        return false;
    }

private:
    static void Look(QWidget* widget) {
        if (widget == nullptr || !widget->isVisible()) return;
        if (const auto* menu = qobject_cast<QMenu*>(widget)) {
            ExpectKeysOnce(*menu);
            if (menu->parentWidget() != nullptr) ExpectKeysOnce(*menu->parentWidget()->window());
            return;
        }
        // Others are Qt's own, or parts of a test.
        const bool isOurs =
            widget->objectName().startsWith(u"frm") || widget->metaObject()->className()[0] == 'F';
        if (!isOurs) return;
        ExpectKeysOnce(*widget);
        ExpectNames(*widget);
        ExpectOneEdge(*widget);
        ExpectFitsSmallScreen(*widget);
    }
};

void HoldWindowsToRules() {
    qApp->installEventFilter(new WindowRules(qApp));
}

}  // namespace

Q_COREAPP_STARTUP_FUNCTION(HoldWindowsToRules)
