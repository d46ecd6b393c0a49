#pragma once

#include <functional>

class CInit;
class QWidget;
class TDBGrid;

namespace MResources {
class TextTable;
}

/// The way of the user's options into their dialog and back.
namespace MConfigeditor {

/// What the options belong to; all is borrowed.
struct Session {
    /// Its window has `grid` as tdbA; columns with an AllowSizing key in split 1 can be chosen.
    CInit& settings;
    /// Of split 1 the columns that are shown, their order and the font are changed. No edit is
    /// pending in it.
    TDBGrid& grid;
    QWidget& statusBar;
    const MResources::TextTable& texts;
    /// Shows a topic of the help by its context number; lets no exception out, may be empty.
    std::function<void(int topic, QWidget* owner)> showHelp;
    /// Stores the order of the grid's trend columns in the settings. May throw.
    std::function<void()> takeColumnOrders;
};

/// Shows the dialog modally and takes its options over into grid, status bar and settings when the
/// user confirms; the settings file is not touched. What fails is told here. True when all has been
/// taken over: the window arranges its parts anew then.
bool EditOptions(const Session& session, QWidget* owner);

}  // namespace MConfigeditor
