// Building of the window that compares projects.

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include "differences/FCompare.h"
#include "guard/Guard.h"
#include "messages/PlainTexts.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using guard::Guard;
using Text = MResourceTable::Compare;

// Average characters.
constexpr int kWidth = 150;
constexpr int kHeight = 34;  // lines
constexpr int kDifferenceWidth = 46;
constexpr int kSideWidth = 48;

}  // namespace

void FCompare::Build() {
    setObjectName(u"FCompare"_s);
    messages::KeepTextsPlain(*this);
    auto* lblHint = new QLabel(texts_.GetText(Text::Hint), this);
    lblHint->setObjectName(u"lblHint"_s);
    lblHint->setWordWrap(true);
    BuildTree();
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(BuildFilter());
    layout->addWidget(trvDifferences_, 1);
    layout->addWidget(lblHint);
    layout->addLayout(BuildState());
    layout->addLayout(BuildButtons());
    resize(kWidth * fontMetrics().averageCharWidth(), kHeight * fontMetrics().lineSpacing());
}

QLayout* FCompare::BuildFilter() {
    static constexpr const char16_t* kNames[] = {u"cmdChanged", u"cmdOnlyHere", u"cmdOnlyThere"};
    auto* layout = new QHBoxLayout;
    for (std::size_t i = 0; i < cmdKinds_.size(); ++i) {
        cmdKinds_[i] = new QToolButton(this);
        cmdKinds_[i]->setObjectName(QString::fromUtf16(kNames[i]));
        cmdKinds_[i]->setCheckable(true);
        cmdKinds_[i]->setChecked(true);
        cmdKinds_[i]->setFocusPolicy(Qt::StrongFocus);
        connect(cmdKinds_[i], &QToolButton::toggled, this, &FCompare::Filter);
        layout->addWidget(cmdKinds_[i]);
    }
    txtFilter_ = new QLineEdit(this);
    txtFilter_->setObjectName(u"txtFilter"_s);
    txtFilter_->setPlaceholderText(texts_.GetText(Text::Filter));
    txtFilter_->setAccessibleName(texts_.GetText(Text::Filter));
    txtFilter_->setClearButtonEnabled(true);
    txtFilter_->installEventFilter(this);
    connect(txtFilter_, &QLineEdit::textChanged, this, [this] { typing_.start(); });
    layout->addWidget(txtFilter_, 1);
    return layout;
}

void FCompare::BuildTree() {
    trvDifferences_ = new QTreeView(this);
    trvDifferences_->setObjectName(u"trvDifferences"_s);
    trvDifferences_->setAccessibleName(texts_.GetText(Text::Difference));
    trvDifferences_->setModel(&model_);
    trvDifferences_->setUniformRowHeights(true);
    trvDifferences_->setAlternatingRowColors(true);
    trvDifferences_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    trvDifferences_->setExpandsOnDoubleClick(false);
    trvDifferences_->header()->setStretchLastSection(true);
    const int letter = fontMetrics().averageCharWidth();
    trvDifferences_->setColumnWidth(differences::DifferenceModel::kDifference,
                                    kDifferenceWidth * letter);
    trvDifferences_->setColumnWidth(differences::DifferenceModel::kHere, kSideWidth * letter);
    trvDifferences_->installEventFilter(this);
    connect(trvDifferences_, &QTreeView::doubleClicked, this, &FCompare::ShowInEditor);
    connect(trvDifferences_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] {
                told_.clear();
                ShowState();
            });
}

QLayout* FCompare::BuildState() {
    lblState_ = new QLabel(this);
    lblState_->setObjectName(u"lblState"_s);
    lblState_->setTextFormat(Qt::PlainText);
    lblState_->setWordWrap(true);
    prgState_ = new QProgressBar(this);
    prgState_->setObjectName(u"prgState"_s);
    prgState_->setRange(0, 0);
    prgState_->setTextVisible(false);
    prgState_->setMaximumWidth(160);
    prgState_->setAccessibleName(texts_.GetText(Text::Comparing));
    cmdCancel_ = new QPushButton(texts_.GetText(Text::Cancel), this);
    cmdCancel_->setObjectName(u"cmdCancel"_s);
    cmdCancel_->setAutoDefault(false);
    connect(cmdCancel_, &QPushButton::clicked, &service_, &differences::CompareService::Cancel);
    auto* layout = new QHBoxLayout;
    layout->addWidget(lblState_, 1);
    layout->addWidget(prgState_);
    layout->addWidget(cmdCancel_);
    return layout;
}

QLayout* FCompare::BuildButtons() {
    auto* layout = new QHBoxLayout;
    const auto button = [&](const QString& name, Text text, auto clicked) {
        auto* made = new QPushButton(texts_.GetText(text), this);
        made->setObjectName(name);
        made->setAutoDefault(false);
        connect(made, &QPushButton::clicked, this, [this, clicked, name] {
            Guard(u"FCompare: "_s + name + u"_Click"_s, [&] { (this->*clicked)(); });
        });
        layout->addWidget(made);
        return made;
    };
    cmdPrevious_ = button(u"cmdPrevious"_s, Text::Previous, &FCompare::Previous);
    cmdNext_ = button(u"cmdNext"_s, Text::Next, &FCompare::Next);
    layout->addStretch(1);
    cmdShow_ = button(u"cmdShow"_s, Text::Show, &FCompare::ShowInEditor);
    cmdTakeOver_ = button(u"cmdTakeOver"_s, Text::TakeOver, &FCompare::TakeSelected);
    cmdTakeAll_ = button(u"cmdTakeAll"_s, Text::TakeAll, &FCompare::TakeAll);
    button(u"cmdClose"_s, Text::Close, &FCompare::reject);
    cmdPrevious_->setToolTip(u"Shift+F8"_s);
    cmdNext_->setToolTip(u"F8"_s);
    return layout;
}
