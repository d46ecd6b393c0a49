#pragma once

#include <QKeySequence>
#include <QStringList>
#include <QTreeView>

#include "KV4AddIn/KV4AddIn.h"

namespace studio {

class ProjectTreeModel;
class TreeEvents;

/// The view of the project tree: it tells TreeEvents what the user does with the nodes.
///
/// An action of the user raises NodeClick once, however often the selection changes on its way: a
/// mouse click raises it when the button is released (before NodeMouseUp, so that a context menu
/// already finds the node opened), a key when it has been handled. What is done through the Host
/// functions raises nothing.
class ProjectTree final : public QTreeView {
    Q_OBJECT
public:
    /// Both are borrowed and outlive the view.
    ProjectTree(ProjectTreeModel& model, TreeEvents& events, QWidget* parent = nullptr);

    /// The window's own shortcuts. All other keys are the tree's while it has the focus, also those
    /// that an embedded editor uses as shortcuts.
    void SetReservedKeys(const QList<QKeySequence>& keys) { reservedKeys_ = keys; }

    /// False for an unknown key. The branches above the node are expanded, too.
    bool HostExpand(const QString& key);
    bool HostSelect(const QString& key);
    [[nodiscard]] std::optional<KV4AddIn::Node> SelectedNode() const;

    /// Do by mouse events and keys what a user would do; false for an unknown key.
    bool ClickAsUser(const QString& key);
    bool ExpandAsUser(const QString& key);
    /// Keys from the top to the selected node; empty when none is.
    [[nodiscard]] QStringList SelectedPath() const;
    /// Comes back to a selected node of before as a user would, branch by branch, as far as the
    /// nodes are still there.
    void OpenAsUser(const QStringList& path);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void initViewItemOption(QStyleOptionViewItem* option) const override;
    /// There is always one node selected once one has been: no Ctrl+click takes it away.
    [[nodiscard]] QItemSelectionModel::SelectionFlags selectionCommand(
        const QModelIndex& index, const QEvent* event) const override;

private slots:
    void NoteExpanded(const QModelIndex& index);

private:
    [[nodiscard]] QString SelectedKey() const;
    [[nodiscard]] bool IsReserved(const QKeyEvent& event) const;
    [[nodiscard]] bool OnItem(const QPoint& position) const;
    /// Positions of the events are relative to the viewport; the add-ins' are to the whole view.
    [[nodiscard]] QPoint InView(const QPoint& position) const;
    void RaiseClickIfChangedFrom(const QString& keyBefore);
    void RaiseExpansions();

    ProjectTreeModel& model_;
    TreeEvents& events_;
    QList<QKeySequence> reservedKeys_;
    QStringList userExpanded_;  // keys that the user expanded and no add-in knows of yet
    QString hostExpanded_;      // the key that an add-in expanded last
    QString selectedBeforePress_;
    QString pressedKey_;  // node that the left button went down on; empty: none
    bool pressing_ = false;
    bool hostChange_ = false;  // a Host function is changing the view
    int handling_ = 0;         // nesting of the user events being handled
};

}  // namespace studio
