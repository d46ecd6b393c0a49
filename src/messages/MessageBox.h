#pragma once

#include <functional>
#include <QString>

class QWidget;

namespace messages {

enum class MessageButtons { Ok, OkCancel, OkCancelDefaultCancel, YesNo, YesNoCancel };
enum class MessageResult : int { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

/// The picture beside the text. By default a question for what has an answer, else a warning.
enum class MessageKind { ByButtons, Information };

struct Message {
    QString text;
    MessageButtons buttons = MessageButtons::Ok;
    QString title;
    /// What a user passes on rather than reads - a number, a procedure, the cause in English. It is
    /// behind the button "Details"; without any there is no such button.
    QString details = {};
    MessageKind kind = MessageKind::ByButtons;
    /// What can be done about it at once: the caption of a further button, and what it does when
    /// the box is closed. The answer is then that of the default button. Without one: empty.
    QString actionCaption = {};
    std::function<void(QWidget* owner)> action = {};
};

/// The one message box of the program, modal over `owner` (null: the active window). Text and
/// details are shown as they stand. An empty title shows the application's name. The captions of
/// the buttons are those that the user's desktop gives them.
///
/// Where nobody can answer - on a platform without a screen, or with the environment variable
/// KV_NO_DIALOGS set - the message goes to standard error and the answer is the default button.
MessageResult ShowMessage(const Message& message, QWidget* owner = nullptr);
MessageResult ShowMessage(const QString& text, MessageButtons buttons, const QString& title,
                          QWidget* owner = nullptr);

/// True while a message is shown or its answer is asked for elsewhere. Windows come and go then
/// without the user having turned to them.
[[nodiscard]] bool IsMessageOpen();

/// Answers the message boxes of the whole process, add-ins included, while it lives; then the
/// answer that was in force before it is again. No box is shown meanwhile.
class MessageAnswer {
public:
    using Function = std::function<MessageResult(const Message&)>;

    explicit MessageAnswer(Function answer);
    ~MessageAnswer();
    MessageAnswer(const MessageAnswer&) = delete;
    MessageAnswer& operator=(const MessageAnswer&) = delete;

private:
    Function answer_;
    const Function* previous_;
};

/// The screen's pointer. It is one state, not a stack: whoever sets it last decides.
enum class Pointer : int { Default = 0, Hourglass = 11 };
void SetScreenPointer(Pointer pointer);
[[nodiscard]] Pointer ScreenPointer();

}  // namespace messages
