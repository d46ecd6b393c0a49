#include "transfer/FExport.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include "ado/AdoError.h"
#include "csv/Encoding.h"
#include "guard/Guard.h"
#include "messages/MessageBox.h"
#include "platform/HelpTopics.h"
#include "projectdb/Text.h"
#include "texts/MResourceTable.h"
#include "transfer/PlanTexts.h"

namespace {

using namespace Qt::Literals::StringLiterals;
using guard::Guard;
using Text = MResourceTable::Exchange;
using exchange::SheetKind;

constexpr char kSeparators[] = {';', ',', '\t'};
constexpr char kDecimals[] = {',', '.'};
constexpr QStringView kCsvSuffix = u".csv";
constexpr QStringView kXlsxSuffix = u".xlsx";
constexpr std::size_t kPreviewRows = 12;
constexpr int kShowProgressAfter = 500;  // milliseconds
constexpr int kProgressEach = 100;       // likewise

/// Takes the first rows of a sheet.
class FirstRows final : public exchange::SheetWriter {
public:
    /// There are enough.
    struct Enough {};

    FirstRows(std::optional<exchange::Sheet>& sheet, std::vector<std::vector<exchange::Cell>>& rows)
        : sheet_(sheet), rows_(rows) {}
    void Begin(const exchange::Sheet& sheet, const words::Language&) override { sheet_ = sheet; }
    void Row(std::span<const exchange::Cell> cells) override {
        if (rows_.size() == kPreviewRows) throw Enough();
        rows_.emplace_back(cells.begin(), cells.end());
    }

private:
    std::optional<exchange::Sheet>& sheet_;
    std::vector<std::vector<exchange::Cell>>& rows_;
};

}  // namespace

FExport::FExport(projectdb::IProjectWork& work, const MResources::TextTable& texts,
                 Selection selection, QWidget* owner)
    : QDialog(owner),
      work_(work),
      texts_(texts),
      selection_(std::move(selection)),
      kept_(transfer::LoadKeptForm()) {
    Build();
    ShowForm(kept_.csv);
    TakeScope();
}

QString FExport::File() const {
    const QString typed = txtFile_->text().trimmed();
    if (typed.isEmpty()) return {};
    const QStringView suffix = optCsv_->isChecked() ? kCsvSuffix : kXlsxSuffix;
    const bool hasSuffix = QFileInfo(typed).fileName().contains(u'.');
    const QString folder = kept_.exportFolder.isEmpty() ? QDir::homePath() : kept_.exportFolder;
    return QDir(folder).absoluteFilePath(hasSuffix ? typed : typed + suffix.toString());
}

void FExport::keyPressEvent(QKeyEvent* event) {
    if (event->keyCombination() == QKeyCombination(Qt::Key_F1)) {
        return work_.ShowHelpTopic(platform::kHelpExchange, this);
    }
    QDialog::keyPressEvent(event);
}

exchange::Selection FExport::Chosen() const {
    exchange::Selection chosen;
    if (optSelected_->isChecked()) {
        chosen.trends = selection_.trends;
        if (selection_.archive != 0) chosen.archiveIds.insert(selection_.archive);
    }
    if (optArchives_->isChecked()) {
        for (int row = 0; row < lstArchives_->count(); ++row) {
            const QListWidgetItem& item = *lstArchives_->item(row);
            if (item.checkState() != Qt::Checked) continue;
            chosen.archiveIds.insert(item.data(Qt::UserRole).toInt());
        }
    }
    return chosen;
}

SheetKind FExport::Kind() const {
    return cmbSheet_->currentIndex() == 0 ? SheetKind::Trends : SheetKind::Archives;
}

exchange::CsvForm FExport::Form() const {
    exchange::CsvForm form;
    form.separator = kSeparators[cmbSeparator_->currentIndex()];
    form.decimal = kDecimals[cmbDecimal_->currentIndex()];
    const bool isUtf8 = cmbEncoding_->currentIndex() == 0;
    form.encoding = isUtf8 ? csv::Encoding::Utf8 : csv::Encoding::Windows1252;
    form.hasMark = chkMark_->isChecked();
    return form;
}

void FExport::ShowForm(const exchange::CsvForm& form) {
    const auto indexOf = [](const auto& choices, char choice) {
        return static_cast<int>(std::find(std::begin(choices), std::end(choices), choice) -
                                std::begin(choices));
    };
    cmbSeparator_->setCurrentIndex(indexOf(kSeparators, form.separator));
    cmbDecimal_->setCurrentIndex(indexOf(kDecimals, form.decimal));
    cmbEncoding_->setCurrentIndex(form.encoding == csv::Encoding::Utf8 ? 0 : 1);
    chkMark_->setChecked(form.hasMark);
}

void FExport::TakeScope() {
    lstArchives_->setEnabled(optArchives_->isChecked());
    fraCsv_->setEnabled(optCsv_->isChecked());
    sheet_.reset();
    ShowPreview();
}

void FExport::ReadPreview() {
    rows_.clear();
    FirstRows writer(sheet_, rows_);
    try {
        exchange::Export(work_.Connection(), Kind(), Chosen(), transfer::FileLanguage(texts_),
                         writer);
    } catch (const FirstRows::Enough&) {
    }
}

/// What is shown has been in the file's encoding: a character that is not there shows here.
void FExport::ShowPreview() {
    chkMark_->setEnabled(cmbEncoding_->currentIndex() == 0);
    lblNote_->clear();
    Guard(u"FExport.ShowPreview"_s, [&] {
        QString preview;
        exchange::CsvForm form = Form();
        form.hasMark = false;
        exchange::CsvSheetWriter writer(form, [&](std::string_view line) {
            std::string text(line);
            csv::ToUtf8(text, form.encoding);
            preview += projectdb::ToQString(text);
        });
        if (optCsv_->isChecked()) {
            if (!sheet_) ReadPreview();
            try {
                writer.Begin(*sheet_, transfer::FileLanguage(texts_));
                for (const auto& row : rows_) writer.Row(row);
            } catch (const ado::AdoError&) {
                if (form.encoding == csv::Encoding::Utf8) throw;
                lblNote_->setText(texts_.GetText(Text::NoCharacter));
            }
        }
        txtPreview_->setPlainText(preview);
    });
    ShowState();
}

void FExport::FollowFile() {
    const QString file = txtFile_->text().trimmed();
    if (file.endsWith(kCsvSuffix, Qt::CaseInsensitive)) optCsv_->setChecked(true);
    if (file.endsWith(kXlsxSuffix, Qt::CaseInsensitive)) optXlsx_->setChecked(true);
    ShowState();
}

void FExport::FollowForm() {
    const bool isCsv = optCsv_->isChecked();
    const QStringView other = isCsv ? kXlsxSuffix : kCsvSuffix;
    QString file = txtFile_->text().trimmed();
    if (!file.endsWith(other, Qt::CaseInsensitive)) return;
    file.chop(other.size());
    txtFile_->setText(file + (isCsv ? kCsvSuffix : kXlsxSuffix).toString());
}

void FExport::ShowState() {
    const bool isAnything = !optArchives_->isChecked() || !Chosen().archiveIds.empty();
    cmdOk_->setEnabled(isAnything && !File().isEmpty());
}

void FExport::cmdBrowse_Click() {
    const bool isCsv = optCsv_->isChecked();
    const QString filter = texts_.GetText(isCsv ? Text::ExportCsv : Text::ExportXlsx).remove(u'&') +
                           (isCsv ? u" (*.csv)"_s : u" (*.xlsx)"_s);
    const QString start = File().isEmpty() ? kept_.exportFolder : File();
    const QString file = QFileDialog::getSaveFileName(this, windowTitle(), start, filter);
    if (file.isEmpty()) return;
    txtFile_->setText(file);
    replaced_ = QFileInfo::exists(file) ? file : QString();  // the dialog has asked
    txtFile_->setFocus();
}

bool FExport::MayReplace() {
    if (File() == replaced_ || !QFileInfo::exists(File())) return true;
    return messages::ShowMessage(texts_.GetText(Text::Overwrite, {{u"file", File()}}),
                                 messages::MessageButtons::OkCancelDefaultCancel, windowTitle(),
                                 this) == messages::MessageResult::Ok;
}

void FExport::cmdOk_Click() {
    Guard(u"FExport.cmdOk_Click"_s, [&] {
        if (MayReplace()) Write();
    });
}

void FExport::ShowProgress(transfer::ExportJob& job) {
    QProgressDialog progress(texts_.GetText(Text::Exporting),
                             texts_.GetText(MResourceTable::kTextCancel), 0, 0, this);
    progress.setObjectName(u"dlgProgress"_s);
    progress.setWindowTitle(windowTitle());
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(0);
    progress.setAutoClose(false);
    progress.setAutoReset(false);
    connect(&progress, &QProgressDialog::canceled, &job, [&] { job.Cancel(); });
    QEventLoop waiting;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &waiting, [&] {
        if (job.isFinished() || progress.wasCanceled()) return waiting.quit();
        progress.setMaximum(static_cast<int>(job.All()));
        progress.setValue(static_cast<int>(job.Rows()));
    });
    timer.start(kProgressEach);
    progress.show();
    waiting.exec();
}

void FExport::Write() {
    const QString file = File();
    transfer::ExportJob job(
        work_.Connection().DataSource(),
        {file, optXlsx_->isChecked(), Kind(), Form(), Chosen(), &transfer::FileLanguage(texts_)});
    job.start();
    // Nothing can be pressed but Cancel, when that is there: neither before nor afterwards.
    messages::SetScreenPointer(messages::Pointer::Hourglass);
    const bool isDone = job.wait(kShowProgressAfter);
    messages::SetScreenPointer(messages::Pointer::Default);
    if (!isDone) ShowProgress(job);
    messages::SetScreenPointer(messages::Pointer::Hourglass);
    job.wait();
    messages::SetScreenPointer(messages::Pointer::Default);
    if (job.Failed()) {
        const bool isEncoding = optCsv_->isChecked() && cmbEncoding_->currentIndex() != 0 &&
                                job.Failed()->number == ado::ErrorNumber::kInvalidArgument;
        return Tell(isEncoding ? texts_.GetText(Text::NoCharacter) : job.Failed()->Text(),
                    job.Failed()->Details());
    }
    if (!job.IsWritten()) return;
    transfer::Keep(
        {optXlsx_->isChecked(), Form(), QFileInfo(file).absolutePath(), kept_.importFolder});
    accept();
}

void FExport::Tell(const QString& text, const QString& details) {
    messages::ShowMessage({text, messages::MessageButtons::Ok, windowTitle(), details}, this);
}
