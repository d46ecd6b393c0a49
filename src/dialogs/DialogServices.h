#pragma once

#include <functional>
#include <optional>
#include <QFont>
#include <QString>
#include <QStringView>
#include <vector>

#include "project/TakeBack.h"

class QWidget;

namespace drafts {
class DraftKeeper;
}

namespace MResources {
class TextTable;
}

/// The names in use, a list for each group ("Arc" archives, "Trd" trends of the open archive). The
/// editor window keeps them; the dialogs ask here, so that they need not know the window.
class INameRegistry {
public:
    virtual ~INameRegistry() = default;

    /// True when the name is in use.
    [[nodiscard]] virtual bool TestNameInGroup(QStringView group, const QString& name) = 0;
    /// True when both are one name in the lists.
    [[nodiscard]] virtual bool IsSameName(const QString& a, const QString& b) const = 0;
    virtual void ChangeNameInGroup(QStringView group, const QString& oldName,
                                   const QString& newName) = 0;
};

/// What the property dialogs borrow of the program around them. The references outlive every
/// dialog. The functions let no exception out, and may be empty: what needs them then does nothing.
struct DialogServices {
    const MResources::TextTable& texts;
    INameRegistry& names;

    /// The variable browser: shows the variable `current` and returns the name of the chosen one;
    /// nothing when the user gives up.
    std::function<std::optional<QString>(QWidget* owner, const QString& current)> chooseVariable;
    /// Shows a topic of the help by its context number.
    std::function<void(int topic, QWidget* owner)> showHelp;
    /// The folder chooser: begins at a native path and returns one; nothing when the user gives
    /// up. Empty: the desktop's.
    std::function<std::optional<QString>(QWidget* owner, const QString& title,
                                         const QString& start)>
        chooseFolder;

    /// Folder of the open project in the form with backslashes, with or without one at the end.
    QString projectFolder;
    /// For texts in the current language of the project.
    QFont textFont;

    /// Where another program has changed the same fields as the user: whether the user's values
    /// hold, for each conflict; nothing when he decides nothing. Empty: nobody is asked.
    std::function<std::optional<std::vector<bool>>(const std::vector<project::Conflict>& conflicts,
                                                   QWidget* owner)>
        settle{};
    /// Shows where a variable is used, over `owner`.
    std::function<void(QWidget* owner, const QString& variable)> showUses{};
    /// Keeps what stands in a dialog until it is closed. Null: nothing is kept.
    drafts::DraftKeeper* drafts = nullptr;
};
