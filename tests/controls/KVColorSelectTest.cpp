#include "controls/KVColorSelect.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QColorDialog>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QToolButton>

namespace {

using namespace Qt::Literals::StringLiterals;

ColorTexts Texts() {
    return {
        .choose = u"Choose color"_s,
        .recent = u"Recent"_s,
        .more = u"&More"_s,
        .none = u"no color"_s,
        .system = u"System color"_s,
        .parts = u"red <r>, green <g>, blue <b>"_s,
        .hues = {u"Red"_s, u"Orange"_s, u"Yellow"_s, u"Green"_s, u"Cyan"_s, u"Blue"_s, u"Violet"_s},
        .tints = {u"<hue> (light)"_s, u"<hue> (dark)"_s, u"<hue> (very dark)"_s},
        .greys = {u"White"_s, u"Light grey"_s, u"Dark grey"_s, u"Black"_s}};
}

class KVColorSelectTest : public testing::Test {
protected:
    KVColorSelectTest() {
        qApp->setProperty("KVRecentColors", QVariant());
        selector_.SetTexts(Texts());
        selector_.show();
    }
    static QWidget* Popup() { return QApplication::activePopupWidget(); }
    static QString FocusedName() {
        QWidget* focused = Popup()->focusWidget();
        return focused == nullptr ? QString() : focused->accessibleName();
    }

    KVColorSelect selector_;
};

// The numbers are stored by other programs too: they come back bit by bit, and are shown with red
// in the lowest byte.
TEST_F(KVColorSelectTest, KeepsEveryStoredNumberAndShowsIt) {
    selector_.setPalette(QPalette(Qt::darkGray));
    const QPalette palette = selector_.palette();
    const struct {
        int stored;
        QColor shown;
        QString text;
    } cases[] = {
        {0x000000FF, QColor(255, 0, 0), u"#FF0000"_s},
        {0x00FF0000, QColor(0, 0, 255), u"#0000FF"_s},
        {0x00332211, QColor(0x11, 0x22, 0x33), u"#112233"_s},
        {0x02332211, QColor(0x11, 0x22, 0x33), u"#112233"_s},
        {0x7FFFFFFF, QColor(255, 255, 255), u"#FFFFFF"_s},
        {static_cast<int>(0x80000005), palette.color(QPalette::Base), u"System color"_s},
        {static_cast<int>(0x8000000F), palette.color(QPalette::Button), u"System color"_s},
        {-1, palette.color(QPalette::Button), u"System color"_s},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.stored);
        selector_.setProperty("Color", each.stored);
        EXPECT_EQ(selector_.property("Color").toInt(), each.stored);
        EXPECT_EQ(selector_.ShownColor().rgb(), each.shown.rgb());
        EXPECT_EQ(selector_.text(), each.text);
        QTest::keyClick(&selector_, Qt::Key_Space);
        ASSERT_NE(Popup(), nullptr);
        QTest::keyClick(Popup()->focusWidget(), Qt::Key_Escape);
        EXPECT_EQ(Popup(), nullptr);
        EXPECT_EQ(selector_.Color(), each.stored) << "looking is not picking";
    }
    selector_.ClearColor();
    EXPECT_FALSE(selector_.HasColor());
    EXPECT_EQ(selector_.text(), u"no color");
}

TEST_F(KVColorSelectTest, PicksByKeyboard) {
    selector_.SetColor(0x0000FF);  // red, in the second row
    QSignalSpy changes(&selector_, &KVColorSelect::ColorChanged);
    const struct {
        Qt::Key open;
        QList<Qt::Key> way;
        QString name;
        int picked;
    } cases[] = {
        {Qt::Key_Space, {Qt::Key_Right}, u"Orange, red 255, green 165, blue 0"_s, 0x00A5FF},
        {Qt::Key_Down, {Qt::Key_Up}, u"Orange (light), red 255, green 210, blue 140"_s, 0x8CD2FF},
        {Qt::Key_F4,
         {Qt::Key_Left, Qt::Key_Left},
         u"White, red 255, green 255, blue 255"_s,
         0xFFFFFF},
        {Qt::Key_Return,
         {Qt::Key_Left, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down},
         u"Black, red 0, green 0, blue 0"_s,
         0},
        // The row of recent colours, the newest in front.
        {Qt::Key_Space,
         {Qt::Key_Down, Qt::Key_Right},
         u"White, red 255, green 255, blue 255"_s,
         0xFFFFFF},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name.toStdString());
        QTest::keyClick(&selector_, each.open);
        ASSERT_NE(Popup(), nullptr);
        for (const Qt::Key key : each.way) QTest::keyClick(Popup()->focusWidget(), key);
        EXPECT_EQ(FocusedName(), each.name);
        QTest::keyClick(Popup()->focusWidget(), Qt::Key_Return);
        EXPECT_EQ(Popup(), nullptr);
        EXPECT_EQ(selector_.Color(), each.picked);
        EXPECT_TRUE(selector_.accessibleDescription() == each.name);
    }
    EXPECT_EQ(changes.size(), std::ssize(cases));
}

TEST_F(KVColorSelectTest, PicksByMouseAndRemembersForTheOtherSelectors) {
    selector_.ClearColor();
    QTest::mouseClick(&selector_, Qt::LeftButton);
    ASSERT_NE(Popup(), nullptr);
    QTest::mouseClick(Popup()->findChild<QToolButton*>(u"cmdColor(13)"_s), Qt::LeftButton);
    EXPECT_TRUE(selector_.HasColor());
    EXPECT_EQ(selector_.Color(), 0xFFFF00);

    KVColorSelect other;
    other.SetTexts(Texts());
    other.show();
    QTest::mouseClick(&other, Qt::LeftButton);
    const auto* recent = Popup()->findChild<QToolButton*>(u"cmdColor(32)"_s);
    ASSERT_NE(recent, nullptr);
    EXPECT_EQ(recent->accessibleName(), u"Cyan, red 0, green 255, blue 255");
    Popup()->close();

    other.move(0, other.screen()->availableGeometry().bottom() - other.height());
    for (int field = 0; field <= KVColorSelect::kRecentColors; ++field) {
        QTest::mouseClick(&other, Qt::LeftButton);
        ASSERT_NE(Popup(), nullptr);
        EXPECT_LT(Popup()->y(), other.y()) << "there is no room below";
        QTest::mouseClick(Popup()->findChild<QToolButton*>(u"cmdColor(%1)"_s.arg(field)),
                          Qt::LeftButton);
    }
    EXPECT_EQ(qApp->property("KVRecentColors").toList().size(), KVColorSelect::kRecentColors);
}

TEST_F(KVColorSelectTest, OffersAllColorsInTheDialog) {
    selector_.SetColor(static_cast<int>(0x80000005));
    const auto answer = [&](bool accept) {
        QTest::keyClick(&selector_, Qt::Key_Space);
        QTimer waiting;
        QObject::connect(&waiting, &QTimer::timeout, [&] {
            auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr) return;
            waiting.stop();
            EXPECT_EQ(dialog->windowTitle(), u"Choose color");
            dialog->setCurrentColor(QColor(1, 2, 3));
            accept ? dialog->accept() : dialog->reject();
        });
        waiting.start(1);
        QTest::mouseClick(Popup()->findChild<QWidget*>(u"cmdMoreColors"_s), Qt::LeftButton);
        QCoreApplication::processEvents();
    };
    const QSignalSpy ended(&selector_, &KVColorSelect::ChoiceEnded);
    answer(false);
    EXPECT_EQ(selector_.Color(), static_cast<int>(0x80000005));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(ended.size(), 1) << "with the dialog, not with the palette that opened it";
    answer(true);
    EXPECT_EQ(selector_.Color(), 0x030201);
}

}  // namespace
