#pragma once

#include <array>
#include <functional>
#include <QHash>
#include <QObject>
#include <QStringList>
#include <utility>

#include "commandset/CommandSet.h"

class QAction;
class QMenu;
class QMenuBar;
class QToolBar;
class QWidget;

/// The commands as actions of the window, and the menus and the toolbar that show them.
class EditorMenus final : public QObject {
    Q_OBJECT
public:
    /// `window` owns what is made; `texts` is borrowed and outlives it.
    EditorMenus(const MResources::TextTable& texts, QWidget& window);

    [[nodiscard]] QMenuBar* Bar() const noexcept { return bar_; }
    /// By its given name. REQUIRES: there is such a menu.
    [[nodiscard]] QMenu* MenuOf(QStringView name) const;
    /// REQUIRES: the command stands in a menu.
    [[nodiscard]] QAction* Action(commandset::Id id) const;
    [[nodiscard]] QToolBar* MakeToolBar();
    void FillContextMenu(QMenu& menu, commandset::Place place) const;

    /// Names of the steps that can be taken back, or done again, the next first; `most` of them.
    using Steps = std::function<QStringList(commandset::Id direction, int most)>;
    void SetSteps(Steps steps) { steps_ = std::move(steps); }
    /// Names the next steps in menu and tool tip.
    void ShowSteps();
    /// Enables what can run now.
    void Update(const commandset::Situation& situation);
    /// The menu of archives stands in the tree, where it leads to the editor too.
    void ShowAtTree(bool atTree);

signals:
    void Triggered(commandset::Id id);
    /// The user wants so many steps back, or forward.
    void StepsWanted(commandset::Id direction, int steps);
    /// The user has given commands other keys; menus and tool tips show them already.
    void KeysChanged();
    /// A menu is about to be shown: what can run may have changed unseen.
    void AboutToShow();

private:
    void MakeActions();
    void MakeBar();
    void ShowKeys();
    void AddStepList(QToolBar& bar, commandset::Id direction);

    const MResources::TextTable& texts_;
    QWidget& window_;
    QHash<commandset::Id, QAction*> actions_;
    QHash<QString, QMenu*> menus_;
    Steps steps_;
    QHash<commandset::Id, QString> shownSteps_;
    QMenuBar* bar_ = nullptr;
    QToolBar* toolBar_ = nullptr;
    QAction* treeSeparator_ = nullptr;  // in front of "Show editor"
};
