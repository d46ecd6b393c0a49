#include "studio/StudioWindow.h"

#include <algorithm>
#include <functional>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QDropEvent>
#include <QFileDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>

#include "icons/Icons.h"
#include "messages/MessageBox.h"
#include "messages/PlainTexts.h"
#include "studio/AddInsDialog.h"
#include "studio/AddInSet.h"
#include "studio/DemoProject.h"
#include "studio/NewProject.h"
#include "studio/ProjectPage.h"
#include "studio/ProjectTabs.h"
#include "studio/StudioKeys.h"
#include "studio/StudioRegistry.h"
#include "texts/ReasonText.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kStatusMs = 8000;
constexpr int kQuitStepMs = 20;
const QString kGeometryKey = u"Window/Geometry"_s;
const QString kSplitterKey = u"Window/Splitter"_s;
const QString kFolderKey = u"OpenFolder"_s;

}  // namespace

StudioWindow::StudioWindow(StudioRegistry& registry, AddInSet& addIns,
                           QList<AddInReport> addInReports, QSettings* state)
    : registry_(registry),
      addIns_(addIns),
      addInReports_(std::move(addInReports)),
      state_(state),
      recent_(state),
      backups_(state, this),
      help_(registry) {
    setObjectName(u"frmStudio"_s);
    setWindowIcon(icons::FixedIcon(u"kvstudio"));
    setAcceptDrops(true);
    messages::KeepTextsPlain(*this);
    BuildFileMenu();
    BuildOtherMenus();
    keys_ = new StudioKeys(*menuBar(), state_, this);
    connect(keys_, &StudioKeys::Changed, this, &StudioWindow::ReserveShortcuts);
    ReserveShortcuts();
    menuKeys_ = std::make_unique<MenuKeys>(*this);
    BuildAreas();
    for (QMenu* menu : menuBar()->findChildren<QMenu*>()) menuKeys_->Watch(*menu);
    addIns_.SetFailureHandler([this](const AddInSet::Failure& failure) {
        const QString text = texts_(
            Text::StatusAddInError,
            {{u"name", failure.progId}, {u"event", failure.event}, {u"cause", failure.what}});
        qWarning("%s", qUtf8Printable(text));
        statusBar()->showMessage(text);
    });
    connect(&backups_, &BackupService::Taken, this, &StudioWindow::BackupTaken);
    ApplySettings();
    ApplyLanguage(registry_.InterfaceLanguage());
    RestoreState();
    statusBar()->showMessage(texts_(Text::StatusReady), kStatusMs);
    for (const AddInReport& report : addInReports_) {
        if (report.failure.isEmpty()) continue;
        qWarning("Add-in not loaded: %s (%s)", qUtf8Printable(report.name),
                 qUtf8Printable(report.failure));
        statusBar()->showMessage(
            texts_(Text::StatusAddInFailed,
                   {{u"name", report.name}, {u"state", texts_(TextOf(report.state))}}));
    }
}

StudioWindow::~StudioWindow() {
    // Before what the pages know, and what their add-ins' failures are told with.
    menuKeys_.reset();
    tabs_->disconnect(this);
    delete tabs_;
    addIns_.SetFailureHandler(nullptr);
}

void StudioWindow::Quit() {
    if (quitting_) return;
    quitting_ = true;
    QTimer::singleShot(0, this, &StudioWindow::QuitStep);
}

void StudioWindow::QuitStep() {
    if (!isVisible()) return;  // closed
    // First of all, for what follows may open a dialog with an event loop of its own. A repeating
    // timer would not run in there.
    QTimer::singleShot(kQuitStepMs, this, &StudioWindow::QuitStep);
    QWidget* inFront = QApplication::activePopupWidget();
    if (inFront == nullptr) inFront = QApplication::activeModalWidget();
    if (inFront != nullptr && inFront->close()) return;
    if (isVisible() && !addIns_.InCall()) close();
}

void StudioWindow::closeEvent(QCloseEvent* event) {
    if (IsBusy()) {
        event->ignore();
        return;
    }
    KeepSession();
    // The one in front last: none of the others is to come to the front for that.
    for (ProjectPage* page : tabs_->Pages()) {
        if (page != &Page()) tabs_->Remove(*page);
    }
    Page().Close();
    ApplyProjectState();
    SaveState();
    event->accept();
}

void StudioWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ThemeChange) ApplySettings();
    if (event->type() == QEvent::ActivationChange && !isActiveWindow()) {
        Page().TellDeactivated();
    }
}

void StudioWindow::dragEnterEvent(QDragEnterEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    const bool areFiles = std::all_of(urls.begin(), urls.end(), std::mem_fn(&QUrl::isLocalFile));
    if (!urls.isEmpty() && areFiles) event->acceptProposedAction();
}

void StudioWindow::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    // Queued, so that the program the files come from is not held up by a message.
    for (const QUrl& url : event->mimeData()->urls()) {
        QMetaObject::invokeMethod(
            this, [this, file = url.toLocalFile()] { OpenProject(file); }, Qt::QueuedConnection);
    }
}

void StudioWindow::mnuFileNew_Click() {
    const std::optional<QString> project = NewProject(*this, texts_, ProjectFolder());
    if (!project) return;
    if (state_ != nullptr) state_->setValue(kFolderKey, QFileInfo(*project).path());
    OpenProject(*project);
}

void StudioWindow::OpenDemo() {
    const QString demo = OwnDemoProject();
    // What cannot be copied can be looked at.
    OpenProject(demo.isEmpty() ? DemoProject() : demo);
}

QString StudioWindow::ProjectFolder() const {
    if (const auto& project = Page().Project()) return QFileInfo(project->nativePath).path();
    return state_ != nullptr ? state_->value(kFolderKey).toString() : QString();
}

void StudioWindow::mnuFileOpen_Click() {
    const QString file = QFileDialog::getOpenFileName(this, texts_(Text::OpenTitle),
                                                      ProjectFolder(), texts_(Text::OpenFilter));
    if (file.isEmpty()) return;
    if (state_ != nullptr) state_->setValue(kFolderKey, QFileInfo(file).path());
    OpenProject(file);
}

void StudioWindow::mnuFileRecent_Popup() {
    mnuFileRecent_->clear();
    int number = 0;
    for (const QString& project : recent_.Items()) {
        ++number;
        const QString caption = RecentCaption(project).replace(u'&', u"&&"_s);
        const QString accessKey = number < 10 ? u"&%1  "_s.arg(number) : u"%1  "_s.arg(number);
        QAction* action = mnuFileRecent_->addAction(accessKey + caption);
        action->setObjectName(u"mnuFileRecent(%1)"_s.arg(number - 1));
        action->setEnabled(IsThere(project, registry_));
        action->setStatusTip(
            action->isEnabled() ? project : texts_(Text::FileRecentMissing, {{u"file", project}}));
        connect(action, &QAction::triggered, this, [this, project] { OpenProject(project); });
    }
    if (number == 0) mnuFileRecent_->addAction(texts_(Text::FileRecentNone))->setEnabled(false);
    mnuFileRecent_->addSeparator();
    QAction* clear = mnuFileRecent_->addAction(texts_(Text::FileRecentClear));
    clear->setObjectName(u"mnuFileRecentClear"_s);
    clear->setEnabled(number != 0);
    connect(clear, &QAction::triggered, this, &StudioWindow::mnuFileRecentClear_Click);
}

void StudioWindow::mnuFileRecentClear_Click() {
    recent_.Clear();
    ShowRecentInEmptyArea();
}

void StudioWindow::mnuSettingsLanguage_Click(QAction* action) {
    ChangeLanguage(action->data().toInt());
}

bool StudioWindow::ChangeLanguage(int lcid) {
    if (lcid == texts_.Lcid()) return true;
    const bool busy = addIns_.InCall();
    std::optional<platform::Error> failure;
    if (!busy) failure = registry_.SetInterfaceLanguage(lcid);
    if (busy || failure) {
        for (QAction* entry : languages_->actions()) {
            entry->setChecked(entry->data().toInt() == texts_.Lcid());
        }
        if (failure) {
            Complain(
                texts_(Text::ErrorLanguage, {{u"cause", texts::ReasonText(failure->Reason())}}),
                failure->Description());
        }
        return false;
    }
    // The add-ins read the language when they are initialised.
    WhileClosed(tabs_->Pages(), Content::Same, [this, lcid] { ApplyLanguage(lcid); });
    statusBar()->showMessage(texts_(Text::StatusLanguage), kStatusMs);
    return true;
}

void StudioWindow::mnuHelpContents_Click() {
    help_.Show(this);
}

void StudioWindow::mnuHelpAddIns_Click() {
    AddInsDialog(addInReports_, texts_, this).exec();
}

void StudioWindow::mnuHelpAbout_Click() {
    QMessageBox box(this);
    box.setObjectName(u"frmAbout"_s);
    box.setWindowTitle(texts_(Text::AboutTitle));
    box.setIconPixmap(windowIcon().pixmap(64));
    box.setTextFormat(Qt::RichText);
    box.setText(texts_(Text::AboutBody, {{u"version", QCoreApplication::applicationVersion()}}));
    box.exec();
}

void StudioWindow::Complain(const QString& message, const QString& details) {
    messages::ShowMessage(
        {message, messages::MessageButtons::Ok, texts_(Text::StudioTitle), details}, this);
}

QString StudioWindow::RecentCaption(const QString& project) const {
    const QFileInfo info(project);
    if (!info.isAbsolute()) return project;
    QString folder = info.path();
    const QString home = QDir::homePath();
    if (folder == home || folder.startsWith(home + u'/')) folder.replace(0, home.size(), u'~');
    return u"%1  (%2)"_s.arg(info.completeBaseName(), folder);
}

void StudioWindow::RestoreState() {
    const bool restored =
        state_ != nullptr && restoreGeometry(state_->value(kGeometryKey).toByteArray());
    if (!restored) resize(1200, 760);
    QSplitter& split = Page().Split();
    if (state_ == nullptr || !split.restoreState(state_->value(kSplitterKey).toByteArray())) {
        split.setSizes({260, 940});
    }
}

void StudioWindow::SaveState() {
    if (state_ == nullptr) return;
    state_->setValue(kGeometryKey, saveGeometry());
    state_->setValue(kSplitterKey, Page().Split().saveState());
    state_->sync();
}

}  // namespace studio
