#include "dialogs/KeyFilter.h"

#include <array>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QDropEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QStringView>
#include <QToolTip>

#include "messages/PlainTexts.h"
#include "platform/Locale.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace MResources {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kBackspace = 8;
constexpr int kFloatMode = 5;

struct Rule {
    bool listed;  // passes what is listed, or what is not
    QStringView characters;
    QStringView shown;  // the characters as they are told to the user, the blank apart
};

constexpr std::array<Rule, 10> kRules = {{
    {false, u"\"#", u"\" #"},
    {false, u" \"#", u"\" #"},
    {true, u"0123456789", u"0-9"},
    {true, u"0123456789abcdef", u"0-9 a-f"},
    {true, u"+-0123456789", u"+ - 0-9"},
    {true, u"+-0123456789eE", u"+ - 0-9 e E"},
    {true, u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_1234567890", u"a-z A-Z 0-9 _"},
    {true, u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_1234567890.", u"a-z A-Z 0-9 _ ."},
    {false, u"\\/:*?\"<>| ", u"\\ / : * ? \" < > |"},
    {false, u"/*?<>|\" ", u"/ * ? < > | \""},
}};

bool IsControl(QChar c) {
    return c < u' ' || c == QChar(0x7F);
}

/// Spreadsheets put a line end behind a cell.
QString WithoutLineEnd(QString text) {
    if (text.endsWith(u'\n')) text.chop(1);
    if (text.endsWith(u'\r')) text.chop(1);
    return text;
}

/// Whether a line edit takes the key for text rather than for a command.
bool TypesText(const QKeyEvent& event) {
    if (event.text().isEmpty()) return false;
    const QChar first = event.text().front();
    if (first.category() == QChar::Other_Format) return true;
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    if (modifiers == Qt::ControlModifier ||
        modifiers == (Qt::ControlModifier | Qt::ShiftModifier)) {
        return false;
    }
    return first.isPrint() || first.category() == QChar::Other_PrivateUse;
}

/// Paste in the context menu that Qt makes for a line edit. Its entries have no names; the text is
/// Qt's own in Qt's language, with the key behind it where nothing else in the window has that.
QAction* PasteAction(const QMenu& menu) {
    const QString paste = QLineEdit::tr("&Paste");
    for (QAction* action : menu.actions()) {
        if (action->text().section(u'\t', 0, 0) == paste) return action;
    }
    return nullptr;
}

/// Watches one line edit.
/// Whatever needs no change goes on to Qt's own code, so that undo steps stay as users know them.
class InputFilter final : public QObject {
public:
    static constexpr char16_t kObjectName[] = u"KeyFilter";

    InputFilter(QLineEdit& field, int mode, const TextTable* texts)
        : QObject(&field), field_(field), mode_(mode), texts_(texts) {
        setObjectName(QStringView(kObjectName).toString());
        field.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        // Asked for in each case only: a field that is going down still gets other events.
        const auto filters = [this] { return !forwarding_ && !field_.isReadOnly(); };
        switch (event->type()) {
            case QEvent::KeyPress:
                return filters() && FilterKey(static_cast<QKeyEvent&>(*event));
            case QEvent::InputMethod:
                return filters() && FilterInputMethod(static_cast<QInputMethodEvent&>(*event));
            case QEvent::Drop:
                return filters() && FilterDrop(static_cast<QDropEvent&>(*event));
            case QEvent::MouseButtonRelease:
                return filters() && FilterClick(static_cast<QMouseEvent&>(*event));
            case QEvent::ContextMenu:
                return filters() && FilterMenu(static_cast<QContextMenuEvent&>(*event));
            default:
                return false;
        }
    }

private:
    [[nodiscard]] QString Passing(const QString& text) const {
        if (mode_ == kEveryKey) return text;
        QString passing;
        passing.reserve(text.size());
        for (const QChar c : text) {
            if (!IsControl(c) && KeyFilter(mode_, c.unicode()) != 0) passing += c;
        }
        return passing;
    }

    /// Whether the whole text can come in; else tells why not.
    bool Takes(const QString& text) {
        const qsizetype length = field_.text().size() - field_.selectedText().size() + text.size();
        if (Passing(text) != text) {
            Tell(text, KeysTold());
        } else if (length > field_.maxLength()) {
            Tell(text, Text(MResourceTable::kTextPasteTooLong,
                            {{u"max", QString::number(field_.maxLength())}}));
        } else {
            return true;
        }
        return false;
    }

    [[nodiscard]] QString Text(int id, texts::Values values = {}) const {
        return texts_ != nullptr ? texts_->GetText(id, values) : QString();
    }
    [[nodiscard]] QString KeysTold() const {
        const Rule& rule = kRules.at(static_cast<std::size_t>(mode_));
        QString keys = rule.shown.toString();
        if (mode_ == kFloatMode) keys += u' ' + QString(platform::DecimalSeparator());
        if (rule.characters.contains(u' ')) {
            keys += u' ' + Text(MResourceTable::kTextBlankKey);
        }
        const int text =
            rule.listed ? MResourceTable::kTextKeysTaken : MResourceTable::kTextKeysNotTaken;
        return Text(text, {{u"keys", keys}});
    }
    /// Over the field, where the user looks. `refused`: what was to be pasted; may be empty.
    void Tell(const QString& refused, const QString& why) const {
        if (texts_ == nullptr) return;
        constexpr qsizetype kShown = 60;  // characters
        QString text = why;
        if (!refused.isEmpty()) {
            QString begin = refused.left(kShown);
            if (begin.size() < refused.size()) begin += QChar(0x2026);
            text = Text(MResourceTable::kTextNotPasted, {{u"text", begin}}) + u' ' + why;
        }
        QToolTip::showText(field_.mapToGlobal(field_.rect().bottomLeft()), messages::TipLines(text),
                           &field_);
    }

    /// What the user brings in as a whole. True when it has been dealt with; else Qt carries the
    /// command out itself, so that undo steps stay as users know them.
    bool Bring(const QString& text) {
        const QString whole = WithoutLineEnd(text);
        if (!Takes(whole)) return true;
        if (whole == text) return false;
        field_.insert(whole);
        return true;
    }

    bool FilterKey(QKeyEvent& event) {
        bool done = false;
        if (event.matches(QKeySequence::Paste)) {
            const bool fromSelection =
                event.key() == Qt::Key_Insert &&
                event.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier);
            done = Bring(QGuiApplication::clipboard()->text(fromSelection ? QClipboard::Selection
                                                                          : QClipboard::Clipboard));
        } else if (TypesText(event) && Passing(event.text()) != event.text()) {
            Tell({}, KeysTold());
            done = true;
        }
        // A swallowed key is no shortcut of the dialog's either.
        if (done) event.accept();
        return done;
    }

    bool FilterInputMethod(QInputMethodEvent& event) {
        const QString passing = Passing(event.commitString());
        if (passing == event.commitString()) return false;
        Tell({}, KeysTold());
        QInputMethodEvent filtered(event.preeditString(), event.attributes());
        filtered.setCommitString(passing, event.replacementStart(), event.replacementLength());
        Forward(filtered);
        event.accept();
        return true;
    }

    bool FilterDrop(QDropEvent& event) {
        if (event.source() == &field_) return false;  // text moved inside brings nothing new
        const QString text = event.mimeData()->text();
        const QString whole = WithoutLineEnd(text);
        if (!Takes(whole)) {
            event.setDropAction(Qt::IgnoreAction);
            event.ignore();
            return true;
        }
        if (whole == text) return false;
        QMimeData mimeData;
        mimeData.setText(whole);
        QDropEvent cell(event.position(), event.possibleActions(), &mimeData, event.buttons(),
                        event.modifiers());
        Forward(cell);
        event.setAccepted(cell.isAccepted());
        return true;
    }

    bool FilterClick(const QMouseEvent& event) {
        QClipboard* clipboard = QGuiApplication::clipboard();
        if (event.button() != Qt::MiddleButton || !clipboard->supportsSelection()) return false;
        const QString text = clipboard->text(QClipboard::Selection);
        field_.deselect();  // it goes where the click was, and replaces nothing
        return Bring(text);
    }

    bool FilterMenu(const QContextMenuEvent& event) {
        if (field_.contextMenuPolicy() != Qt::DefaultContextMenu) return false;
        QMenu* menu = field_.createStandardContextMenu();
        menu->setAttribute(Qt::WA_DeleteOnClose);
        if (QAction* paste = PasteAction(*menu)) {
            paste->disconnect(&field_);
            connect(paste, &QAction::triggered, this, [this] {
                if (!Bring(QGuiApplication::clipboard()->text())) field_.paste();
            });
        }
        menu->popup(event.globalPos());
        return true;
    }

    void Forward(QEvent& event) {
        forwarding_ = true;
        QCoreApplication::sendEvent(&field_, &event);
        forwarding_ = false;
    }

    QLineEdit& field_;
    int mode_;
    const TextTable* texts_;
    bool forwarding_ = false;
};

QObject* FilterOf(const QLineEdit& field) {
    return field.findChild<QObject*>(QStringView(InputFilter::kObjectName).toString(),
                                     Qt::FindDirectChildrenOnly);
}

}  // namespace

int KeyFilter(int mode, int keyCode) {
    if (keyCode == kBackspace || mode < 0 || mode >= static_cast<int>(kRules.size())) {
        return keyCode;
    }
    const Rule& rule = kRules[static_cast<std::size_t>(mode)];
    const bool isUnit = keyCode >= 0 && keyCode <= 0xFFFF;
    const QChar character(static_cast<char16_t>(isUnit ? keyCode : 0));
    bool passes = rule.characters.contains(character) == rule.listed;
    if (mode == kFloatMode) passes = passes || character == platform::DecimalSeparator();
    return passes ? keyCode : 0;
}

void RestrictInput(QLineEdit& field, int mode, const TextTable* texts) {
    delete FilterOf(field);
    new InputFilter(field, mode, texts);  // the field's child
}

bool IsRestricted(const QLineEdit& field) {
    return FilterOf(field) != nullptr;
}

}  // namespace MResources
