#include "projecttable/frmProjectTable.h"

#include <algorithm>
#include <optional>
#include <QAction>
#include <QComboBox>
#include <QEvent>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QStatusBar>
#include <QThread>
#include <QToolBar>
#include <QVBoxLayout>

#include "cells/GridTexts.h"
#include "cells/HeadingMenu.h"
#include "cells/TrendColumns.h"
#include "commandset/CommandSet.h"
#include "commandset/OwnKeys.h"
#include "controls/TDBGrid.h"
#include "guard/Guard.h"
#include "icons/Icons.h"
#include "messages/PlainTexts.h"
#include "paths/NativePath.h"
#include "platform/HelpTopics.h"
#include "platform/Locale.h"
#include "projectdb/Text.h"
#include "texts/Language.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;
using guard::Guard;

namespace {

const QString kProcedure = u"frmProjectTable"_s;
constexpr QSize kFirstSize(1100, 640);
// Twips.
constexpr double kArchivesWidth = 3900;
constexpr double kArchiveNameWidth = 2400;
constexpr double kCountWidth = 900;
constexpr double kTextWidth = 2600;
constexpr int kFindWidth = 32;   // average characters
constexpr int kHintTime = 8000;  // ms

}  // namespace

frmProjectTable::frmProjectTable(const MResources::TextTable& texts, projectdb::IProjectWork& work,
                                 QWidget* owner)
    : QWidget(owner, Qt::Window), texts_(texts), work_(work) {
    setObjectName(u"frmProjectTable"_s);
    messages::KeepTextsPlain(*this);
    setAttribute(Qt::WA_DeleteOnClose);
    const QString source = QString::fromStdString(work_.Connection().DataSource());
    const QString name = source.mid(source.lastIndexOf(u'\\') + 1);
    setWindowTitle(texts_.GetText(MResourceTable::kTextTableTitle, {{u"project", name}}));
    views_ = std::make_unique<TableViews>(
        QString::fromStdString(paths::ToNative(work_.Connection().DataSource())));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    BuildTop(*layout);
    BuildGrid();
    layout->addWidget(BuildNotAll());
    layout->addWidget(tdbTable, 1);
    sb = new QStatusBar(this);
    sb->setObjectName(u"sb"_s);
    lblCount = new QLabel(sb);
    lblCount->setObjectName(u"lblCount"_s);
    sb->addPermanentWidget(lblCount);
    lblCells = new QLabel(sb);
    lblCells->setObjectName(u"lblCells"_s);
    sb->addPermanentWidget(lblCells);
    layout->addWidget(sb);
    FillViews({});
    resize(kFirstSize);
}

// The thread works for the window alone, and its end takes milliseconds.
frmProjectTable::~frmProjectTable() {
    if (reader_ != nullptr) reader_->wait();
    tdbTable->SplitAt(0).SetSource(nullptr);
    tdbTable->SplitAt(1).SetSource(nullptr);
}

void frmProjectTable::Open() {
    show();
    raise();
    activateWindow();
    if (!isWhole_ && !IsReading()) ReadRows();
}

QAction* frmProjectTable::Add(const QString& name, const QString& text, const QKeySequence& keys,
                              const QString& icon, const std::function<void()>& run) {
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    if (!icon.isEmpty()) action->setIcon(icons::Icon(icon));
    SetKeys(*action, keys);
    addAction(action);
    connect(action, &QAction::triggered, this, [run] { Guard(kProcedure, run); });
    return action;
}

void frmProjectTable::SetKeys(QAction& action, const QKeySequence& keys) {
    action.setShortcut(keys);
    if (keys.isEmpty()) return action.setToolTip({});  // its text
    action.setToolTip(action.text().remove(u'&') + u" ("_s +
                      keys.toString(QKeySequence::NativeText) + u')');
}

/// The keys of what the editor has too are the user's. Where one is the window's own here, the
/// window's stands: of two that mean one key neither would run.
void frmProjectTable::ShowSharedKeys() {
    for (const commandset::Command& command : commandset::Commands()) {
        const auto shared = std::find_if(
            shared_.begin(), shared_.end(),
            [&](const QAction* action) { return action->objectName() == command.name; });
        if (shared == shared_.end()) continue;
        const std::optional<QKeyCombination> key = commandset::FirstKey(command);
        const QKeySequence keys = key ? QKeySequence(*key) : QKeySequence();
        const QList<QAction*> all = actions();
        const bool isTaken = std::any_of(all.begin(), all.end(), [&](QAction* action) {
            return key && !shared_.contains(action) && action->shortcut() == keys;
        });
        SetKeys(**shared, isTaken ? QKeySequence() : keys);
    }
}

void frmProjectTable::BuildTop(QVBoxLayout& layout) {
    auto* bar = new QToolBar(this);
    bar->setObjectName(u"tbrTable"_s);
    cmbView = new QComboBox(bar);
    cmbView->setObjectName(u"cmbView"_s);
    cmbView->setAccessibleName(texts_.GetText(MResourceTable::kTextTableView));
    // Of a list assistive tools take the name from its label.
    auto* lblView = new QLabel(cmbView->accessibleName(), bar);
    lblView->setObjectName(u"lblView"_s);
    lblView->setBuddy(cmbView);
    lblView->hide();
    cmbView->setToolTip(cmbView->accessibleName());
    cmbView->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    connect(cmbView, &QComboBox::activated, this,
            [this](int index) { Guard(kProcedure, [&] { ApplyView(index); }); });
    bar->addWidget(cmbView);
    txtFind = new QLineEdit(bar);
    txtFind->setObjectName(u"txtFind"_s);
    txtFind->setClearButtonEnabled(true);
    txtFind->addAction(icons::Icon(u"find"), QLineEdit::LeadingPosition);
    txtFind->setPlaceholderText(texts_.GetText(MResourceTable::kTextTableFind));
    txtFind->setAccessibleName(txtFind->placeholderText());
    txtFind->setToolTip(texts_.GetText(MResourceTable::kTextTableFilterHelp));
    txtFind->setMaximumWidth(kFindWidth * txtFind->fontMetrics().averageCharWidth());
    connect(txtFind, &QLineEdit::textChanged, this, &frmProjectTable::Narrow);
    bar->addWidget(txtFind);
    bar->addSeparator();
    BuildActions();
    for (QAction* action : actions()) {
        if (!action->icon().isNull()) bar->addAction(action);
    }
    layout.addWidget(bar);
}

void frmProjectTable::BuildActions() {
    using commandset::Id;
    const auto addCommand = [this](Id id, const std::function<void()>& run) {
        const commandset::Command& command = commandset::CommandOf(id);
        QString text = texts_.GetText(command.text);
        if (id == Id::Undo || id == Id::Redo) text = commandset::MenuText(command, texts_);
        shared_ += Add(command.name.toString(), text.section(u'\t', 0, 0).trimmed(), {},
                       command.icon.toString(), run);
    };
    addCommand(Id::Undo, [this] {
        if (!tdbTable->CommitPendingEdit()) return;
        work_.GoStep(true);
        ReadAnewIfChanged();
    });
    addCommand(Id::Redo, [this] {
        if (!tdbTable->CommitPendingEdit()) return;
        work_.GoStep(false);
        ReadAnewIfChanged();
    });
    addCommand(Id::Copy, [this] { Copy(); });
    addCommand(Id::Paste, [this] { Paste(); });
    addCommand(Id::Fill, [this] {
        if (tdbTable->CommitPendingEdit()) {
            WriteBlock(CellBlock::FillDown(tdbTable->SplitAt(1), false, texts_));
        }
    });
    addCommand(Id::FillCounting, [this] {
        if (tdbTable->CommitPendingEdit()) {
            WriteBlock(CellBlock::FillDown(tdbTable->SplitAt(1), true, texts_));
        }
    });
    addCommand(Id::Export, [this] {
        if (tdbTable->CommitPendingEdit()) work_.ExportTrends(ChosenTrends(), this);
    });
    addCommand(Id::Find, [this] {
        txtFind->setFocus(Qt::ShortcutFocusReason);
        txtFind->selectAll();
    });
    Add(u"mnuColumnFilter"_s, texts_.GetText(MResourceTable::kTextTableColumnFilter),
        Qt::CTRL | Qt::Key_L, {},
        [this] { tdbTable->SplitAt(1).FocusFilter(tdbTable->SplitAt(1).CurrentColumn()); });
    Add(u"mnuReset"_s, texts_.GetText(MResourceTable::kTextTableReset),
        Qt::CTRL | Qt::SHIFT | Qt::Key_L, {}, [this] {
            cmbView->setCurrentIndex(0);
            ApplyView(0);
        });
    Add(u"mnuGoTo"_s, texts_.GetText(MResourceTable::kTextTableGoTo), Qt::CTRL | Qt::Key_G, {},
        [this] { GoToEditor(); });
    Add(u"mnuKeepView"_s, texts_.GetText(MResourceTable::kTextTableKeepView), Qt::CTRL | Qt::Key_S,
        {}, [this] { KeepView(); });
    Add(u"mnuRemoveView"_s, texts_.GetText(MResourceTable::kTextTableRemoveView), {}, {},
        [this] { RemoveView(); });
    Add(u"mnuRefresh"_s, texts_.GetText(MResourceTable::kTextTableRefresh), Qt::Key_F5,
        u"refresh"_s, [this] { ReadRows(); });
    Add(u"mnuHelp"_s, texts_.GetText(MResourceTable::kTextTableHelp), Qt::Key_F1, u"help"_s,
        [this] { work_.ShowHelpTopic(platform::kHelpProjectTable, this); });
    Add(u"mnuClose"_s, texts_.GetText(MResourceTable::kTextTableClose), Qt::CTRL | Qt::Key_W, {},
        [this] { close(); });
    ShowSharedKeys();
    connect(new commandset::KeyWatch(this), &commandset::KeyWatch::Changed, this,
            &frmProjectTable::ShowSharedKeys);
}

void frmProjectTable::BuildGrid() {
    tdbTable = new TDBGrid(this);
    tdbTable->setObjectName(u"tdbTable"_s);
    tdbTable->SetTexts(GridTexts(texts_));
    trends_ = new TrendTableModel(texts_, work_, this);
    archives_ = new ArchiveGroups(texts_, this);
    GridSplit& archives = tdbTable->SplitAt(0);
    GridSplit& trends = tdbTable->SplitAt(1);
    archives.SetSource(archives_);
    archives.SetLocked(true);
    archives.SetAlwaysCurrent(true);
    archives.SetCaption(texts_.GetText(MResourceTable::kTextArchivesNode));
    archives.Column(u"Name")->SetWidth(kArchiveNameWidth);
    archives.Column(u"Trends")->SetWidth(kCountWidth);
    tdbTable->SetSplitWidth(kArchivesWidth);
    trends.SetSource(trends_);
    trends.SetAlwaysCurrent(true);
    trends.SetDoubleClickEdits(false);
    trends.SetCaption(texts_.GetText(MResourceTable::kTextTrends));
    trends.SetFilterRow(true);
    trends.SetEmptyText(texts_.GetText(MResourceTable::kTextTableReading));
    const auto guarded = [](auto body) { Guard(kProcedure, body); };
    connect(trends_, &TrendTableModel::Narrowed, this, &frmProjectTable::ShowCounts);
    connect(trends_, &TrendTableModel::GivenUp, this,
            [this] { Hint(texts_.GetText(MResourceTable::Replace::NotWritten)); });
    connect(&archives, &GridSplit::RowColChange, this, &frmProjectTable::PickArchives);
    connect(&archives, &GridSplit::SelChange, this, &frmProjectTable::PickArchives);
    trends.SetFillsByMouse(true);
    connect(&trends, &GridSplit::FillWanted, this, [this, guarded](int sources, bool counting) {
        guarded([&] {
            WriteBlock(CellBlock::FillDown(tdbTable->SplitAt(1), counting, texts_, sources));
        });
    });
    connect(&trends, &GridSplit::ColumnFilterChanged, this, &frmProjectTable::Narrow);
    connect(&trends, &GridSplit::ColumnFilterMenu, this,
            [this, guarded](int column, const QPoint& position) {
                guarded([&] { ChooseFilter(column, position); });
            });
    connect(&trends, &GridSplit::CellsChange, this,
            [this] { lblCells->setText(CellBlock::Summary(tdbTable->SplitAt(1), texts_)); });
    connect(&trends, &GridSplit::DblClick, this,
            [this, guarded] { guarded([this] { GoToEditor(); }); });
    connect(&trends, &GridSplit::ButtonClick, this,
            [this, guarded](GridRowId row, int column) { guarded([&] { Choose(row, column); }); });
    connect(&trends, &GridSplit::DataError, this,
            [this, guarded](int, const QString& text, const QString& details) {
                guarded([&] { ShowError(text, details); });
            });
    connect(&trends, &GridSplit::TextRefused, this, [this](int column, const QString& text) {
        Hint(texts_.GetText(
            MResourceTable::kTextHintNoValue,
            {{u"column", tdbTable->SplitAt(1).ColumnAt(column)->Caption()}, {u"text", text}}));
    });
    connect(&trends, &GridSplit::ContextMenu, this,
            [this](GridRowId, int, const QPoint& position) { OpenContextMenu(position); });
    connect(&trends, &GridSplit::HeadMenu, this, [this](int column, const QPoint& position) {
        QMenu menu(this);
        menu.setObjectName(u"mnuHead"_s);
        HeadingMenu::Fill(menu, tdbTable->SplitAt(1), column, texts_,
                          [](const GridColumn&) { return true; });
        menu.exec(position);
        Narrow();  // a hidden column is not searched
    });
}

QString frmProjectTable::TextCaption(const QString& field) const {
    const auto lcid = static_cast<platform::Lcid>(field.mid(1).toUInt());
    const QString name = platform::LanguageName(lcid, texts::InterfaceLanguage());
    return texts_.GetText(MResourceTable::kTextTableText,
                          {{u"language", name.isEmpty() ? field : name}});
}

void frmProjectTable::SetUpColumns() {
    GridSplit& trends = tdbTable->SplitAt(1);
    for (int i = 0; i < trends.ColumnCount(); ++i) {
        GridColumn* column = trends.ColumnAt(i);
        const TrendTable::Column& of = trends_->Table().Columns()[static_cast<std::size_t>(i)];
        TrendColumns::SetUp(*column, of.known, texts_);
        if (of.known == nullptr || of.known->kind == project::Kind::Variable ||
            of.field.baseColumn == "Name") {
            column->SetWidth(kTextWidth);
        }
        if (of.isArchive) column->SetCaption(texts_.GetText(MResourceTable::kTextTableArchive));
        if (of.known == nullptr && !of.isArchive)
            column->SetCaption(TextCaption(column->DataField()));
    }
    // Texts come behind the name: they are what one looks for first.
    QList<int> order = trends.ColumnOrders();
    const int behind = trends.ColumnIndex(u"TrendVar") >= 0 ? trends.ColumnIndex(u"TrendVar")
                                                            : trends.ColumnIndex(u"Name");
    std::stable_partition(order.begin(), order.end(), [&](int column) {
        const TrendTable::Column& of = trends_->Table().Columns()[static_cast<std::size_t>(column)];
        return column <= behind || (of.known == nullptr && !of.isArchive);
    });
    trends.SetColumnOrders(order);
    trends.SetFrozenColumn(u"Name"_s);
    columnsSetUp_ = true;
}

bool frmProjectTable::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate) {
        Guard(kProcedure, [this] { ReadAnewIfChanged(); });
    }
    return QWidget::event(event);
}

void frmProjectTable::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && txtFind->hasFocus()) {
        txtFind->clear();
        tdbTable->SetSplit(1);
        return;
    }
    QWidget::keyPressEvent(event);
}

void frmProjectTable::Narrow() {
    if (narrowing_ || !tdbTable->CommitPendingEdit()) return;
    GridSplit& trends = tdbTable->SplitAt(1);
    TrendTableModel::Narrowing narrowing;
    for (int column = 0; column < trends.ColumnCount(); ++column) {
        const QString filter = trends.ColumnFilter(column);
        const QString& field = trends.ColumnAt(column)->DataField();
        if (!filter.isEmpty()) narrowing.columns[field] = filter;
        if (!trends.ColumnAt(column)->Visible()) narrowing.hidden.insert(field);
    }
    narrowing.anywhere = txtFind->text();
    const QList<GridRowId> selected = tdbTable->SplitAt(0).SelectedRows();
    for (const GridRowId id : selected) {
        if (id != ArchiveGroups::kAll) narrowing.archives.insert(static_cast<std::int32_t>(id));
    }
    const GridRowId current = tdbTable->SplitAt(0).CurrentRow();
    if (selected.isEmpty() && current != kNoGridRow && current != ArchiveGroups::kAll) {
        narrowing.archives.insert(static_cast<std::int32_t>(current));
    }
    trends_->Narrow(std::move(narrowing));
}

void frmProjectTable::ShowCounts() {
    if (!trends_->HasTable()) return lblCount->clear();
    const QLocale locale;
    QStringList order;
    for (const TrendTableModel::SortKey& key : trends_->SortKeys()) {
        const GridColumn* column = tdbTable->SplitAt(1).Column(key.field);
        if (column != nullptr) order.append(column->Caption());
    }
    const std::size_t unread = trends_->Table().Unread();
    lblCount->setText(texts_.GetText(
        MResourceTable::kTextTableCount,
        {{u"n", locale.toString(trends_->rowCount())},
         {u"all", locale.toString(static_cast<qulonglong>(trends_->TrendCount()))},
         {u"order", order.join(u", ")},
         {u"unread", unread == 0 ? QString() : locale.toString(static_cast<qulonglong>(unread))}}));
    ShowArchives();
}

void frmProjectTable::ShowArchives() {
    if (narrowing_) return;
    narrowing_ = true;  // what the list of archives raises is not the user's doing
    archives_->Show(trends_->Archives());
    narrowing_ = false;
}

void frmProjectTable::PickArchives() {
    if (!narrowing_) Narrow();
}

void frmProjectTable::Hint(const QString& text) {
    sb->showMessage(text, kHintTime);
}
