#pragma once

#include <KV4AddIn/KV4AddIn.h>

#include <QHash>
#include <QObject>
#include <QPointer>

#include "editor/frmtabGrid.h"
#include "editor/IAddIn.h"
#include "platform/HelpFile.h"
#include "platform/Registry.h"
#include "projectdb/ProjectContext.h"
#include "projectdb/RowWalk.h"
#include "texts/MResources.h"

/// The class that the host creates, and all it knows of the add-in: receives the host's events,
/// keeps the archives' branch in the host's tree, opens the project at first use and leads tree
/// events to the editor.
///
/// Created (root node in the tree) -> opened (database open, editor there, archive nodes filled)
/// -> terminated; ActualizeConnection goes back to created and at once to opened again. A failed
/// first use leaves it created, and the next click or expansion tries again; archives that cannot
/// be read are left out of an opened project, after a message. Without a project it stays passive.
/// After Terminate it can be initialised again; Initialize terminates what is still there.
///
/// No event lets an exception out.
class Connect : public QObject, public KV4AddIn::CKV4Extensibility, public IAddIn {
    Q_OBJECT
    Q_INTERFACES(KV4AddIn::CKV4Extensibility)
public:
    Connect();
    ~Connect() override;

    void CKV4Extensibility_Initialize(const QString& projectName, const QString& secondName,
                                      KV4AddIn::IHost* host, KV4AddIn::IHost* secondHost) override;
    void CKV4Extensibility_StartupComplete() override;
    void CKV4Extensibility_Terminate() override;
    void CKV4Extensibility_Deactivate() override {}
    void CKV4Extensibility_NodeClick(const KV4AddIn::Node& node) override;
    void CKV4Extensibility_NodeDblClick(const KV4AddIn::Node& node) override;
    void CKV4Extensibility_NodeExpand(const KV4AddIn::Node& node) override;
    void CKV4Extensibility_NodeMouseDown(const KV4AddIn::Node&, int, int, double, double) override {
    }
    void CKV4Extensibility_NodeMouseMove(const KV4AddIn::Node&, int, int, double, double) override {
    }
    void CKV4Extensibility_NodeMouseUp(const KV4AddIn::Node& node, int button, int shift, double x,
                                       double y) override;
    void CKV4Extensibility_NodeKeyDown(const KV4AddIn::Node& node, int& keyCode,
                                       int& shift) override;
    void CKV4Extensibility_NodeKeyPress(const KV4AddIn::Node&, int&) override {}
    void CKV4Extensibility_NodeKeyUp(const KV4AddIn::Node&, int&, int&) override {}
    QVariant CKV4Extensibility_GetMessage(const QString& sender, const QString& message,
                                          const QVariant& value) override;

    /// Shows the editor when the tree's selected node is one of the add-in's.
    Q_INVOKABLE void ShowEditor() override;
    // IAddIn
    void SelectArchive(const QString& nodeKey) override;
    [[nodiscard]] QStringList ArchiveKeys() const override;
    [[nodiscard]] QString ArchiveNodeText(const QString& nodeKey) const override;
    [[nodiscard]] QString SelectedNodeKey() const override;
    [[nodiscard]] std::optional<QString> ChooseVariable(QWidget* owner,
                                                        const QString& current) override;
    [[nodiscard]] std::optional<QStringList> ChooseVariables(QWidget* owner,
                                                             const QString& current) override;
    void ShowHelpTopic(int topic, QWidget* owner) override;
    void AddArchiveNode(std::int32_t archiveId, const QString& name) override;
    void SetArchiveNodeText(std::int32_t archiveId, const QString& name) override;
    void RemoveArchiveNode(std::int32_t archiveId) override;
    /// Closes the database and the editor and runs first use again. Not for use inside an event of
    /// the editor window, which it deletes.
    Q_INVOKABLE void ActualizeConnection();

private:
    void InitTreeView();
    [[nodiscard]] std::optional<QStringList> Browse(QWidget* owner, const QString& current,
                                                    bool several);
    void FindHelpFile();
    /// `node`: key of what the user has turned to.
    [[nodiscard]] bool DropForeignSteps();
    [[nodiscard]] bool CompareWith(const QStringList& other);
    void FirstUse(QString node, bool clicked = true);
    [[nodiscard]] bool ConnectToDataBase(const QString& databasePath, bool always);
    void TellFailure(const QString& procedure, bool always);
    void SelectOpenNode();
    void OpenEditor(projectdb::RowFailures& unreadable);
    void WatchEditor();
    void FillArchiveNodes(projectdb::RowFailures& unreadable);
    void TellOfFile(const projectdb::RowFailures& unreadable);
    void RemoveArchiveNodes();
    void KeepPlace();
    void OpenNode(const KV4AddIn::Node& node);
    void OpenArchiveNode(const QString& nodeKey);
    [[nodiscard]] bool RunKey(const KV4AddIn::Node& node, int keyCode, int shift);
    void BringEditorUp();
    void ShutDown();

    platform::Registry registry_;
    platform::HelpFile helpFile_;
    MResources::TextTable texts_;
    projectdb::ProjectContext project_;
    QString projectName_;
    KV4AddIn::IHost* host_ = nullptr;  // null: passive
    QPointer<QWidget> hostWindow_;
    QPointer<frmtabGrid> editor_;        // a child of hostWindow_; null until first use
    QHash<QString, QString> nodeTexts_;  // of the archives' nodes, by key
    bool opened_ = false;
    QString toldFailure_;  // details of the failure that the user has been told last
    // Where the user was when the window before this one went, while he is to come back there.
    std::optional<EditorPlace> place_;
    QStringList toldNotices_;  // of the file that is open
    QString reopening_;        // project that the host is going to close and open again
};
