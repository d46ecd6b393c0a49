// Building of the editor window's controls.

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>

#include "cells/GridTexts.h"
#include "controls/TDBGrid.h"
#include "editor/EditorHistory.h"
#include "editor/EditorKeys.h"
#include "editor/EditorMenus.h"
#include "editor/frmtabGrid.h"
#include "editor/TrendRows.h"
#include "guard/Guard.h"
#include "icons/Icons.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using guard::Guard;

constexpr std::array kPanelTexts = {MResourceTable::kTextFunctionPanel,
                                    MResourceTable::kTextArchivesPanel,
                                    MResourceTable::kTextTrendsPanel};

constexpr int kFindWidth = 32;              // average characters
constexpr int kSmallestLanguageWidth = 14;  // likewise
constexpr int kSpaceBesideRow = 4;          // pixels

QString ArrayName(QStringView name, int index) {
    return u"%1(%2)"_s.arg(name).arg(index);
}

}  // namespace

void frmtabGrid::BuildMenus() {
    menus_ = new EditorMenus(texts_, *this);
    connect(menus_, &EditorMenus::AboutToShow, this, &frmtabGrid::UpdateCommands);
    connect(menus_, &EditorMenus::Triggered, this, [this](commandset::Id id) {
        QString procedure = commandset::CommandOf(id).name.toString();
        procedure.replace(procedure.indexOf(u'('), procedure.size(), u"_Click"_s);
        Guard(u"frmtabGrid: "_s + procedure, [&] { Run(id); });
    });
    connect(menus_, &EditorMenus::StepsWanted, this, [this](commandset::Id direction, int steps) {
        Guard(u"frmtabGrid: mnuUndo_Click"_s, [&] { GoSteps(direction, steps); });
    });
    menus_->SetSteps([this](commandset::Id direction, int most) {
        using Direction = EditorHistory::Direction;
        return history_->Names(
            direction == commandset::Id::Undo ? Direction::Back : Direction::Forward, most);
    });
    tbrfunc = menus_->MakeToolBar();
    connect(menus_, &EditorMenus::KeysChanged, this, [this] {
        ShowNarrowing();
        ShowFindingsKey();
    });
    keys_ = std::make_unique<EditorKeys>(EditorKeys::Window{
        [this] { return Situation(); }, [this] { return busy_; },
        [this](commandset::Id id) { Run(id); }, [this](int text) { Hint(text); }});
}

/// The fields beside the toolbar, which gives way to them where there is little room.
QLayout* frmtabGrid::BuildTopRow() {
    txtFind = new QLineEdit(this);
    txtFind->setObjectName(u"txtFind"_s);
    txtFind->setClearButtonEnabled(true);
    txtFind->addAction(icons::Icon(u"find"), QLineEdit::LeadingPosition);
    const int letter = txtFind->fontMetrics().averageCharWidth();
    txtFind->setMaximumWidth(kFindWidth * letter);
    txtFind->installEventFilter(this);
    connect(txtFind, &QLineEdit::textChanged, this, [this](const QString& text) {
        for (int split = 0; split < TDBGrid::kSplitCount; ++split) {
            tdbA->SplitAt(split).SetFilterText(narrowed_ == split ? text : QString());
        }
        ShowNarrowing();
    });
    lblFound = new QLabel(this);
    lblFound->setObjectName(u"lblFound"_s);
    lblFound->setTextFormat(Qt::PlainText);
    lblFound->setContentsMargins(kSpaceBesideRow, 0, 0, 0);
    ShowNarrowing();

    cmbLanguage = new QComboBox(this);
    cmbLanguage->setObjectName(u"cmbLanguage"_s);
    cmbLanguage->setAccessibleName(texts_.GetText(MResourceTable::kTextLanguageOfTexts));
    // Of a list assistive tools take the name from its label.
    auto* lblLanguage = new QLabel(cmbLanguage->accessibleName(), this);
    lblLanguage->setObjectName(u"lblLanguage"_s);
    lblLanguage->setBuddy(cmbLanguage);
    lblLanguage->hide();
    cmbLanguage->setToolTip(texts_.GetText(MResourceTable::kTextLanguageOfTexts));
    cmbLanguage->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    cmbLanguage->setMinimumWidth(kSmallestLanguageWidth * letter);
    cmbLanguage->setFocusPolicy(Qt::StrongFocus);  // the wheel does not turn it in passing
    cmbLanguage->installEventFilter(this);

    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, kSpaceBesideRow, 0);
    row->addWidget(tbrfunc);
    row->addWidget(txtFind, 1);
    row->addWidget(lblFound);
    row->addStretch(1);
    row->addWidget(cmbLanguage);
    return row;
}

void frmtabGrid::BuildGrid() {
    tdbA = new TDBGrid(this);
    tdbA->setObjectName(u"tdbA"_s);
    tdbA->SetTexts(GridTexts(texts_));
    tdbA->Splitter()->handle(1)->setObjectName(u"pctTrdTabSplit"_s);
    archives_ = new RecordsetModel(texts_, this);
    trends_ = new TrendRows(
        texts_, dialogNames_, [this](int text) { Tell(texts_.GetText(text)); },
        [this](const std::vector<project::Conflict>& conflicts) {
            return history_->Ask(conflicts, {}, this);
        },
        this);
    // Queued: a view may be reading in the middle of its layout.
    connect(trends_, &RecordsetModel::RowsMissing, this, &frmtabGrid::ShowMissingTrends,
            Qt::QueuedConnection);

    GridSplit& archives = tdbA->SplitAt(0);
    GridSplit& trends = tdbA->SplitAt(1);
    archives.SetSource(archives_);
    trends.SetSource(trends_);
    trends.SetAlwaysCurrent(true);
    trends.SetCaption(texts_.GetText(MResourceTable::kTextTrends));
    const auto guarded = [](auto body) { Guard(u"frmtabGrid: tdbA"_s, body); };
    connect(&archives, &GridSplit::RowColChange, this,
            [this, guarded] { guarded([this] { ArchiveRowChanged(); }); });
    // As in any list, typing looks for what is typed.
    connect(&archives, &GridSplit::TypedWhereLocked, this, [this](const QString& text) {
        Find(0);
        txtFind->setText(text);
    });
    connect(&trends, &GridSplit::LayoutChanged, this, &frmtabGrid::ShowFreezing);
    connect(&archives, &GridSplit::DblClick, this,
            [this, guarded] { guarded([this] { mnuArchiv_Click(1); }); });
    connect(&trends, &GridSplit::DblClick, this,
            [this, guarded] { guarded([this] { mnuTrend_Click(1); }); });
    connect(&archives, &GridSplit::SelChange, this, &frmtabGrid::UpdateCommands);
    connect(&trends, &GridSplit::SelChange, this, &frmtabGrid::UpdateCommands);
    connect(&trends, &GridSplit::RowColChange, this, &frmtabGrid::UpdateCommands);
    connect(&trends, &GridSplit::CellsChange, this, &frmtabGrid::ShowCells);
    trends.SetFillsByMouse(true);
    connect(&trends, &GridSplit::FillWanted, this, [this, guarded](int sources, bool counting) {
        guarded([&] { FillDown(counting, sources); });
    });
    connect(&trends, &GridSplit::ButtonClick, this, [this, guarded](GridRowId row, int column) {
        guarded([&] { ChooseForCell(row, column); });
    });
    connect(&trends, &GridSplit::DataError, this,
            [this, guarded](int number, const QString& text, const QString& details) {
                guarded([&] { ShowDataError(number, text, details); });
            });
    connect(&trends, &GridSplit::AfterColUpdate, this,
            [this, guarded] { guarded([this] { EndStep(); }); });
    connect(&trends, &GridSplit::AfterColUpdate, this, &frmtabGrid::ShowCells);
    connect(&trends, &GridSplit::TextRefused, this, [this](int column, const QString& text) {
        Hint(texts_.GetText(
            MResourceTable::kTextHintNoValue,
            {{u"column", tdbA->SplitAt(1).ColumnAt(column)->Caption()}, {u"text", text}}));
    });
    connect(&trends, &GridSplit::EditDiscarded, this, [this](GridRowId, int, const QString& text) {
        Tell(texts_.GetText(MResourceTable::kTextEditDiscarded, {{u"text", text}}));
    });
    for (int split = 0; split < TDBGrid::kSplitCount; ++split) {
        connect(&tdbA->SplitAt(split), &GridSplit::ContextMenu, this,
                [this, split](GridRowId, int, const QPoint& position) {
                    OpenContextMenu(split, position);
                });
        connect(&tdbA->SplitAt(split), &GridSplit::HeadMenu, this,
                [this, split](int column, const QPoint& position) {
                    OpenHeadingMenu(split, column, position);
                });
        connect(&tdbA->SplitAt(split), &GridSplit::FilterChanged, this, &frmtabGrid::ShowNarrowing);
    }
    // The open archive may have been narrowed out, and be there again.
    connect(&archives, &GridSplit::FilterChanged, this,
            [this] { MarkArchive(project_.currentNodeKey); });
    connect(tdbA, &TDBGrid::SplitChange, this, &frmtabGrid::UpdateCommands);
    connect(tdbA, &TDBGrid::PageRequested, this,
            [this, guarded](int step) { guarded([&] { StepArchive(step); }); });
}

void frmtabGrid::BuildStatusBar() {
    sb = new QStatusBar(this);
    sb->setObjectName(u"sb"_s);
    sb->setSizeGripEnabled(false);
    for (std::size_t i = 0; i < panels_.size(); ++i) {
        const int number = static_cast<int>(i);
        auto* panel = new QLabel(texts_.GetText(kPanelTexts.at(i)), sb);
        panel->setObjectName(ArrayName(u"sb.Panels", number + 1));
        panel->setTextFormat(Qt::PlainText);
        panel->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
        sb->addWidget(panel, i == 0 ? 2 : 1);
        panels_[i] = panel;
    }
    lblDone = new QLabel(sb);
    lblDone->setObjectName(u"lblDone"_s);
    lblDone->setTextFormat(Qt::PlainText);
    // However long it is, the window can be made narrow; the tool tip has the whole.
    lblDone->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    sb->addWidget(lblDone, 4);
    lblCells = new QLabel(sb);
    lblCells->setObjectName(u"lblCells"_s);
    lblCells->setTextFormat(Qt::PlainText);
    lblCells->setContentsMargins(0, 0, kSpaceBesideRow, 0);
    lblCells->hide();
    sb->addPermanentWidget(lblCells);
    lblTextsMissing = new QLabel(sb);
    lblTextsMissing->setObjectName(u"lblTextsMissing"_s);
    lblTextsMissing->setTextFormat(Qt::PlainText);
    lblTextsMissing->setContentsMargins(0, 0, kSpaceBesideRow, 0);
    lblTextsMissing->hide();
    sb->addPermanentWidget(lblTextsMissing);
}
