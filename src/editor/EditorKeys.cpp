#include "editor/EditorKeys.h"

#include <QKeyEvent>

#include "texts/MResourceTable.h"

bool EditorKeys::Press(const QKeyEvent& event, commandset::Place place) const {
    // The keypad's keys are the same keys.
    const QKeyCombination keys(event.modifiers() & ~Qt::KeypadModifier,
                               static_cast<Qt::Key>(event.key()));
    const commandset::Command* command = commandset::CommandOf(place, keys);
    if (command == nullptr) return false;
    Run(command->id);
    return true;
}

bool EditorKeys::Run(commandset::Id id) const {
    const commandset::Command& command = commandset::CommandOf(id);
    // What stands in no menu, as help does, runs beside a command.
    const bool waits = command.text != 0 && window_.isBusy();
    const int obstacle = waits ? static_cast<int>(MResourceTable::kTextHintBusy)
                               : commandset::Obstacle(command, window_.situation());
    if (obstacle != 0) {
        window_.hint(obstacle);
        return false;
    }
    window_.run(id);
    return true;
}
