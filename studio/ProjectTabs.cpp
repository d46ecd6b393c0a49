#include "studio/ProjectTabs.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>

#include "studio/ProjectPage.h"

namespace studio {

using namespace Qt::Literals::StringLiterals;

ProjectTabs::ProjectTabs(QWidget* parent)
    : QWidget(parent), tabProjects_(new QTabBar), pages_(new QStackedWidget) {
    tabProjects_->setObjectName(u"tabProjects"_s);
    tabProjects_->setAutoHide(true);
    tabProjects_->setTabsClosable(true);
    tabProjects_->setDocumentMode(true);
    tabProjects_->setExpanding(false);
    tabProjects_->setElideMode(Qt::ElideMiddle);
    tabProjects_->installEventFilter(this);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(tabProjects_);
    column->addWidget(pages_, 1);
    connect(tabProjects_, &QTabBar::currentChanged, this, &ProjectTabs::TabChanged);
    connect(tabProjects_, &QTabBar::tabCloseRequested, this,
            [this](int tab) { emit CloseRequested(PageAt(tab)); });
}

ProjectPage* ProjectTabs::Current() const {
    return PageAt(pages_->currentIndex());
}

QList<ProjectPage*> ProjectTabs::Pages() const {
    QList<ProjectPage*> pages;
    for (int tab = 0; tab < pages_->count(); ++tab) pages += PageAt(tab);
    return pages;
}

void ProjectTabs::Add(ProjectPage& page) {
    const QSignalBlocker quiet(tabProjects_);
    pages_->addWidget(&page);
    tabProjects_->addTab(QString());
}

void ProjectTabs::Remove(ProjectPage& page) {
    const bool wasCurrent = &page == Current();
    const int tab = pages_->indexOf(&page);
    {
        const QSignalBlocker quiet(tabProjects_);
        pages_->removeWidget(&page);
        tabProjects_->removeTab(tab);
        tabProjects_->setCurrentIndex(pages_->currentIndex());
    }
    delete &page;
    if (wasCurrent) emit CurrentChanged(nullptr);
}

void ProjectTabs::Show(ProjectPage& page) {
    tabProjects_->setCurrentIndex(pages_->indexOf(&page));
}

void ProjectTabs::Step(int tabs) {
    const int count = pages_->count();
    tabProjects_->setCurrentIndex((tabProjects_->currentIndex() + tabs + count) % count);
}

void ProjectTabs::TabChanged(int tab) {
    ProjectPage* before = Current();
    pages_->setCurrentIndex(tab);
    emit CurrentChanged(before);
}

/// Two projects of one name are told apart by their folders.
void ProjectTabs::ShowTexts(const StudioTexts& texts) {
    tabProjects_->setAccessibleName(texts(Text::ProjectTabsName));
    QHash<QString, int> names;
    for (const ProjectPage* page : Pages()) {
        if (page->Project()) ++names[page->Project()->shown];
    }
    for (int tab = 0; tab < pages_->count(); ++tab) {
        const auto& project = PageAt(tab)->Project();
        if (!project) continue;
        QString shown = project->shown;
        if (names[shown] > 1) {
            shown += u" (%1)"_s.arg(QFileInfo(project->nativePath).dir().dirName());
        }
        tabProjects_->setTabText(tab, QString(shown).replace(u'&', u"&&"_s));
        tabProjects_->setTabToolTip(tab, project->nativePath);
        for (const auto side : {QTabBar::LeftSide, QTabBar::RightSide}) {
            QWidget* close = tabProjects_->tabButton(tab, side);
            if (close == nullptr) continue;
            const QString text = texts(Text::CloseTab, {{u"project", shown}});
            close->setToolTip(text);
            close->setAccessibleName(text);
        }
    }
}

bool ProjectTabs::eventFilter(QObject* watched, QEvent* event) {
    if (watched == tabProjects_ && event->type() == QEvent::MouseButtonRelease) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        const int tab = tabProjects_->tabAt(mouse->position().toPoint());
        if (mouse->button() == Qt::MiddleButton && tab >= 0) {
            emit CloseRequested(PageAt(tab));
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

ProjectPage* ProjectTabs::PageAt(int tab) const {
    return static_cast<ProjectPage*>(pages_->widget(tab));
}

}  // namespace studio
