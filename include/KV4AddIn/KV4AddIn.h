#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <QIcon>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <QtPlugin>
#include <QVariant>

class QWidget;

/// The contract between a host (the engineering studio) and an add-in. Both sides include this
/// header and nothing else of each other.
///
/// An add-in is a Qt plugin: a shared library whose root object implements CKV4Extensibility and
/// whose metadata is a JSON object with the string "ProgID", such as
/// {"ProgID": "KVArchivEditor.Connect"}. The host finds it by that ProgID in its add-in folders.
///
/// Everything happens on the user-interface thread, one call at a time. No call on either side
/// lets an exception out. A host operation that cannot be done (an unknown key, say) does nothing
/// and returns false or an empty value.
namespace KV4AddIn {

/// One node of the host's project tree as the events and the host report it.
/// Keys are unique in the whole tree; the parent key of a top-level node is empty.
struct Node {
    QString parentKey;
    QString key;
    QString text;

    [[nodiscard]] bool operator==(const Node&) const = default;
};

/// Shift states of the mouse and key events; they add up.
enum ShiftState : int { kShiftNone = 0, kShift = 1, kCtrl = 2, kAlt = 4 };

/// Buttons of the mouse events. The events for a move carry the sum of the buttons held.
enum MouseButton : int { kLeftButton = 1, kRightButton = 2, kMiddleButton = 4 };

/// What a node of the tree can do; the four flags of AddNode.
struct NodeFlags {
    /// Shows an expander although it has no children yet, so that NodeExpand can fill it.
    bool expandable = false;
    /// Its children stay in the order in which they were added; otherwise they are sorted by text.
    bool ordered = false;
    /// The host never removes it by itself, not even when the user empties its branch.
    bool permanent = false;
    /// The user may change its text in the tree.
    bool editable = false;
};

/// The host's extensibility object: what an add-in may ask of the host. It outlives the add-in's
/// Terminate event. Key arguments are case-sensitive.
class IHost {
public:
    virtual ~IHost() = default;

    /// Registers `picture` under `iconKey`; a second registration replaces the first.
    virtual void RegisterIcon(const QString& iconKey, const QIcon& picture) = 0;

    /// Adds a node below `parentKey` (empty: the top level). `position` is its place among its
    /// siblings, a decimal number from 0 (0 = in front); empty: behind the last one.
    /// False when the parent does not exist or `key` is empty or taken.
    virtual bool AddNode(const QString& parentKey, const QString& text, const QString& key,
                         const QString& position, const QString& iconKey,
                         const NodeFlags& flags) = 0;

    /// The keys of a node's children in tree order; nullopt when it has none or does not exist.
    [[nodiscard]] virtual std::optional<QStringList> ChildKeys(const QString& key) const = 0;

    /// Removes a node with everything below it.
    virtual bool RemoveNode(const QString& key) = 0;

    /// Shows the node again as it is now. `text` and `iconKey` replace its text and icon when
    /// given; with both omitted only its children are laid out anew.
    virtual bool RefreshNode(const QString& key, const std::optional<QString>& text = {},
                             const std::optional<QString>& iconKey = {}) = 0;

    /// Expanding and selecting from here raise no event to the add-in that called.
    virtual bool ExpandNode(const QString& key) = 0;
    virtual bool SelectNode(const QString& key) = 0;

    /// The selected node; nullopt when nothing is selected.
    [[nodiscard]] virtual std::optional<Node> SelectedNode() const = 0;

    /// The parent for editor windows: a container that shows one editor at a time. The add-in
    /// makes its window a child of it; the host lays it out and shows it with the container.
    /// Never null; owned by the host.
    [[nodiscard]] virtual QWidget* EditorParent() = 0;

    /// The variable browser: lets the user choose one process variable of the project, modal over
    /// `owner`. `current` is the name to start from, may be empty. nullopt = cancelled, or the
    /// host has no variables to offer.
    [[nodiscard]] virtual std::optional<QString> ChooseVariable(QWidget* owner,
                                                                const QString& current) = 0;
};

/// What an add-in asks the variable browser for beyond the one variable of
/// IHost::ChooseVariable.
struct VariableChoice {
    QString current;       // the name to start from, may be empty
    bool several = false;  // the user may choose more than one
    /// Shows where a variable is used, over `owner`, and returns when the user has seen it; empty:
    /// nobody can say.
    std::function<void(QWidget* owner, const QString& variable)> showUses{};
};

/// What a host may offer beside IHost: it derives from both then, and an add-in finds this by
/// dynamic_cast. A host without it goes on working.
class IVariableHost {
public:
    virtual ~IVariableHost() = default;

    /// As IHost::ChooseVariable. Never an empty list.
    [[nodiscard]] virtual std::optional<QStringList> ChooseVariables(
        QWidget* owner, const VariableChoice& choice) = 0;
};

/// Sender of the messages of GetMessage that are the host's own.
inline constexpr QStringView kHostSender = u"Host";
/// The project that is closed next is opened again at once, so that an add-in can come back to
/// where the user is.
inline constexpr QStringView kReopening = u"Reopening";
/// The user wants to see how the open project differs from another one. The value is a QStringList:
/// the native path of the other one's file, and what the user knows it by. An add-in that shows
/// that answers true; it returns at once.
inline constexpr QStringView kCompare = u"Compare";

/// The events that the host raises in an add-in. `keyCode` and `shift` of the key events are
/// passed by reference: an add-in that has used a key sets `keyCode` to 0, and the host then does
/// nothing further with it. Key codes are the classic virtual-key numbers (46 Delete, 112..123 =
/// F1..F12, letters and digits as their upper-case ASCII codes). Mouse positions are in pixels,
/// relative to the upper left corner of the tree.
class CKV4Extensibility {
public:
    virtual ~CKV4Extensibility() = default;

    /// First event. `projectName` is the name of the open project or the full path of its file,
    /// in the form with backslashes; empty when no project is open. `host` stays valid until
    /// Terminate has returned. `secondName` and `secondHost` are for hosts with a second project
    /// open beside the first; the studio passes an empty string and null.
    virtual void CKV4Extensibility_Initialize(const QString& projectName, const QString& secondName,
                                              IHost* host, IHost* secondHost) = 0;
    /// All add-ins have been initialised and the tree is on screen.
    virtual void CKV4Extensibility_StartupComplete() = 0;
    /// Last event: the project is being closed. The add-in gives back everything it holds.
    virtual void CKV4Extensibility_Terminate() = 0;
    /// The host's window is no longer the active one.
    virtual void CKV4Extensibility_Deactivate() = 0;

    // Events of any node of the tree, the add-in's own or not. NodeClick is raised when the
    // selected node changes by mouse or keyboard, and for a click on the node already selected.
    virtual void CKV4Extensibility_NodeClick(const Node& node) = 0;
    virtual void CKV4Extensibility_NodeDblClick(const Node& node) = 0;
    virtual void CKV4Extensibility_NodeExpand(const Node& node) = 0;
    virtual void CKV4Extensibility_NodeMouseDown(const Node& node, int button, int shift, double x,
                                                 double y) = 0;
    virtual void CKV4Extensibility_NodeMouseMove(const Node& node, int button, int shift, double x,
                                                 double y) = 0;
    virtual void CKV4Extensibility_NodeMouseUp(const Node& node, int button, int shift, double x,
                                               double y) = 0;
    virtual void CKV4Extensibility_NodeKeyDown(const Node& node, int& keyCode, int& shift) = 0;
    virtual void CKV4Extensibility_NodeKeyPress(const Node& node, int& keyAscii) = 0;
    virtual void CKV4Extensibility_NodeKeyUp(const Node& node, int& keyCode, int& shift) = 0;

    /// A message of another add-in, passed on by the host, or of the host itself (kHostSender).
    virtual QVariant CKV4Extensibility_GetMessage(const QString& sender, const QString& message,
                                                  const QVariant& value) = 0;
};

/// What the root object of an add-in may offer beside CKV4Extensibility, found by dynamic_cast: an
/// object for each of several projects that a host shows beside each other. Without it the add-in
/// is there for one project at a time, and a host terminates it before it initialises it for
/// another one.
class IInstances {
public:
    virtual ~IInstances() = default;

    /// One more object, which shares no project's state with the root object or another one. Never
    /// null. It is the caller's, who terminates it before deleting it.
    [[nodiscard]] virtual std::unique_ptr<CKV4Extensibility> MakeInstance() = 0;
};

}  // namespace KV4AddIn

Q_DECLARE_INTERFACE(KV4AddIn::CKV4Extensibility, "KV4AddIn.CKV4Extensibility/4.0")
