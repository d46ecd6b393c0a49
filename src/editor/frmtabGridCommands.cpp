// The commands of the editor window.

#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QScopedValueRollback>
#include <QStatusBar>

#include "cells/HeadingMenu.h"
#include "commands/DuplicateCommands.h"
#include "commands/Statistic.h"
#include "commands/TrendCommands.h"
#include "controls/TDBGrid.h"
#include "dialogs/CellColour.h"
#include "dialogs/MConfigeditor.h"
#include "drafts/DraftKeeper.h"
#include "editor/EditorHistory.h"
#include "editor/EditorLayout.h"
#include "editor/EditorMenus.h"
#include "editor/frmtabGrid.h"
#include "editor/GridColumns.h"
#include "editor/MenuLetters.h"
#include "editor/TrendRows.h"
#include "guard/Guard.h"
#include "guard/RowProgress.h"
#include "messages/MessageBox.h"
#include "project/Schema.h"
#include "projectdb/NodeKey.h"
#include "projectdb/Text.h"
#include "records/CDBLanguages.h"
#include "records/MArchiv.h"
#include "records/MTrend.h"
#include "settings/CInit.h"
#include "templates/TemplateFile.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using guard::Guard;
using Command = ADOArchiv::Command;

constexpr int kNew = 0;
constexpr int kEdit = 1;
constexpr int kDelete = 2;
constexpr int kShowEditor = 4;

constexpr int kStatistic = 0;
constexpr int kReport = 1;
constexpr int kRefresh = 2;
constexpr int kOptions = 4;

std::vector<std::int32_t> Ids(const QList<GridRowId>& rows) {
    std::vector<std::int32_t> ids;
    for (const GridRowId row : rows) ids.push_back(static_cast<std::int32_t>(row));
    return ids;
}

QList<GridRowId> Rows(const std::vector<std::int32_t>& ids) {
    return {ids.begin(), ids.end()};
}

/// The pointer of a busy program while the scope lasts.
class Busy {
public:
    Busy() { messages::SetScreenPointer(messages::Pointer::Hourglass); }
    ~Busy() { messages::SetScreenPointer(messages::Pointer::Default); }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
};

}  // namespace

DialogServices frmtabGrid::Services() {
    DialogServices services{texts_, dialogNames_, {}, {}, {}, {}, {}};
    services.chooseVariable = [this](QWidget* owner, const QString& current) {
        return addIn_.ChooseVariable(owner, current);
    };
    services.showHelp = [this](int topic, QWidget* owner) { addIn_.ShowHelpTopic(topic, owner); };
    services.projectFolder = project_.projectPath.left(project_.projectPath.lastIndexOf(u'\\') + 1);
    if (const CDBLanguage* language = dblangs->Current()) services.textFont = language->font;
    services.settle = [this](const std::vector<project::Conflict>& conflicts, QWidget* owner) {
        return history_->Ask(conflicts, {}, owner);
    };
    services.drafts = drafts_.get();
    services.showUses = [this](QWidget* owner, const QString& variable) {
        ShowUsesOver(owner, variable);
    };
    return services;
}

platform::Lcid frmtabGrid::CurrentLcid() const {
    const CDBLanguage* language = dblangs != nullptr ? dblangs->Current() : nullptr;
    return language != nullptr ? language->lcid : 0;
}

QString frmtabGrid::LanguageColumn() const {
    return projectdb::ToQString(project::LanguageColumn(CurrentLcid()));
}

AskUser frmtabGrid::Question(const QString& about) {
    const bool ask = Settings().ReadAValueFromCInits(u"RequestOnDelete"_s, true).AsBoolean(true);
    if (!ask) return {};
    QString title = texts_.GetText(MResourceTable::kTextEditorTitle);
    if (!about.isEmpty()) title += u": "_s + about;
    return [this, title](const QString& question) {
        return messages::ShowMessage(question, messages::MessageButtons::OkCancelDefaultCancel,
                                     title, this) == messages::MessageResult::Ok;
    };
}

void frmtabGrid::Run(commandset::Id id) {
    using commandset::Id;
    switch (id) {
        case Id::NewArchive:
            return mnuArchiv_Click(kNew);
        case Id::EditArchive:
            return mnuArchiv_Click(kEdit);
        case Id::DeleteArchive:
            return mnuArchiv_Click(kDelete);
        case Id::ShowEditor:
            return mnuArchiv_Click(kShowEditor);
        case Id::NewTrend:
            return mnuTrend_Click(kNew);
        case Id::EditTrend:
            return mnuTrend_Click(kEdit);
        case Id::DeleteTrend:
            return mnuTrend_Click(kDelete);
        case Id::Statistic:
            return mnuExtra_Click(kStatistic);
        case Id::Report:
            return mnuExtra_Click(kReport);
        case Id::Refresh:
            return mnuExtra_Click(kRefresh);
        case Id::Options:
            return mnuExtra_Click(kOptions);
        case Id::ProjectTable:
            return ShowProjectTable();
        case Id::Undo:
        case Id::Redo:
            return GoSteps(id, 1);
        case Id::Clear:
            return tdbA->SplitAt(1).ClearCells();
        case Id::EditTrends:
            return EditSelected();
        case Id::EditArchives:
            return EditArchives();
        case Id::KeepTemplate:
            return KeepTemplate();
        case Id::Templates:
            return ChooseTemplate();
        case Id::Fill:
            return FillDown(false);
        case Id::FillCounting:
            return FillDown(true);
        case Id::SelectAll:
            return tdbA->SplitAt(tdbA->Split()).SelectAll();
        case Id::Copy:
            return Copy();
        case Id::Paste:
            return Paste();
        case Id::Duplicate:
            return DuplicateSelection();
        case Id::FreezeName:
            // A key does not tick the action, as its menu does.
            FreezeName(tdbA->SplitAt(1).FrozenColumn() != u"Name");
            return ShowFreezing();
        case Id::Find:
            return Find(tdbA->Split());
        case Id::FindInProject:
            return FindInProject(false);
        case Id::ReplaceInProject:
            return FindInProject(true);
        case Id::WhereUsed:
            return ShowUsesOfCell();
        case Id::TrendsByPattern:
            return MakeTrendsByPattern();
        case Id::Findings:
            return ToggleFindings();
        case Id::DuplicateByPattern:
            return DuplicateArchiveByPattern();
        case Id::Export:
            return ExportRows();
        case Id::Import:
            return ImportRows();
        case Id::Help:
            return ShowHelp();
        case Id::Separator:
            return;
    }
}

void frmtabGrid::mnuArchiv_Click(int index) {
    if (index == kShowEditor) return addIn_.ShowEditor();
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (index != kEdit && !MayStore()) return;
    const QScopedValueRollback busy(busy_, true);
    if (!CommitPendingEdit()) return;
    // The tree may have another node selected, of another editor; then the archive that is open.
    const QString selected = addIn_.SelectedNodeKey();
    const QString key = selected.isEmpty() ? project_.currentNodeKey : selected;
    if (index != kNew && !IsThere(key)) return;
    // Only this one is meant, whatever else was selected to be copied.
    tdbA->SplitAt(0).SelectRows({});
    const QString beside = index == kDelete ? ArchiveBeside(key) : QString();
    std::int32_t made = 0;
    const auto step = qScopeGuard([this] { EndStep(); });
    // What is done is shown, even when a later step of the command fails.
    const auto show = qScopeGuard([&] {
        Guard(u"frmtabGrid"_s, [&] {
            RefreshArchives(beside);
            if (made != 0) ShowNewArchive(made);
        });
    });
    switch (index) {
        case kNew: {
            const auto chosen = ChosenTemplate(templates::Kind::Archive);
            project::Template from{chosen ? chosen->settings : project::Values()};
            {
                const Busy pointer;
                made = archiveCommands_->New(LanguageColumn(), chosen ? &from : nullptr);
            }
            if (chosen) TellOfTemplate(chosen->name, from);
            return;
        }
        case kEdit:
            drafts_->SetPlace({drafts::Place::Kind::Archive, projectdb::NodeId(key), 0,
                               ArchiveName(projectdb::NodeId(key))});
            archiveCommands_->Edit(projectdb::NodeId(key),
                                   [&](ado::Recordset& archives, ado::Recordset& texts,
                                       const std::function<void()>& save) {
                                       return MArchiv::EditArchive({archives, texts, CurrentLcid()},
                                                                   Services(), this, save);
                                   });
            return;
        case kDelete: {
            RowProgress progress(texts_, MResourceTable::kTextDeletingTrends, this);
            archiveCommands_->Delete(key, Question(ArchiveName(projectdb::NodeId(key))),
                                     progress.Function());
            return;
        }
        default:
            return;
    }
}

void frmtabGrid::mnuTrend_Click(int index) {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (index != kEdit && !MayStore()) return;
    const QScopedValueRollback busy(busy_, true);
    if (!CommitPendingEdit()) return;
    if (!IsThere(project_.currentNodeKey)) return;
    const auto step = qScopeGuard([this] { EndStep(); });
    GridSplit& trends = tdbA->SplitAt(1);
    switch (index) {
        case kNew: {
            const auto chosen = ChosenTemplate(templates::Kind::Trend);
            project::Template from{chosen ? chosen->settings : project::Values()};
            const std::int32_t id = [&] {
                const Busy pointer;
                return trendCommands_->New(chosen ? &from : nullptr);
            }();
            if (id == 0) return;
            if (chosen) TellOfTemplate(chosen->name, from);
            ShowTrends({id});
            trends.BeginRow();
            return;
        }
        case kEdit: {
            const GridRowId row = trends.CurrentRow();
            if (row == kNoGridRow) return;
            drafts_->SetPlace({drafts::Place::Kind::Trend,
                               projectdb::NodeId(project_.currentNodeKey),
                               static_cast<std::int32_t>(row),
                               trends.CellText(row, trends.ColumnIndex(u"Name"))});
            const bool edited =
                trendCommands_->Edit(static_cast<std::int32_t>(row), [&](ado::Recordset& rows) {
                    return MTrend::EditTrend(rows, CurrentLcid(), Services(), this);
                });
            if (edited) projectdb::ReloadTrends(project_, *this);
            return;
        }
        case kDelete: {
            RowProgress progress(texts_, MResourceTable::kTextDeletingTrends, this);
            trendCommands_->Delete(Ids(trends.SelectedRows()), Question(), progress.Function());
            return;
        }
        default:
            return;
    }
}

void frmtabGrid::mnuExtra_Click(int index) {
    if (!CommitPendingEdit()) return;
    switch (index) {
        case kStatistic:
            return Statistic::Show(project_.Environment(), hierarchy_.Counters());
        case kReport:
            return ShowReport();
        case kRefresh:
            emit ActualizeRequested();
            return;
        case kOptions:
            return ShowOptions();
        default:
            return;
    }
}

void frmtabGrid::ShowOptions() {
    const MConfigeditor::Session session{Settings(),
                                         *tdbA,
                                         *sb,
                                         texts_,
                                         Services().showHelp,
                                         [this] { layout_->TakeColumnOrders(); }};
    if (MConfigeditor::EditOptions(session, this)) Arrange();
}

void frmtabGrid::DuplicateSelection() {
    if (busy_) return Hint(MResourceTable::kTextHintBusy);
    if (!MayStore()) return;
    const QScopedValueRollback busy(busy_, true);
    if (!CommitPendingEdit()) return;
    if (!IsThere(project_.currentNodeKey)) return;
    const auto step = qScopeGuard([this] { EndStep(); });
    DuplicateCommands commands(project_, *this, names_, texts_, addIn_);
    RowProgress progress(texts_, MResourceTable::kTextCopyingTrends, this);
    if (tdbA->Split() == 0) {
        if (tdbA->SplitAt(0).CurrentRow() == kNoGridRow) return;
        const auto archive = static_cast<std::int32_t>(tdbA->SplitAt(0).CurrentRow());
        const auto copy = commands.DuplicateArchive(archive, progress.Function());
        if (!copy) return;
        RefreshArchives();
        addIn_.SelectArchive(projectdb::ArchiveNodeKey(*copy));
        return;
    }
    GridSplit& trends = tdbA->SplitAt(1);
    QList<GridRowId> rows = trends.SelectedRows();
    if (rows.isEmpty() && trends.CurrentRow() != kNoGridRow) rows.append(trends.CurrentRow());
    ShowTrends(commands.DuplicateTrends(Ids(rows), progress.Function()));
}

/// Selects new trends, with the first one's name as the current cell and the keyboard there. What
/// narrows the split would hide them.
void frmtabGrid::ShowTrends(const std::vector<std::int32_t>& ids) {
    if (ids.empty()) return;
    GridSplit& trends = tdbA->SplitAt(1);
    const int name = trends.ColumnIndex(u"Name");
    if (!trends.SetCurrentCell(ids.front(), name)) {
        txtFind->clear();
        trends.SetCurrentCell(ids.front(), name);
    }
    trends.SelectRows(Rows(ids));
    tdbA->SetSplit(1);
}

void frmtabGrid::ChooseForCell(GridRowId row, int column) {
    if (!CommitPendingEdit()) return;
    GridSplit& trends = tdbA->SplitAt(1);
    const int place = trends_->RowOf(row);
    if (place < 0) return;
    const QVariant stored = trends_->index(place, column).data(GridRole::kStored);
    if (trends.ColumnAt(column)->Kind() == GridKind::Colour) {
        return ChooseColour(column, stored);
    }
    const auto variable = addIn_.ChooseVariable(this, stored.toString());
    if (variable) WriteColumn(column, *variable);
}

void frmtabGrid::ChooseColour(int column, const QVariant& stored) {
    ChooseCellColour(tdbA->SplitAt(1), stored, texts_, [=, this](int color) {
        Guard(u"frmtabGrid: tdbA"_s, [&] { WriteColumn(column, color); });
    });
}

void frmtabGrid::ShowDataError(int number, const QString& text, const QString& details) {
    QString message = texts_.GetText(MResourceTable::kTextGridError) + QString::number(number);
    const QString cause =
        number == TrendRows::kRowChanged ? texts_.GetText(MResourceTable::kTextRowChanged) : text;
    if (!cause.isEmpty()) message += u"\n\n"_s + cause;
    messages::ShowMessage({message, messages::MessageButtons::Ok,
                           texts_.GetText(MResourceTable::kTextEditorTitle), details},
                          this);
    if (number != TrendRows::kRowChanged) return;
    messages::ShowMessage(texts_.GetText(MResourceTable::kTextError) + QString::number(number) +
                              texts_.GetText(MResourceTable::kTextOutOfStep),
                          messages::MessageButtons::Ok, u"No way out"_s, this);
    projectdb::ReloadTrends(project_, *this);
    const QList<GridRowId> rows = tdbA->SplitAt(1).ShownRows();
    if (!rows.isEmpty()) tdbA->SplitAt(1).SetCurrentCell(rows.front());
}

void frmtabGrid::OpenContextMenu(int split, const QPoint& position) {
    QMenu menu(this);
    menus_->FillContextMenu(menu, Place(split));
    GridSplit& grid = tdbA->SplitAt(split);
    QMenu* column = menu.addMenu(texts_.GetText(MResourceTable::kTextColumnMenu));
    HeadingMenu::Fill(*column, grid, grid.CurrentColumn(), texts_, GridColumns::IsForUser);
    const MenuLetters letters(menu);
    menu.exec(position);
}

void frmtabGrid::OpenHeadingMenu(int split, int column, const QPoint& position) {
    QMenu menu(this);
    menu.setObjectName(u"mnuHead"_s);
    HeadingMenu::Fill(menu, tdbA->SplitAt(split), column, texts_, GridColumns::IsForUser);
    menu.exec(position);
}
