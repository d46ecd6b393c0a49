#include "editor/EditorMenus.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include "icons/Icons.h"
#include "texts/MResourceTable.h"

using namespace Qt::Literals::StringLiterals;
using commandset::Command;
using commandset::Id;

namespace {

constexpr int kToolIconSize = 20;  // pixels

}  // namespace

EditorMenus::EditorMenus(const MResources::TextTable& texts, QWidget& window)
    : QObject(&window), texts_(texts), window_(window) {
    MakeActions();
    MakeBar();
}

void EditorMenus::MakeActions() {
    for (const Command& command : commandset::Commands()) {
        if (command.text == 0) continue;
        auto* action = new QAction(commandset::MenuText(command, texts_), &window_);
        action->setObjectName(command.name.toString());
        if (!command.icon.isEmpty()) {
            action->setIcon(icons::Icon(command.icon));
            action->setToolTip(commandset::ToolTip(command, texts_));
        }
        connect(action, &QAction::triggered, this, [this, id = command.id] { emit Triggered(id); });
        actions_.insert(command.id, action);
    }
    Action(Id::FreezeName)->setCheckable(true);
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
    return bar;
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
