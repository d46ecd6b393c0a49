#include "studio/BackupsDialog.h"

#include <QDateTime>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "messages/LabelEdges.h"
#include "messages/MessageBox.h"
#include "studio/BackupService.h"

namespace studio {

using namespace Qt::Literals::StringLiterals;

QString DateText(const backups::Backup& backup, const StudioTexts& texts) {
    const auto taken = QDateTime::fromMSecsSinceEpoch(backup.taken.time_since_epoch().count());
    const QLocale locale = texts.Locale();
    QString date = locale.dateFormat(QLocale::ShortFormat);
    if (!date.contains(u"yyyy"_s)) date.replace(u"yy"_s, u"yyyy"_s);
    // A project may be opened twice in a minute.
    const QString time = locale.timeFormat(QLocale::ShortFormat).replace(u"mm"_s, u"mm:ss"_s);
    return locale.toString(taken.date(), date) + u' ' + locale.toString(taken.time(), time);
}

BackupsDialog::BackupsDialog(BackupService& service, const ProjectLocation& project,
                             const StudioTexts& texts, QWidget* parent)
    : QDialog(parent), service_(service), project_(project), texts_(texts) {
    setObjectName(u"frmBackups"_s);
    setWindowTitle(texts_(Text::BackupsTitle, {{u"project", project_.shown}}));
    auto* lblHint = new QLabel(texts_(Text::BackupsHint));
    lblHint->setWordWrap(true);
    lstBackups_ = new QTreeWidget;
    lstBackups_->setObjectName(u"lstBackups"_s);
    lstBackups_->setAccessibleName(windowTitle());
    lstBackups_->setRootIsDecorated(false);
    lstBackups_->setHeaderLabels({texts_(Text::BackupDateColumn), texts_(Text::BackupSizeColumn),
                                  texts_(Text::BackupArchivesColumn),
                                  texts_(Text::BackupTrendsColumn)});
    for (int column = 1; column < lstBackups_->columnCount(); ++column) {
        lstBackups_->headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    }
    lstBackups_->header()->setStretchLastSection(false);
    lstBackups_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    lstBackups_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    lblNone_ = new QLabel(texts_(Text::BackupsNone));
    lblNone_->setObjectName(u"lblNone"_s);

    auto* buttons = new QDialogButtonBox;
    cmdRestore_ = buttons->addButton(texts_(Text::BackupRestore), QDialogButtonBox::ActionRole);
    cmdRestore_->setObjectName(u"cmdRestore"_s);
    cmdRestore_->setAutoDefault(false);
    cmdCompare_ = buttons->addButton(texts_(Text::BackupCompare), QDialogButtonBox::ActionRole);
    cmdCompare_->setObjectName(u"cmdCompare"_s);
    cmdCompare_->setAutoDefault(false);
    auto* cmdClose = buttons->addButton(texts_(Text::Close), QDialogButtonBox::RejectRole);
    cmdClose->setObjectName(u"cmdClose"_s);
    cmdClose->setAutoDefault(false);
    connect(cmdRestore_, &QPushButton::clicked, this, &BackupsDialog::cmdRestore_Click);
    connect(cmdCompare_, &QPushButton::clicked, this, &BackupsDialog::cmdCompare_Click);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(lstBackups_, &QTreeWidget::itemActivated, this, &BackupsDialog::cmdRestore_Click);
    connect(lstBackups_, &QTreeWidget::itemSelectionChanged, this, &BackupsDialog::UpdateEnabling);
    // The one of this opening may be on its way still.
    connect(&service_, &BackupService::Taken, this, &BackupsDialog::FillList);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblHint);
    layout->addWidget(lstBackups_, 1);
    layout->addWidget(lblNone_);
    layout->addWidget(BuildSettings());
    layout->addWidget(buttons);
    messages::AlignLabels(*this);
    resize(560, 460);
    FillList();
    lstBackups_->setFocus();
}

QWidget* BackupsDialog::BuildSettings() {
    auto* group = new QGroupBox(texts_(Text::BackupsSettings));
    numMost_ = new QSpinBox;
    numMost_->setObjectName(u"numMost"_s);
    numMost_->setRange(0, BackupService::kGreatestMost);
    numMost_->setSpecialValueText(texts_(Text::BackupsMostNone));
    numMost_->setValue(service_.Most());
    auto* lblMost = new QLabel(texts_(Text::BackupsMost));
    lblMost->setBuddy(numMost_);
    txtFolder_ = new QLineEdit(QDir::toNativeSeparators(service_.Folder()));
    txtFolder_->setObjectName(u"txtFolder"_s);
    txtFolder_->setPlaceholderText(QDir::toNativeSeparators(service_.UsualFolder()));
    auto* lblFolder = new QLabel(texts_(Text::BackupsFolder));
    lblFolder->setBuddy(txtFolder_);
    auto* cmdBrowse = new QPushButton(texts_(Text::NewBrowse));
    cmdBrowse->setObjectName(u"cmdBrowse"_s);
    cmdBrowse->setAutoDefault(false);
    connect(numMost_, &QSpinBox::valueChanged, this, [this](int most) { service_.SetMost(most); });
    connect(txtFolder_, &QLineEdit::editingFinished, this, &BackupsDialog::txtFolder_Change);
    connect(cmdBrowse, &QPushButton::clicked, this, &BackupsDialog::cmdBrowse_Click);

    auto* layout = new QGridLayout(group);
    layout->addWidget(lblMost, 0, 0);
    layout->addWidget(numMost_, 0, 1, Qt::AlignLeft);
    layout->addWidget(lblFolder, 1, 0);
    layout->addWidget(txtFolder_, 1, 1);
    layout->addWidget(cmdBrowse, 1, 2);
    layout->setColumnStretch(1, 1);
    return group;
}

void BackupsDialog::FillList() {
    const int row = std::max(0, lstBackups_->indexOfTopLevelItem(lstBackups_->currentItem()));
    backups_ = service_.List(project_.nativePath);
    lstBackups_->clear();
    const QLocale locale = texts_.Locale();
    const auto countText = [&](const std::optional<std::uint32_t>& count) {
        return count ? locale.toString(*count) : texts_(Text::BackupUnreadable);
    };
    for (const backups::Backup& backup : backups_) {
        auto* item = new QTreeWidgetItem(
            lstBackups_, {DateText(backup, texts_),
                          locale.formattedDataSize(static_cast<qint64>(backup.size), 1,
                                                   QLocale::DataSizeTraditionalFormat),
                          countText(backup.archives), countText(backup.trends)});
        for (int column = 1; column < lstBackups_->columnCount(); ++column) {
            item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
        }
        item->setToolTip(0, QFile::decodeName(backup.path.c_str()));
    }
    lblNone_->setVisible(backups_.empty());
    lstBackups_->setCurrentItem(
        lstBackups_->topLevelItem(std::min(row, lstBackups_->topLevelItemCount() - 1)));
    UpdateEnabling();
}

void BackupsDialog::UpdateEnabling() {
    cmdRestore_->setEnabled(lstBackups_->currentItem() != nullptr);
    cmdCompare_->setEnabled(lstBackups_->currentItem() != nullptr);
}

void BackupsDialog::cmdRestore_Click() {
    const int row = lstBackups_->indexOfTopLevelItem(lstBackups_->currentItem());
    if (row < 0) return;
    chosen_ = backups_.at(static_cast<std::size_t>(row));
    messages::SetScreenPointer(messages::Pointer::Hourglass);
    const bool isSound = backups::Backups::IsSound(chosen_);
    messages::SetScreenPointer(messages::Pointer::Default);
    const QString question =
        texts_(isSound ? Text::BackupQuestion : Text::BackupQuestionFaulty,
               {{u"project", project_.shown}, {u"date", DateText(chosen_, texts_)}});
    const auto buttons = isSound ? messages::MessageButtons::OkCancel
                                 : messages::MessageButtons::OkCancelDefaultCancel;
    const auto answer = messages::ShowMessage(question, buttons, windowTitle(), this);
    if (answer == messages::MessageResult::Ok) accept();
}

void BackupsDialog::cmdCompare_Click() {
    const int row = lstBackups_->indexOfTopLevelItem(lstBackups_->currentItem());
    if (row < 0) return;
    chosen_ = backups_.at(static_cast<std::size_t>(row));
    done(kCompare);
}

void BackupsDialog::cmdBrowse_Click() {
    const QString folder = service_.Folder();
    const QString chosen = QFileDialog::getExistingDirectory(
        this, texts_(Text::BackupsFolder).remove(u'&').remove(u':'),
        folder.isEmpty() ? QDir::homePath() : folder);
    if (chosen.isEmpty()) return;
    txtFolder_->setText(QDir::toNativeSeparators(chosen));
    txtFolder_Change();
}

void BackupsDialog::txtFolder_Change() {
    const QString typed = txtFolder_->text().trimmed();
    if (typed == service_.Folder()) return;
    service_.SetFolder(typed);
    txtFolder_->setText(QDir::toNativeSeparators(service_.Folder()));
    FillList();
}

}  // namespace studio
