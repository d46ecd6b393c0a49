#pragma once

#include <functional>

#include "commandset/CommandSet.h"

class QKeyEvent;

/// Leads the keys of the window to its commands, and says why one cannot run.
class EditorKeys {
public:
    struct Window {
        std::function<commandset::Situation()> situation;
        std::function<bool()> isBusy;  // a command runs
        std::function<void(commandset::Id)> run;
        std::function<void(int text)> hint;
    };

    explicit EditorKeys(Window window) : window_(std::move(window)) {}

    /// False when the key means nothing there.
    bool Press(const QKeyEvent& event, commandset::Place place) const;
    /// Runs a command that a key asks for; false when it cannot run now, which has been said.
    bool Run(commandset::Id id) const;

private:
    Window window_;
};
