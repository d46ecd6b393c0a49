// Building of the window that finds and replaces.

#include <QCheckBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

#include "guard/Guard.h"
#include "messages/LabelEdges.h"
#include "messages/PlainTexts.h"
#include "replace/FReplace.h"
#include "replace/HitDelegate.h"
#include "texts/MResourceTable.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using guard::Guard;
using replace::HitModel;
using Text = MResourceTable::Replace;

// Average characters.
constexpr int kWidth = 165;
constexpr int kHeight = 34;  // lines
constexpr int kColumnWidths[] = {20, 20, 18, 30, 30, 24};
constexpr int kWidest = 2000;  // of a term, characters

}  // namespace

void FReplace::Build() {
    setObjectName(u"FReplace"_s);
    messages::KeepTextsPlain(*this);
    setWindowTitle(texts_.GetText(Text::Title));
    BuildList();
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(BuildTerm());
    layout->addLayout(BuildKinds());
    layout->addLayout(BuildNarrowing());
    layout->addWidget(grdHits_, 1);
    layout->addLayout(BuildButtons());
    messages::AlignLabels(*this);
    const int letter = fontMetrics().averageCharWidth();
    resize(kWidth * letter, kHeight * fontMetrics().lineSpacing());
    // The keyboard goes from the term to the replacement and on to the list.
    setTabOrder(txtTerm_, chkReplace_);
    setTabOrder(chkReplace_, txtReplacement_);
}

QCheckBox* FReplace::Box(const QString& name, int text, bool checked) {
    auto* box = new QCheckBox(texts_.GetText(text), this);
    box->setObjectName(name);
    box->setChecked(checked);
    return box;
}

QLineEdit* FReplace::Line(const QString& name, int label) {
    auto* line = new QLineEdit(this);
    line->setObjectName(name);
    line->setMaxLength(kWidest);
    line->setClearButtonEnabled(true);
    line->setAccessibleName(texts_.GetText(label).remove(u'&'));
    line->installEventFilter(this);
    return line;
}

QLabel* FReplace::Label(const QString& name) {
    auto* label = new QLabel(this);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QLayout* FReplace::BuildTerm() {
    txtTerm_ = Line(u"txtTerm"_s, static_cast<int>(Text::Term));
    auto* lblTerm = new QLabel(texts_.GetText(Text::Term), this);
    lblTerm->setBuddy(txtTerm_);
    chkReplace_ = Box(u"chkReplace"_s, static_cast<int>(Text::Replacement), false);
    txtReplacement_ = Line(u"txtReplacement"_s, static_cast<int>(Text::Replacement));
    lblTermFault_ = Label(u"lblTermFault"_s);
    lblReplacementFault_ = Label(u"lblReplacementFault"_s);
    auto* layout = new QGridLayout;
    layout->addWidget(lblTerm, 0, 0);
    layout->addWidget(txtTerm_, 0, 1);
    layout->addWidget(lblTermFault_, 1, 1);
    layout->addWidget(chkReplace_, 2, 0);
    layout->addWidget(txtReplacement_, 2, 1);
    layout->addWidget(lblReplacementFault_, 3, 1);
    connect(txtTerm_, &QLineEdit::textChanged, this, &FReplace::SearchSoon);
    const auto replacing = [this] {
        told_.clear();
        Guard(u"FReplace: txtReplacement"_s, [this] { TakeReplacement(); });
    };
    connect(chkReplace_, &QCheckBox::toggled, this, replacing);
    connect(txtReplacement_, &QLineEdit::textChanged, this, replacing);
    return layout;
}

QLayout* FReplace::BuildKinds() {
    const auto box = [this](const QString& name, Text text, bool checked) {
        QCheckBox* made = Box(name, static_cast<int>(text), checked);
        connect(made, &QCheckBox::toggled, this, &FReplace::SearchSoon);
        return made;
    };
    chkCase_ = box(u"chkCase"_s, Text::Case, false);
    chkWord_ = box(u"chkWord"_s, Text::Word, false);
    chkWhole_ = box(u"chkWhole"_s, Text::Whole, false);
    chkExpression_ = box(u"chkExpression"_s, Text::Expression, false);
    chkNames_ = box(u"chkNames"_s, Text::Names, true);
    chkVariables_ = box(u"chkVariables"_s, Text::Variables, true);
    chkTexts_ = box(u"chkTexts"_s, Text::Texts, true);
    chkComments_ = box(u"chkComments"_s, Text::Comments, true);
    chkUnits_ = box(u"chkUnits"_s, Text::Units, true);
    auto* layout = new QGridLayout;
    int column = 0;
    for (QCheckBox* each : {chkCase_, chkWord_, chkWhole_, chkExpression_}) {
        layout->addWidget(each, 0, column++);
    }
    column = 0;
    for (QCheckBox* each : {chkNames_, chkVariables_, chkTexts_, chkComments_, chkUnits_}) {
        layout->addWidget(each, 1, column++);
    }
    layout->setColumnStretch(column, 1);
    return layout;
}

QLayout* FReplace::BuildNarrowing() {
    txtNarrow_ = Line(u"txtNarrow"_s, static_cast<int>(Text::Narrow));
    txtNarrow_->setPlaceholderText(texts_.GetText(Text::Narrow));
    connect(txtNarrow_, &QLineEdit::textChanged, this, [this] {
        narrowing_.start();
        ShowState();
    });
    chkAll_ = Box(u"chkAll"_s, static_cast<int>(Text::All), true);
    // Some are ticked: that shows, but is nothing to choose.
    connect(chkAll_, &QCheckBox::clicked, this, [this] {
        const bool tick = model_.AllTicked() != Qt::Checked;
        Guard(u"FReplace: chkAll_Click"_s, [&] { model_.SetAllTicked(tick); });
    });
    auto* layout = new QHBoxLayout;
    layout->addWidget(chkAll_);
    layout->addWidget(txtNarrow_, 1);
    return layout;
}

void FReplace::BuildList() {
    grdHits_ = new QTableView(this);
    grdHits_->setObjectName(u"grdHits"_s);
    grdHits_->setAccessibleName(texts_.GetText(Text::Hits));
    grdHits_->setModel(&model_);
    grdHits_->setItemDelegate(new replace::HitDelegate(grdHits_));
    grdHits_->setSelectionBehavior(QAbstractItemView::SelectRows);
    grdHits_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    grdHits_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdHits_->setTabKeyNavigation(false);
    grdHits_->setWordWrap(false);
    grdHits_->verticalHeader()->hide();
    grdHits_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    grdHits_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    grdHits_->horizontalHeader()->setStretchLastSection(true);
    grdHits_->horizontalHeader()->setHighlightSections(false);
    const int letter = fontMetrics().averageCharWidth();
    for (int column = 0; column < HitModel::kColumnCount; ++column) {
        grdHits_->setColumnWidth(column, kColumnWidths[column] * letter);
    }
    grdHits_->installEventFilter(this);
    connect(grdHits_, &QTableView::doubleClicked, this, &FReplace::ShowHit);
}

QLayout* FReplace::BuildButtons() {
    lblState_ = Label(u"lblState"_s);
    const auto button = [this](const QString& name, Text text, auto clicked) {
        auto* made = new QPushButton(texts_.GetText(text), this);
        made->setObjectName(name);
        made->setAutoDefault(false);
        connect(made, &QPushButton::clicked, this, clicked);
        return made;
    };
    cmdShow_ = button(u"cmdShow"_s, Text::Show, [this] { ShowHit(grdHits_->currentIndex()); });
    cmdReplace_ = button(u"cmdReplace"_s, Text::ReplaceNone,
                         [this] { Guard(u"FReplace: cmdReplace_Click"_s, [this] { Replace(); }); });
    auto* cmdClose = button(u"cmdClose"_s, Text::Close, [this] { reject(); });
    auto* layout = new QHBoxLayout;
    layout->addWidget(lblState_, 1);
    layout->addWidget(cmdShow_);
    layout->addWidget(cmdReplace_);
    layout->addWidget(cmdClose);
    return layout;
}
