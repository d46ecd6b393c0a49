#include "platform/MessageBox.h"

#include <cstdio>
#include <QApplication>
#include <QMessageBox>
#include <QScopeGuard>

#include "platform/detail/ProcessHook.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

// Kept with the application: the host and each add-in have a copy of this library.
constexpr const char* kHourglassShown = "korvalaHourglassShown";
constexpr const char* kMessagesOpen = "korvalaMessagesOpen";

ProcessHook<MessageResult(const Message&)> AnswerHook() {
    return ProcessHook<MessageResult(const Message&)>("korvalaMessageAnswer");
}

struct ButtonSet {
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton preset;
    MessageResult presetResult;
};

ButtonSet ButtonsOf(MessageButtons buttons) {
    switch (buttons) {
        case MessageButtons::OkCancel:
            return {QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok, MessageResult::Ok};
        case MessageButtons::OkCancelDefaultCancel:
            return {QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel,
                    MessageResult::Cancel};
        case MessageButtons::YesNo:
            return {QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, MessageResult::Yes};
        case MessageButtons::YesNoCancel:
            return {QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes,
                    MessageResult::Yes};
        case MessageButtons::Ok:
            break;
    }
    return {QMessageBox::Ok, QMessageBox::Ok, MessageResult::Ok};
}

MessageResult ResultOf(int button) {
    switch (button) {
        case QMessageBox::Cancel:
            return MessageResult::Cancel;
        case QMessageBox::Yes:
            return MessageResult::Yes;
        case QMessageBox::No:
            return MessageResult::No;
        default:
            return MessageResult::Ok;
    }
}

void CountOpenMessages(int change) {
    if (qApp != nullptr) {
        qApp->setProperty(kMessagesOpen, qApp->property(kMessagesOpen).toInt() + change);
    }
}

bool NobodyCanAnswer() {
    if (qEnvironmentVariableIsSet("KV_NO_DIALOGS")) return true;
    const QString screen = QGuiApplication::platformName();
    return screen == u"offscreen"_s || screen == u"minimal"_s || screen.isEmpty();
}

}  // namespace

MessageResult ShowMessage(const QString& text, MessageButtons buttons, const QString& title,
                          QWidget* owner) {
    const QString shownTitle = title.isEmpty() ? QCoreApplication::applicationName() : title;
    CountOpenMessages(+1);
    const auto closed = qScopeGuard([] { CountOpenMessages(-1); });
    if (const auto* answer = AnswerHook().Get()) return (*answer)({text, buttons, shownTitle});

    const ButtonSet set = ButtonsOf(buttons);
    if (NobodyCanAnswer()) {
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(shownTitle), qUtf8Printable(text));
        return set.presetResult;
    }
    QMessageBox box(buttons == MessageButtons::Ok ? QMessageBox::Warning : QMessageBox::Question,
                    shownTitle, text, set.buttons,
                    owner != nullptr ? owner : QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);  // file names may look like markup
    box.setDefaultButton(set.preset);
    // The box is worked with an ordinary pointer even while the program is busy.
    const Pointer pointer = ScreenPointer();
    SetScreenPointer(Pointer::Default);
    const int button = box.exec();
    SetScreenPointer(pointer);
    return ResultOf(button);
}

bool IsMessageOpen() {
    return qApp != nullptr && qApp->property(kMessagesOpen).toInt() > 0;
}

MessageAnswer::MessageAnswer(Function answer)
    : answer_(std::move(answer)), previous_(AnswerHook().Get()) {
    AnswerHook().Set(&answer_);
}

MessageAnswer::~MessageAnswer() {
    AnswerHook().Set(previous_);
}

void SetScreenPointer(Pointer pointer) {
    if (pointer == ScreenPointer()) return;
    if (pointer == Pointer::Hourglass) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
        QGuiApplication::restoreOverrideCursor();
    }
    qApp->setProperty(kHourglassShown, pointer == Pointer::Hourglass);
}

Pointer ScreenPointer() {
    return qApp->property(kHourglassShown).toBool() ? Pointer::Hourglass : Pointer::Default;
}

}  // namespace platform
