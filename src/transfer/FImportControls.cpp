// Building of the window of the import.

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeView>

#include "messages/LabelEdges.h"
#include "messages/PlainTexts.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"
#include "transfer/ColumnChoices.h"
#include "transfer/FImport.h"
#include "transfer/PlanTexts.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using exchange::SheetKind;
using Text = MResourceTable::Exchange;

// Average characters.
constexpr int kWidth = 130;
constexpr int kHeight = 40;  // lines
constexpr int kColumnWidths[] = {16, 14, 38, 24};

}  // namespace

void FImport::Build() {
    setObjectName(u"FImport"_s);
    setWindowTitle(texts_.GetText(Text::ImportTitle));
    messages::KeepTextsPlain(*this);
    lblState_ = new QLabel(this);
    lblState_->setObjectName(u"lblState"_s);
    lblState_->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(BuildFile());
    layout->addLayout(BuildColumns());
    tblColumns_ = new transfer::ColumnChoices(texts_, this);
    tblColumns_->setObjectName(u"tblColumns"_s);
    tblColumns_->setAccessibleName(texts_.GetText(Text::Columns).remove(u'&'));
    layout->addWidget(tblColumns_);
    layout->addLayout(BuildOptions());
    BuildPlan();
    layout->addWidget(treePlan_, 1);
    layout->addWidget(lblState_);
    layout->addLayout(BuildButtons());
    messages::AlignLabels(*this);
    connect(tblColumns_, &transfer::ColumnChoices::Assigned, this,
            [this](std::size_t heading, std::optional<std::size_t> column) {
                Shown()->Assign(heading, column);
                tblColumns_->ShowChoices(*Shown());
                told_.clear();
                Plan();
            });
    resize(kWidth * fontMetrics().averageCharWidth(), kHeight * fontMetrics().lineSpacing());
}

QLayout* FImport::BuildFile() {
    auto* label = new QLabel(texts_.GetText(Text::File), this);
    txtFile_ = new QLineEdit(this);
    txtFile_->setObjectName(u"txtFile"_s);
    label->setBuddy(txtFile_);
    connect(txtFile_, &QLineEdit::returnPressed, this,
            [this] { Open(txtFile_->text().trimmed()); });
    auto* browse = new QPushButton(texts_.GetText(Text::Browse), this);
    browse->setObjectName(u"cmdBrowse"_s);
    browse->setAutoDefault(false);
    connect(browse, &QPushButton::clicked, this, &FImport::cmdBrowse_Click);
    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(txtFile_, 1);
    row->addWidget(browse);
    return row;
}

QComboBox* FImport::Combo(const QString& name, int label, QLayout* into) {
    auto* caption = new QLabel(texts_.GetText(label), this);
    auto* combo = new QComboBox(this);
    combo->setObjectName(name);
    combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    caption->setBuddy(combo);
    into->addWidget(caption);
    into->addWidget(combo);
    return combo;
}

QLayout* FImport::BuildColumns() {
    auto* row = new QHBoxLayout;
    cmbEncoding_ = Combo(u"cmbEncoding"_s, static_cast<int>(Text::Encoding), row);
    cmbEncoding_->addItems({u"UTF-8"_s, u"Windows-1252"_s});
    cmbKind_ = Combo(u"cmbKind"_s, static_cast<int>(Text::RowKind), row);
    for (const SheetKind kind : {SheetKind::Trends, SheetKind::Archives}) {
        cmbKind_->addItem(
            projectdb::ToQString(exchange::NameOf(kind, transfer::FileLanguage(texts_))));
    }
    cmbSheet_ = Combo(u"cmbSheet"_s, static_cast<int>(Text::Columns), row);
    row->addStretch(1);
    const auto labelOf = [&](const QComboBox* combo) {
        return qobject_cast<QLabel*>(row->itemAt(row->indexOf(combo) - 1)->widget());
    };
    lblKind_ = labelOf(cmbKind_);
    lblSheet_ = labelOf(cmbSheet_);
    connect(cmbEncoding_, &QComboBox::activated, this, &FImport::ReadFile);
    connect(cmbKind_, &QComboBox::activated, this, &FImport::TakeKind);
    connect(cmbSheet_, &QComboBox::currentIndexChanged, this, &FImport::ShowColumns);
    return row;
}

QLayout* FImport::BuildOptions() {
    auto* row = new QHBoxLayout;
    cmbMatch_ = Combo(u"cmbMatch"_s, static_cast<int>(Text::Match), row);
    cmbMatch_->addItems({texts_.GetText(Text::MatchBoth), texts_.GetText(Text::MatchId),
                         texts_.GetText(Text::MatchName)});
    chkDelete_ = new QCheckBox(texts_.GetText(Text::DeleteMissing), this);
    chkDelete_->setObjectName(u"chkDelete"_s);
    chkAll_ = new QCheckBox(texts_.GetText(Text::All), this);
    chkAll_->setObjectName(u"chkAll"_s);
    chkAll_->setTristate(true);
    row->addStretch(1);
    row->addWidget(chkDelete_);
    row->addWidget(chkAll_);
    connect(cmbMatch_, &QComboBox::activated, this, [this] {
        ticks_ = {};
        Plan();
    });
    connect(chkDelete_, &QCheckBox::clicked, this, &FImport::Plan);
    connect(chkAll_, &QCheckBox::clicked, this,
            [this] { model_->TickAll(model_->AllTicked() != Qt::Checked); });
    return row;
}

void FImport::BuildPlan() {
    treePlan_ = new QTreeView(this);
    treePlan_->setObjectName(u"treePlan"_s);
    treePlan_->setAccessibleName(windowTitle());
    treePlan_->setModel(model_);
    treePlan_->setUniformRowHeights(true);
    treePlan_->setAlternatingRowColors(true);
    treePlan_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    treePlan_->installEventFilter(this);
    for (int column = 0; column < static_cast<int>(std::size(kColumnWidths)); ++column) {
        treePlan_->header()->resizeSection(
            column, kColumnWidths[column] * fontMetrics().averageCharWidth());
    }
}

QLayout* FImport::BuildButtons() {
    cmdImport_ = new QPushButton(this);
    cmdImport_->setObjectName(u"cmdImport"_s);
    cmdImport_->setAutoDefault(false);
    connect(cmdImport_, &QPushButton::clicked, this, &FImport::cmdImport_Click);
    auto* close = new QPushButton(texts_.GetText(Text::Close), this);
    close->setObjectName(u"cmdClose"_s);
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(cmdImport_);
    row->addWidget(close);
    return row;
}
