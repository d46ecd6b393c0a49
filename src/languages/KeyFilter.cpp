#include "languages/KeyFilter.h"

#include <array>
#include <QClipboard>
#include <QComboBox>
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

#include "platform/Locale.h"

namespace MResources {
namespace {

constexpr int kBackspace = 8;
constexpr int kFloatMode = 5;

struct Rule {
    bool listed;  // passes what is listed, or what is not
    QStringView characters;
};

constexpr std::array<Rule, 10> kRules = {{
    {false, u"\"#"},
    {false, u" \"#"},
    {true, u"0123456789"},
    {true, u"0123456789abcdef"},
    {true, u"+-0123456789"},
    {true, u"+-0123456789eE"},
    {true, u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_1234567890"},
    {true, u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_1234567890."},
    {false, u"\\/:*?\"<>| "},
    {false, u"/*?<>|\" "},
}};

bool IsControl(QChar c) {
    return c < u' ' || c == QChar(0x7F);
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

/// Paste in the context menu that Qt makes for a line edit. Its entries have neither names nor
/// texts that can be relied on, but an order: Undo, Redo, Cut, Copy, Paste.
QAction* PasteAction(const QMenu& menu) {
    constexpr int kPosition = 4;
    int position = 0;
    for (QAction* action : menu.actions()) {
        if (!action->isSeparator() && position++ == kPosition) return action;
    }
    return nullptr;
}

/// Watches one line edit, and the combo box around it, which hands keys to its line edit directly.
/// Whatever needs no change goes on to Qt's own code, so that undo steps stay as users know them.
class InputFilter final : public QObject {
public:
    static constexpr char16_t kObjectName[] = u"KeyFilter";

    InputFilter(QLineEdit& field, QWidget* around, int mode)
        : QObject(&field), field_(field), mode_(mode) {
        setObjectName(QStringView(kObjectName).toString());
        field.installEventFilter(this);
        if (around != nullptr) around->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        // Asked for in each case only: a field that is going down still gets other events.
        const auto filters = [this] { return !forwarding_ && !field_.isReadOnly(); };
        switch (event->type()) {
            case QEvent::KeyPress:
                return filters() && FilterKey(static_cast<QKeyEvent&>(*event));
            case QEvent::InputMethod:
                return filters() &&
                       FilterInputMethod(*watched, static_cast<QInputMethodEvent&>(*event));
            case QEvent::Drop:
                return filters() && FilterDrop(*watched, static_cast<QDropEvent&>(*event));
            case QEvent::MouseButtonRelease:
                return filters() && watched == &field_ &&
                       FilterClick(static_cast<QMouseEvent&>(*event));
            case QEvent::ContextMenu:
                return filters() && FilterMenu(*watched, static_cast<QContextMenuEvent&>(*event));
            default:
                return false;
        }
    }

private:
    [[nodiscard]] QString Passing(const QString& text) const {
        QString passing;
        passing.reserve(text.size());
        for (const QChar c : text) {
            if (!IsControl(c) && KeyFilter(mode_, c.unicode()) != 0) passing += c;
        }
        return passing;
    }

    /// What the user brings in by other means than his clipboard command, which Qt carries out
    /// itself when nothing is to be held back. True when it has been dealt with.
    bool Insert(const QString& text) {
        const QString passing = Passing(text);
        if (passing == text) return false;
        if (!passing.isEmpty()) field_.insert(passing);
        return true;
    }

    bool FilterKey(QKeyEvent& event) {
        bool done = false;
        if (event.matches(QKeySequence::Paste)) {
            const bool fromSelection =
                event.key() == Qt::Key_Insert &&
                event.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier);
            done = Insert(QGuiApplication::clipboard()->text(
                fromSelection ? QClipboard::Selection : QClipboard::Clipboard));
        } else if (TypesText(event)) {
            done = Insert(event.text());
        }
        // A swallowed key is no shortcut of the dialog's either.
        if (done) event.accept();
        return done;
    }

    bool FilterInputMethod(QObject& watched, QInputMethodEvent& event) {
        const QString passing = Passing(event.commitString());
        if (passing == event.commitString()) return false;
        QInputMethodEvent filtered(event.preeditString(), event.attributes());
        filtered.setCommitString(passing, event.replacementStart(), event.replacementLength());
        Forward(watched, filtered);
        event.accept();
        return true;
    }

    bool FilterDrop(QObject& watched, QDropEvent& event) {
        if (event.source() == &field_) return false;  // text moved inside brings nothing new
        const QString text = event.mimeData()->text();
        const QString passing = Passing(text);
        if (passing == text) return false;
        if (passing.isEmpty()) {
            event.setDropAction(Qt::IgnoreAction);
            event.ignore();
            return true;
        }
        // Where the rest would be lost, the source keeps its text.
        if (event.possibleActions().testFlag(Qt::CopyAction)) event.setDropAction(Qt::CopyAction);
        QMimeData mimeData;
        mimeData.setText(passing);
        QDropEvent filtered(event.position(), event.possibleActions(), &mimeData, event.buttons(),
                            event.modifiers());
        Forward(watched, filtered);
        event.setAccepted(filtered.isAccepted());
        return true;
    }

    bool FilterClick(const QMouseEvent& event) {
        QClipboard* clipboard = QGuiApplication::clipboard();
        if (event.button() != Qt::MiddleButton || !clipboard->supportsSelection()) return false;
        const QString text = clipboard->text(QClipboard::Selection);
        if (Passing(text) == text) return false;
        field_.deselect();
        return Insert(text);
    }

    bool FilterMenu(QObject& watched, const QContextMenuEvent& event) {
        const auto& widget = static_cast<const QWidget&>(watched);
        if (widget.contextMenuPolicy() != Qt::DefaultContextMenu) return false;
        QMenu* menu = field_.createStandardContextMenu();
        menu->setAttribute(Qt::WA_DeleteOnClose);
        if (QAction* paste = PasteAction(*menu)) {
            paste->disconnect(&field_);
            connect(paste, &QAction::triggered, this, [this] {
                if (!Insert(QGuiApplication::clipboard()->text())) field_.paste();
            });
        }
        menu->popup(event.globalPos());
        return true;
    }

    void Forward(QObject& watched, QEvent& event) {
        forwarding_ = true;
        QCoreApplication::sendEvent(&watched, &event);
        forwarding_ = false;
    }

    QLineEdit& field_;
    int mode_;
    bool forwarding_ = false;
};

void Install(QLineEdit& field, QWidget* around, int mode) {
    delete field.findChild<QObject*>(QStringView(InputFilter::kObjectName).toString(),
                                     Qt::FindDirectChildrenOnly);
    new InputFilter(field, around, mode);  // the field's child
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

void RestrictInput(QLineEdit& field, int mode) {
    Install(field, nullptr, mode);
}

void RestrictInput(QComboBox& field, int mode) {
    Q_ASSERT(field.lineEdit() != nullptr);
    if (field.lineEdit() != nullptr) Install(*field.lineEdit(), &field, mode);
}

}  // namespace MResources
