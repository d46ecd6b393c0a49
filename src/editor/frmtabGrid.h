#pragma once

#include <array>
#include <QWidget>

#include "editor/IAddIn.h"
#include "languages/MResources.h"
#include "projectdb/Hierarchy.h"

class QAction;
class QMenu;
class QMenuBar;
class QSplitter;
class QStatusBar;
class QTableView;
class RecordsetModel;

/// The editor window: the archives (split 0) beside the trends of the current archive (split 1).
/// Read only; the commands of its menus are not there yet but for showing the editor and opening
/// the database again.
///
/// Lives from the add-in's first use to the shut-down. Its models hold on to recordsets of the
/// data environment: Unload must be called before those are closed.
class frmtabGrid final : public QWidget, public projectdb::IEditorWindow {
    Q_OBJECT
public:
    /// All three are borrowed and outlive the window.
    frmtabGrid(projectdb::ProjectContext& project, const MResources::TextTable& texts,
               IAddIn& addIn, QWidget* parent = nullptr);
    ~frmtabGrid() override;

    /// Binds the grid to the recordsets of archives and trends, which are open.
    void SetUpColumns();
    /// Lets go of all recordsets.
    void Unload();

    /// Sets the menus for a node of the host's tree. `popUp`: while the archive menu is shown as
    /// the context menu of the tree.
    void MenuSwitcher(const QString& nodeKey, bool popUp);
    /// Sets the caption for a node of the host's tree; `name` is the node's text.
    void MakeMyCaption(const QString& nodeKey, const QString& name);
    /// Marks the archive of the node in split 0; none for the root node.
    void MarkArchive(const QString& nodeKey);
    /// Writes what is being edited in the grid. Nothing can be yet.
    void CommitPendingEdit() {}
    /// Runs an archive command: 0 New, 1 Edit, 2 Delete, 4 Show editor.
    void mnuArchiv_Click(int index);
    /// Shows the archive menu at the pointer and returns when it is closed.
    void PopUpArchiveMenu();

    // projectdb::IEditorWindow
    void ReleaseTrends() override;
    void TrendsReloaded() override;
    void NamesInGroup(QStringView group) override;

    // Controls under their given names, objectName() alike.
    QMenu* mnuArchive = nullptr;
    std::array<QAction*, 5> mnuArchiv{};  // 3 is a separator
    QMenu* mnuExtras = nullptr;
    QStatusBar* sb = nullptr;

signals:
    /// The user wants the database closed and opened again. That takes this window away: connect
    /// it queued.
    void ActualizeRequested();

private slots:
    void ArchiveRowChanged(const QModelIndex& current);
    void ShowMissingTrends();

private:
    void BuildMenus();
    void BuildGrid();
    void BuildStatusBar();

    projectdb::ProjectContext& project_;
    const MResources::TextTable& texts_;
    IAddIn& addIn_;
    QMenuBar* bar_ = nullptr;
    QSplitter* grid_ = nullptr;
    std::array<QTableView*, 2> splits_{};
    RecordsetModel* archives_ = nullptr;
    RecordsetModel* trends_ = nullptr;
    bool marking_ = false;         // the selection in split 0 follows the tree just now
    bool trendWidthsSet_ = false;  // once: later widths are the user's
};
