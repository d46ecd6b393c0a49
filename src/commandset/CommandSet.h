#pragma once

#include <cstdint>
#include <optional>
#include <QKeyCombination>
#include <QList>
#include <QString>
#include <QStringView>
#include <span>

#include "texts/MResources.h"

/// What a user can ask the editor for, each command once: its name, texts, picture and keys, and
/// what it needs to run. Menus, toolbar, context menus, tool tips, the keys of window and tree and
/// the help's list of keys are made from it.
namespace commandset {

enum class Id : std::uint8_t {
    NewArchive,
    EditArchive,
    DeleteArchive,
    ShowEditor,
    NewTrend,
    EditTrend,
    DeleteTrend,
    Statistic,
    Report,
    Refresh,
    Options,
    ProjectTable,
    Undo,
    Redo,
    Copy,
    Paste,
    Duplicate,
    EditTrends,
    EditArchives,
    Fill,
    FillCounting,
    Clear,
    SelectAll,
    FreezeName,
    Find,
    FindInProject,
    ReplaceInProject,
    WhereUsed,
    TrendsByPattern,
    Findings,
    DuplicateByPattern,
    Export,
    Import,
    KeepTemplate,
    Templates,
    Help,
    Separator,  // no command: a line between them
};

/// Where the keyboard is.
enum class Place : std::uint8_t {
    Tree,
    Archives,
    Trends,
    Cells,  // of several trends, selected; a key that has no meaning there has that of Trends
};

struct Key {
    Place place;
    QKeyCombination keys;
    bool isListed = true;  // in the help; false where the command only says what it needs
};

/// What has to be there, or possible, before a command runs; they add up.
enum Need : unsigned {
    kWriting = 1,           // the project can be written
    kPlaceForArchives = 2,  // the node of all archives, or the list of archives
    kArchive = 4,           // an archive
    kTrend = 8,             // a current trend
    kSelection = 16,        // selected trends
    kDone = 32,             // a step to take back
    kUndone = 64,           // a step that has been taken back
    kCells = 128,           // several trends that are selected, or cells of them
    kArchives = 256,        // several archives that are selected
};

struct Command {
    Id id;
    QStringView name;           // objectName of its action
    int text;                   // number of the menu item's; 0: it stands in no menu
    int menu;                   // number of the menu's whose name the tool tip begins with; or 0
    int description;            // number of what the help's list of keys says; 0: not in the list
    QStringView icon;           // empty: none
    unsigned needs;             // of Need
    std::span<const Key> keys;  // that are given; the user may have others (OwnKeys.h)
};

/// All commands, in the order of Id.
[[nodiscard]] std::span<const Command> Commands();
/// REQUIRES: not the separator.
[[nodiscard]] const Command& CommandOf(Id id);
/// The command of a key, given or the user's own; null when it has none there. Several may share a
/// key where only the place tells them apart.
[[nodiscard]] const Command* CommandOf(Place place, QKeyCombination keys);

/// A menu of the window's bar. Where `item` is not empty its items have the names "item(0)",
/// "item(1)" and so on, separators counted.
struct Menu {
    QStringView name;
    int text;
    QStringView item;
    std::span<const Id> commands;
};
[[nodiscard]] std::span<const Menu> Menus();
[[nodiscard]] std::span<const Id> ToolBar();
/// REQUIRES: not the tree, which shows the first menu.
[[nodiscard]] std::span<const Id> ContextMenu(Place place);

/// How things stand for the commands.
struct Situation {
    bool canWrite = true;
    bool isRoot = false;        // the node is that of all archives
    bool isArchive = false;     // the node is an archive's
    bool isInArchives = false;  // the keyboard is in the list of archives
    bool hasTrend = false;      // a trend is current
    bool hasSelection = false;  // trends are selected
    bool hasCells = false;      // several of them, whose cells can be written at once
    bool hasArchives = false;   // several archives are selected
    bool hasDone = false;       // the user has changed something
    bool hasUndone = false;     // and taken it back
};
/// Number of the text that says why a command cannot run; 0 when it can.
[[nodiscard]] int Obstacle(const Command& command, const Situation& situation);

/// The key that menus show, given or the user's own; nullopt: none.
[[nodiscard]] std::optional<QKeyCombination> FirstKey(const Command& command);

// Texts as they are shown.

/// "Ctrl+Del" in the language of the interface.
[[nodiscard]] QString KeyText(QKeyCombination keys, const MResources::TextTable& texts);
/// Of the key that menus show for a command; empty: it has none.
[[nodiscard]] QString KeyText(Id id, const MResources::TextTable& texts);
/// The sentence of an obstacle, with the key that helps.
[[nodiscard]] QString HintText(int obstacle, const MResources::TextTable& texts);
// `step`: what the command concerns, where its text names that.

/// Of the item in menus; behind a tab the first key.
[[nodiscard]] QString MenuText(const Command& command, const MResources::TextTable& texts,
                               const QString& step = {});
/// "Archives: New (F8)".
[[nodiscard]] QString ToolTip(const Command& command, const MResources::TextTable& texts,
                              const QString& step = {});
/// Given keys with what they do at a place, for the help: "F8, Ins" and "new trend".
struct KeyLine {
    QString keys;
    QString description;
};
[[nodiscard]] QList<KeyLine> KeyLines(Place place, const MResources::TextTable& texts);

}  // namespace commandset
