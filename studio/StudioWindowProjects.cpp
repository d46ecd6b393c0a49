// The projects that are open: how they come, go, and come back.

#include <QApplication>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>

#include "messages/MessageBox.h"
#include "studio/AddInSet.h"
#include "studio/EditorArea.h"
#include "studio/ProjectPage.h"
#include "studio/ProjectTabs.h"
#include "studio/ProjectTree.h"
#include "studio/StudioRegistry.h"
#include "studio/StudioWindow.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kStatusMs = 8000;

}  // namespace

ProjectPage& StudioWindow::AddPage() {
    auto* page = new ProjectPage(addIns_, texts_);
    page->Tree().SetReservedKeys(reservedKeys_);
    page->ApplyLanguage();
    connect(page, &ProjectPage::EditorChanged, this, [this] {
        ShowTitle();
        // Queued: the editor's own menu is not there yet when it is taken in.
        QMetaObject::invokeMethod(
            this, [this] { menuKeys_->Update(); }, Qt::QueuedConnection);
    });
    // Queued: it may not come back, and its strip with it.
    connect(
        page, &ProjectPage::ReloadRequested, this,
        [this, page] { WhileClosed({page}, Content::Changed, [] {}); }, Qt::QueuedConnection);
    connect(page, &ProjectPage::ShowRequested, this, [this, page] {
        if (!addIns_.InCall()) tabs_->Show(*page);
    });
    EditorArea& area = page->Editors();
    connect(&area, &EditorArea::NewRequested, this, &StudioWindow::mnuFileNew_Click);
    connect(&area, &EditorArea::DemoRequested, this, &StudioWindow::OpenDemo);
    connect(&area, &EditorArea::OpenRequested, this, &StudioWindow::mnuFileOpen_Click);
    connect(&area, &EditorArea::RecentRequested, this,
            [this](const QString& project) { OpenProject(project); });
    tabs_->Add(*page);
    return *page;
}

ProjectPage& StudioWindow::Page() const {
    return *tabs_->Current();
}

bool StudioWindow::HasProject() const {
    return Page().Project().has_value();
}

ProjectTree& StudioWindow::Tree() const {
    return Page().Tree();
}

StudioHost& StudioWindow::Host() const {
    return Page().Host();
}

QString StudioWindow::FirstAddInNode() const {
    for (const QString& key : Page().Model().ChildKeys(QString()).value_or(QStringList())) {
        if (key != ProjectPage::kProjectKey) return key;
    }
    return {};
}

bool StudioWindow::IsBusy() {
    if (addIns_.InCall()) statusBar()->showMessage(texts_(Text::StatusBusy), kStatusMs);
    return addIns_.InCall();
}

bool StudioWindow::OpenProject(const QString& project) {
    if (IsBusy()) return false;
    const auto found = PageFor(project, {});
    if (const auto* message = std::get_if<QString>(&found)) {
        Complain(*message);
        return false;
    }
    ProjectPage& page = *std::get<ProjectPage*>(found);
    const bool isNew = !page.WasEntered();
    if (&page == &Page()) {
        if (isNew) PageChanged(nullptr);
    } else {
        tabs_->Show(page);
    }
    const ProjectLocation& shown = *page.Project();
    recent_.Add(shown.remembered);
    const Text told = !isNew             ? Text::StatusOpenAlready
                      : shown.isReadOnly ? Text::StatusOpenedReadOnly
                                         : Text::StatusOpened;
    statusBar()->showMessage(texts_(told, {{u"project", shown.shown}}), kStatusMs);
    if (isNew) page.Tree().setFocus();
    return true;
}

std::variant<ProjectPage*, QString> StudioWindow::PageFor(const QString& project,
                                                          const QStringList& place) {
    auto located = Locate(project, registry_, texts_);
    if (auto* message = std::get_if<QString>(&located)) return std::move(*message);
    auto& location = std::get<ProjectLocation>(located);
    for (ProjectPage* page : tabs_->Pages()) {
        if (page->IsOf(location)) return page;
    }
    // Before anybody else hears of the project, and so before the first change.
    if (!location.isReadOnly) backups_.Take(location.nativePath);
    ProjectPage& page = HasProject() ? AddPage() : Page();
    page.SetProject(std::move(location), place);
    tabs_->ShowTexts(texts_);
    return &page;
}

bool StudioWindow::ShowProject(const QString& project) {
    const bool isBusy = addIns_.InCall() || QApplication::activeModalWidget() != nullptr ||
                        QApplication::activePopupWidget() != nullptr;
    if (quitting_ || !isVisible() || isBusy) return false;
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
    if (project.isEmpty()) return true;
    QMetaObject::invokeMethod(
        this, [this, project] { OpenProject(project); }, Qt::QueuedConnection);
    return true;
}

void StudioWindow::PageChanged(ProjectPage* before) {
    ProjectPage& page = Page();
    if (before != nullptr && before != &page) {
        page.Split().setSizes(before->Split().sizes());  // as wide as everywhere
        before->Leave();
    }
    // What was being waited for belongs to another project.
    messages::SetScreenPointer(messages::Pointer::Default);
    ApplyProjectState();
    page.Enter();
    ShowTitle();
    menuKeys_->Update();
    KeepSession();
}

void StudioWindow::Step(int tabs) {
    if (!IsBusy()) tabs_->Step(tabs);
}

void StudioWindow::mnuFileClose_Click() {
    CloseProject();
}

bool StudioWindow::CloseProject() {
    return ClosePage(Page());
}

bool StudioWindow::ClosePage(ProjectPage& page) {
    if (IsBusy()) return false;
    if (!page.Project()) return true;
    page.Close();
    if (tabs_->Pages().size() > 1) {
        const bool wasInFront = &page == &Page();
        const QList<int> sizes = page.Split().sizes();
        tabs_->Remove(page);
        tabs_->ShowTexts(texts_);
        if (wasInFront) {
            Page().Split().setSizes(sizes);
            Tree().setFocus();
        }
    }
    ApplyProjectState();
    KeepSession();
    statusBar()->showMessage(texts_(Text::StatusClosed), kStatusMs);
    return true;
}

bool StudioWindow::WhileClosed(const QList<ProjectPage*>& pages, Content content,
                               const std::function<void()>& action) {
    if (IsBusy()) return false;
    struct Kept {
        ProjectPage* page;
        QString project;
        QStringList place;
    };
    QList<Kept> kept;
    for (ProjectPage* page : pages) {
        if (!page->Project()) continue;
        kept.append({page, page->Project()->remembered, page->Place()});
        if (content == Content::Same) page->TellReopening();
        page->Close();
    }
    action();
    QStringList failures;
    for (const Kept& one : kept) {
        auto located = Locate(one.project, registry_, texts_);
        if (auto* location = std::get_if<ProjectLocation>(&located)) {
            one.page->SetProject(std::move(*location), one.place);
            continue;
        }
        failures += std::get<QString>(located);
        if (tabs_->Pages().size() > 1) tabs_->Remove(*one.page);
    }
    tabs_->ShowTexts(texts_);
    PageChanged(nullptr);
    for (const QString& failure : failures) Complain(failure);
    return true;
}

void StudioWindow::KeepSession() {
    if (state_ == nullptr) return;
    LastSession session;
    for (const ProjectPage* page : tabs_->Pages()) {
        if (!page->Project()) continue;
        if (page == &Page()) session.current = static_cast<int>(session.projects.size());
        session.projects.append({page->Project()->remembered, page->Place()});
    }
    WriteLastSession(*state_, session);
}

void StudioWindow::OpenLastSession() {
    if (state_ == nullptr || !StoredSettings().reopen) return;
    const LastSession session = ReadLastSession(*state_);
    // One that brings the studio down must not do so at every start.
    WriteLastSession(*state_, {});
    state_->sync();
    QStringList missing;
    ProjectPage* inFront = nullptr;
    for (int i = 0; i < session.projects.size(); ++i) {
        const auto& [project, place] = session.projects[i];
        const auto found = PageFor(project, place);
        if (const auto* page = std::get_if<ProjectPage*>(&found)) {
            if (inFront == nullptr || i == session.current) inFront = *page;
        } else {
            missing += project;
        }
    }
    if (inFront == nullptr && missing.isEmpty()) return;
    if (inFront != nullptr) {
        inFront == &Page() ? PageChanged(nullptr) : tabs_->Show(*inFront);
        Tree().setFocus();
    }
    if (!missing.isEmpty()) {
        statusBar()->showMessage(
            texts_(Text::StatusNotReopened, {{u"projects", missing.join(u", "_s)}}));
    }
}

}  // namespace studio
