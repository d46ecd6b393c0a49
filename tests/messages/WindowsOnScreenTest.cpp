#include "messages/WindowsOnScreen.h"

#include <gtest/gtest.h>

#include <QDialog>
#include <QMainWindow>
#include <QScreen>
#include <QTest>
#include <QVBoxLayout>

namespace {

QRect Screen() {
    return QGuiApplication::primaryScreen()->availableGeometry();
}

TEST(WindowsOnScreenTest, AWindowMadeForALargerScreenFits) {
    messages::KeepWindowsOnScreen();
    struct Case {
        const char* name;
        QRect wanted;
        bool isPlaced;
    };
    const QRect screen = Screen();
    const Case cases[] = {
        {"too large", QRect(0, 0, 4000, 3000), false},
        {"large and placed, as it was kept", QRect(40, 40, 4000, 300), true},
        {"kept on a screen that is gone", QRect(screen.right() + 500, 30, 300, 200), true},
        {"behind the upper edge", QRect(20, -400, 300, 200), true},
    };
    for (const Case& each : cases) {
        for (const bool isDialog : {false, true}) {
            SCOPED_TRACE(each.name);
            QDialog dialog;
            QMainWindow main;
            QWidget& window = isDialog ? static_cast<QWidget&>(dialog) : main;
            window.resize(each.wanted.size());
            if (each.isPlaced) window.move(each.wanted.topLeft());
            window.show();
            ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
            EXPECT_TRUE(screen.contains(window.geometry()))
                << window.x() << ", " << window.y() << ": " << window.width() << " x "
                << window.height();
        }
    }
}

TEST(WindowsOnScreenTest, AWindowThatFitsStaysAsItIs) {
    messages::KeepWindowsOnScreen();
    QMainWindow window;
    const QRect wanted(100, 120, 300, 200);
    window.setGeometry(wanted);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(window.geometry(), wanted);
}

}  // namespace
