#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <QMainWindow>
#include <QTranslator>
#include <variant>
#include <vector>

#include "studio/AddInLoader.h"
#include "studio/BackupService.h"
#include "studio/LastSession.h"
#include "studio/MenuKeys.h"
#include "studio/ProjectLocation.h"
#include "studio/RecentProjects.h"
#include "studio/SettingsDialog.h"
#include "studio/StudioHelp.h"
#include "studio/StudioTexts.h"

class QActionGroup;
class QLabel;
class QSettings;

namespace studio {

class AddInSet;
class ProjectPage;
class ProjectTabs;
class ProjectTree;
class StudioHost;
class StudioKeys;
class StudioRegistry;

/// The studio's main window: what it holds for all projects, and the pages of those that are open
/// beside each other. Menus, title and status bar belong to the page in front.
class StudioWindow final : public QMainWindow {
    Q_OBJECT
public:
    /// All are borrowed and outlive the window. `state` keeps the window's layout and the recent
    /// projects; null: nothing is kept.
    StudioWindow(StudioRegistry& registry, AddInSet& addIns, QList<AddInReport> addInReports,
                 QSettings* state);
    ~StudioWindow() override;

    /// Opens a project file or a registered project beside those that are open, or shows the page
    /// that has it already. False after a message when it cannot be opened.
    bool OpenProject(const QString& project);
    /// Comes to the front and opens the project that the user has asked another program for; empty:
    /// none. False, and nothing happens, while an add-in or a dialog is at work. Returns at once;
    /// messages come afterwards.
    [[nodiscard]] bool ShowProject(const QString& project);
    /// Opens what was open at the end of the last session, where the user was, unless he does not
    /// want that. Files that are not there are told in one line.
    void OpenLastSession();
    /// Closes the project in front. False while an add-in is at work.
    bool CloseProject();
    /// Closes the window without asking anybody: dialogs and menus that are open, add-ins' too, are
    /// closed first, as the user would by Esc. Returns at once; the window goes as soon as no
    /// add-in is at work any more.
    void Quit();

    // Of the project in front
    [[nodiscard]] bool HasProject() const;
    [[nodiscard]] ProjectTree& Tree() const;
    [[nodiscard]] StudioHost& Host() const;
    /// Key of the first top-level node of an add-in; empty when there is none.
    [[nodiscard]] QString FirstAddInNode() const;

protected:
    void closeEvent(QCloseEvent* event) override;
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
    void mnuHelpContents_Click();
    void mnuHelpKeys_Click();
    void mnuHelpAddIns_Click();
    void mnuHelpAbout_Click();

private:
    struct Caption {
        QAction* action;
        Text text;
        std::optional<Text> tip;
    };

    void BuildAreas();
    ProjectPage& AddPage();
    [[nodiscard]] ProjectPage& Page() const;
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
    void ApplyProjectState();
    void ShowTitle();
    void ShowRecentInEmptyArea();
    /// A copy of the example that has been installed is the user's to try things out on.
    void OpenDemo();
    /// The page of the project, new or not, or what is to be told to the user. It is not shown yet.
    [[nodiscard]] std::variant<ProjectPage*, QString> PageFor(const QString& project,
                                                              const QStringList& place);
    void PageChanged(ProjectPage* before);
    /// False while an add-in is at work.
    bool ClosePage(ProjectPage& page);
    /// Closes the projects of `pages`, lets `action` run, and opens them again where the user was.
    /// False, and nothing has been done, while an add-in is at work. The add-ins go on from there
    /// unless the project has changed as a whole: steps of the one before mean nothing to it.
    enum class Content { Same, Changed };
    bool WhileClosed(const QList<ProjectPage*>& pages, Content content,
                     const std::function<void()>& action);
    [[nodiscard]] bool IsBusy();
    void KeepSession();
    /// Shows the project so many tabs further.
    void Step(int tabs);
    void BackupTaken(const QString& project, const backups::Outcome& outcome);
    void RestoreBackup(const backups::Backup& backup);
    void CompareWith(const QString& file, const QString& name);
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
    StudioTexts texts_;
    QTranslator qtTexts_;  // for the buttons and dialogs that Qt brings
    StudioHelp help_;
    bool quitting_ = false;

    std::vector<Caption> captions_;
    QList<QKeySequence> reservedKeys_;  // no add-in gets them in the tree
    std::unique_ptr<MenuKeys> menuKeys_;
    ProjectTabs* tabs_ = nullptr;
    StudioKeys* keys_ = nullptr;
    QLabel* lblProject_ = nullptr;
    QMenu* mnuFileRecent_ = nullptr;
    QAction* mnuFileOpen_ = nullptr;
    QAction* mnuFileClose_ = nullptr;
    QAction* mnuFileBackups_ = nullptr;
    QAction* mnuFileCompare_ = nullptr;
    QAction* mnuViewEditor_ = nullptr;
    QAction* mnuViewNextProject_ = nullptr;
    QAction* mnuViewPreviousProject_ = nullptr;
    QAction* mnuHelpContents_ = nullptr;
    QActionGroup* languages_ = nullptr;
};

}  // namespace studio
