#include "studio/NewProject.h"

#include <algorithm>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <vector>

#include "ado/AdoError.h"
#include "messages/LabelEdges.h"
#include "messages/MessageBox.h"
#include "platform/Locale.h"
#include "project/CreateProject.h"
#include "texts/ReasonText.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

const QString kExtension = u".kvs"_s;
constexpr platform::Lcid kTicked[] = {platform::kLcidGerman, platform::kLcidEnglish};
// Those of the plants that are built; `kvs new` takes any other.
constexpr platform::Lcid kFurther[] = {1026, 1028, 1029, 1030, 1032, 1035, 1036, 1038, 1040,
                                       1041, 1042, 1043, 1044, 1045, 1046, 1048, 1049, 1050,
                                       1051, 1053, 1055, 1058, 1060, 2052, 2070, 3082};

}  // namespace

NewProjectDialog::NewProjectDialog(const StudioTexts& texts, const QString& folder, QWidget* parent)
    : QDialog(parent), texts_(texts), folder_(folder) {
    setObjectName(u"frmNewProject"_s);
    setWindowTitle(texts_(Text::NewTitle));
    txtFile_ = new QLineEdit;
    txtFile_->setObjectName(u"txtFile"_s);
    txtFile_->setMinimumWidth(320);
    auto* lblFile = new QLabel(texts_(Text::NewFile));
    lblFile->setBuddy(txtFile_);
    auto* cmdBrowse = new QPushButton(texts_(Text::NewBrowse));
    cmdBrowse->setObjectName(u"cmdBrowse"_s);
    cmdBrowse->setAutoDefault(false);
    lstLanguages_ = new QListWidget;
    lstLanguages_->setObjectName(u"lstLanguages"_s);
    // Of a list assistive tools do not look for a label.
    lstLanguages_->setAccessibleName(texts_(Text::NewLanguages).remove(u'&'));
    auto* lblLanguages = new QLabel(texts_(Text::NewLanguages));
    lblLanguages->setBuddy(lstLanguages_);
    FillLanguages();

    auto* buttons = new QDialogButtonBox;
    cmdOk_ = buttons->addButton(texts_(Text::NewOk), QDialogButtonBox::AcceptRole);
    cmdOk_->setObjectName(u"cmdOk"_s);
    cmdOk_->setDefault(true);
    auto* cmdCancel = buttons->addButton(texts_(Text::Cancel), QDialogButtonBox::RejectRole);
    cmdCancel->setObjectName(u"cmdCancel"_s);
    connect(cmdBrowse, &QPushButton::clicked, this, &NewProjectDialog::cmdBrowse_Click);
    connect(buttons, &QDialogButtonBox::accepted, this, &NewProjectDialog::cmdOk_Click);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(txtFile_, &QLineEdit::textChanged, this, &NewProjectDialog::UpdateEnabling);
    connect(lstLanguages_, &QListWidget::itemChanged, this, &NewProjectDialog::UpdateEnabling);

    auto* layout = new QGridLayout(this);
    layout->addWidget(lblFile, 0, 0);
    layout->addWidget(txtFile_, 0, 1);
    layout->addWidget(cmdBrowse, 0, 2);
    layout->addWidget(lblLanguages, 1, 0, Qt::AlignTop);
    layout->addWidget(lstLanguages_, 1, 1, 1, 2);
    layout->addWidget(buttons, 2, 0, 1, 3);
    messages::AlignLabels(*this);
    UpdateEnabling();
}

void NewProjectDialog::FillLanguages() {
    const auto name = [&](platform::Lcid lcid) {
        return platform::LanguageName(lcid, static_cast<platform::Lcid>(texts_.Lcid()));
    };
    const auto add = [&](platform::Lcid lcid, Qt::CheckState state) {
        auto* item = new QListWidgetItem(name(lcid), lstLanguages_);
        item->setData(Qt::UserRole, lcid);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(state);
    };
    for (const platform::Lcid lcid : kTicked) add(lcid, Qt::Checked);
    std::vector<platform::Lcid> further(std::begin(kFurther), std::end(kFurther));
    std::sort(further.begin(), further.end(), [&](platform::Lcid a, platform::Lcid b) {
        return QString::localeAwareCompare(name(a), name(b)) < 0;
    });
    for (const platform::Lcid lcid : further) add(lcid, Qt::Unchecked);
    lstLanguages_->setCurrentRow(0);
}

void NewProjectDialog::UpdateEnabling() {
    bool hasLanguage = false;
    for (int row = 0; row < lstLanguages_->count(); ++row) {
        hasLanguage = hasLanguage || lstLanguages_->item(row)->checkState() == Qt::Checked;
    }
    cmdOk_->setEnabled(hasLanguage && !txtFile_->text().trimmed().isEmpty());
}

QString NewProjectDialog::PathOf(QString typed) const {
    if (!typed.endsWith(kExtension, Qt::CaseInsensitive)) typed += kExtension;
    return QDir::cleanPath(QDir(folder_).absoluteFilePath(typed));
}

void NewProjectDialog::cmdBrowse_Click() {
    const QString typed = txtFile_->text().trimmed();
    // A file that is there is refused in any case, so nobody is asked whether to overwrite it.
    const QString file = QFileDialog::getSaveFileName(
        this, texts_(Text::NewTitle), typed.isEmpty() ? folder_ : PathOf(typed),
        texts_(Text::OpenFilter), nullptr, QFileDialog::DontConfirmOverwrite);
    if (!file.isEmpty()) txtFile_->setText(QDir::toNativeSeparators(PathOf(file)));
}

void NewProjectDialog::cmdOk_Click() {
    const QString file = PathOf(txtFile_->text().trimmed());
    if (file.contains(u'\\')) return Complain(texts_(Text::ErrorBackslash, {{u"file", file}}));
    if (QFileInfo::exists(file)) return Complain(texts_(Text::ErrorExists, {{u"file", file}}));
    std::vector<std::uint32_t> lcids;
    for (int row = 0; row < lstLanguages_->count(); ++row) {
        const QListWidgetItem& item = *lstLanguages_->item(row);
        if (item.checkState() == Qt::Checked) lcids.push_back(item.data(Qt::UserRole).toUInt());
    }
    try {
        project::CreateProject(file.toStdString(), lcids);
    } catch (const ado::AdoError& error) {
        const QString cause = texts::ReasonText(error.Reason());
        return Complain(texts_(Text::ErrorNotMade, {{u"file", file}, {u"cause", cause}}),
                        QString::fromStdString(error.Description()));
    }
    file_ = file;
    accept();
}

void NewProjectDialog::Complain(const QString& message, const QString& details) {
    messages::ShowMessage({message, messages::MessageButtons::Ok, texts_(Text::NewTitle), details},
                          this);
    txtFile_->setFocus();
    txtFile_->selectAll();
}

std::optional<QString> NewProject(QWidget& owner, const StudioTexts& texts, const QString& folder) {
    NewProjectDialog dialog(texts, folder.isEmpty() ? QDir::homePath() : folder, &owner);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return dialog.File();
}

}  // namespace studio
