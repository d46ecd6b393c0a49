#include "projectdb/Hierarchy.h"

#include "projectdb/NodeKey.h"
#include "projectdb/Text.h"

namespace projectdb {

void ReloadTrends(ProjectContext& project, IEditorWindow& editor) {
    ADOArchiv& environment = project.Environment();
    editor.ReleaseTrends();
    environment.CloseRecordset(ADOArchiv::Command::tabTrends);
    const QString archiveId = QString::number(NodeId(project.currentNodeKey));
    environment.Open(ADOArchiv::Command::tabTrends, {ToUtf16(archiveId)});
    editor.NamesInGroup(kTrendNames);
    editor.TrendsReloaded();
}

}  // namespace projectdb
