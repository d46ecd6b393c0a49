#include "editor/EditorMenus.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>
#include <utility>

#include "commandset/OwnKeys.h"
#include "icons/Icons.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;
using commandset::Command;
using commandset::Id;

namespace {

constexpr int kToolIconSize = 20;  // pixels
constexpr int kStepsListed = 25;   // as many as a screen holds

}  // namespace

EditorMenus::EditorMenus(const MResources::TextTable& texts, QWidget& window)
    : QObject(&window), texts_(texts), window_(window) {
    MakeActions();
    MakeBar();
    connect(new commandset::KeyWatch(this), &commandset::KeyWatch::Changed, this,
            &EditorMenus::ShowKeys);
}

void EditorMenus::MakeActions() {
    for (const Command& command : commandset::Commands()) {
        if (command.text == 0) continue;
        auto* action = new QAction(&window_);
        action->setObjectName(command.name.toString());
        if (!command.icon.isEmpty()) action->setIcon(icons::Icon(command.icon));
        connect(action, &QAction::triggered, this, [this, id = command.id] { emit Triggered(id); });
        actions_.insert(command.id, action);
    }
    Action(Id::FreezeName)->setCheckable(true);
    ShowKeys();
}

/// All texts that name a key.
void EditorMenus::ShowKeys() {
    for (const Command& command : commandset::Commands()) {
        QAction* action = Action(command.id);
        if (action == nullptr) continue;
        const QString step = shownSteps_.value(command.id);
        action->setText(commandset::MenuText(command, texts_, step));
        if (command.icon.isEmpty()) continue;
        const QString tip = commandset::ToolTip(command, texts_, step);
        action->setToolTip(shownSteps_.contains(command.id) ? tip.toHtmlEscaped() : tip);
        // The text of the action has an access key, and its key behind blanks.
        QWidget* button = toolBar_ != nullptr ? toolBar_->widgetForAction(action) : nullptr;
        if (button != nullptr) button->setAccessibleName(commandset::ToolTip(command, texts_));
    }
    emit KeysChanged();
}

void EditorMenus::MakeBar() {
    bar_ = new QMenuBar(&window_);
    bar_->setNativeMenuBar(false);  // the window stands inside the host's
    for (const commandset::Menu& shown : commandset::Menus()) {
        QMenu* menu = bar_->addMenu(texts_.GetText(shown.text));
        menu->setObjectName(shown.name.toString());
        connect(menu, &QMenu::aboutToShow, this, &EditorMenus::AboutToShow);
        for (std::size_t i = 0; i < shown.commands.size(); ++i) {
            if (shown.commands[i] != Id::Separator) {
                menu->addAction(Action(shown.commands[i]));
                continue;
            }
            QAction* separator = menu->addSeparator();
            if (shown.item.isEmpty()) continue;
            separator->setObjectName(u"%1(%2)"_s.arg(shown.item).arg(i));
            if (shown.commands[i + 1] == Id::ShowEditor) treeSeparator_ = separator;
        }
        menus_.insert(shown.name.toString(), menu);
    }
}

QMenu* EditorMenus::MenuOf(QStringView name) const {
    return menus_.value(name.toString());
}

QAction* EditorMenus::Action(Id id) const {
    return actions_.value(id);
}

QToolBar* EditorMenus::MakeToolBar() {
    auto* bar = new QToolBar(texts_.GetText(MResourceTable::kTextToolBar), &window_);
    bar->setObjectName(u"tbrfunc"_s);
    bar->setMovable(false);
    bar->setIconSize(QSize(kToolIconSize, kToolIconSize));
    for (const Id id : commandset::ToolBar()) {
        if (id == Id::Separator) {
            bar->addSeparator();
        } else {
            bar->addAction(Action(id));
        }
    }
    toolBar_ = bar;
    ShowKeys();
    AddStepList(*bar, Id::Undo);
    AddStepList(*bar, Id::Redo);
    return bar;
}

/// The list at a button, in which several steps are chosen at once.
void EditorMenus::AddStepList(QToolBar& bar, Id direction) {
    auto* button = qobject_cast<QToolButton*>(bar.widgetForAction(Action(direction)));
    auto* list = new QMenu(button);
    list->setObjectName(direction == Id::Undo ? u"mnuUndoSteps"_s : u"mnuRedoSteps"_s);
    button->setMenu(list);
    button->setPopupMode(QToolButton::MenuButtonPopup);
    connect(list, &QMenu::aboutToShow, this, [this, list, direction] {
        list->clear();
        const QStringList steps = steps_(direction, kStepsListed);
        for (int i = 0; i < steps.size(); ++i) {
            QString name = steps[i];
            connect(list->addAction(name.replace(u'&', u"&&"_s)), &QAction::triggered, this,
                    [this, direction, i] { emit StepsWanted(direction, i + 1); });
        }
    });
}

void EditorMenus::ShowSteps() {
    for (const Id id : {Id::Undo, Id::Redo}) {
        const QString next = steps_(id, 1).value(0);
        if (shownSteps_.contains(id) && shownSteps_.value(id) == next) continue;
        shownSteps_.insert(id, next);
        const Command& command = commandset::CommandOf(id);
        Action(id)->setText(commandset::MenuText(command, texts_, next));
        Action(id)->setToolTip(commandset::ToolTip(command, texts_, next).toHtmlEscaped());
    }
}

void EditorMenus::FillContextMenu(QMenu& menu, commandset::Place place) const {
    for (const Id id : commandset::ContextMenu(place)) {
        if (id == Id::Separator) {
            menu.addSeparator();
        } else {
            menu.addAction(Action(id));
        }
    }
}

void EditorMenus::Update(const commandset::Situation& situation) {
    for (const Command& command : commandset::Commands()) {
        if (QAction* action = Action(command.id)) {
            action->setEnabled(commandset::Obstacle(command, situation) == 0);
        }
    }
}

void EditorMenus::ShowAtTree(bool atTree) {
    treeSeparator_->setVisible(atTree);
    Action(Id::ShowEditor)->setVisible(atTree);
}
