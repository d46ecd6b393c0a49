#pragma once

#include <array>
#include <memory>
#include <QPointer>
#include <QWidget>

#include "commands/ArchiveCommands.h"
#include "commands/NameLists.h"
#include "commandset/CommandSet.h"
#include "controls/GridSource.h"
#include "dialogs/DialogServices.h"
#include "editor/DialogNames.h"
#include "editor/EditorPlace.h"
#include "editor/IAddIn.h"
#include "platform/Locale.h"
#include "projectdb/Hierarchy.h"
#include "projectdb/IProjectWork.h"
#include "texts/MResources.h"
#include "transfer/FExport.h"

class CDBLanguages;
class CInit;
class EditorHistory;
class frmProjectTable;
class EditorKeys;
class EditorLayout;
class EditorMenus;
class FCompare;
class FReplace;
namespace CellBlock {
struct Result;
}
namespace drafts {
class DraftKeeper;
struct Draft;
}  // namespace drafts
namespace findings {
class FindingPane;
}
namespace platform {
class Registry;
}
namespace templates {
enum class Kind;
class TemplateFile;
struct Template;
}  // namespace templates
class QComboBox;
class QLabel;
class QLineEdit;
class QStatusBar;
class QToolBar;
class QToolButton;
class RecordsetModel;
class TDBGrid;
class TrendCommands;
class TrendRows;

/// The editor window: the archives (split 0) beside the trends of the current archive (split 1),
/// with the commands on both.
///
/// Lives from the add-in's first use to the shut-down: made, then Load, SetUpColumns, and at the
/// end Unload, which must come before the recordsets of the data environment are closed. Commands
/// install no handler of their own; every slot shows what they throw.
class frmtabGrid final : public QWidget,
                         public projectdb::IEditorWindow,
                         public projectdb::IProjectWork,
                         public projectdb::IStatusPanels {
    Q_OBJECT
    // What the settings file knows of the window; lengths in twips.
    Q_PROPERTY(int WindowState READ WindowState WRITE SetWindowState)
    Q_PROPERTY(double PosLeft READ PosLeft WRITE SetPosLeft)
    Q_PROPERTY(double PosTop READ PosTop WRITE SetPosTop)
    Q_PROPERTY(double Width READ Width WRITE SetWidth)
    Q_PROPERTY(double Height READ Height WRITE SetHeight)
    Q_PROPERTY(QObject* Font READ Font CONSTANT)
public:
    /// All are borrowed and outlive the window.
    frmtabGrid(projectdb::ProjectContext& project, const MResources::TextTable& texts,
               IAddIn& addIn, platform::Registry& registry, QWidget* parent = nullptr);
    ~frmtabGrid() override;

    /// Whether an edit of this project has been left by a program that has ended in its middle;
    /// or is just being kept by one that runs.
    [[nodiscard]] static bool HasDrafts(const QString& projectPath);

    /// Reads the settings beside the project and the project's languages, and applies them. With a
    /// place of another window on the same project that window's settings are in force.
    void Load(const EditorPlace* place = nullptr);
    /// Binds the grid to the recordsets of archives and trends, which are open, and lays its
    /// columns out as the settings say.
    void SetUpColumns();
    /// Where the user is; an edit that is pending is stored first.
    [[nodiscard]] EditorPlace Place();
    /// Goes on from there: order of the rows, current cells, keyboard. The node is open already.
    void ReturnTo(const EditorPlace& place);
    /// Writes the settings and lets go of all recordsets. What fails in writing is thrown when the
    /// recordsets have been let go of.
    void Unload();

    /// Sets the menus for a node of the host's tree. `popUp`: while the archive menu is shown as
    /// the context menu of the tree.
    void MenuSwitcher(const QString& nodeKey, bool popUp);
    /// The node that the menus stand for.
    [[nodiscard]] const QString& MenuNode() const noexcept { return nodeKey_; }
    /// Sets the caption for a node of the host's tree; `name` is the node's text.
    void MakeMyCaption(const QString& nodeKey, const QString& name);
    /// Marks the archive of the node in split 0; none for the root node.
    void MarkArchive(const QString& nodeKey);
    /// Writes what is being edited in the grid. False when that has failed: the user has been told,
    /// and what was typed is still in its cell. Whatever would take the cell away is left undone.
    bool CommitPendingEdit();
    /// The user has turned to the window: what others have changed meanwhile is shown, and the
    /// menus stand for the archive that is open.
    void Activate();
    /// The user has turned away: what was being edited is stored; false as CommitPendingEdit.
    bool Deactivate();
    /// Whether the archive of a node is still in the file. When another program has deleted it the
    /// user is told, and it goes from the list and the tree. True for nodes that are no archive's.
    [[nodiscard]] bool IsThere(const QString& nodeKey);
    /// Leads the keyboard to the find field, to narrow the list of archives.
    void FindArchives();
    /// Shows how the project differs from the one in a file, which the user knows by `name`.
    void CompareWith(const QString& file, const QString& name);
    /// Says in the status bar why a command cannot run; nothing when it can.
    void HintAt(commandset::Id id);
    /// How things stand for the commands.
    [[nodiscard]] commandset::Situation Situation();
    /// Runs a command, wherever it was asked for.
    void Run(commandset::Id id);
    /// So many steps of what the user has done, back or forward (commandset::Id::Undo, Redo).
    void GoSteps(commandset::Id direction, int steps);
    /// Runs an archive command: 0 New, 1 Edit, 2 Delete, 4 Show editor.
    void mnuArchiv_Click(int index);
    /// Runs a trend command: 0 New, 1 Edit, 2 Delete.
    void mnuTrend_Click(int index);
    /// Runs an extra: 0 Statistic, 1 Report, 2 Refresh, 4 Options.
    void mnuExtra_Click(int index);
    /// Shows where a variable is used, over a dialog; returns when the user has seen it.
    void ShowUsesOver(QWidget* owner, const QString& variable);
    /// Another language of the project's texts has been chosen.
    void dblangs_LanguageChanged();
    /// Shows the archive menu at the pointer and returns when it is closed.
    void PopUpArchiveMenu();
    /// Lays the window's parts out anew after one of them was shown or hidden.
    void Arrange();

    [[nodiscard]] NameLists& Names() noexcept { return names_; }
    [[nodiscard]] CInit& Settings();
    [[nodiscard]] const MResources::TextTable& Texts() const noexcept { return texts_; }

    // Properties of the settings file. The host lays an embedded window out; its state, place and
    // size are then only kept, so that they go back into the file as they came.
    [[nodiscard]] int WindowState() const;
    void SetWindowState(int state);  // 0 normal, 1 minimised, 2 maximised
    [[nodiscard]] double PosLeft() const;
    void SetPosLeft(double twips);
    [[nodiscard]] double PosTop() const;
    void SetPosTop(double twips);
    [[nodiscard]] double Width() const;
    void SetWidth(double twips);
    [[nodiscard]] double Height() const;
    void SetHeight(double twips);
    [[nodiscard]] QObject* Font() const;

    // projectdb::IEditorWindow
    void ReleaseTrends() override;
    void TrendsReloaded() override;
    void NamesInGroup(QStringView group) override;
    // projectdb::IProjectWork
    [[nodiscard]] ado::Connection& Connection() override;
    [[nodiscard]] bool MayStore() override;
    bool RunStep(const std::function<void()>& change) override;
    void GoStep(bool back) override;
    bool ShowPlace(const projectdb::Place& place) override;
    [[nodiscard]] std::optional<QString> ChooseVariable(QWidget* owner,
                                                        const QString& current) override;
    [[nodiscard]] std::optional<QStringList> ChooseVariables(QWidget* owner,
                                                             const QString& current) override;
    void ExportTrends(const std::vector<std::int32_t>& trends, QWidget* owner) override;
    void ShowHelpTopic(int topic, QWidget* owner) override;
    // projectdb::IStatusPanels
    [[nodiscard]] QString PanelText(int panel) const override;
    void SetPanelText(int panel, const QString& text) override;

    // Controls under their given names, objectName() alike. Those of the commands are in
    // EditorMenus.
    TDBGrid* tdbA = nullptr;
    QToolBar* tbrfunc = nullptr;
    QComboBox* cmbLanguage = nullptr;
    QLineEdit* txtFind = nullptr;
    QLabel* lblFound = nullptr;  // how many rows the find field leaves
    QStatusBar* sb = nullptr;
    QLabel* lblDone = nullptr;           // what has just happened
    QLabel* lblCells = nullptr;          // several cells that are selected; hidden otherwise
    QToolButton* cmdFindings = nullptr;  // how many findings there are; shows them
    QLabel* lblTextsMissing = nullptr;   // tells of trends that are not shown; hidden without any
    CDBLanguages* dblangs = nullptr;

signals:
    /// The user wants the database closed and opened again. That takes this window away: connect
    /// it queued.
    void ActualizeRequested();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    /// A row that the user has chosen in the report; connected to by name.
    void ShowReportedRow(const QString& projectPath, const QString& table, int id,
                         const QString& column);

private:
    void BuildMenus();
    [[nodiscard]] QLayout* BuildTopRow();
    void BuildGrid();
    void BuildStatusBar();
    [[nodiscard]] QWidget* BuildFindings();
    void ShowFindingCount();
    void ShowFindingsKey();
    /// With the keyboard in the list.
    void ShowFindings(bool show);
    void ToggleFindings();

    void ArchiveRowChanged();
    /// What has been changed since the last call becomes one step to be taken back.
    void EndStep();
    void ShowDone(const QString& step);
    /// Brings tree, lists and rows to what a step has changed, and the user there. `beside`: the
    /// archive to open when the one that is open has gone.
    void ShowChanges(const project::ChangeSet& changes, const QString& beside);
    /// From now on what is being edited outlives the program's end; what has been left is offered.
    void KeepDrafts();
    void WatchCell();
    void OfferDrafts();
    void Resume(const drafts::Draft& draft);
    void UpdateCommands();
    /// False for a project that can only be looked at.
    [[nodiscard]] bool CanWrite();
    [[nodiscard]] commandset::Place Place(int split) const;
    void ShowHelp();
    void FindInProject(bool replacing);
    [[nodiscard]] FReplace& ReplaceWindow();
    void ShowUsesOfCell();
    void MakeTrendsByPattern();
    void DuplicateArchiveByPattern();
    void ExportRows();
    void ShowExport(FExport::Selection selection, QWidget* owner);
    void ImportRows();
    /// Says something in the status bar for a while; nobody has to answer.
    void Hint(int text);
    void Hint(const QString& text);
    void ShowMissingTrends();
    void CountMissingTexts(ado::Recordset& shown);
    void ShowDataError(int number, const QString& text, const QString& details);
    void ChooseForCell(std::int64_t row, int column);
    void Tell(const QString& text);
    void OpenHeadingMenu(int split, int column, const QPoint& position);
    void FreezeName(bool freeze);
    void ShowFreezing();
    /// The user wants the find field, to narrow this split.
    void Find(int split);
    void ShowNarrowing();
    void ShowEmptiness();
    void OpenContextMenu(int split, const QPoint& position);
    void Copy();
    void Paste();
    void DuplicateSelection();
    void StepArchive(int step);
    void ReadArchives();
    /// The archives as the file has them now. When the one that is open has gone, `instead` is
    /// opened.
    void RefreshArchives(const QString& instead = {});
    /// Brings list and tree to the archives that the file has now; the open one may be among those
    /// that have gone, which is told.
    /// `instead`: opened without a word when the open one has gone; empty: the root is, and it is
    /// told.
    void FollowArchives(const QString& instead = {});
    void TellOfDeletedArchive(const QString& name);
    void ShowNewArchive(std::int32_t id);
    [[nodiscard]] QString ArchiveName(std::int32_t id);
    /// Key of the archive that comes after one in the list or tree that the user works in, or
    /// before it when it is the last; the root's when there is none.
    [[nodiscard]] QString ArchiveBeside(const QString& nodeKey);
    void PasteBlock(const QList<QStringList>& lines);
    void PasteRows(const std::vector<project::NewTrend>& pasted, const QList<GridCell>& cells);
    [[nodiscard]] QList<GridCell> CellsThatDiffer(int row, const project::NewTrend& trend,
                                                  QStringList& changes) const;
    /// Of pasted rows those that bear the name of a trend that is there are taken out when the user
    /// wants that, and become cells of it. False when he gives up.
    [[nodiscard]] bool TakeUpdates(std::vector<project::NewTrend>& pasted, QList<GridCell>& cells);
    void FillDown(bool counting, int sources = 0);
    void WriteBlock(const CellBlock::Result& block);
    void EditSelected();
    void EditArchives();
    [[nodiscard]] templates::TemplateFile TemplatesOfProject();
    [[nodiscard]] templates::Kind TemplateKind() const;
    void KeepTemplate();
    void ChooseTemplate();
    [[nodiscard]] std::optional<templates::Template> ChosenTemplate(templates::Kind kind);
    void TellOfTemplate(const QString& name, const project::Template& used);
    void WriteColumn(int column, const QVariant& value);
    void ShowCells();
    void ShowTrends(const std::vector<std::int32_t>& ids);
    void ChooseColour(int column, const QVariant& stored);
    void ShowProjectTable();
    void ShowReport();
    void ShowOptions();
    [[nodiscard]] DialogServices Services();
    /// `about`: what the question's title names; may be empty.
    [[nodiscard]] AskUser Question(const QString& about = {});
    [[nodiscard]] platform::Lcid CurrentLcid() const;
    [[nodiscard]] QString LanguageColumn() const;

    platform::Registry& registry_;
    projectdb::ProjectContext& project_;
    const MResources::TextTable& texts_;
    IAddIn& addIn_;
    NameLists names_;
    DialogNames dialogNames_{names_};
    projectdb::Hierarchy hierarchy_;
    std::unique_ptr<ArchiveCommands> archiveCommands_;
    std::unique_ptr<TrendCommands> trendCommands_;
    std::unique_ptr<EditorLayout> layout_;
    std::unique_ptr<EditorHistory> history_;
    std::unique_ptr<drafts::DraftKeeper> drafts_;
    EditorMenus* menus_ = nullptr;
    std::unique_ptr<EditorKeys> keys_;
    FReplace* replace_ = nullptr;  // null before it is first wanted
    FCompare* compare_ = nullptr;  // likewise
    std::array<QLabel*, 3> panels_{};
    findings::FindingPane* findings_ = nullptr;
    RecordsetModel* archives_ = nullptr;
    TrendRows* trends_ = nullptr;
    projectdb::RowFailures unreadable_;       // trends whose names are not known
    QPointer<frmProjectTable> projectTable_;  // null before it is first wanted
    QPointer<QObject> report_;        // belongs to its library; null before it is first wanted
    QString nodeKey_;                 // the node that the menus stand for
    bool marking_ = false;            // the selection in split 0 follows the tree just now
    int narrowed_ = 1;                // the split that the find field narrows
    bool narrowedToNothing_ = false;  // which is said in the status bar
    bool busy_ = false;               // a command runs
    bool active_ = false;             // the keyboard is in the window
    std::uint64_t shownContent_ = 0;  // of the file, when Activate has read it; 0: never
    bool columnsSetUp_ = false;
};
