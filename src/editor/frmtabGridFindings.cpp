// The list of findings under the grid, and their number in the status bar.

#include <QSplitter>
#include <QStatusBar>
#include <QToolButton>

#include "controls/TDBGrid.h"
#include "editor/frmtabGrid.h"
#include "findings/FindingPane.h"
#include "guard/Guard.h"
#include "icons/Icons.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kShareOfList = 3;  // of the height, where nobody has set another

QIcon IconOf(project::Severity gravest) {
    switch (gravest) {
        case project::Severity::Error:
            return icons::Icon(u"finding-error");
        case project::Severity::Warning:
            return icons::Icon(u"finding-warning");
        case project::Severity::Note:
            return icons::Icon(u"finding-note");
        case project::Severity::Off:
            break;
    }
    return {};
}

}  // namespace

/// The grid with the list under it.
QWidget* frmtabGrid::BuildFindings() {
    findings_ = new findings::FindingPane(*this, texts_, this);
    findings_->hide();
    auto* split = new QSplitter(Qt::Vertical, this);
    split->setObjectName(u"pctFindingsSplit"_s);
    split->setChildrenCollapsible(false);
    split->addWidget(tdbA);
    split->addWidget(findings_);
    split->setStretchFactor(0, 1);
    split->handle(1)->setObjectName(u"pctFindingsHandle"_s);

    cmdFindings = new QToolButton(sb);
    cmdFindings->setObjectName(u"cmdFindings"_s);
    cmdFindings->setAutoRaise(true);
    cmdFindings->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    cmdFindings->setFocusPolicy(Qt::NoFocus);  // F4 is the way by keys
    ShowFindingsKey();
    sb->addPermanentWidget(cmdFindings);
    ShowFindingCount();
    connect(cmdFindings, &QToolButton::clicked, this, [this] {
        guard::Guard(u"frmtabGrid: cmdFindings_Click"_s, [this] { ShowFindings(true); });
    });
    connect(findings_, &findings::FindingPane::CountChanged, this, &frmtabGrid::ShowFindingCount);
    connect(findings_, &findings::FindingPane::Said, this,
            [this](const QString& text) { Hint(text); });
    connect(findings_, &findings::FindingPane::LeaveWanted, this, [this](bool hide) {
        tdbA->SetSplit(tdbA->Split());
        if (hide) ShowFindings(false);
    });
    return split;
}

void frmtabGrid::ShowFindingCount() {
    const QString text = findings_->CountText();
    cmdFindings->setText(text);
    cmdFindings->setAccessibleName(text);
    cmdFindings->setIcon(IconOf(findings_->Gravest()));
}

void frmtabGrid::ShowFindingsKey() {
    cmdFindings->setToolTip(
        texts_.GetText(MResourceTable::kTextFindingsCountTip,
                       {{u"key", commandset::KeyText(commandset::Id::Findings, texts_)}}));
}

void frmtabGrid::ShowFindings(bool show) {
    if (!show) return findings_->hide();
    if (!CommitPendingEdit()) return;
    if (findings_->isHidden()) {
        findings_->show();
        auto* split = findChild<QSplitter*>(u"pctFindingsSplit"_s);
        const int height = split->height();
        if (findings_->height() < height / kShareOfList) {
            split->setSizes({height - height / kShareOfList, height / kShareOfList});
        }
    }
    findings_->TakeKeyboard();
}

void frmtabGrid::ToggleFindings() {
    const bool hasKeyboard =
        !findings_->isHidden() && findings_->isAncestorOf(window()->focusWidget());
    if (hasKeyboard) tdbA->SetSplit(tdbA->Split());
    ShowFindings(!hasKeyboard);
}
