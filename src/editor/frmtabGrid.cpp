#include "editor/frmtabGrid.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QScopedValueRollback>
#include <QStatusBar>
#include <QToolBar>
#include <QVBoxLayout>
#include <tuple>
#include <utility>

#include "commands/TrendCommands.h"
#include "controls/FontProperties.h"
#include "controls/TDBGrid.h"
#include "drafts/DraftKeeper.h"
#include "editor/EditorHistory.h"
#include "editor/EditorKeys.h"
#include "editor/EditorLayout.h"
#include "editor/EditorMenus.h"
#include "editor/GridColumns.h"
#include "editor/TrendRows.h"
#include "findings/FindingPane.h"
#include "guard/Guard.h"
#include "messages/MessageBox.h"
#include "messages/PlainTexts.h"
#include "projectdb/NodeKey.h"
#include "records/CDBLanguages.h"
#include "settings/CInit.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using guard::Guard;
using Command = ADOArchiv::Command;

}  // namespace

frmtabGrid::frmtabGrid(projectdb::ProjectContext& project, const MResources::TextTable& texts,
                       IAddIn& addIn, platform::Registry& registry, QWidget* parent)
    : QWidget(parent),
      registry_(registry),
      project_(project),
      texts_(texts),
      addIn_(addIn),
      hierarchy_(project, *this, *this),
      archiveCommands_(
          std::make_unique<ArchiveCommands>(project, hierarchy_, names_, texts, addIn)),
      trendCommands_(std::make_unique<TrendCommands>(project, hierarchy_, *this, names_, texts)),
      layout_(std::make_unique<EditorLayout>(*this)),
      history_(std::make_unique<EditorHistory>(project, texts, *this)) {
    setObjectName(u"frmtabGrid"_s);
    messages::KeepTextsPlain(*this);
    setWindowTitle(texts_.GetText(MResourceTable::kTextEditorTitle));
    BuildMenus();
    BuildGrid();
    BuildStatusBar();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->setMenuBar(menus_->Bar());
    layout->addLayout(BuildTopRow());
    layout->addWidget(BuildFindings(), 1);
    layout->addWidget(sb);
    setFocusProxy(tdbA);
    MenuSwitcher({}, false);
}

frmtabGrid::~frmtabGrid() = default;

void frmtabGrid::Load(const EditorPlace* place) {
    ADOArchiv& environment = project_.Environment();
    ReadArchives();
    trends_->AttachTrends(environment.Recordset(Command::tabTrends), environment.Connection(), {});
    GridColumns::SetUpArchives(tdbA->SplitAt(0), texts_);
    GridColumns::SetUpTrends(tdbA->SplitAt(1), texts_);
    GridColumns::SetUpUnits(tdbA->SplitAt(1), environment.Connection());
    layout_->LoadDefaults();
    dblangs = new CDBLanguages(registry_, this);
    dblangs->setObjectName(u"dblangs"_s);
    dblangs->Init(environment.PrepareRecordset(Command::IdxTexts),
                  environment.PrepareRecordset(Command::TLanguages), project_.projectPath);
    environment.PrepareRecordset(Command::IdxTexts);
    layout_->LoadFile(project_.projectPath);
    if (place != nullptr) layout_->Continue(place->settings);
    dblangs->InitLanguageComboBox(*cmbLanguage, dblangs->StartLanguage(layout_->StoredLcid()));
    connect(dblangs, &CDBLanguages::LanguageChanged, this, [this] {
        Guard(u"frmtabGrid: dblangs_LanguageChanged"_s, [&] { dblangs_LanguageChanged(); });
    });
    layout_->Apply();
}

void frmtabGrid::SetUpColumns() {
    layout_->ApplyColumnOrders();
    TrendsReloaded();
    KeepDrafts();
    findings_->Watch();
}

void frmtabGrid::Unload() {
    const QScopedValueRollback marking(marking_, true);
    CommitPendingEdit();
    findings_->Stop();
    const auto release = qScopeGuard([&] {
        archives_->Detach();
        trends_->Detach();
    });
    if (dblangs != nullptr) layout_->Save(CurrentLcid());
}

void frmtabGrid::MenuSwitcher(const QString& nodeKey, bool popUp) {
    nodeKey_ = nodeKey;
    menus_->ShowAtTree(popUp);
    UpdateCommands();
}

bool frmtabGrid::CanWrite() {
    const ado::Connection& connection = project_.Environment().Connection();
    return connection.State() == ado::ObjectState::Closed || connection.IsWritable();
}

void frmtabGrid::MakeMyCaption(const QString& nodeKey, const QString& name) {
    const QStringView kind = projectdb::NodeKind(nodeKey);
    const QString title = texts_.GetText(MResourceTable::kTextEditorTitle);
    if (kind == projectdb::kRootKind) setWindowTitle(title);
    if (kind == projectdb::kArchiveKind) setWindowTitle(title + u": "_s + name);
}

void frmtabGrid::MarkArchive(const QString& nodeKey) {
    const QScopedValueRollback marking(marking_, true);
    const bool archive = projectdb::NodeKind(nodeKey) == projectdb::kArchiveKind;
    GridSplit& archives = tdbA->SplitAt(0);
    // One that is narrowed out is marked nowhere, rather than another one.
    if (!archive || !archives.SetCurrentCell(projectdb::NodeId(nodeKey))) {
        archives.SetCurrentCell(kNoGridRow);
    }
}

void frmtabGrid::ArchiveRowChanged() {
    const GridRowId row = tdbA->SplitAt(0).CurrentRow();
    if (marking_ || row == kNoGridRow) return;
    const QString key = projectdb::ArchiveNodeKey(static_cast<std::int32_t>(row));
    if (key == project_.currentNodeKey) return;
    if (!CommitPendingEdit()) return MarkArchive(project_.currentNodeKey);
    addIn_.SelectArchive(key);
}

void frmtabGrid::StepArchive(int step) {
    const QList<GridRowId> rows = tdbA->SplitAt(0).ShownRows();
    const qsizetype at = rows.indexOf(tdbA->SplitAt(0).CurrentRow());
    const qsizetype next = at < 0 ? 0 : at + step;
    if (next < 0 || next >= rows.size()) return Hint(MResourceTable::kTextHintNoFurtherArchive);
    if (!CommitPendingEdit()) return;
    addIn_.SelectArchive(projectdb::ArchiveNodeKey(static_cast<std::int32_t>(rows[next])));
}

bool frmtabGrid::CommitPendingEdit() {
    return tdbA->CommitPendingEdit();
}

void frmtabGrid::Activate() {
    active_ = true;
    MenuSwitcher(project_.currentNodeKey, false);
    findings_->Look();
    // A command that runs brings the rows up to date itself.
    if (busy_ || trendCommands_->IsEditing()) return;
    const std::uint64_t content = project_.Environment().Connection().ContentNumber();
    // What could not be read is tried again.
    if (content == shownContent_ && archives_->IsWhole() && trends_->IsWhole()) return;
    FollowArchives();
    projectdb::ReloadTrends(project_, *this);
    shownContent_ = content;
}

bool frmtabGrid::Deactivate() {
    active_ = false;
    UpdateCommands();
    return CommitPendingEdit();
}

// The texts of the grid and the menus stay: the interface speaks the station's language. What
// depends on the project's language is read when it is used, by the dialogs and the commands.
void frmtabGrid::dblangs_LanguageChanged() {
    CommitPendingEdit();
    // Or the next arrow key, meant for the rows, would go on in the list of languages.
    tdbA->SetSplit(tdbA->Split());
    projectdb::ReloadTrends(project_, *this);
}

void frmtabGrid::PopUpArchiveMenu() {
    menus_->MenuOf(u"mnuArchive")->exec(QCursor::pos());
}

void frmtabGrid::Arrange() {
    layout()->activate();
}

CInit& frmtabGrid::Settings() {
    return layout_->Settings();
}

int frmtabGrid::WindowState() const {
    return layout_->WindowState();
}

void frmtabGrid::SetWindowState(int state) {
    layout_->SetWindowState(state);
}

double frmtabGrid::PosLeft() const {
    return layout_->Position().x();
}

void frmtabGrid::SetPosLeft(double twips) {
    layout_->SetPosition({twips, layout_->Position().y()});
}

double frmtabGrid::PosTop() const {
    return layout_->Position().y();
}

void frmtabGrid::SetPosTop(double twips) {
    layout_->SetPosition({layout_->Position().x(), twips});
}

double frmtabGrid::Width() const {
    return layout_->Size().width();
}

void frmtabGrid::SetWidth(double twips) {
    layout_->SetSize({twips, layout_->Size().height()});
}

double frmtabGrid::Height() const {
    return layout_->Size().height();
}

void frmtabGrid::SetHeight(double twips) {
    layout_->SetSize({layout_->Size().width(), twips});
}

QObject* frmtabGrid::Font() const {
    return layout_->Font();
}

void frmtabGrid::ReleaseTrends() {
    trends_->Detach();
}

void frmtabGrid::TrendsReloaded() {
    ado::Recordset& trends = project_.Environment().Recordset(Command::tabTrends);
    trends_->AttachTrends(trends, project_.Environment().Connection(),
                          projectdb::NodeId(project_.currentNodeKey));
    CountMissingTexts(trends);
    UpdateCommands();
    if (unreadable_.Count() > 0) {
        QMetaObject::invokeMethod(this, &frmtabGrid::ShowMissingTrends, Qt::QueuedConnection);
    }
}

/// Trends that name no index text stand in no row of the query, though they count as trends of the
/// archive wherever those are counted.
void frmtabGrid::CountMissingTexts(ado::Recordset& shown) {
    std::size_t missing = 0;
    try {
        projectdb::ProjectRows rows(project_.Environment());
        std::ignore = rows.SeekTrendsOf(projectdb::NodeId(project_.currentNodeKey));
        const std::size_t all = rows.Trends().RecordCount();
        const std::size_t there = shown.RecordCount();
        missing = all > there ? all - there : 0;
    } catch (const ado::AdoError&) {
        // Rows that cannot be read are told of where they are shown.
    }
    const int text =
        missing == 1 ? MResourceTable::kTextOneTextMissing : MResourceTable::kTextTextsMissing;
    lblTextsMissing->setText(
        missing == 0 ? QString() : texts_.GetText(text, {{u"n", QString::number(missing)}}));
    lblTextsMissing->setVisible(missing > 0);
}

// Of missing archives the add-in tells, which reads them first.
void frmtabGrid::ShowMissingTrends() {
    Guard(u"frmtabGrid"_s, [&] {
        const projectdb::RowFailures& missing =
            unreadable_.Count() > 0 ? unreadable_ : trends_->Missing();
        if (missing.Count() == 0) return;  // another archive has been opened meanwhile
        messages::Message message =
            guard::ToMessage(missing, texts_.GetText(MResourceTable::kTextUnreadableRows),
                             u"frmtabGrid: TrendsReloaded"_s);
        message.title = texts_.GetText(MResourceTable::kTextEditorTitle);
        messages::ShowMessage(message, this);
    });
}

void frmtabGrid::Tell(const QString& text) {
    messages::ShowMessage(text, messages::MessageButtons::Ok,
                          texts_.GetText(MResourceTable::kTextEditorTitle), this);
}

void frmtabGrid::NamesInGroup(QStringView group) {
    const projectdb::RowFailures unreadable = names_.NamesInGroup(group, project_.Environment());
    if (group == projectdb::kTrendNames) unreadable_ = unreadable;
}

QString frmtabGrid::PanelText(int panel) const {
    return panels_.at(static_cast<std::size_t>(panel - 1))->text();
}

void frmtabGrid::SetPanelText(int panel, const QString& text) {
    sb->clearMessage();  // a hint hides the panels
    panels_.at(static_cast<std::size_t>(panel - 1))->setText(text);
}

void frmtabGrid::keyPressEvent(QKeyEvent* event) {
    bool used = false;
    Guard(u"frmtabGrid: KeyDown"_s, [&] { used = keys_->Press(*event, Place(tdbA->Split())); });
    if (!used) QWidget::keyPressEvent(event);
}

bool frmtabGrid::eventFilter(QObject* watched, QEvent* event) {
    if (watched == cmbLanguage && event->type() == QEvent::Wheel && !cmbLanguage->hasFocus()) {
        event->ignore();
        return true;
    }
    if (watched == cmbLanguage && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) {
            tdbA->SetSplit(tdbA->Split());
            return true;
        }
        // Chosen in the list: a key in passing must not turn the language of all texts.
        if (key == Qt::Key_Down || key == Qt::Key_Up) {
            cmbLanguage->showPopup();
            return true;
        }
    }
    if (watched == txtFind && event->type() == QEvent::FocusIn) {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        // Keys have said already what is to be narrowed.
        const bool turnedTo = reason != Qt::PopupFocusReason &&
                              reason != Qt::ActiveWindowFocusReason &&
                              reason != Qt::ShortcutFocusReason;
        if (turnedTo && narrowed_ != tdbA->Split()) {
            narrowed_ = tdbA->Split();
            txtFind->clear();
            ShowNarrowing();
        }
    }
    if (watched == txtFind && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape) txtFind->clear();
        if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter ||
            key == Qt::Key_Down) {
            tdbA->SetSplit(narrowed_);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}
