#include "studio/StudioHost.h"

#include "studio/EditorArea.h"
#include "studio/ProjectTree.h"
#include "studio/ProjectTreeModel.h"
#include "studio/VariableBrowser.h"

namespace studio {

void StudioHost::RegisterIcon(const QString& iconKey, const QIcon& picture) {
    model_.RegisterIcon(iconKey, picture);
}

bool StudioHost::AddNode(const QString& parentKey, const QString& text, const QString& key,
                         const QString& position, const QString& iconKey,
                         const KV4AddIn::NodeFlags& flags) {
    return model_.Add(parentKey, text, key, position, iconKey, flags);
}

std::optional<QStringList> StudioHost::ChildKeys(const QString& key) const {
    return model_.ChildKeys(key);
}

bool StudioHost::RemoveNode(const QString& key) {
    return model_.Remove(key);
}

bool StudioHost::RefreshNode(const QString& key, const std::optional<QString>& text,
                             const std::optional<QString>& iconKey) {
    return model_.Refresh(key, text, iconKey);
}

bool StudioHost::ExpandNode(const QString& key) {
    return tree_.HostExpand(key);
}

bool StudioHost::SelectNode(const QString& key) {
    if (!tree_.HostSelect(key)) return false;
    onSelect_();
    return true;
}

std::optional<KV4AddIn::Node> StudioHost::SelectedNode() const {
    return tree_.SelectedNode();
}

QWidget* StudioHost::EditorParent() {
    return editors_.Container();
}

std::optional<QString> StudioHost::ChooseVariable(QWidget* owner, const QString& current) {
    const auto chosen = variables_.Choose(owner, {current});
    if (!chosen) return std::nullopt;
    return chosen->front();
}

std::optional<QStringList> StudioHost::ChooseVariables(QWidget* owner,
                                                       const KV4AddIn::VariableChoice& choice) {
    return variables_.Choose(owner, choice);
}

}  // namespace studio
