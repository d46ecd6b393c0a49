// Building of the window of the export.

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include "messages/LabelEdges.h"
#include "messages/PlainTexts.h"
#include "project/Rows.h"
#include "project/Schema.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"
#include "transfer/FExport.h"
#include "transfer/PlanTexts.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using Text = MResourceTable::Exchange;
using exchange::SheetKind;

constexpr int kPreviewWidth = 70;  // average characters
constexpr int kArchiveLines = 6;

}  // namespace

void FExport::Build() {
    setObjectName(u"FExport"_s);
    setWindowTitle(texts_.GetText(Text::ExportTitle));
    messages::KeepTextsPlain(*this);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(BuildScope());
    layout->addLayout(BuildForm());
    BuildCsv();
    layout->addWidget(fraCsv_, 1);
    layout->addLayout(BuildFile());
    layout->addLayout(BuildButtons());
    messages::AlignLabels(*this);
    FillArchives();
    optSelected_->setEnabled(!selection_.trends.empty());
    const bool isSelected = selection_.isChosen || selection_.trends.size() > 1;
    (isSelected ? optSelected_ : optProject_)->setChecked(true);
    (kept_.isWorkbook ? optXlsx_ : optCsv_)->setChecked(true);
    for (QRadioButton* option : {optSelected_, optArchives_, optProject_, optXlsx_, optCsv_}) {
        connect(option, &QRadioButton::toggled, this, [this](bool on) {
            if (!on) return;
            FollowForm();
            TakeScope();
        });
    }
    connect(lstArchives_, &QListWidget::itemChanged, this, &FExport::TakeScope);
    txtFile_->setFocus();
}

QRadioButton* FExport::Option(const QString& name, const QString& text, QButtonGroup* group) {
    auto* option = new QRadioButton(text, this);
    option->setObjectName(name);
    group->addButton(option);
    return option;
}

QLayout* FExport::BuildScope() {
    auto* group = new QButtonGroup(this);
    const QString count = QString::number(selection_.trends.size());
    optProject_ = Option(u"optProject"_s, texts_.GetText(Text::ExportProject), group);
    optSelected_ =
        Option(u"optSelected"_s, texts_.GetText(Text::ExportSelected, {{u"n", count}}), group);
    optArchives_ = Option(u"optArchives"_s, texts_.GetText(Text::ExportArchives), group);
    lstArchives_ = new QListWidget(this);
    lstArchives_->setObjectName(u"lstArchives"_s);
    lstArchives_->setAccessibleName(texts_.GetText(Text::ExportArchives).remove(u'&'));
    lstArchives_->setFixedHeight(kArchiveLines * fontMetrics().lineSpacing());
    auto* column = new QVBoxLayout;
    for (QRadioButton* option : {optProject_, optSelected_, optArchives_}) {
        column->addWidget(option);
    }
    column->addStretch(1);
    auto* row = new QHBoxLayout;
    row->addLayout(column);
    row->addWidget(lstArchives_, 1);
    return row;
}

void FExport::FillArchives() {
    project::Rows rows(work_.Connection());
    ado::Recordset& archives = rows.Archives();
    for (archives.SetFilter(""); !archives.IsEOF(); archives.MoveNext()) {
        const std::int32_t id = ado::ToLong(archives.Get(project::kKeyColumn));
        auto* item =
            new QListWidgetItem(projectdb::ToQString(project::NameOf(archives)), lstArchives_);
        item->setData(Qt::UserRole, id);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(id == selection_.archive ? Qt::Checked : Qt::Unchecked);
    }
    lstArchives_->sortItems();
    for (int row = 0; row < lstArchives_->count(); ++row) {
        QListWidgetItem* item = lstArchives_->item(row);
        if (item->checkState() == Qt::Checked) lstArchives_->setCurrentItem(item);
    }
}

QLayout* FExport::BuildForm() {
    auto* group = new QButtonGroup(this);
    optXlsx_ = Option(u"optXlsx"_s, texts_.GetText(Text::ExportXlsx), group);
    optCsv_ = Option(u"optCsv"_s, texts_.GetText(Text::ExportCsv), group);
    auto* column = new QVBoxLayout;
    column->addWidget(optXlsx_);
    column->addWidget(optCsv_);
    return column;
}

QComboBox* FExport::Combo(const QString& name, int label, const QStringList& items,
                          QGridLayout* into) {
    auto* caption = new QLabel(texts_.GetText(label), fraCsv_);
    auto* combo = new QComboBox(fraCsv_);
    combo->setObjectName(name);
    combo->addItems(items);
    caption->setBuddy(combo);
    const int row = into->rowCount();
    into->addWidget(caption, row, 0);
    into->addWidget(combo, row, 1);
    return combo;
}

void FExport::BuildCsv() {
    fraCsv_ = new QWidget(this);
    fraCsv_->setObjectName(u"fraCsv"_s);
    auto* grid = new QGridLayout(fraCsv_);
    grid->setContentsMargins(0, 0, 0, 0);
    const words::Language& language = transfer::FileLanguage(texts_);
    const auto nameOf = [&](SheetKind kind) {
        return projectdb::ToQString(exchange::NameOf(kind, language));
    };
    cmbSheet_ = Combo(u"cmbSheet"_s, static_cast<int>(Text::Sheet),
                      {nameOf(SheetKind::Trends), nameOf(SheetKind::Archives)}, grid);
    cmbSeparator_ = Combo(
        u"cmbSeparator"_s, static_cast<int>(Text::Separator),
        {texts_.GetText(Text::Semicolon), texts_.GetText(Text::Comma), texts_.GetText(Text::Tab)},
        grid);
    cmbDecimal_ = Combo(u"cmbDecimal"_s, static_cast<int>(Text::Decimal),
                        {texts_.GetText(Text::Comma), texts_.GetText(Text::Point)}, grid);
    cmbEncoding_ = Combo(u"cmbEncoding"_s, static_cast<int>(Text::ExportEncoding),
                         {u"UTF-8"_s, u"Windows-1252"_s}, grid);
    chkMark_ = new QCheckBox(texts_.GetText(Text::Mark), fraCsv_);
    chkMark_->setObjectName(u"chkMark"_s);
    grid->addWidget(chkMark_, grid->rowCount(), 0, 1, 2);
    cmdLocale_ = new QPushButton(texts_.GetText(Text::LocaleForm), fraCsv_);
    cmdLocale_->setObjectName(u"cmdLocale"_s);
    cmdLocale_->setAutoDefault(false);
    grid->addWidget(cmdLocale_, grid->rowCount(), 0, 1, 2);
    grid->setRowStretch(grid->rowCount(), 1);
    txtPreview_ = new QPlainTextEdit(fraCsv_);
    txtPreview_->setObjectName(u"txtPreview"_s);
    txtPreview_->setAccessibleName(texts_.GetText(Text::Preview));
    txtPreview_->setReadOnly(true);
    txtPreview_->setTabChangesFocus(true);
    txtPreview_->setLineWrapMode(QPlainTextEdit::NoWrap);
    txtPreview_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    txtPreview_->setMinimumWidth(kPreviewWidth * fontMetrics().averageCharWidth());
    lblNote_ = new QLabel(fraCsv_);
    lblNote_->setObjectName(u"lblNote"_s);
    lblNote_->setWordWrap(true);
    const int rows = grid->rowCount();
    grid->addWidget(txtPreview_, 0, 2, rows, 1);
    grid->addWidget(lblNote_, rows, 2);
    grid->setColumnStretch(2, 1);
    connect(cmbSheet_, &QComboBox::currentIndexChanged, this, &FExport::TakeScope);
    for (QComboBox* combo : {cmbSeparator_, cmbDecimal_, cmbEncoding_}) {
        connect(combo, &QComboBox::currentIndexChanged, this, &FExport::ShowPreview);
    }
    connect(cmdLocale_, &QPushButton::clicked, this,
            [this] { ShowForm(transfer::CsvFormOfStation()); });
}

QLayout* FExport::BuildFile() {
    auto* label = new QLabel(texts_.GetText(Text::ExportFile), this);
    txtFile_ = new QLineEdit(this);
    txtFile_->setObjectName(u"txtFile"_s);
    label->setBuddy(txtFile_);
    connect(txtFile_, &QLineEdit::textChanged, this, &FExport::FollowFile);
    auto* browse = new QPushButton(texts_.GetText(Text::Browse), this);
    browse->setObjectName(u"cmdBrowse"_s);
    browse->setAutoDefault(false);
    connect(browse, &QPushButton::clicked, this, &FExport::cmdBrowse_Click);
    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(txtFile_, 1);
    row->addWidget(browse);
    return row;
}

QLayout* FExport::BuildButtons() {
    cmdOk_ = new QPushButton(texts_.GetText(Text::Export), this);
    cmdOk_->setObjectName(u"cmdOk"_s);
    cmdOk_->setDefault(true);
    connect(cmdOk_, &QPushButton::clicked, this, &FExport::cmdOk_Click);
    auto* cancel = new QPushButton(texts_.GetText(MResourceTable::kTextCancel), this);
    cancel->setObjectName(u"cmdCancel"_s);
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOk_);
    buttons->addWidget(cancel);
    return buttons;
}
