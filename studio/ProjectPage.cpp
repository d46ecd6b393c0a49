#include "studio/ProjectPage.h"

#include <QFile>
#include <QFileInfo>
#include <QSplitter>
#include <QVBoxLayout>
#include <tuple>
#include <utility>

#include "icons/Icons.h"
#include "messages/MessageBox.h"
#include "studio/EditorArea.h"
#include "studio/ProjectTree.h"
#include "studio/WatchStrip.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;
using KV4AddIn::CKV4Extensibility;

const QString kProjectIcon = u"icoStudioProject"_s;
constexpr int kLeastTreeWidth = 120;  // pixels

}  // namespace

ProjectPage::ProjectPage(AddInSet& addIns, const StudioTexts& texts)
    : texts_(texts),
      addIns_(addIns),
      treeEvents_(addIns_),
      variables_(texts),
      splMain_(new QSplitter(Qt::Horizontal)),
      tree_(new ProjectTree(model_, treeEvents_)),
      editors_(new EditorArea),
      strip_(new WatchStrip),
      host_(model_, *tree_, *editors_, variables_, [this] {
          if (!isInFront_) emit ShowRequested();
      }) {
    Build();
    connect(&watch_, &FileWatch::Changed, this, &ProjectPage::FileChanged);
    connect(strip_, &WatchStrip::ReloadRequested, this, &ProjectPage::ReloadRequested);
    for (const auto changed : {&EditorContainer::CurrentChanged, &EditorContainer::TitleChanged}) {
        connect(editors_->Container(), changed, this, &ProjectPage::EditorChanged);
    }
}

ProjectPage::~ProjectPage() {
    // What still comes of the editors concerns nobody.
    disconnect();
    Close();
    // They know the models, which would go first.
    delete splMain_;
}

void ProjectPage::Build() {
    tree_->setMinimumWidth(kLeastTreeWidth);
    tree_->setEnabled(false);
    splMain_->setObjectName(u"splMain"_s);
    splMain_->addWidget(tree_);
    splMain_->addWidget(editors_);
    splMain_->setChildrenCollapsible(false);
    splMain_->setStretchFactor(1, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(strip_);
    column->addWidget(splMain_, 1);
}

bool ProjectPage::IsOf(const ProjectLocation& project) const {
    if (!project_) return false;
    if (project_->nativePath == project.nativePath) return true;
    const auto file = FileWatch::IdentityOf(QFile::encodeName(project.nativePath));
    return file && file == watch_.Opened();
}

QStringList ProjectPage::Place() const {
    return isInFront_ ? tree_->SelectedPath() : place_;
}

void ProjectPage::SetProject(ProjectLocation project, const QStringList& place) {
    project_ = std::move(project);
    place_ = place;
    variables_.SetProject(project_->nativePath);
    watch_.SetFile(project_->nativePath);
    model_.RegisterIcon(kProjectIcon, icons::Icon(u"project"));
    model_.AddOwn(project_->shown, kProjectKey.toString(), kProjectIcon);
    tree_->setEnabled(true);
    tree_->HostSelect(kProjectKey.toString());
}

void ProjectPage::Enter() {
    isInFront_ = true;
    if (!project_ || addIns_.InCall()) return;
    wasEntered_ = true;
    const bool isNew = addIns_.Initialize(project_->forAddIns, host_);
    if (isVisible()) addIns_.StartUp();
    if (isNew) tree_->OpenAsUser(std::exchange(place_, {}));
}

void ProjectPage::Leave() {
    place_ = tree_->SelectedPath();
    isInFront_ = false;
    TellDeactivated();
}

void ProjectPage::TellDeactivated() {
    addIns_.ForEach("Deactivate",
                    [](CKV4Extensibility& addIn) { addIn.CKV4Extensibility_Deactivate(); });
}

void ProjectPage::TellReopening() {
    addIns_.ForEach("GetMessage", [](CKV4Extensibility& addIn) {
        std::ignore = addIn.CKV4Extensibility_GetMessage(KV4AddIn::kHostSender.toString(),
                                                         KV4AddIn::kReopening.toString(), {});
    });
}

bool ProjectPage::Compare(const QString& file, const QString& name) {
    bool isShown = false;
    addIns_.ForEach("GetMessage", [&](CKV4Extensibility& addIn) {
        if (isShown) return;
        isShown = addIn
                      .CKV4Extensibility_GetMessage(KV4AddIn::kHostSender.toString(),
                                                    KV4AddIn::kCompare.toString(),
                                                    QStringList{file, name})
                      .toBool();
    });
    return isShown;
}

bool ProjectPage::Close() {
    if (!project_) return true;
    if (addIns_.InCall()) return false;
    addIns_.Terminate();
    model_.Clear();
    project_.reset();
    wasEntered_ = false;
    place_.clear();
    variables_.SetProject({});
    watch_.SetFile({});
    strip_->hide();
    tree_->setEnabled(false);
    // An add-in may have been waiting for a database when it was terminated.
    messages::SetScreenPointer(messages::Pointer::Default);
    return true;
}

void ProjectPage::ApplyLanguage() {
    tree_->setAccessibleName(texts_(Text::TreeName));
}

void ProjectPage::FocusEditor() {
    QWidget* editor = editors_->Container()->Current();
    if (editor == nullptr) return;
    QWidget* last = editor->focusWidget();
    (last != nullptr ? last : editor)->setFocus(Qt::ShortcutFocusReason);
}

void ProjectPage::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (project_ && isInFront_) addIns_.StartUp();
}

void ProjectPage::FileChanged(FileWatch::State state) {
    if (project_) strip_->Show(state, QFileInfo(project_->nativePath).fileName(), texts_);
}

}  // namespace studio
