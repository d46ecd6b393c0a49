#include "messages/MessageBox.h"

#include <gtest/gtest.h>

#include <QApplication>

namespace {

using namespace Qt::Literals::StringLiterals;
using messages::MessageAnswer;
using messages::MessageButtons;
using messages::MessageResult;

TEST(MessageBoxTest, AnswersNestAndBoxesNeverBlockWithoutAScreen) {
    EXPECT_EQ(messages::ShowMessage(u"x"_s, MessageButtons::OkCancelDefaultCancel, u"t"_s),
              MessageResult::Cancel);
    QStringList shown;
    const MessageAnswer outer([&](const messages::Message& message) {
        shown += message.title + u": "_s + message.text;
        return MessageResult::No;
    });
    {
        const MessageAnswer inner([](const messages::Message&) { return MessageResult::Yes; });
        EXPECT_EQ(messages::ShowMessage(u"x"_s, MessageButtons::YesNo, u"t"_s), MessageResult::Yes);
    }
    EXPECT_EQ(messages::ShowMessage(u"y"_s, MessageButtons::YesNo, {}), MessageResult::No);
    EXPECT_THAT(shown, testing::ElementsAre(QCoreApplication::applicationName() + u": y"_s));
}

TEST(PointerTest, IsOneStateAndNotAStack) {
    using messages::Pointer;
    messages::SetScreenPointer(Pointer::Hourglass);
    messages::SetScreenPointer(Pointer::Hourglass);
    EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
    messages::SetScreenPointer(Pointer::Default);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    messages::SetScreenPointer(Pointer::Default);
    EXPECT_EQ(messages::ScreenPointer(), Pointer::Default);
}

}  // namespace
