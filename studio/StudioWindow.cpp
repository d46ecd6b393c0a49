#include "studio/StudioWindow.h"

#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QLibraryInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <tuple>

#include "icons/Icons.h"
#include "messages/MessageBox.h"
#include "messages/PlainTexts.h"
#include "studio/AddInsDialog.h"
#include "studio/AddInSet.h"
#include "studio/DemoProject.h"
#include "studio/EditorArea.h"
#include "studio/NewProject.h"
#include "studio/ProjectTree.h"
#include "studio/StudioHost.h"
#include "studio/StudioRegistry.h"
#include "studio/WatchStrip.h"
#include "texts/ReasonText.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kStatusMs = 8000;
constexpr int kQuitStepMs = 20;
const QString kGeometryKey = u"Window/Geometry"_s;
const QString kSplitterKey = u"Window/Splitter"_s;
const QString kFolderKey = u"OpenFolder"_s;
const QString kLastKey = u"Last/Project"_s;
const QString kPlaceKey = u"Last/Place"_s;
const QString kProjectIcon = u"icoStudioProject"_s;

}  // namespace

StudioWindow::StudioWindow(StudioRegistry& registry, AddInSet& addIns,
                           QList<AddInReport> addInReports, QSettings* state)
    : registry_(registry),
      addIns_(addIns),
      addInReports_(std::move(addInReports)),
      state_(state),
      recent_(state),
      backups_(state, this),
      treeEvents_(addIns) {
    setObjectName(u"frmStudio"_s);
    setWindowIcon(icons::FixedIcon(u"kvstudio"));
    setAcceptDrops(true);
    messages::KeepTextsPlain(*this);
    BuildAreas();
    BuildFileMenu();
    BuildOtherMenus();
    ReserveShortcuts();
    menuKeys_ = std::make_unique<MenuKeys>(*this);
    for (QMenu* menu : menuBar()->findChildren<QMenu*>()) menuKeys_->Watch(*menu);
    // Queued: the editor's own menu is not there yet when it is taken in.
    connect(
        editors_->Container(), &EditorContainer::CurrentChanged, this,
        [this] { menuKeys_->Update(); }, Qt::QueuedConnection);
    host_ = std::make_unique<StudioHost>(model_, *tree_, *editors_, variables_);
    addIns_.SetFailureHandler([this](const AddInSet::Failure& failure) {
        const QString text = texts_(
            Text::StatusAddInError,
            {{u"name", failure.progId}, {u"event", failure.event}, {u"cause", failure.what}});
        qWarning("%s", qUtf8Printable(text));
        statusBar()->showMessage(text);
    });
    connect(&watch_, &FileWatch::Changed, this, &StudioWindow::FileChanged);
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
    CloseProject();
    addIns_.SetFailureHandler(nullptr);
}

bool StudioWindow::OpenProject(const QString& project) {
    return Open(project, Opening::Anew);
}

bool StudioWindow::ShowProject(const QString& project) {
    const bool isBusy = addIns_.InCall() || QApplication::activeModalWidget() != nullptr ||
                        QApplication::activePopupWidget() != nullptr;
    if (quitting_ || !isVisible() || isBusy) return false;
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
    if (project.isEmpty() || (project_ && project_->remembered == project)) return true;
    QMetaObject::invokeMethod(
        this, [this, project] { OpenProject(project); }, Qt::QueuedConnection);
    return true;
}

bool StudioWindow::Open(const QString& project, Opening opening) {
    if (addIns_.InCall()) {
        statusBar()->showMessage(texts_(Text::StatusBusy), kStatusMs);
        return false;
    }
    auto located = Locate(project, registry_, texts_);
    if (const auto* message = std::get_if<QString>(&located)) {
        Complain(*message);
        return false;
    }
    CloseProject();
    project_ = std::get<ProjectLocation>(std::move(located));
    // Before anybody else hears of the project, and so before the first change.
    if (opening == Opening::Anew && !project_->isReadOnly) backups_.Take(project_->nativePath);
    variables_.SetProject(project_->nativePath);
    watch_.SetFile(project_->nativePath);
    model_.RegisterIcon(kProjectIcon, icons::Icon(u"project"));
    model_.AddOwn(project_->shown, kProjectKey.toString(), kProjectIcon);
    tree_->HostSelect(kProjectKey.toString());
    ApplyProjectState();
    recent_.Add(project_->remembered);
    if (state_ != nullptr) state_->setValue(kLastKey, project_->remembered);
    const Text opened = project_->isReadOnly ? Text::StatusOpenedReadOnly : Text::StatusOpened;
    statusBar()->showMessage(texts_(opened, {{u"project", project_->shown}}), kStatusMs);
    addIns_.ForEach("Initialize", [this](KV4AddIn::CKV4Extensibility& addIn) {
        addIn.CKV4Extensibility_Initialize(project_->forAddIns, QString(), host_.get(), nullptr);
    });
    startupPending_ = true;
    if (isVisible()) RaiseStartupComplete();
    tree_->setFocus();
    return true;
}

void StudioWindow::OpenLastProject() {
    if (state_ == nullptr || !StoredSettings().reopen) return;
    const QString project = state_->value(kLastKey).toString();
    if (project.isEmpty() || !IsThere(project, registry_)) return;
    // One that brings the studio down must not do so at every start.
    state_->remove(kLastKey);
    state_->sync();
    const QStringList place = state_->value(kPlaceKey).toStringList();
    if (OpenProject(project)) tree_->OpenAsUser(place);
}

void StudioWindow::mnuFileClose_Click() {
    if (CloseProject() && state_ != nullptr) state_->remove(kLastKey);
}

bool StudioWindow::CloseProject() {
    if (!project_) return true;
    if (addIns_.InCall()) {
        statusBar()->showMessage(texts_(Text::StatusBusy), kStatusMs);
        return false;
    }
    addIns_.ForEach("Terminate", [](KV4AddIn::CKV4Extensibility& addIn) {
        addIn.CKV4Extensibility_Terminate();
    });
    startupPending_ = false;
    model_.Clear();
    project_.reset();
    variables_.SetProject({});
    watch_.SetFile({});
    strip_->hide();
    // An add-in may have been waiting for a database when it was terminated.
    messages::SetScreenPointer(messages::Pointer::Default);
    ApplyProjectState();
    statusBar()->showMessage(texts_(Text::StatusClosed), kStatusMs);
    return true;
}

QString StudioWindow::FirstAddInNode() const {
    for (const QString& key : model_.ChildKeys(QString()).value_or(QStringList())) {
        if (key != kProjectKey) return key;
    }
    return {};
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
    const QStringList place = tree_->SelectedPath();
    if (project_ && state_ != nullptr) state_->setValue(kPlaceKey, place);
    if (!CloseProject()) {
        event->ignore();
        return;
    }
    SaveState();
    event->accept();
}

void StudioWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    RaiseStartupComplete();
}

void StudioWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ThemeChange) ApplySettings();
    if (event->type() == QEvent::ActivationChange && !isActiveWindow() && project_) {
        addIns_.ForEach("Deactivate", [](KV4AddIn::CKV4Extensibility& addIn) {
            addIn.CKV4Extensibility_Deactivate();
        });
    }
}

void StudioWindow::dragEnterEvent(QDragEnterEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.size() == 1 && urls.front().isLocalFile()) event->acceptProposedAction();
}

void StudioWindow::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.size() != 1) return;
    event->acceptProposedAction();
    // Queued, so that the program the file comes from is not held up by a message.
    QMetaObject::invokeMethod(
        this, [this, file = urls.front().toLocalFile()] { OpenProject(file); },
        Qt::QueuedConnection);
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
    if (project_) return QFileInfo(project_->nativePath).path();
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
    WhileClosed(Content::Same, [this, lcid] { ApplyLanguage(lcid); });
    statusBar()->showMessage(texts_(Text::StatusLanguage), kStatusMs);
    return true;
}

bool StudioWindow::WhileClosed(Content content, const std::function<void()>& action) {
    const std::optional<ProjectLocation> open = project_;
    const QStringList place = tree_->SelectedPath();
    if (content == Content::Same) {
        addIns_.ForEach("GetMessage", [](KV4AddIn::CKV4Extensibility& addIn) {
            std::ignore = addIn.CKV4Extensibility_GetMessage(KV4AddIn::kHostSender.toString(),
                                                             KV4AddIn::kReopening.toString(), {});
        });
    }
    if (!CloseProject()) return false;
    action();
    if (open && Open(open->remembered, Opening::Again)) tree_->OpenAsUser(place);
    return true;
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

void StudioWindow::RaiseStartupComplete() {
    if (!startupPending_) return;
    startupPending_ = false;
    addIns_.ForEach("StartupComplete", [](KV4AddIn::CKV4Extensibility& addIn) {
        addIn.CKV4Extensibility_StartupComplete();
    });
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
    if (state_ == nullptr || !splMain_->restoreState(state_->value(kSplitterKey).toByteArray())) {
        splMain_->setSizes({260, 940});
    }
}

void StudioWindow::SaveState() {
    if (state_ == nullptr) return;
    state_->setValue(kGeometryKey, saveGeometry());
    state_->setValue(kSplitterKey, splMain_->saveState());
    state_->sync();
}

}  // namespace studio
