#include "dialogs/FArchiv.h"

#include <utility>

#include "dialogs/ArchiveSummary.h"
#include "dialogs/FolderChoice.h"
#include "platform/HelpTopics.h"
#include "project/Number.h"
#include "texts/MResources.h"
#include "texts/MResourceTable.h"

namespace {

using namespace MResourceTable;
namespace SampleMode = project::SampleMode;

using project::ArchiveType::kCircularBuffer;
using project::ArchiveType::kContinuationFile;

constexpr std::array<int, 2> kScanTimeUnits = {kTextUnitProcessCycles, kTextUnitMilliseconds};

constexpr int kCharactersShown = 64;

/// All of them are whole: a comma is no point.
double NumberIn(const QLineEdit& field) {
    return project::ReadNumber(field.text().toStdU16String(), false).number;
}

}  // namespace

FArchiv::FArchiv(const DialogServices& services, QStringView nameGroup, QWidget* owner)
    : PropertyDialog(services, nameGroup, owner) {
    setupUi(this);
    CollectArrays();
    SetUpFrame({tabArchive, cmdOk, cmdCancel, cmdHelp, txtName});
    SetCaptions();
    FillLists();
    ConnectControls();
    ConnectPickers();
    NameControls();
    // Usable always, and to be seen to be.
    for (QWidget* field : {cmbType, cmbSampleMode}) SetUsable(field, true);
    UpdateArchiveEnabling();
    UpdateSampleModeFields();
    txtName_Change();
    ShowSummary();
}

void FArchiv::SetParamNames(std::optional<QString> names) {
    paramNames_ = std::move(names);
}

void FArchiv::SetDisplayTextAvailable(bool available) {
    SetUsable(txtTextID, available);
    SetUsable(cmdEditRuntimeName, available);
}

void FArchiv::ShowCount(std::size_t archives) {
    setWindowTitle(
        windowTitle() + QStringLiteral(": ") +
        Services().texts.GetText(kTextManyArchives, {{u"n", QString::number(archives)}}));
    SetOpenedName({});
    for (QLineEdit* field : {txtName, txtTextID, txtComment, txtFileName, txtTrigger, txtNewFile,
                             txtXVar, txtStartStop, txtReset}) {
        field->setToolTip(Text(kTextManyPattern));
    }
    lblSummary->hide();  // it tells of one
    cmdOk->setEnabled(true);
    UpdateArchiveEnabling();
    UpdateSampleModeFields();
}

int FArchiv::HelpTopic(int page) const {
    return platform::kHelpArchiveStandard + page;
}

/// Without a count or a variable the event would be stored as none at all.
std::optional<PropertyDialog::Objection> FArchiv::WhatIsMissing() const {
    if (!cboNewFile->isEnabledTo(this) || !Touched(*cboNewFile)) return std::nullopt;
    if (cboNewFile->currentIndex() == FileChange::kCount && NumberIn(*txtMaxSamples) == 0) {
        return Objection{txtMaxSamples, Text(kTextCountMissing)};
    }
    if (cboNewFile->currentIndex() == FileChange::kTrigger && txtNewFile->text().isEmpty()) {
        return Objection{txtNewFile, Text(kTextTriggerMissing)};
    }
    return std::nullopt;
}

void FArchiv::CollectArrays() {
    optHDRAM = {optHDRAM_0, optHDRAM_1};
    optSaveFast = {optSaveFast_0, optSaveFast_1};
    cmdChoose = {cmdChoose_0, cmdChoose_1, cmdChoose_2, cmdChoose_3};
    cmdChoosePath = {cmdChoosePath_0, cmdChoosePath_1};
    NameArray(u"optHDRAM", optHDRAM);
    NameArray(u"optSaveFast", optSaveFast);
    NameArray(u"cmdChoose", cmdChoose);
    NameArray(u"cmdChoosePath", cmdChoosePath);
    optHDRAM[0]->setChecked(true);
    optSaveFast[0]->setChecked(true);
    txtTextID->setFont(Services().textFont);
}

void FArchiv::SetCaptions() {
    setWindowTitle(Text(kTextArchiveDialogTitle));
    for (int page = 0; page < tabArchive->count(); ++page) {
        tabArchive->setTabText(page, Text(kTextArchivePageStandard + page));
    }
    fraHD->setTitle(Text(kTextArchiveHardDiskFrame));
    const std::initializer_list<std::pair<QLabel*, int>> labels = {
        {lblName, kTextArchiveName},
        {lblTextID, kTextArchiveDisplayText},
        {lblType, kTextArchiveType},
        {lblStorage, kTextArchiveStorage},
        {lblAuthorizationLevel, kTextArchiveAuthorizationLevel},
        {lblComment, kTextArchiveComment},
        {lblSamples, kTextArchiveMaxSamples},
        {lblFileName, kTextArchiveFileName},
        {lblFilePath, kTextArchiveFilePath},
        {lblSaveFast, kTextArchiveSaveMode},
        {lblCacheSize, kTextArchiveCacheSize},
        {lblNewFileEvent, kTextArchiveNewFile},
        {lblNewFileVariable, kTextArchiveFileTrigger},
        {lblMaxFiles, kTextArchiveMaxFiles},
        {lblMaxSizekB, kTextArchiveMaxSizeKb},
        {lblRedundancyFilePath, kTextArchiveRedundancyFilePath},
        {lblSampleMode, kTextArchiveSampleMode},
        {lblScanTime, kTextArchiveScanTime},
        {lblScanTimeUnit, kTextUnitMilliseconds},
        {lblTrigger, kTextArchiveTrigger},
        {lblXVar, kTextArchiveXVar},
        {lblStartStop, kTextArchiveStartStop},
        {lblReset, kTextArchiveReset},
    };
    for (const auto& [label, text] : labels) label->setText(Text(text));
    const std::initializer_list<std::pair<QAbstractButton*, int>> choices = {
        {optHDRAM[0], kTextArchiveOnHardDisk},   {optHDRAM[1], kTextArchiveInMemory},
        {optSaveFast[0], kTextArchiveSaveFast},  {optSaveFast[1], kTextArchiveSaveSafe},
        {chkRedundancy, kTextArchiveRedundancy},
    };
    for (const auto& [choice, text] : choices) choice->setText(Text(text));
    lblSummary->setAccessibleName(Text(kTextMeaning));
    lblSummary->setMinimumHeight(2 * (lblSummary->fontMetrics().lineSpacing() +
                                      lblSummary->margin() + lblSummary->frameWidth()));
    txtName->setMinimumWidth(fontMetrics().averageCharWidth() * kCharactersShown);
}

void FArchiv::FillLists() {
    FillWithCodes(*cmbType, project::ArchiveKinds());
    FillWithCodes(*cmbSampleMode, project::FindArchiveColumn("SampleMode")->codes);
    for (int entry = FileChange::kTrigger; entry <= FileChange::kNever; ++entry) {
        cboNewFile->addItem(Text(kTextNewFileTrigger + entry), entry);
    }
    cboNewFile->setCurrentIndex(-1);
    for (QComboBox* path : {cboFilePath, cboRedundancyFilePath}) {
        path->addItem(kProjectDir.toString());
        path->setCurrentIndex(-1);
        path->setInsertPolicy(QComboBox::NoInsert);
        path->setCompleter(nullptr);  // would change a path's capitals to those of the entry
    }
}

void FArchiv::ConnectControls() {
    connect(txtName, &QLineEdit::textChanged, this, &FArchiv::txtName_Change);
    connect(txtMaxSamples, &QLineEdit::textChanged, this, &FArchiv::txtMaxSamples_Change);
    connect(txtNewFile, &QLineEdit::textChanged, this, &FArchiv::txtNewFile_Change);
    connect(cmbType, &QComboBox::currentIndexChanged, this, &FArchiv::cmbType_Click);
    connect(cboNewFile, &QComboBox::currentIndexChanged, this, &FArchiv::cboNewFile_Click);
    connect(cmbSampleMode, &QComboBox::currentIndexChanged, this, &FArchiv::UpdateSampleModeFields);
    connect(optHDRAM[0], &QRadioButton::toggled, this, &FArchiv::UpdateArchiveEnabling);
    connect(chkRedundancy, &QCheckBox::stateChanged, this, &FArchiv::UpdateArchiveEnabling);

    // Behind the others: the summary tells what they have brought about.
    for (const QComboBox* combo : {cmbType, cboNewFile, cmbSampleMode}) {
        connect(combo, &QComboBox::currentIndexChanged, this, &FArchiv::ShowSummary);
    }
    connect(optHDRAM[0], &QRadioButton::toggled, this, &FArchiv::ShowSummary);
    for (const QLineEdit* text :
         {txtMaxSamples, txtNewFile, txtMaxFiles, txtMaxSizekB, txtScantime}) {
        connect(text, &QLineEdit::textChanged, this, &FArchiv::ShowSummary);
    }
}

void FArchiv::ConnectPickers() {
    ConnectTextsEditor(cmdEditRuntimeName, txtTextID);
    ConnectTextEditor(cmdEditFileName, txtFileName);
    ConnectFolderPicker(cmdChoosePath[0], cboFilePath, kTextArchiveChooseFilePath);
    ConnectFolderPicker(cmdChoosePath[1], cboRedundancyFilePath,
                        kTextArchiveChooseRedundancyFilePath);
    ConnectVariablePicker(cmdChoose[0], txtTrigger);
    ConnectVariablePicker(cmdChoose[1], txtNewFile);
    ConnectVariablePicker(cmdChoose[2], txtStartStop);
    ConnectVariablePicker(cmdChoose[3], txtReset);
    ConnectVariablePicker(cmdChooseXVar, txtXVar);
}

bool FArchiv::IsContinuationFile() const {
    return cmbType->currentIndex() == kContinuationFile;
}

void FArchiv::UpdateArchiveEnabling() {
    const bool disk = optHDRAM[0]->isChecked();
    const bool filesOnDisk = disk && IsContinuationFile();
    const bool redundancy = disk && chkRedundancy->checkState() == Qt::Checked;
    const bool trigger = filesOnDisk && cboNewFile->currentIndex() == FileChange::kTrigger;
    const bool samples = cmbType->currentIndex() == kCircularBuffer ||
                         (filesOnDisk && cboNewFile->currentIndex() == FileChange::kCount);
    const std::initializer_list<std::pair<QWidget*, bool>> rules = {
        {cboFilePath, disk},
        {cmdChoosePath[0], disk},
        {txtFileName, disk},
        {cmdEditFileName, disk},
        {optSaveFast[0], disk},
        {optSaveFast[1], disk},
        {txtCacheSize, disk},
        {chkRedundancy, disk},
        {cboRedundancyFilePath, redundancy},
        {cmdChoosePath[1], redundancy},
        {cboNewFile, filesOnDisk},
        {txtNewFile, trigger},
        {cmdChoose[1], trigger},
        {txtMaxSamples, samples},
        {txtMaxFiles, filesOnDisk},
        {txtMaxSizekB, filesOnDisk},
    };
    for (const auto& [control, usable] : rules) SetUsable(control, usable);
    // A choice that does not count any more may have emptied the holder.
    if (samples) lblMaxSamples->setText(txtMaxSamples->text());
}

void FArchiv::UpdateSampleModeFields() {
    const int mode = cmbSampleMode->currentIndex();  // the code is the place in the list
    SetUsable(txtTrigger, mode == SampleMode::kOnTrigger);
    SetUsable(cmdChoose[0], mode == SampleMode::kOnTrigger);
    const bool timed = mode == SampleMode::kCycles || mode == SampleMode::kMilliseconds;
    SetUsable(txtScantime, timed);
    SetUsable(lblScanTimeUnit, timed);
    // The other modes have no unit; the greyed label keeps the last one.
    if (timed) lblScanTimeUnit->setText(Text(kScanTimeUnits.at(static_cast<std::size_t>(mode))));
}

void FArchiv::cmbType_Click() {
    // The size of a circular buffer must not go along as the length of a file.
    if (IsContinuationFile()) ChooseFileChange();
    UpdateArchiveEnabling();
}

void FArchiv::cboNewFile_Click() {
    ChooseFileChange();
    UpdateArchiveEnabling();
}

void FArchiv::ChooseFileChange() {
    lblMaxSamples->setText(QStringLiteral("0"));
    const int entry = cboNewFile->currentIndex();
    if (entry == FileChange::kTrigger) {
        lblNewFile->setText(txtNewFile->text());
    } else if (entry == FileChange::kCount) {
        lblNewFile->clear();
        lblMaxSamples->setText(txtMaxSamples->text());
    } else if (entry >= FileChange::kYear && entry <= FileChange::kSecond) {
        const auto event = static_cast<std::size_t>(entry - FileChange::kYear);
        const std::u16string_view name = project::ClockEvents()[event].english;
        lblNewFile->setText(QString::fromUtf16(name.data(), static_cast<qsizetype>(name.size())));
    } else if (entry == FileChange::kNever) {
        lblNewFile->clear();
    }
}

void FArchiv::txtName_Change() {
    if (IsOfMany()) return;
    const QString name = txtName->text();
    // A display text that was never edited apart from the name is renamed with it.
    if (Loaded() && name != keptName_ && txtTextID->isEnabledTo(this) &&
        txtTextID->text() == keptName_) {
        txtTextID->setText(name);
    }
    keptName_ = name;
    cmdOk->setEnabled(!name.trimmed().isEmpty());
}

void FArchiv::txtMaxSamples_Change() {
    lblMaxSamples->setText(txtMaxSamples->text());
}

void FArchiv::txtNewFile_Change() {
    lblNewFile->setText(txtNewFile->text());
}

void FArchiv::ShowSummary() {
    using enum ArchiveSettings::Kind;
    const auto number = [](const QLineEdit* field) { return NumberIn(*field); };
    ArchiveSettings settings;
    if (cmbType->currentIndex() == kCircularBuffer) settings.kind = CircularBuffer;
    if (IsContinuationFile()) settings.kind = ContinuationFile;
    settings.onHardDisk = optHDRAM[0]->isChecked();
    settings.fileChange = cboNewFile->currentIndex();
    settings.fileTrigger = txtNewFile->text();
    settings.maxSamples = number(txtMaxSamples);
    settings.maxFiles = number(txtMaxFiles);
    settings.maxSizeKb = number(txtMaxSizekB);
    if (cmbSampleMode->currentIndex() >= 0) {
        settings.sampleMode = cmbSampleMode->currentData().toInt();
    }
    settings.scanTime = number(txtScantime);
    lblSummary->setText(ArchiveSummary(settings, Services().texts));
    lblSummary->setToolTip(lblSummary->text());
}
