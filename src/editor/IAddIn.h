#pragma once

#include <optional>
#include <QString>
#include <QStringList>

#include "commands/ArchiveCommands.h"

class QWidget;

/// What the editor window asks of the add-in that made it, and through it of the host. The add-in
/// outlives the window.
class IAddIn : public IArchiveTree {
public:
    /// Shows the editor window, with the archive that is selected in the host's tree.
    virtual void ShowEditor() = 0;

    /// Selects a node of the add-in in the host's tree and opens it.
    virtual void SelectArchive(const QString& nodeKey) = 0;

    /// Keys of the archives' nodes in the order of the host's tree.
    [[nodiscard]] virtual QStringList ArchiveKeys() const = 0;
    /// The name that an archive's node shows; empty when it has none.
    [[nodiscard]] virtual QString ArchiveNodeText(const QString& nodeKey) const = 0;

    /// Key of the node that is selected in the host's tree; empty when it is none of the add-in's.
    [[nodiscard]] virtual QString SelectedNodeKey() const = 0;

    /// The host's variable browser, modal over `owner`, beginning at the variable `current`.
    /// nullopt: cancelled, or the host has no variables to offer.
    [[nodiscard]] virtual std::optional<QString> ChooseVariable(QWidget* owner,
                                                                const QString& current) = 0;

    /// The same for several variables, where the host offers that; else for one.
    [[nodiscard]] virtual std::optional<QStringList> ChooseVariables(QWidget* owner,
                                                                     const QString& current) = 0;

    /// Shows a topic of the help by its context number.
    virtual void ShowHelpTopic(int topic, QWidget* owner) = 0;
};
