#pragma once

#include <functional>

#include "KV4AddIn/KV4AddIn.h"

namespace studio {

class EditorArea;
class IVariableBrowser;
class ProjectTree;
class ProjectTreeModel;

/// What the studio offers to its add-ins: the project tree, the editor area, the variables.
/// Everything is borrowed and outlives the host object. `onSelect` is told that an add-in leads the
/// user to a node.
class StudioHost final : public KV4AddIn::IHost, public KV4AddIn::IVariableHost {
public:
    StudioHost(ProjectTreeModel& model, ProjectTree& tree, EditorArea& editors,
               IVariableBrowser& variables, std::function<void()> onSelect)
        : model_(model),
          tree_(tree),
          editors_(editors),
          variables_(variables),
          onSelect_(std::move(onSelect)) {}

    void RegisterIcon(const QString& iconKey, const QIcon& picture) override;
    bool AddNode(const QString& parentKey, const QString& text, const QString& key,
                 const QString& position, const QString& iconKey,
                 const KV4AddIn::NodeFlags& flags) override;
    [[nodiscard]] std::optional<QStringList> ChildKeys(const QString& key) const override;
    bool RemoveNode(const QString& key) override;
    bool RefreshNode(const QString& key, const std::optional<QString>& text,
                     const std::optional<QString>& iconKey) override;
    bool ExpandNode(const QString& key) override;
    bool SelectNode(const QString& key) override;
    [[nodiscard]] std::optional<KV4AddIn::Node> SelectedNode() const override;
    [[nodiscard]] QWidget* EditorParent() override;
    [[nodiscard]] std::optional<QString> ChooseVariable(QWidget* owner,
                                                        const QString& current) override;
    [[nodiscard]] std::optional<QStringList> ChooseVariables(
        QWidget* owner, const KV4AddIn::VariableChoice& choice) override;

private:
    ProjectTreeModel& model_;
    ProjectTree& tree_;
    EditorArea& editors_;
    IVariableBrowser& variables_;
    std::function<void()> onSelect_;
};

}  // namespace studio
