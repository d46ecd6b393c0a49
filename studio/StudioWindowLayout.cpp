// The parts of the main window and their texts; what they do is in StudioWindow.cpp.

#include <QActionGroup>
#include <QApplication>
#include <QFileInfo>
#include <QLabel>
#include <QLibraryInfo>
#include <QMenuBar>
#include <QStatusBar>

#include "studio/AddInSet.h"
#include "studio/DemoProject.h"
#include "studio/EditorArea.h"
#include "studio/ProjectPage.h"
#include "studio/ProjectTabs.h"
#include "studio/ProjectTree.h"
#include "studio/StudioKeys.h"
#include "studio/StudioRegistry.h"
#include "studio/StudioWindow.h"
#include "texts/Language.h"

namespace studio {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr int kRecentInEmptyArea = 5;

}  // namespace

void StudioWindow::BuildAreas() {
    lblProject_ = new QLabel;
    lblProject_->setObjectName(u"lblProject"_s);
    lblProject_->setTextFormat(Qt::PlainText);
    statusBar()->setObjectName(u"staStudio"_s);
    statusBar()->addPermanentWidget(lblProject_);
    tabs_ = new ProjectTabs;
    setCentralWidget(tabs_);
    AddPage();
    connect(tabs_, &ProjectTabs::CurrentChanged, this, &StudioWindow::PageChanged);
    connect(tabs_, &ProjectTabs::CloseRequested, this,
            [this](ProjectPage* page) { ClosePage(*page); });
}

QMenu* StudioWindow::AddMenu(const QString& name, Text text) {
    QMenu* menu = menuBar()->addMenu(QString());
    menu->setObjectName(name);
    captions_.push_back({menu->menuAction(), text, std::nullopt});
    return menu;
}

QAction* StudioWindow::AddAction(QMenu& menu, const QString& name, Text text,
                                 std::optional<Text> tip, const QKeySequence& shortcut) {
    QAction* action = menu.addAction(QString());
    action->setObjectName(name);
    action->setShortcut(shortcut);
    captions_.push_back({action, text, tip});
    return action;
}

void StudioWindow::BuildFileMenu() {
    menuBar()->setObjectName(u"mnuMain"_s);
    QMenu& file = *AddMenu(u"mnuFile"_s, Text::MenuFile);
    QAction* create =
        AddAction(file, u"mnuFileNew"_s, Text::FileNew, Text::FileNewTip, QKeySequence::New);
    connect(create, &QAction::triggered, this, &StudioWindow::mnuFileNew_Click);
    mnuFileOpen_ =
        AddAction(file, u"mnuFileOpen"_s, Text::FileOpen, Text::FileOpenTip, QKeySequence::Open);
    connect(mnuFileOpen_, &QAction::triggered, this, &StudioWindow::mnuFileOpen_Click);
    mnuFileRecent_ = file.addMenu(QString());
    mnuFileRecent_->setObjectName(u"mnuFileRecent"_s);
    captions_.push_back({mnuFileRecent_->menuAction(), Text::FileRecent, std::nullopt});
    connect(mnuFileRecent_, &QMenu::aboutToShow, this, &StudioWindow::mnuFileRecent_Popup);
    file.addSeparator();
    mnuFileClose_ = AddAction(file, u"mnuFileClose"_s, Text::FileClose, Text::FileCloseTip,
                              Qt::CTRL | Qt::Key_W);
    connect(mnuFileClose_, &QAction::triggered, this, &StudioWindow::mnuFileClose_Click);
    mnuFileBackups_ = AddAction(file, u"mnuFileBackups"_s, Text::FileBackups, Text::FileBackupsTip);
    connect(mnuFileBackups_, &QAction::triggered, this, &StudioWindow::mnuFileBackups_Click);
    mnuFileCompare_ = AddAction(file, u"mnuFileCompare"_s, Text::FileCompare, Text::FileCompareTip);
    connect(mnuFileCompare_, &QAction::triggered, this, &StudioWindow::mnuFileCompare_Click);
    file.addSeparator();
    QAction* quit =
        AddAction(file, u"mnuFileQuit"_s, Text::FileQuit, std::nullopt, Qt::CTRL | Qt::Key_Q);
    quit->setMenuRole(QAction::QuitRole);
    connect(quit, &QAction::triggered, this, &QWidget::close);
}

void StudioWindow::BuildOtherMenus() {
    QMenu& view = *AddMenu(u"mnuView"_s, Text::MenuView);
    QAction* viewTree =
        AddAction(view, u"mnuViewTree"_s, Text::ViewTree, std::nullopt, Qt::ALT | Qt::Key_1);
    connect(viewTree, &QAction::triggered, this, [this] { Tree().setFocus(); });
    mnuViewEditor_ =
        AddAction(view, u"mnuViewEditor"_s, Text::ViewEditor, std::nullopt, Qt::ALT | Qt::Key_2);
    connect(mnuViewEditor_, &QAction::triggered, this, [this] { Page().FocusEditor(); });
    view.addSeparator();
    // The table of the archive editor goes from archive to archive with Ctrl: there Alt is left.
    mnuViewNextProject_ = AddAction(view, u"mnuViewNextProject"_s, Text::ViewNextProject,
                                    std::nullopt, Qt::ALT | Qt::Key_PageDown);
    mnuViewPreviousProject_ =
        AddAction(view, u"mnuViewPreviousProject"_s, Text::ViewPreviousProject, std::nullopt,
                  Qt::ALT | Qt::Key_PageUp);
    mnuViewNextProject_->setShortcuts(
        {mnuViewNextProject_->shortcut(), Qt::CTRL | Qt::Key_PageDown});
    mnuViewPreviousProject_->setShortcuts(
        {mnuViewPreviousProject_->shortcut(), Qt::CTRL | Qt::Key_PageUp});
    connect(mnuViewNextProject_, &QAction::triggered, this, [this] { Step(+1); });
    connect(mnuViewPreviousProject_, &QAction::triggered, this, [this] { Step(-1); });

    QMenu& settings = *AddMenu(u"mnuSettings"_s, Text::MenuSettings);
    QMenu* language = settings.addMenu(QString());
    language->setObjectName(u"mnuSettingsLanguage"_s);
    captions_.push_back({language->menuAction(), Text::SettingsLanguage, std::nullopt});
    languages_ = new QActionGroup(this);
    // Each language by its own name, so that everyone finds the own one.
    for (const texts::Language* known : texts::Languages()) {
        QAction* action = language->addAction(known->name);
        action->setObjectName(u"mnuSettingsLanguage(%1)"_s.arg(known->lcid));
        action->setCheckable(true);
        action->setData(static_cast<int>(known->lcid));
        languages_->addAction(action);
    }
    connect(languages_, &QActionGroup::triggered, this, &StudioWindow::mnuSettingsLanguage_Click);

    QAction* options =
        AddAction(settings, u"mnuSettingsOptions"_s, Text::SettingsDialog, std::nullopt);
    options->setMenuRole(QAction::PreferencesRole);
    connect(options, &QAction::triggered, this, &StudioWindow::mnuSettingsOptions_Click);

    QMenu& help = *AddMenu(u"mnuHelp"_s, Text::MenuHelp);
    mnuHelpContents_ =
        AddAction(help, u"mnuHelpContents"_s, Text::HelpContents, Text::HelpContentsTip);
    mnuHelpContents_->setProperty(StudioKeys::kFixedKey, QKeySequence(Qt::Key_F1));
    connect(mnuHelpContents_, &QAction::triggered, this, &StudioWindow::mnuHelpContents_Click);
    QAction* keys = AddAction(help, u"mnuHelpKeys"_s, Text::HelpKeys, Text::HelpKeysTip);
    connect(keys, &QAction::triggered, this, &StudioWindow::mnuHelpKeys_Click);
    QAction* addIns = AddAction(help, u"mnuHelpAddIns"_s, Text::HelpAddIns, Text::HelpAddInsTip);
    connect(addIns, &QAction::triggered, this, &StudioWindow::mnuHelpAddIns_Click);
    QAction* about = AddAction(help, u"mnuHelpAbout"_s, Text::HelpAbout, std::nullopt);
    about->setMenuRole(QAction::AboutRole);
    connect(about, &QAction::triggered, this, &StudioWindow::mnuHelpAbout_Click);
}

void StudioWindow::ReserveShortcuts() {
    reservedKeys_.clear();
    for (const Caption& caption : captions_) reservedKeys_ += caption.action->shortcuts();
    if (tabs_ == nullptr) return;  // pages that come later take them along
    for (ProjectPage* page : tabs_->Pages()) page->Tree().SetReservedKeys(reservedKeys_);
}

void StudioWindow::ApplyLanguage(int lcid) {
    texts_ = StudioTexts(lcid);
    texts::SetInterfaceLanguage(static_cast<platform::Lcid>(texts_.Lcid()));
    help_.SetLanguage(texts_.Lcid());
    QCoreApplication::removeTranslator(&qtTexts_);
    if (texts_.Lcid() == kGerman &&
        qtTexts_.load(u"qtbase_de"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(&qtTexts_);
    }
    for (const Caption& caption : captions_) {
        caption.action->setText(texts_(caption.text));
        if (caption.tip) caption.action->setStatusTip(texts_(*caption.tip));
    }
    for (QAction* action : languages_->actions()) {
        action->setChecked(action->data().toInt() == texts_.Lcid());
        action->setStatusTip(texts_(Text::LanguageTip));
    }
    menuKeys_->Update();
    menuBar()->setAccessibleName(texts_(Text::StudioTitle));
    for (ProjectPage* page : tabs_->Pages()) page->ApplyLanguage();
    tabs_->ShowTexts(texts_);
    ApplyProjectState();
}

/// What is being edited, of which project.
void StudioWindow::ShowTitle() {
    const QString studio = texts_(Text::StudioTitle);
    const auto& project = Page().Project();
    QStringList parts;
    const QWidget* editor = Page().Editors().Container()->Current();
    if (project && editor != nullptr) parts += editor->windowTitle();
    if (project) {
        parts += project->isReadOnly ? texts_(Text::ReadOnlyProject, {{u"project", project->shown}})
                                     : project->shown;
    }
    parts += studio;
    parts.removeAll(QString());
    setWindowTitle(parts.join(u" - "_s));
    // An editor has help of its own, by the same key.
    mnuHelpContents_->setShortcut(editor == nullptr ? QKeySequence(Qt::Key_F1) : QKeySequence());
}

void StudioWindow::ApplyProjectState() {
    using State = EditorArea::State;
    ShowTitle();
    const auto& project = Page().Project();
    const bool isOpen = project.has_value();
    setWindowFilePath(isOpen ? project->nativePath : QString());
    lblProject_->setText(isOpen ? QFileInfo(project->nativePath).fileName() : QString());
    lblProject_->setToolTip(isOpen ? project->nativePath : QString());
    for (QAction* action : {mnuFileClose_, mnuFileBackups_}) action->setEnabled(isOpen);
    mnuFileCompare_->setEnabled(isOpen && !addIns_.IsEmpty());
    const bool areSeveral = tabs_->Pages().size() > 1;
    for (QAction* action : {mnuViewNextProject_, mnuViewPreviousProject_}) {
        action->setEnabled(areSeveral);
    }
    Page().Editors().SetState(!isOpen             ? State::NoProject
                              : addIns_.IsEmpty() ? State::NoAddIns
                                                  : State::NoEditor,
                              texts_);
    Page().Editors().SetDemo(!DemoProject().isEmpty());
    ShowRecentInEmptyArea();
}

void StudioWindow::ShowRecentInEmptyArea() {
    QList<std::pair<QString, QString>> shown;
    if (!HasProject()) {
        for (const QString& project : recent_.Items()) {
            if (shown.size() == kRecentInEmptyArea) break;
            if (IsThere(project, registry_)) shown.append({project, RecentCaption(project)});
        }
    }
    Page().Editors().SetRecent(shown, texts_);
}

}  // namespace studio
