#pragma once

#include <QList>
#include <QWidget>

class QStackedWidget;
class QTabBar;

namespace studio {

class ProjectPage;
class StudioTexts;

/// The pages of the window, one of them in front: one for each project that is open, or a single
/// one without a project. As soon as there are two, tabs above them lead from one to the other.
class ProjectTabs final : public QWidget {
    Q_OBJECT
public:
    explicit ProjectTabs(QWidget* parent = nullptr);

    /// The page in front; null before the first one.
    [[nodiscard]] ProjectPage* Current() const;
    /// From left to right.
    [[nodiscard]] QList<ProjectPage*> Pages() const;

    /// Takes the page over, behind the others. The first one is in front.
    void Add(ProjectPage& page);
    /// Deletes the page. REQUIRES: it is not the only one.
    void Remove(ProjectPage& page);
    void Show(ProjectPage& page);
    /// The page that lies so many tabs further; the first follows upon the last.
    void Step(int tabs);
    /// A project has got another name, or the interface another language.
    void ShowTexts(const StudioTexts& texts);

signals:
    /// `before` was in front until now; null: it has gone.
    void CurrentChanged(ProjectPage* before);
    void CloseRequested(ProjectPage* page);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] ProjectPage* PageAt(int tab) const;
    void TabChanged(int tab);

    QTabBar* tabProjects_;
    QStackedWidget* pages_;  // in the order of the tabs
};

}  // namespace studio
