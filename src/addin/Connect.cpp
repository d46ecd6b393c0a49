#include "addin/Connect.h"

#include <QScopeGuard>
#include <utility>
#include <vector>

#include "addin/MKVSGlobalEditors.h"
#include "addin/WindowEmbedding.h"
#include "commandset/CommandSet.h"
#include "guard/Guard.h"
#include "help/HelpViewer.h"
#include "icons/Icons.h"
#include "messages/MessageBox.h"
#include "platform/Error.h"
#include "platform/HelpTopics.h"
#include "projectdb/NodeKey.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using guard::Guard;
using KV4AddIn::Node;
using messages::Pointer;
using Command = ADOArchiv::Command;

const QString kRootKey = projectdb::kRootKind.toString();
const QString kIconKey = u"icoArchiv"_s;
const std::vector<std::u16string> kNoArchive = {u"0"};

/// A key of the tree as Qt names it; the host gives the key code of its platform.
QKeyCombination KeyOf(int keyCode, int shift) {
    constexpr int kInsertCode = 45;
    constexpr int kDeleteCode = 46;
    constexpr int kF1Code = 112;
    constexpr int kF12Code = 123;
    int key = keyCode;  // letters and digits are the same
    if (keyCode == kInsertCode) key = Qt::Key_Insert;
    if (keyCode == kDeleteCode) key = Qt::Key_Delete;
    if (keyCode >= kF1Code && keyCode <= kF12Code) key = Qt::Key_F1 + keyCode - kF1Code;
    Qt::KeyboardModifiers modifiers;
    modifiers.setFlag(Qt::ShiftModifier, (shift & KV4AddIn::kShift) != 0);
    modifiers.setFlag(Qt::ControlModifier, (shift & KV4AddIn::kCtrl) != 0);
    modifiers.setFlag(Qt::AltModifier, (shift & KV4AddIn::kAlt) != 0);
    return QKeyCombination(modifiers, static_cast<Qt::Key>(key));
}

/// Whether an archive command of the tree belongs to a node of this kind.
bool Suits(const commandset::Command& command, const Node& node) {
    const QStringView kind = projectdb::NodeKind(node.key);
    return kind == ((command.needs & commandset::kArchive) != 0 ? projectdb::kArchiveKind
                                                                : projectdb::kRootKind);
}

int TopicOf(const Node& node) {
    const QStringView kind = projectdb::NodeKind(node.key);
    if (kind == projectdb::kRootKind) return platform::kHelpArchives;
    if (kind == projectdb::kArchiveKind) return platform::kHelpArchive;
    return platform::kHelpContents;
}

}  // namespace

Connect::Connect() {
    helpFile_.SetViewer(help::MakeViewer(texts_));
}

Connect::~Connect() {
    // A host that goes down without Terminate: nothing of it may be touched any more.
    host_ = nullptr;
    Guard(u"Connect"_s, [&] { ShutDown(); });
}

void Connect::CKV4Extensibility_Initialize(const QString& projectName,
                                           const QString& /*secondName*/, KV4AddIn::IHost* host,
                                           KV4AddIn::IHost* /*secondHost*/) {
    // A host that has forgotten to terminate: the project before is let go of first.
    if (host_ != nullptr) CKV4Extensibility_Terminate();
    Guard(u"Connect: Initialize"_s, [&] {
        projectName_ = projectName;
        project_.projectPath = projectName;
        if (host == nullptr) return;
        if (!MKVSGlobalEditors::ReadCurrentProject(registry_, project_.projectPath)) return;
        // Behind the look-up, which tells of a registry that cannot be read for itself.
        Guard(u"MResources"_s, [&] { texts_.Initialize(registry_); });
        // Any other opening begins with what has been saved.
        if (project_.projectPath != std::exchange(reopening_, {})) {
            place_.reset();
            toldNotices_.clear();
            project_.history.Clear();
        }
        host_ = host;
        hostWindow_ = host_->EditorParent();
        Guard(u"Connect: InitTreeView"_s, [&] { InitTreeView(); });
        FindHelpFile();
    });
}

void Connect::InitTreeView() {
    host_->RegisterIcon(kIconKey, icons::FixedIcon(u"archive"));
    host_->AddNode({}, texts_.GetText(MResourceTable::kTextArchivesNode), kRootKey, u"0"_s,
                   kIconKey,
                   {.expandable = true, .ordered = true, .permanent = true, .editable = false});
}

void Connect::FindHelpFile() {
    QString folder;
    try {
        folder = registry_.ReadString(u"SOFTWARE\\Brantor GmbH", u"Common");
    } catch (const platform::Error&) {
        // It has been told when the interface language was read; help is missed when it is wanted.
    }
    helpFile_.SetPath(folder + u"\\helpfiles\\Archivsystem.chm"_s);
}

QVariant Connect::CKV4Extensibility_GetMessage(const QString& sender, const QString& message,
                                               const QVariant& value) {
    if (sender != KV4AddIn::kHostSender || host_ == nullptr) return {};
    if (message == KV4AddIn::kReopening) reopening_ = project_.projectPath;
    if (message == KV4AddIn::kCompare) return CompareWith(value.toStringList());
    return {};
}

/// `other`: the file and what the user knows it by. False: it is not compared, and nobody has said
/// why.
bool Connect::CompareWith(const QStringList& other) {
    if (other.size() != 2) return false;
    Guard(u"Connect: Compare"_s, [&] {
        FirstUse(kRootKey);
        if (editor_) editor_->CompareWith(other[0], other[1]);
    });
    return true;
}

void Connect::CKV4Extensibility_StartupComplete() {
    Guard(u"Connect: StartupComplete"_s, [&] {
        // Who was in the middle of an edit is led back to it without having to look for it.
        const bool isLeft = host_ != nullptr && frmtabGrid::HasDrafts(project_.projectPath);
        if (isLeft) FirstUse(kRootKey, false);
    });
}

void Connect::KeepPlace() {
    place_.reset();
    if (!opened_ || !editor_) return;
    place_ = editor_->Place();
}

void Connect::CKV4Extensibility_Terminate() {
    Guard(u"Connect: Terminate"_s, [&] {
        if (!reopening_.isEmpty()) KeepPlace();
    });
    Guard(u"Connect: Terminate"_s, [&] {
        nodeTexts_.clear();
        if (host_ != nullptr) host_->RemoveNode(kRootKey);
    });
    Guard(u"Connect: Terminate"_s, [&] { ShutDown(); });
    // A failed connection has left the hourglass, and nobody else will take it away.
    if (host_ != nullptr) messages::SetScreenPointer(Pointer::Default);
    host_ = nullptr;
    hostWindow_ = nullptr;
    toldFailure_.clear();
}

/// Takes the editor out of the host's window, unloads it, closes the database and deletes the
/// editor. A step that fails keeps none of the others from being done.
void Connect::ShutDown() {
    opened_ = false;
    const auto step = [](const auto& body) { Guard(u"Connect: ShutDown"_s, body); };
    step([&] {
        if (editor_) WindowEmbedding::ReleaseEditor(*editor_, nullptr);
    });
    step([&] {
        if (editor_) editor_->Unload();
    });
    step([&] { project_.CloseDatabase(); });
    project_.currentNodeKey.clear();
    delete editor_.data();
}

/// `node` is what the user has turned to. What has failed before is tried again without a word,
/// unless it fails for another reason now or an own node has been clicked: a node of somebody else
/// asks for nothing, and one that opens has been clicked in the same breath.
void Connect::FirstUse(QString node, bool clicked) {
    if (opened_) {
        messages::SetScreenPointer(Pointer::Default);
        return;
    }
    messages::SetScreenPointer(Pointer::Hourglass);
    // The hourglass stays: the project is not open yet, and the next click tries again.
    const bool always = clicked && projectdb::IsOwnNode(node);
    if (!ConnectToDataBase(project_.projectPath, always)) return;
    projectdb::RowFailures unreadable;
    try {
        OpenEditor(unreadable);
    } catch (...) {
        TellFailure(u"Connect: FirstUse"_s, always);
        RemoveArchiveNodes();
        ShutDown();
        messages::SetScreenPointer(Pointer::Default);
        return;
    }
    opened_ = true;
    toldFailure_.clear();
    messages::SetScreenPointer(Pointer::Default);
    const bool stepsDropped = DropForeignSteps();
    host_->ExpandNode(kRootKey);
    // The user who clicks on somebody else's node stays there.
    if (projectdb::IsOwnNode(node)) host_->SelectNode(kRootKey);
    // Last of all: what can be read is there already, and the box has its own event loop.
    TellOfFile(unreadable);
    if (stepsDropped) {
        messages::ShowMessage(texts_.GetText(MResourceTable::kTextStepsDropped),
                              messages::MessageButtons::Ok, editor_->windowTitle(), editor_);
    }
}

/// Whether another project lies under the name now, so that what the user could take back has gone.
bool Connect::DropForeignSteps() {
    bool dropped = false;
    Guard(u"Connect: FirstUse"_s,
          [&] { dropped = project_.history.DropForeign(project_.Environment().Connection()); });
    return dropped;
}

/// Tells once what the user should know about a file that has been opened.
void Connect::TellOfFile(const projectdb::RowFailures& unreadable) {
    QStringList notices;
    for (const std::string& notice : project_.Environment().Connection().TakeNotices()) {
        notices += projectdb::ToQString(notice);
    }
    // Opened again by Refresh, the file says the same.
    if (notices == std::exchange(toldNotices_, notices)) notices.clear();
    if (unreadable.Count() == 0 && notices.isEmpty()) return;
    messages::Message message;
    if (unreadable.Count() > 0) {
        message = guard::ToMessage(unreadable, texts_.GetText(MResourceTable::kTextUnreadableRows),
                                   u"Connect: FirstUse"_s);
    } else {
        projectdb::Failure notice;
        notice.reason = {reasons::Cause::FileDamaged, project_.projectPath.toStdString()};
        const bool isWritable = project_.Environment().Connection().IsWritable();
        const int text =
            isWritable ? MResourceTable::kTextFileNotices : MResourceTable::kTextFileOnlyRead;
        notice.told = texts_.GetText(text, {{u"file", project_.projectPath}});
        message = guard::ToMessage(notice, {});
        message.title = editor_->windowTitle();
        message.kind = messages::MessageKind::Information;
        message.details.clear();
    }
    if (!message.details.isEmpty()) message.details += u'\n';
    message.details += notices.join(u'\n');
    messages::ShowMessage(message, editor_);
}

bool Connect::ConnectToDataBase(const QString& databasePath, bool always) {
    try {
        project_.Environment().OpenConnection(databasePath);
        return true;
    } catch (...) {
        TellFailure(u"ConnectToDataBase"_s, always);
        return false;
    }
}

/// Shows the failure that is being handled; not `always`: unless the user has been told it already.
void Connect::TellFailure(const QString& procedure, bool always) {
    const QString details = projectdb::Failure::Current().Details();
    if (always || details != toldFailure_) guard::ShowFailure(procedure);
    toldFailure_ = details;
}

void Connect::OpenEditor(projectdb::RowFailures& unreadable) {
    ADOArchiv& environment = project_.Environment();
    environment.Open(Command::Archives);
    environment.Open(Command::tabTrends, kNoArchive);
    editor_ = new frmtabGrid(project_, texts_, *this, registry_, hostWindow_);
    editor_->Load(place_ ? &*place_ : nullptr);
    if (!WindowEmbedding::EmbedEditor(*editor_, *host_)) return;
    // Queued: the window must have left its own event when it is deleted.
    connect(editor_, &frmtabGrid::ActualizeRequested, this, &Connect::ActualizeConnection,
            Qt::QueuedConnection);
    FillArchiveNodes(unreadable);
    editor_->SetUpColumns();
    project_.currentNodeKey = kRootKey;
    editor_->MenuSwitcher(kRootKey, false);
    editor_->MakeMyCaption(kRootKey, {});
    editor_->show();
    WatchEditor();
}

/// Follows the user's turning to the editor and away from it.
void Connect::WatchEditor() {
    auto* watch = new ActivationWatch(*editor_);
    connect(watch, &ActivationWatch::Activated, this, [this] {
        Guard(u"Connect: Activate"_s, [&] {
            if (opened_ && editor_) editor_->Activate();
        });
    });
    connect(watch, &ActivationWatch::Deactivated, this, [this] {
        Guard(u"Connect: Deactivate"_s, [&] {
            if (!opened_ || !editor_ || editor_->Deactivate()) return;
            // The tree may be about to select the node that has been clicked; its archive is not
            // opened while a text that has been refused stands in its cell.
            QMetaObject::invokeMethod(this, &Connect::SelectOpenNode, Qt::QueuedConnection);
        });
    });
}

void Connect::FillArchiveNodes(projectdb::RowFailures& unreadable) {
    ado::Recordset& archives = project_.Environment().Recordset(Command::Archives);
    const std::size_t id = archives.FieldIndex("ID");
    const std::size_t name = archives.FieldIndex("Name");
    std::vector<std::pair<std::int32_t, QString>> nodes;
    {
        projectdb::RowWalk walk(archives, unreadable);
        for (bool found = walk.First(); found; found = walk.Next()) {
            walk.Read([&] {
                nodes.emplace_back(ado::ToLong(archives.Get(id)),
                                   projectdb::ToQString(ado::ToText(archives.Get(name))));
            });
        }
    }
    for (const auto& [archive, text] : nodes) AddArchiveNode(archive, text);
}

void Connect::RemoveArchiveNodes() {
    nodeTexts_.clear();
    const std::optional<QStringList> keys = host_->ChildKeys(kRootKey);
    if (!keys) return;
    for (const QString& key : *keys) host_->RemoveNode(key);
}

void Connect::CKV4Extensibility_NodeClick(const Node& clicked) {
    const Node node = clicked;  // the host's own one may move when nodes are added
    Guard(u"Connect: NodeClick"_s, [&] {
        if (host_ == nullptr) return;
        FirstUse(node.key);
        if (!editor_ || !projectdb::IsOwnNode(node.key)) return;
        // Also for the root, whose click takes the rows away that are being edited.
        if (!editor_->CommitPendingEdit()) {
            SelectOpenNode();
            return;
        }
        if (editor_->IsThere(node.key)) OpenNode(node);
    });
}

void Connect::SelectOpenNode() {
    if (host_ != nullptr && opened_) host_->SelectNode(project_.currentNodeKey);
}

/// Opens a node of the add-in in the editor, caption included.
void Connect::OpenNode(const Node& node) {
    OpenArchiveNode(node.key);
    editor_->MakeMyCaption(node.key, node.text);
}

void Connect::OpenArchiveNode(const QString& nodeKey) {
    editor_->MenuSwitcher(nodeKey, false);
    project_.currentNodeKey = nodeKey;
    projectdb::ReloadTrends(project_, *editor_);
    editor_->MarkArchive(nodeKey);
    if (!place_ || projectdb::NodeKind(nodeKey) != projectdb::kArchiveKind) return;
    const EditorPlace place = *std::exchange(place_, {});
    if (place.nodeKey == nodeKey) editor_->ReturnTo(place);
}

void Connect::CKV4Extensibility_NodeExpand(const Node& node) {
    Guard(u"Connect: NodeExpand"_s, [&] {
        if (host_ != nullptr) FirstUse(node.key, false);
    });
}

void Connect::CKV4Extensibility_NodeDblClick(const Node& /*node*/) {
    Guard(u"Connect: NodeDblClick"_s, [&] { BringEditorUp(); });
}

void Connect::CKV4Extensibility_NodeMouseUp(const Node& node, int button, int /*shift*/,
                                            double /*x*/, double /*y*/) {
    if (button != KV4AddIn::kRightButton || !editor_) return;
    Guard(u"Connect: NodeMouseUp"_s, [&] {
        editor_->MenuSwitcher(node.key, true);
        const auto popUpEnds = qScopeGuard([&] {
            // The menu has its own event loop; the window may have gone meanwhile, and what was
            // chosen may have turned to another node.
            if (editor_) editor_->MenuSwitcher(editor_->MenuNode(), false);
        });
        if (projectdb::IsOwnNode(node.key)) editor_->PopUpArchiveMenu();
    });
}

void Connect::CKV4Extensibility_NodeKeyDown(const Node& node, int& keyCode, int& shift) {
    Guard(u"Connect: NodeKeyDown"_s, [&] {
        if (RunKey(node, keyCode, shift)) keyCode = 0;
    });
}

/// False when the key means nothing here.
bool Connect::RunKey(const Node& node, int keyCode, int shift) {
    using commandset::Id;
    if (host_ == nullptr) return false;
    const QKeyCombination keys = KeyOf(keyCode, shift);
    // In the tree F1 asks for help with whatever else is held down.
    const commandset::Command* command = commandset::CommandOf(
        commandset::Place::Tree, keys.key() == Qt::Key_F1 ? Qt::Key_F1 : keys);
    if (command == nullptr) return false;
    if (command->id == Id::Help) {
        ShowHelpTopic(TopicOf(node), editor_);
        return true;
    }
    if (!editor_ || !projectdb::IsOwnNode(node.key)) return false;
    if (command->id == Id::ShowEditor) {
        ShowEditor();
        return true;
    }
    if (command->id == Id::Find) {
        BringEditorUp();
        editor_->FindArchives();
        return true;
    }
    // What concerns no node runs at any of them.
    const bool suits =
        (command->needs & (commandset::kArchive | commandset::kPlaceForArchives)) == 0
            ? commandset::Obstacle(*command, editor_->Situation()) == 0
            : Suits(*command, node);
    if (suits) {
        editor_->Run(command->id);
        return true;
    }
    editor_->HintAt(command->id);
    return false;
}

void Connect::ShowHelpTopic(int topic, QWidget* owner) {
    if (helpFile_.ShowTopic(topic, owner)) return;
    const QString text =
        texts_.GetText(MResourceTable::kTextNoHelpFile,
                       {{u"topic", QString::number(topic)}, {u"file", helpFile_.Path()}});
    messages::ShowMessage(text, messages::MessageButtons::Ok,
                          texts_.GetText(MResourceTable::kTextEditorTitle), owner);
}

void Connect::ShowEditor() {
    Guard(u"Connect: ShowEditor"_s, [&] {
        if (host_ == nullptr || !editor_) return;
        const std::optional<Node> node = host_->SelectedNode();
        if (!node || !projectdb::IsOwnNode(node->key)) return;
        if (projectdb::NodeKind(node->key) == projectdb::kArchiveKind) OpenNode(*node);
        BringEditorUp();
    });
}

void Connect::BringEditorUp() {
    if (!editor_) return;
    editor_->show();
    if (editor_->isMinimized()) {
        editor_->setWindowState(editor_->windowState() & ~Qt::WindowMinimized);
    }
    editor_->raise();
    editor_->setFocus(Qt::OtherFocusReason);
}

void Connect::SelectArchive(const QString& nodeKey) {
    if (host_ == nullptr || !editor_) return;
    host_->SelectNode(nodeKey);
    const std::optional<Node> node = host_->SelectedNode();
    OpenNode(node && node->key == nodeKey ? *node : Node{kRootKey, nodeKey, {}});
}

QStringList Connect::ArchiveKeys() const {
    if (host_ == nullptr) return {};
    return host_->ChildKeys(kRootKey).value_or(QStringList());
}

QString Connect::ArchiveNodeText(const QString& nodeKey) const {
    return nodeTexts_.value(nodeKey);
}

QString Connect::SelectedNodeKey() const {
    if (host_ == nullptr) return {};
    const std::optional<Node> node = host_->SelectedNode();
    return node && projectdb::IsOwnNode(node->key) ? node->key : QString();
}

std::optional<QString> Connect::ChooseVariable(QWidget* owner, const QString& current) {
    const auto chosen = Browse(owner, current, false);
    if (!chosen) return std::nullopt;
    return chosen->front();
}

std::optional<QStringList> Connect::ChooseVariables(QWidget* owner, const QString& current) {
    return Browse(owner, current, true);
}

std::optional<QStringList> Connect::Browse(QWidget* owner, const QString& current, bool several) {
    if (host_ == nullptr) return std::nullopt;
    if (auto* variables = dynamic_cast<KV4AddIn::IVariableHost*>(host_)) {
        const auto showUses = [this](QWidget* over, const QString& variable) {
            if (editor_) editor_->ShowUsesOver(over, variable);
        };
        return variables->ChooseVariables(owner, {current, several, showUses});
    }
    const auto chosen = host_->ChooseVariable(owner, current);
    if (!chosen) return std::nullopt;
    return QStringList{*chosen};
}

void Connect::AddArchiveNode(std::int32_t archiveId, const QString& name) {
    if (host_ == nullptr) return;
    const QString key = projectdb::ArchiveNodeKey(archiveId);
    host_->AddNode(kRootKey, name, key, {}, kIconKey, {});
    nodeTexts_.insert(key, name);
}

void Connect::SetArchiveNodeText(std::int32_t archiveId, const QString& name) {
    if (host_ == nullptr) return;
    const QString key = projectdb::ArchiveNodeKey(archiveId);
    host_->RefreshNode(key, name, kIconKey);
    nodeTexts_.insert(key, name);
}

void Connect::RemoveArchiveNode(std::int32_t archiveId) {
    if (host_ == nullptr) return;
    const QString key = projectdb::ArchiveNodeKey(archiveId);
    host_->RemoveNode(key);
    nodeTexts_.remove(key);
}

void Connect::ActualizeConnection() {
    Guard(u"Connect: ActualizeConnection"_s, [&] {
        if (host_ == nullptr) return;
        KeepPlace();
        RemoveArchiveNodes();
        host_->RefreshNode(kRootKey);
        ShutDown();
        FirstUse(kRootKey);
        // Where the database could not be opened, the click that opens it goes on.
        if (!opened_ || !place_) return;
        const EditorPlace place = *std::exchange(place_, {});
        if (ArchiveKeys().contains(place.nodeKey)) SelectArchive(place.nodeKey);
        editor_->ReturnTo(place);
    });
}
