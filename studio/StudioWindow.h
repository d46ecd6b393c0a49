#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <QMainWindow>
#include <QTranslator>
#include <vector>

#include "studio/AddInLoader.h"
#include "studio/BackupService.h"
#include "studio/FileWatch.h"
#include "studio/MenuKeys.h"
#include "studio/ProjectLocation.h"
#include "studio/ProjectTreeModel.h"
#include "studio/RecentProjects.h"
#include "studio/SettingsDialog.h"
#include "studio/StudioTexts.h"
#include "studio/TreeEvents.h"
#include "studio/VariableBrowser.h"

class QActionGroup;
class QLabel;
class QSettings;
class QSplitter;

namespace studio {

class AddInSet;
class EditorArea;
class ProjectTree;
class StudioHost;
class StudioRegistry;
class WatchStrip;

/// The studio's main window. At most one project is open; the add-ins are initialised when it is
/// opened and terminated when it is closed, by the user or with the window.
class StudioWindow final : public QMainWindow {
    Q_OBJECT
public:
    /// Key of the studio's own node, which stands for the project itself.
    static constexpr QStringView kProjectKey = u"PROJ";

    /// All are borrowed and outlive the window. `state` keeps the window's layout and the recent
    /// projects; null: nothing is kept.
    StudioWindow(StudioRegistry& registry, AddInSet& addIns, QList<AddInReport> addInReports,
                 QSettings* state);
    ~StudioWindow() override;

    /// Opens a project file or a registered project in place of the one that is open. False after
    /// a message when it cannot be opened; the project that was open stays open then.
    bool OpenProject(const QString& project);
    /// Comes to the front and, unless it is open already, opens the project that the user has asked
    /// another program for; empty: none. False, and nothing happens, while an add-in or a dialog is
    /// at work. Returns at once; messages come afterwards.
    [[nodiscard]] bool ShowProject(const QString& project);
    /// Opens the project that was open at the end of the last session, where the user was, unless
    /// he does not want that or the file is not there; without a word then.
    void OpenLastProject();
    /// False while an add-in is at work.
    bool CloseProject();
    /// Closes the window without asking anybody: dialogs and menus that are open, add-ins' too, are
    /// closed first, as the user would by Esc. Returns at once; the window goes as soon as no
    /// add-in is at work any more.
    void Quit();
    [[nodiscard]] bool HasProject() const noexcept { return project_.has_value(); }

    [[nodiscard]] ProjectTree& Tree() noexcept { return *tree_; }
    [[nodiscard]] StudioHost& Host() noexcept { return *host_; }
    /// Key of the first top-level node of an add-in; empty when there is none.
    [[nodiscard]] QString FirstAddInNode() const;

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private slots:
    void mnuFileNew_Click();
    void mnuFileOpen_Click();
    void mnuFileBackups_Click();
    void mnuFileCompare_Click();
    void mnuFileRecent_Popup();
    void mnuFileRecentClear_Click();
    void mnuFileClose_Click();
    void mnuSettingsLanguage_Click(QAction* action);
    void mnuSettingsOptions_Click();
    void mnuHelpAddIns_Click();
    void mnuHelpAbout_Click();

private:
    struct Caption {
        QAction* action;
        Text text;
        std::optional<Text> tip;
    };

    void BuildAreas();
    void BuildFileMenu();
    void BuildOtherMenus();
    QMenu* AddMenu(const QString& name, Text text);
    QAction* AddAction(QMenu& menu, const QString& name, Text text, std::optional<Text> tip,
                       const QKeySequence& shortcut = {});
    void ReserveShortcuts();
    void ApplyLanguage(int lcid);
    /// False, and told, when it cannot be stored or an add-in is at work.
    bool ChangeLanguage(int lcid);
    [[nodiscard]] Settings StoredSettings() const;
    void ApplySettings();
    void FileChanged(FileWatch::State state);
    void ApplyProjectState();
    void ShowTitle();
    void ShowRecentInEmptyArea();
    /// A copy of the example that has been installed is the user's to try things out on.
    void OpenDemo();
    /// A project that is opened anew is backed up, one that comes back at once is not.
    enum class Opening { Anew, Again };
    bool Open(const QString& project, Opening opening);
    /// Closes the project, lets `action` run, and opens it again where the user was. False, and
    /// nothing has been done, while an add-in is at work. The add-ins go on from there unless the
    /// project has changed as a whole: steps of the one before mean nothing to it.
    enum class Content { Same, Changed };
    bool WhileClosed(Content content, const std::function<void()>& action);
    void BackupTaken(const QString& project, const backups::Outcome& outcome);
    void RestoreBackup(const backups::Backup& backup);
    void CompareWith(const QString& file, const QString& name);
    void RaiseStartupComplete();
    void QuitStep();
    void Complain(const QString& message, const QString& details = {});
    /// Where the user's projects are likely to be; empty when nothing tells.
    [[nodiscard]] QString ProjectFolder() const;
    [[nodiscard]] QString RecentCaption(const QString& project) const;
    void RestoreState();
    void SaveState();

    StudioRegistry& registry_;
    AddInSet& addIns_;
    QList<AddInReport> addInReports_;
    QSettings* state_;
    RecentProjects recent_;
    BackupService backups_;
    FileWatch watch_;
    StudioTexts texts_;
    QTranslator qtTexts_;  // for the buttons and dialogs that Qt brings
    std::optional<ProjectLocation> project_;
    bool startupPending_ = false;  // StartupComplete waits for the window to be shown
    bool quitting_ = false;

    ProjectTreeModel model_;
    TreeEvents treeEvents_;
    VariableBrowser variables_{texts_};
    std::unique_ptr<StudioHost> host_;
    std::vector<Caption> captions_;
    std::unique_ptr<MenuKeys> menuKeys_;
    WatchStrip* strip_ = nullptr;
    QSplitter* splMain_ = nullptr;
    ProjectTree* tree_ = nullptr;
    EditorArea* editors_ = nullptr;
    QLabel* lblProject_ = nullptr;
    QMenu* mnuFileRecent_ = nullptr;
    QAction* mnuFileOpen_ = nullptr;
    QAction* mnuFileClose_ = nullptr;
    QAction* mnuFileBackups_ = nullptr;
    QAction* mnuFileCompare_ = nullptr;
    QAction* mnuViewEditor_ = nullptr;
    QActionGroup* languages_ = nullptr;
};

}  // namespace studio
