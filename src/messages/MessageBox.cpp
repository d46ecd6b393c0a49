#include "messages/MessageBox.h"

#include <cstdio>
#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QScopeGuard>

#include "platform/ProcessHook.h"

namespace messages {
namespace {

using namespace Qt::Literals::StringLiterals;

// Kept with the application: the host and each add-in have a copy of this library.
constexpr const char* kHourglassShown = "korvalaHourglassShown";
constexpr const char* kMessagesOpen = "korvalaMessagesOpen";

platform::ProcessHook<MessageResult(const Message&)> AnswerHook() {
    return platform::ProcessHook<MessageResult(const Message&)>("korvalaMessageAnswer");
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

QMessageBox::Icon IconOf(const Message& message) {
    if (message.kind == MessageKind::Information) return QMessageBox::Information;
    return message.buttons == MessageButtons::Ok ? QMessageBox::Warning : QMessageBox::Question;
}

void Print(const Message& message) {
    std::fprintf(stderr, "%s: %s\n", qUtf8Printable(message.title), qUtf8Printable(message.text));
    if (!message.details.isEmpty()) std::fprintf(stderr, "%s\n", qUtf8Printable(message.details));
}

MessageResult Ask(const Message& message, QWidget* owner) {
    const ButtonSet set = ButtonsOf(message.buttons);
    QMessageBox box(IconOf(message), message.title, message.text, set.buttons,
                    owner != nullptr ? owner : QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);  // file names may look like markup
    box.setDefaultButton(set.preset);
    box.setDetailedText(message.details);
    const QAbstractButton* action = nullptr;
    if (message.action) action = box.addButton(message.actionCaption, QMessageBox::ActionRole);
    // The box is worked with an ordinary pointer even while the program is busy.
    const Pointer pointer = ScreenPointer();
    SetScreenPointer(Pointer::Default);
    const int button = box.exec();
    SetScreenPointer(pointer);
    if (action == nullptr || box.clickedButton() != action) return ResultOf(button);
    message.action(owner);
    return set.presetResult;
}

}  // namespace

MessageResult ShowMessage(const QString& text, MessageButtons buttons, const QString& title,
                          QWidget* owner) {
    return ShowMessage(Message{text, buttons, title}, owner);
}

MessageResult ShowMessage(const Message& message, QWidget* owner) {
    Message shown = message;
    if (shown.title.isEmpty()) shown.title = QCoreApplication::applicationName();
    CountOpenMessages(+1);
    const auto closed = qScopeGuard([] { CountOpenMessages(-1); });
    if (const auto* answer = AnswerHook().Get()) return (*answer)(shown);
    if (NobodyCanAnswer()) {
        Print(shown);
        return ButtonsOf(shown.buttons).presetResult;
    }
    return Ask(shown, owner);
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

}  // namespace messages
