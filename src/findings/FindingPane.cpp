#include "findings/FindingPane.h"

#include <algorithm>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>
#include <utility>

#include "ado/AdoError.h"
#include "findings/FAcceptFinding.h"
#include "findings/FCureFindings.h"
#include "findings/FindingModel.h"
#include "findings/FindingTexts.h"
#include "guard/Guard.h"
#include "icons/Icons.h"
#include "platform/HelpTopics.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"

namespace findings {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace MResourceTable;

constexpr int kPollMs = 1000;
constexpr int kMargin = 4;        // pixels
constexpr int kFilterWidth = 24;  // average characters
constexpr int kMessageWidth = 60;
constexpr int kNameWidth = 24;
constexpr int kRowPadding = 4;  // pixels

/// Keys of the editor window that mean the same here.
bool IsEditorKey(const QKeyEvent& event) {
    const QKeyCombination keys(event.modifiers(), static_cast<Qt::Key>(event.key()));
    static const QList<QKeyCombination> kept{Qt::CTRL | Qt::Key_Z, Qt::CTRL | Qt::Key_Y,
                                             Qt::CTRL | Qt::SHIFT | Qt::Key_Z};
    return kept.contains(keys);
}

/// Qt's tables tell assistive tools of their current row whoever has the keyboard, and this list
/// gets another one with every check.
class QuietTable final : public QTableView {
public:
    using QTableView::QTableView;

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override {
        hasFocus() ? QTableView::currentChanged(current, previous)
                   : QAbstractItemView::currentChanged(current, previous);
    }
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override {
        hasFocus() ? QTableView::selectionChanged(selected, deselected)
                   : QAbstractItemView::selectionChanged(selected, deselected);
    }
};

}  // namespace

FindingPane::FindingPane(projectdb::IProjectWork& work, const MResources::TextTable& texts,
                         QWidget* parent)
    : QWidget(parent),
      work_(work),
      texts_(texts),
      model_(new FindingModel(texts, this)),
      filter_(new FindingFilter(*model_, this)) {
    setObjectName(u"pctFindings"_s);
    BuildList();
    lblDetail_ = new QLabel(this);
    lblDetail_->setObjectName(u"lblFindingDetail"_s);
    lblDetail_->setTextFormat(Qt::PlainText);
    lblDetail_->setWordWrap(true);
    lblDetail_->setContentsMargins(kMargin, 0, kMargin, 0);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, kMargin, 0, kMargin);
    layout->addLayout(BuildTopRow());
    layout->addWidget(tblFindings_, 1);
    layout->addWidget(lblDetail_);
    setFocusProxy(tblFindings_);
    ShowSafeOnes();
    poll_.setInterval(kPollMs);
    connect(&poll_, &QTimer::timeout, this, &FindingPane::Look);
    ShowDetail();
}

FindingPane::~FindingPane() = default;

QToolButton* FindingPane::MakeSeverityButton(const QString& name, project::Severity severity,
                                             int text) {
    auto* button = new QToolButton(this);
    button->setObjectName(name);
    button->setIcon(SeverityIcon(severity));
    button->setText(texts_.GetText(text));
    button->setToolTip(texts_.GetText(text));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setAutoRaise(true);
    button->setCheckable(true);
    button->setChecked(true);
    connect(button, &QToolButton::toggled, this, [this, severity](bool isShown) {
        filter_->SetShown(severity, isShown);
        ShowState();
    });
    return button;
}

QPushButton* FindingPane::MakeButton(const QString& name, int text) {
    auto* button = new QPushButton(texts_.GetText(text), this);
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}

QLayout* FindingPane::BuildTopRow() {
    using project::Severity;
    txtFilter_ = new QLineEdit(this);
    txtFilter_->setObjectName(u"txtFindingFilter"_s);
    txtFilter_->setClearButtonEnabled(true);
    txtFilter_->addAction(icons::Icon(u"find"), QLineEdit::LeadingPosition);
    txtFilter_->setPlaceholderText(texts_.GetText(kTextFindingFilter));
    txtFilter_->setAccessibleName(texts_.GetText(kTextFindingFilter));
    txtFilter_->setMaximumWidth(kFilterWidth * fontMetrics().averageCharWidth());
    txtFilter_->installEventFilter(this);
    connect(txtFilter_, &QLineEdit::textChanged, this, [this](const QString& text) {
        filter_->SetText(text);
        ShowState();
    });
    lblState_ = new QLabel(this);
    lblState_->setObjectName(u"lblFindingState"_s);
    lblState_->setTextFormat(Qt::PlainText);
    cmdAccept_ = MakeButton(u"cmdAcceptFinding"_s, kTextFindingAccept);
    connect(cmdAccept_, &QPushButton::clicked, this,
            [this] { guard::Guard(u"FindingPane: cmdAcceptFinding_Click"_s, [&] { Accept(); }); });
    cmdCure_ = MakeButton(u"cmdCureFinding"_s, kTextFindingCure);
    connect(cmdCure_, &QPushButton::clicked, this, [this] {
        guard::Guard(u"FindingPane: cmdCureFinding_Click"_s, [&] { Cure(Selected()); });
    });
    cmdCureSafe_ = MakeButton(u"cmdCureSafe"_s, kTextFindingsCureSafe);
    cmdCureSafe_->setToolTip(texts_.GetText(kTextFindingsCureSafeTip));
    connect(cmdCureSafe_, &QPushButton::clicked, this, [this] {
        guard::Guard(u"FindingPane: cmdCureSafe_Click"_s, [&] { Cure(SafeOnes()); });
    });

    auto* row = new QHBoxLayout;
    row->setContentsMargins(kMargin, 0, kMargin, 0);
    row->addWidget(MakeSeverityButton(u"cmdErrors"_s, Severity::Error, kTextFindingsShowErrors));
    row->addWidget(
        MakeSeverityButton(u"cmdWarnings"_s, Severity::Warning, kTextFindingsShowWarnings));
    row->addWidget(MakeSeverityButton(u"cmdNotes"_s, Severity::Note, kTextFindingsShowNotes));
    row->addWidget(txtFilter_, 1);
    row->addWidget(lblState_);
    row->addStretch(1);
    row->addWidget(cmdCure_);
    row->addWidget(cmdCureSafe_);
    row->addWidget(cmdAccept_);
    return row;
}

void FindingPane::BuildList() {
    tblFindings_ = new QuietTable(this);
    tblFindings_->setObjectName(u"tblFindings"_s);
    tblFindings_->setAccessibleName(texts_.GetText(kTextFindings).remove(u'&'));
    tblFindings_->setModel(filter_);
    tblFindings_->setSelectionBehavior(QAbstractItemView::SelectRows);
    tblFindings_->setShowGrid(false);
    tblFindings_->setWordWrap(false);
    tblFindings_->setTabKeyNavigation(false);
    tblFindings_->setContextMenuPolicy(Qt::CustomContextMenu);
    tblFindings_->verticalHeader()->hide();
    tblFindings_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowPadding);
    // Until the user clicks a heading, the gravest stand first, in the order of the tables.
    tblFindings_->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    tblFindings_->setSortingEnabled(true);
    tblFindings_->horizontalHeader()->setStretchLastSection(true);
    const int letter = fontMetrics().averageCharWidth();
    tblFindings_->setColumnWidth(FindingModel::kSeverity, kNameWidth / 2 * letter);
    tblFindings_->setColumnWidth(FindingModel::kMessage, kMessageWidth * letter);
    tblFindings_->setColumnWidth(FindingModel::kArchive, kNameWidth * letter);
    tblFindings_->setColumnWidth(FindingModel::kRow, kNameWidth * letter);
    tblFindings_->installEventFilter(this);
    connect(tblFindings_, &QTableView::doubleClicked, this, &FindingPane::GoTo);
    connect(tblFindings_, &QWidget::customContextMenuRequested, this,
            &FindingPane::OpenContextMenu);
    connect(tblFindings_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &FindingPane::ShowDetail);
    connect(tblFindings_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &FindingPane::ShowDetail);
}

void FindingPane::Watch() {
    Stop();
    service_ = std::make_unique<FindingService>(work_.Connection().DataSource());
    connect(service_.get(), &FindingService::Changed, this, &FindingPane::Show);
    Look();
    poll_.start();
    Show();
}

void FindingPane::Stop() {
    poll_.stop();
    service_.reset();
    content_.reset();
}

void FindingPane::Look() {
    if (!service_) return;
    try {
        const std::uint64_t content = work_.Connection().ContentNumber();
        const QDateTime settingsTime =
            QFileInfo(QFile::decodeName(service_->SettingsFile().c_str())).lastModified();
        if (content_ == content && settingsTime_ == settingsTime) return;
        content_ = content;
        settingsTime_ = settingsTime;
        service_->Look();
    } catch (const ado::AdoError&) {
        // Whoever reads rows says why the file cannot be read; it is asked again.
    }
}

/// What was current stays so: the same finding, else the one in its place.
void FindingPane::Show() {
    emit CountChanged();
    ShowState();
    if (service_->Latest() == shown_) return;
    const QModelIndex current = tblFindings_->currentIndex();
    std::optional<project::Finding> was;
    if (current.isValid()) was = model_->At(filter_->mapToSource(current).row());
    shown_ = service_->Latest();
    model_->Show(shown_);
    const int same = was ? model_->RowOf(*was) : -1;
    QModelIndex next = filter_->mapFromSource(model_->index(same, 0));
    if (!next.isValid() && filter_->rowCount() > 0) {
        next = filter_->index(std::clamp(current.row(), 0, filter_->rowCount() - 1), 0);
    }
    if (next.isValid()) tblFindings_->setCurrentIndex(next);
    ShowSafeOnes();
    ShowState();
    ShowDetail();
}

void FindingPane::ShowState() {
    if (!shown_) return lblState_->setText(texts_.GetText(kTextFindingsLooking));
    QStringList state;
    if (shown_->failure) state += shown_->failure->Text();
    const int rows = filter_->rowCount();
    if (rows != model_->rowCount()) {
        state += texts_.GetText(kTextRowsShown, {{u"n", QString::number(rows)},
                                                 {u"all", QString::number(model_->rowCount())}});
    }
    const auto accepted = static_cast<qsizetype>(shown_->judgement.accepted.size());
    if (accepted > 0) {
        state += texts_.GetText(kTextFindingsAccepted, {{u"n", QString::number(accepted)}});
    }
    const auto unused = static_cast<qsizetype>(shown_->judgement.unused.size());
    if (unused > 0) {
        state += texts_.GetText(kTextFindingsUnused, {{u"n", QString::number(unused)}});
    }
    if (shown_->hasUnread) state += texts_.GetText(kTextFindingsUnread);
    if (shown_->lacksVariables) state += texts_.GetText(kTextFindingsNoVariables);
    lblState_->setText(state.join(u"; "_s));
    lblState_->setToolTip(lblState_->text());
}

void FindingPane::ShowDetail() {
    const QModelIndex current = filter_->mapToSource(tblFindings_->currentIndex());
    lblDetail_->setText(current.isValid() ? MeaningOf(model_->At(current.row()).rule, texts_)
                                          : QString());
    cmdAccept_->setEnabled(tblFindings_->selectionModel()->hasSelection());
    const QModelIndexList rows = tblFindings_->selectionModel()->selectedRows();
    cmdCure_->setEnabled(std::any_of(rows.begin(), rows.end(), [this](const QModelIndex& index) {
        const project::Finding& finding = model_->At(filter_->mapToSource(index).row());
        return project::CureOf(finding) != project::CureKind::None;
    }));
}

QString FindingPane::CountText() const {
    if (!service_ || !service_->Latest()) return texts_.GetText(kTextFindingsLooking);
    const Checked& latest = *service_->Latest();
    const QString count = latest.failure
                              ? texts_.GetText(kTextFindingsNotKnown)
                              : findings::CountText(CountsOf(latest.judgement.open), texts_);
    return service_->IsCurrent() ? count : texts_.GetText(kTextFindingsStale, {{u"count", count}});
}

project::Severity FindingPane::Gravest() const {
    const bool hasAny =
        service_ && service_->Latest() && !service_->Latest()->judgement.open.empty();
    return hasAny ? service_->Latest()->judgement.open.front().severity : project::Severity::Off;
}

void FindingPane::TakeKeyboard() {
    if (!tblFindings_->currentIndex().isValid() && filter_->rowCount() > 0) {
        tblFindings_->setCurrentIndex(filter_->index(0, 0));
    }
    tblFindings_->setFocus(Qt::ShortcutFocusReason);
}

void FindingPane::GoTo(const QModelIndex& index) {
    guard::Guard(u"FindingPane: tblFindings_DblClick"_s, [&] {
        if (!index.isValid()) return;
        const project::Finding& finding = model_->At(filter_->mapToSource(index).row());
        const projectdb::Place place{std::string(finding.table), finding.id, finding.column};
        if (!work_.ShowPlace(place)) emit Said(texts_.GetText(kTextFindingNowhere));
    });
}

void FindingPane::OpenContextMenu(const QPoint& position) {
    const QModelIndex index = tblFindings_->currentIndex();
    if (!index.isValid()) return;
    QMenu menu(this);
    menu.setObjectName(u"mnuFinding"_s);
    menu.addAction(texts_.GetText(kTextFindingGoTo), this, [this, index] { GoTo(index); })
        ->setObjectName(u"mnuFindingGoTo"_s);
    menu.addSeparator();
    QAction* cure = menu.addAction(texts_.GetText(kTextFindingCure), cmdCure_, &QPushButton::click);
    cure->setObjectName(u"mnuFindingCure"_s);
    cure->setEnabled(cmdCure_->isEnabled());
    menu.addAction(texts_.GetText(kTextFindingAccept), cmdAccept_, &QPushButton::click)
        ->setObjectName(u"mnuFindingAccept"_s);
    menu.exec(tblFindings_->viewport()->mapToGlobal(position));
}

std::vector<project::Finding> FindingPane::Selected() const {
    std::vector<project::Finding> selected;
    for (const QModelIndex& index : tblFindings_->selectionModel()->selectedRows()) {
        selected.push_back(model_->At(filter_->mapToSource(index).row()));
    }
    return selected;
}

void FindingPane::Accept() {
    const std::vector<project::Finding> selected = Selected();
    if (selected.empty() || !service_) return;
    const QString file = QFile::decodeName(service_->SettingsFile().c_str());
    FAcceptFinding dialog(texts_, selected, file, this);
    if (dialog.exec() != QDialog::Accepted || !service_) return;
    project::AddAcceptances(service_->SettingsFile(), dialog.Acceptances());
    service_->Look();
    TakeKeyboard();
}

void FindingPane::ShowSafeOnes() {
    const auto safe = SafeOnes().size();
    cmdCureSafe_->setText(texts_.GetText(kTextFindingsCureSafe, {{u"n", QString::number(safe)}}));
    cmdCureSafe_->setEnabled(safe > 0);
}

std::vector<project::Finding> FindingPane::SafeOnes() const {
    std::vector<project::Finding> safe;
    if (!shown_) return safe;
    for (const project::Finding& finding : shown_->judgement.open) {
        if (project::CureOf(finding) == project::CureKind::Safe) safe.push_back(finding);
    }
    return safe;
}

void FindingPane::Cure(const std::vector<project::Finding>& findings) {
    if (!work_.MayStore()) return;
    std::vector<project::PlannedCure> cures = project::PlanCures(work_.Connection(), findings);
    const bool isToBeLookedAt = std::any_of(cures.begin(), cures.end(), [](const auto& cure) {
        return cure.kind == project::CureKind::ToBeLookedAt;
    });
    if (isToBeLookedAt) {
        FCureFindings dialog(texts_, findings, cures, this);
        if (dialog.exec() != QDialog::Accepted || !service_) return;
        std::vector<project::PlannedCure> chosen;
        for (const std::size_t each : dialog.Chosen()) chosen.push_back(cures[each]);
        cures = std::move(chosen);
    }
    bool isDone = false;
    const auto apply = [&] { isDone = project::ApplyCures(work_.Connection(), cures); };
    if (!work_.RunStep(apply)) return;
    Look();
    emit Said(isDone ? texts_.GetText(kTextFindingsCured, {{u"n", QString::number(cures.size())}})
                     : texts_.GetText(kTextFindingsNotCured));
    TakeKeyboard();
}

void FindingPane::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (key == Qt::Key_Escape || key == Qt::Key_F4) {
        emit LeaveWanted(key == Qt::Key_F4);
    } else if (event->keyCombination() == QKeyCombination(Qt::Key_F1)) {
        work_.ShowHelpTopic(platform::kHelpFindings, this);
    } else if (IsEditorKey(*event)) {
        event->ignore();
        return;
    }
    // What means something in the grid must not reach it from here.
    event->accept();
}

bool FindingPane::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool isReturn = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (watched == tblFindings_ && isReturn) {
        GoTo(tblFindings_->currentIndex());
        return true;
    }
    if (watched == txtFilter_ && (isReturn || key == Qt::Key_Down || key == Qt::Key_Escape)) {
        if (key == Qt::Key_Escape) txtFilter_->clear();
        TakeKeyboard();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace findings
