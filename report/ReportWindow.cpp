#include "report/ReportWindow.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPrintDialog>
#include <QPrinter>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTextBrowser>
#include <tuple>
#include <utility>

#include "guard/Guard.h"
#include "help/HelpViewer.h"
#include "messages/MessageBox.h"
#include "messages/PlainTexts.h"
#include "paths/NativePath.h"
#include "platform/Error.h"
#include "platform/HelpTopics.h"
#include "platform/Registry.h"
#include "projectdb/Text.h"
#include "report/PrintTask.h"

namespace report {

using namespace Qt::Literals::StringLiterals;

namespace {

QString NativePath(const QString& path) {
    return projectdb::ToQString(paths::ToNative(projectdb::ToUtf8(path)));
}

QString FileName(const QString& path) {
    return path.section(u'\\', -1).section(u'/', -1);
}

}  // namespace

ReportWindow::ReportWindow(platform::Registry& registry, QString projectPath, QWidget* parent)
    : QMainWindow(parent, Qt::Window),
      texts_(registry),
      projectPath_(std::move(projectPath)),
      shownPath_(QDir::toNativeSeparators(NativePath(projectPath_))) {
    setObjectName(u"frmReport"_s);
    messages::KeepTextsPlain(*this);
    setWindowTitle(texts_(Text::WindowTitle, {{u"project", FileName(projectPath_)}}));
    setAttribute(Qt::WA_DeleteOnClose);
    resize(1180, 760);
    BuildActions();
    BuildBody();
    BuildStatusBar();
    FindHelpFile(registry);
    connect(&runner_, &PortionRunner::RunningChanged, this, &ReportWindow::SetRunning);
    connect(&runner_, &PortionRunner::Progress, this, [this](const QString& label, int permille) {
        lblState_->setText(label);
        prgState_->setValue(permille);
    });
    SetRunning(false);
}

ReportWindow::~ReportWindow() = default;

void ReportWindow::Tell(messages::Message message) {
    message.title = windowTitle();
    messages::ShowMessage(message, this);
}

bool ReportWindow::Read() {
    runner_.Cancel();
    ready_ = false;
    shown_ = {};
    lstArchives_->clear();
    txtReport_->clear();
    writer_.reset();
    reader_ = std::make_unique<ProjectReader>();
    try {
        reader_->Open(projectPath_);
    } catch (...) {
        const projectdb::Failure failure = projectdb::Failure::Current();
        reader_.reset();
        SetRunning(false);
        lblState_->clear();
        messages::Message message = guard::ToMessage(failure, u"KVProjectReport: Read"_s);
        message.text =
            texts_(Text::CannotOpen, {{u"file", projectPath_}, {u"cause", message.text}});
        Tell(message);
        return false;
    }
    writer_ =
        std::make_unique<HtmlWriter>(*reader_, texts_, shownPath_, HtmlWriter::Target::Screen);
    runner_.Start(std::make_unique<CollectTask>(*reader_, texts_),
                  [this](Task&, PortionRunner::Outcome outcome, const messages::Message& failure) {
                      if (outcome == PortionRunner::Outcome::Done) Collected();
                      if (outcome == PortionRunner::Outcome::Cancelled) {
                          lblState_->setText(texts_(Text::Cancelled));
                      }
                      if (outcome == PortionRunner::Outcome::Failed) {
                          messages::Message message = failure;
                          message.text = texts_(Text::CannotOpen, {{u"file", projectPath_},
                                                                   {u"cause", failure.text}});
                          Tell(message);
                      }
                      emit TaskEnded(outcome == PortionRunner::Outcome::Done);
                  });
    return true;
}

void ReportWindow::Collected() {
    ready_ = true;
    FillArchives();
    lblState_->setText(
        texts_(Text::ArchiveCount,
               {{u"n", texts_.Number(static_cast<qint64>(reader_->Archives().size()))}}) +
        u", "_s +
        texts_(Text::TrendCount,
               {{u"n", texts_.Number(static_cast<qint64>(reader_->TrendCount()))}}));
    SetRunning(false);
    Show({});
    txtReport_->setFocus();
}

void ReportWindow::FillArchives() {
    lstArchives_->clear();
    for (const Section& section : writer_->Sections()) {
        if (section.first != 0) continue;
        auto* item = new QListWidgetItem(writer_->Title(section), lstArchives_);
        item->setData(kSectionRole, section.Address());
        if (section.kind == Section::Kind::Archive) continue;
        QFont font = item->font();
        font.setBold(true);
        item->setFont(font);
    }
    FilterArchives(txtFilter_->text());
}

void ReportWindow::FilterArchives(const QString& text) {
    for (int i = 0; i < lstArchives_->count(); ++i) {
        QListWidgetItem* item = lstArchives_->item(i);
        item->setHidden(!item->text().contains(text, Qt::CaseInsensitive));
    }
}

void ReportWindow::Show(const Section& section) {
    if (!ready_) return;
    const std::vector<Section> sections = writer_->Sections();
    // An address that leads nowhere leads to the overview.
    shown_ = std::find(sections.begin(), sections.end(), section) != sections.end() ? section
                                                                                    : Section{};
    ShowShown();
    Section head = shown_;
    head.first = 0;
    for (int i = 0; i < lstArchives_->count(); ++i) {
        QListWidgetItem* item = lstArchives_->item(i);
        if (item->data(kSectionRole).toString() == head.Address())
            lstArchives_->setCurrentItem(item);
    }
}

void ReportWindow::ShowShown() {
    txtReport_->document()->setHtml(writer_->Page(shown_, palette()));
    txtReport_->moveCursor(QTextCursor::Start);
}

void ReportWindow::FindNext() {
    Find(false);
}

void ReportWindow::FindPrevious() {
    Find(true);
}

void ReportWindow::Find(bool backward) {
    const QString needle = txtFind_->text();
    if (!ready_ || IsBusy() || needle.isEmpty()) return;
    const QTextDocument::FindFlags flags =
        backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    if (txtReport_->find(needle, flags)) return;
    auto task = std::make_unique<FindTask>(*reader_, texts_, shownPath_, needle, shown_, backward);
    runner_.Start(std::move(task), [this, needle, flags, backward](
                                       Task& ended, PortionRunner::Outcome outcome,
                                       const messages::Message& failure) {
        const std::optional<Section> found = static_cast<FindTask&>(ended).Found();
        lblState_->setText(outcome == PortionRunner::Outcome::Failed ? failure.text : QString());
        if (outcome == PortionRunner::Outcome::Cancelled) {
            lblState_->setText(texts_(Text::Cancelled));
        } else if (found) {
            if (!(*found == shown_)) Show(*found);
            txtReport_->moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
            txtReport_->find(needle, flags);
        } else if (outcome == PortionRunner::Outcome::Done) {
            lblState_->setText(texts_(Text::FindNothing, {{u"text", needle}}));
        }
        emit TaskEnded(found.has_value());
    });
}

void ReportWindow::Start(std::unique_ptr<Task> task, const QString& doneText) {
    runner_.Start(std::move(task), [this, doneText](Task&, PortionRunner::Outcome outcome,
                                                    const messages::Message& failure) {
        const bool done = outcome == PortionRunner::Outcome::Done;
        lblState_->setText(done ? doneText : texts_(Text::Cancelled));
        if (outcome == PortionRunner::Outcome::Failed) {
            lblState_->setText(failure.text);
            Tell(failure);
        }
        emit TaskEnded(done);
    });
}

void ReportWindow::ExportHtml(const QString& file) {
    if (!ready_ || IsBusy()) return;
    Start(std::make_unique<HtmlExportTask>(*reader_, texts_, shownPath_, file),
          texts_(Text::Written, {{u"file", file}}));
}

void ReportWindow::ExportPdf(const QString& file) {
    if (!ready_ || IsBusy()) return;
    Start(std::make_unique<PrintTask>(*reader_, texts_, shownPath_, ToPdf(file, windowTitle())),
          texts_(Text::Written, {{u"file", file}}));
}

void ReportWindow::actPrint_Triggered() {
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    printer->setPageSize(QPageSize(QPageSize::A4));
    printer->setPageOrientation(QPageLayout::Landscape);
    printer->setDocName(windowTitle());
    QPrintDialog dialog(printer.get(), this);
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
    const QPointer<ReportWindow> alive(this);
    // The window may have gone with its parent while the dialog was open.
    if (dialog.exec() != QDialog::Accepted || !alive || !ready_ || IsBusy()) return;
    Start(std::make_unique<PrintTask>(*reader_, texts_, shownPath_, ToPrinter(std::move(printer))),
          {});
}

QString ReportWindow::SuggestedFile(const QString& extension) const {
    const QFileInfo project(NativePath(projectPath_));
    return project.dir().filePath(project.completeBaseName() + u'.' + extension);
}

void ReportWindow::actPdf_Triggered() {
    const QString file = QFileDialog::getSaveFileName(
        this, texts_(Text::SaveAsPdf), SuggestedFile(u"pdf"_s), texts_(Text::PdfFiles));
    if (!file.isEmpty()) ExportPdf(file);
}

void ReportWindow::actHtml_Triggered() {
    const QString file = QFileDialog::getSaveFileName(
        this, texts_(Text::SaveAsHtml), SuggestedFile(u"html"_s), texts_(Text::HtmlFiles));
    if (!file.isEmpty()) ExportHtml(file);
}

void ReportWindow::actDifferences_Triggered() {
    const QString file = QFileDialog::getOpenFileName(this, texts_(Text::Differences).remove(u'&'),
                                                      QFileInfo(NativePath(projectPath_)).path(),
                                                      texts_(Text::CompareFiles));
    if (!file.isEmpty()) CompareWith(file);
}

void ReportWindow::CompareWith(const QString& file) {
    if (!ready_ || IsBusy()) return;
    auto task = std::make_unique<ThreadTask>(
        [this, file](const ThreadTask::GoOn& goOn) { reader_->CompareWith(file, goOn); },
        texts_.Table().GetText(MResourceTable::Compare::Comparing));
    runner_.Start(std::move(task), [this](Task&, PortionRunner::Outcome outcome,
                                          const messages::Message& failure) {
        const bool done = outcome == PortionRunner::Outcome::Done;
        lblState_->setText(outcome == PortionRunner::Outcome::Cancelled ? texts_(Text::Cancelled)
                                                                        : failure.text);
        if (outcome == PortionRunner::Outcome::Failed) Tell(failure);
        if (done) {
            FillArchives();
            Show({Section::Kind::Differences});
        }
        emit TaskEnded(done);
    });
}

void ReportWindow::actRefresh_Triggered() {
    Read();
}

void ReportWindow::FindHelpFile(platform::Registry& registry) {
    helpFile_.SetViewer(help::MakeViewer(texts_.Table()));
    try {
        helpFile_.SetPath(registry.ReadString(u"SOFTWARE\\Brantor GmbH", u"Common") +
                          u"\\helpfiles\\Archivsystem.chm"_s);
    } catch (const platform::Error&) {
        // The built-in pages do without the registry; a path that leads nowhere leads to them.
        helpFile_.SetPath(u"\\"_s);
    }
}

void ReportWindow::actHelp_Triggered() {
    std::ignore = helpFile_.ShowTopic(platform::kHelpReport, this);  // the viewer tells for itself
}

void ReportWindow::SetRunning(bool running) {
    prgState_->setVisible(running);
    cmdCancel_->setVisible(running);
    for (QAction* action : actions_) {
        const QString name = action->objectName();
        if (name == "actHelp"_L1) continue;
        action->setEnabled(!running && (ready_ || name == "actRefresh"_L1));
    }
    // A page that is looked at in between would read rows between those that the task reads.
    lstArchives_->setEnabled(!running);
    txtReport_->setEnabled(!running || !ready_);
    if (!running && ready_ && std::exchange(hasNewColours_, false)) ShowShown();
}

void ReportWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || !ready_) return;
    hasNewColours_ = IsBusy();
    if (!hasNewColours_) ShowShown();
}

void ReportWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) {
        QMainWindow::keyPressEvent(event);
    } else if (IsBusy()) {
        runner_.Cancel();
    } else {
        close();
    }
}

}  // namespace report
