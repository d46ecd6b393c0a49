#pragma once

#include <optional>
#include <QStringList>
#include <QWidget>

#include "studio/FileWatch.h"
#include "studio/ProjectAddIns.h"
#include "studio/ProjectLocation.h"
#include "studio/ProjectTreeModel.h"
#include "studio/StudioHost.h"
#include "studio/StudioTexts.h"
#include "studio/TreeEvents.h"
#include "studio/VariableBrowser.h"

class QSplitter;

namespace studio {

class AddInSet;
class EditorArea;
class ProjectTree;
class WatchStrip;

/// One project and all that belongs to it alone: its tree and editors, its add-ins, and what
/// becomes of its file. Without a project, the start page.
///
/// Add-ins hear of the project when its page is shown for the first time, and from then on even
/// while another page is in front of it.
class ProjectPage final : public QWidget {
    Q_OBJECT
public:
    /// Key of the studio's own node, which stands for the project itself.
    static constexpr QStringView kProjectKey = u"PROJ";

    /// Both are borrowed and outlive the page; the texts may change.
    ProjectPage(AddInSet& addIns, const StudioTexts& texts);
    ~ProjectPage() override;

    [[nodiscard]] const std::optional<ProjectLocation>& Project() const noexcept {
        return project_;
    }
    /// True for the project of this page under any of its file's names.
    [[nodiscard]] bool IsOf(const ProjectLocation& project) const;
    /// Where the user is, or will be when the page is shown: keys from the top of the tree.
    [[nodiscard]] QStringList Place() const;

    /// REQUIRES: no project. `place`: where to go when the page is shown.
    void SetProject(ProjectLocation project, const QStringList& place);
    /// The page has come to the front.
    void Enter();
    [[nodiscard]] bool WasEntered() const noexcept { return wasEntered_; }
    /// Another page has.
    void Leave();
    void TellDeactivated();
    /// The project is going to be closed only to be opened again.
    void TellReopening();
    /// True when one of the add-ins shows how the project differs from another file.
    [[nodiscard]] bool Compare(const QString& file, const QString& name);
    /// False while an add-in is at work. Without a project nothing happens.
    bool Close();

    void ApplyLanguage();
    /// Where the keyboard was in the editor.
    void FocusEditor();

    [[nodiscard]] ProjectTree& Tree() noexcept { return *tree_; }
    [[nodiscard]] EditorArea& Editors() noexcept { return *editors_; }
    [[nodiscard]] QSplitter& Split() noexcept { return *splMain_; }
    [[nodiscard]] StudioHost& Host() noexcept { return host_; }
    [[nodiscard]] const ProjectTreeModel& Model() const noexcept { return model_; }

signals:
    /// Another editor is shown, or it has another title.
    void EditorChanged();
    void ReloadRequested();
    /// An add-in leads the user to something on this page.
    void ShowRequested();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void Build();
    void FileChanged(FileWatch::State state);

    const StudioTexts& texts_;
    ProjectAddIns addIns_;
    std::optional<ProjectLocation> project_;
    QStringList place_;  // where to go when the page is shown, while it is not
    FileWatch watch_;
    ProjectTreeModel model_;
    TreeEvents treeEvents_;
    VariableBrowser variables_;
    QSplitter* splMain_;
    ProjectTree* tree_;
    EditorArea* editors_;
    WatchStrip* strip_;
    bool isInFront_ = false;
    bool wasEntered_ = false;  // with this project
    StudioHost host_;
};

}  // namespace studio
