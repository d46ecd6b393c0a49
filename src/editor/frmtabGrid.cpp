#include "editor/frmtabGrid.h"

#include <QCursor>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScopedValueRollback>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QVBoxLayout>

#include "editor/GridColumns.h"
#include "editor/RecordsetModel.h"
#include "languages/MResourceTable.h"
#include "platform/MessageBox.h"
#include "projectdb/Guard.h"
#include "projectdb/NodeKey.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kSeparator = 3;
constexpr int kShowEditor = 4;

struct ArchiveCommand {
    int text;
    bool available;  // false: shown, but greyed whatever node is selected
};
constexpr std::array<ArchiveCommand, 5> kArchiveCommands = {{
    {MResourceTable::kTextNewArchive, false},
    {MResourceTable::kTextEditArchive, false},
    {MResourceTable::kTextDeleteArchive, false},
    {0, true},
    {MResourceTable::kTextShowEditor, true},
}};

constexpr int kPanelCount = 3;
constexpr int kMaximumColumnWidth = 260;  // pixels; longer texts are shown as tool tip

QString ArrayName(QStringView name, int index) {
    return u"%1(%2)"_s.arg(name).arg(index);
}

}  // namespace

frmtabGrid::frmtabGrid(projectdb::ProjectContext& project, const MResources::TextTable& texts,
                       IAddIn& addIn, QWidget* parent)
    : QWidget(parent), project_(project), texts_(texts), addIn_(addIn) {
    setObjectName(u"frmtabGrid"_s);
    setWindowTitle(texts_.GetText(MResourceTable::kTextEditorTitle));
    BuildMenus();
    BuildGrid();
    BuildStatusBar();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->setMenuBar(bar_);
    layout->addWidget(grid_, 1);
    layout->addWidget(sb);
    setFocusProxy(splits_[1]);
}

frmtabGrid::~frmtabGrid() = default;

void frmtabGrid::BuildMenus() {
    bar_ = new QMenuBar(this);
    bar_->setNativeMenuBar(false);  // the window stands inside the host's

    mnuArchive = bar_->addMenu(texts_.GetText(MResourceTable::kTextMenuArchive));
    mnuArchive->setObjectName(u"mnuArchive"_s);
    for (int i = 0; i < static_cast<int>(mnuArchiv.size()); ++i) {
        const int text = kArchiveCommands[static_cast<std::size_t>(i)].text;
        QAction* action =
            text == 0 ? mnuArchive->addSeparator() : mnuArchive->addAction(texts_.GetText(text));
        action->setObjectName(ArrayName(u"mnuArchiv", i));
        connect(action, &QAction::triggered, this, [this, i] {
            projectdb::Guard(u"frmtabGrid: mnuArchiv_Click"_s, [&] { mnuArchiv_Click(i); });
        });
        mnuArchiv[static_cast<std::size_t>(i)] = action;
    }

    mnuExtras = bar_->addMenu(texts_.GetText(MResourceTable::kTextMenuExtras));
    mnuExtras->setObjectName(u"mnuExtras"_s);
    QAction* actualize =
        mnuExtras->addAction(texts_.GetText(MResourceTable::kTextActualizeConnection));
    actualize->setObjectName(ArrayName(u"mnuExtra", 2));
    connect(actualize, &QAction::triggered, this, &frmtabGrid::ActualizeRequested);

    MenuSwitcher({}, false);
}

void frmtabGrid::BuildGrid() {
    grid_ = new QSplitter(this);
    grid_->setObjectName(u"tdbA"_s);
    grid_->setChildrenCollapsible(false);
    archives_ = new RecordsetModel(texts_, this);
    trends_ = new RecordsetModel(texts_, this);
    // Queued: a view may be reading in the middle of its layout.
    connect(trends_, &RecordsetModel::RowsMissing, this, &frmtabGrid::ShowMissingTrends,
            Qt::QueuedConnection);
    const std::array<RecordsetModel*, 2> models = {archives_, trends_};
    for (std::size_t i = 0; i < splits_.size(); ++i) {
        auto* view = new QTableView(grid_);
        view->setObjectName(ArrayName(u"tdbA.Splits", static_cast<int>(i)));
        view->setModel(models[i]);
        view->setSelectionBehavior(QAbstractItemView::SelectRows);
        view->setEditTriggers(QAbstractItemView::NoEditTriggers);
        view->setAlternatingRowColors(true);
        view->setWordWrap(false);
        view->setTabKeyNavigation(false);  // Tab goes on to the other split
        view->verticalHeader()->hide();
        view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        view->verticalHeader()->setDefaultSectionSize(view->fontMetrics().height() + 6);
        view->horizontalHeader()->setHighlightSections(false);
        view->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        splits_[i] = view;
    }
    splits_[0]->setSelectionMode(QAbstractItemView::SingleSelection);
    splits_[0]->horizontalHeader()->setStretchLastSection(true);
    grid_->setStretchFactor(0, 0);
    grid_->setStretchFactor(1, 1);
    grid_->setSizes({280, 720});
    connect(splits_[0]->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &frmtabGrid::ArchiveRowChanged);
}

void frmtabGrid::BuildStatusBar() {
    sb = new QStatusBar(this);
    sb->setObjectName(u"sb"_s);
    sb->setSizeGripEnabled(false);
    for (int i = 0; i < kPanelCount; ++i) {
        auto* panel = new QLabel(texts_.GetText(MResourceTable::kTextFirstPanel + i), sb);
        panel->setObjectName(ArrayName(u"sb.Panels", i + 1));
        sb->addWidget(panel, i == 0 ? 2 : 1);
    }
}

void frmtabGrid::SetUpColumns() {
    archives_->Attach(project_.Environment().Recordset(ADOArchiv::Command::Archives),
                      GridColumns::OfArchives(texts_));
    splits_[0]->setColumnWidth(0, 110);
    splits_[0]->setColumnWidth(1, 150);
    TrendsReloaded();
}

void frmtabGrid::Unload() {
    const QScopedValueRollback marking(marking_, true);
    archives_->Detach();
    trends_->Detach();
}

void frmtabGrid::MenuSwitcher(const QString& nodeKey, bool popUp) {
    const QStringView kind = projectdb::NodeKind(nodeKey);
    const auto enable = [this](std::size_t index, bool enabled) {
        mnuArchiv[index]->setEnabled(enabled && kArchiveCommands[index].available);
    };
    enable(0, kind == projectdb::kRootKind);
    enable(1, kind == projectdb::kArchiveKind);
    enable(2, kind == projectdb::kArchiveKind);
    mnuArchiv[kSeparator]->setVisible(popUp);
    mnuArchiv[kShowEditor]->setVisible(popUp);
}

void frmtabGrid::MakeMyCaption(const QString& nodeKey, const QString& name) {
    const QStringView kind = projectdb::NodeKind(nodeKey);
    const QString title = texts_.GetText(MResourceTable::kTextEditorTitle);
    if (kind == projectdb::kRootKind) setWindowTitle(title);
    if (kind == projectdb::kArchiveKind) setWindowTitle(title + u": "_s + name);
}

void frmtabGrid::MarkArchive(const QString& nodeKey) {
    const QScopedValueRollback marking(marking_, true);
    int row = -1;
    if (projectdb::NodeKind(nodeKey) == projectdb::kArchiveKind) {
        row = archives_->RowOf(projectdb::NodeId(nodeKey));
    }
    if (row < 0) {
        splits_[0]->setCurrentIndex({});
        splits_[0]->clearSelection();
    } else if (splits_[0]->currentIndex().row() != row) {
        splits_[0]->setCurrentIndex(archives_->index(row, 0));
    }
}

void frmtabGrid::mnuArchiv_Click(int index) {
    if (index == kShowEditor) addIn_.ShowEditor();
}

void frmtabGrid::PopUpArchiveMenu() {
    mnuArchive->exec(QCursor::pos());
}

void frmtabGrid::ReleaseTrends() {
    trends_->Detach();
}

void frmtabGrid::TrendsReloaded() {
    ado::Recordset& trends = project_.Environment().Recordset(ADOArchiv::Command::tabTrends);
    trends_->Attach(trends, GridColumns::OfTrends(trends, texts_));
    if (trendWidthsSet_) return;
    trends_->fetchMore({});
    if (trends_->rowCount() == 0) return;
    splits_[1]->resizeColumnsToContents();
    for (int i = 0; i < trends_->columnCount(); ++i) {
        if (splits_[1]->columnWidth(i) > kMaximumColumnWidth) {
            splits_[1]->setColumnWidth(i, kMaximumColumnWidth);
        }
    }
    trendWidthsSet_ = true;
}

// Of missing archives the add-in tells, which reads them first.
void frmtabGrid::ShowMissingTrends() {
    projectdb::Guard(u"frmtabGrid"_s, [&] {
        const QString text =
            trends_->Missing().Text(texts_.GetText(MResourceTable::kTextMoreFailures));
        if (text.isEmpty()) return;  // another archive has been opened meanwhile
        platform::ShowMessage(text, platform::MessageButtons::Ok, u"frmtabGrid"_s);
    });
}

// Nothing uses the lists of names yet.
void frmtabGrid::NamesInGroup(QStringView /*group*/) {}

void frmtabGrid::ArchiveRowChanged(const QModelIndex& current) {
    if (marking_ || !current.isValid()) return;
    projectdb::Guard(u"frmtabGrid"_s, [&] {
        addIn_.SelectArchive(projectdb::ArchiveNodeKey(archives_->IdAt(current.row())));
    });
}
